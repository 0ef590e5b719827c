#include "app/presentation/RunTexts.h"

#include <QTest>

using namespace zorel::app::presentation;

class RunTextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knownValuesHaveTitles();
    void unknownValuesStayAsTheyStand();
};

void RunTextsTest::knownValuesHaveTitles()
{
    QCOMPARE(familyTitle(QStringLiteral("text_language")), QStringLiteral("Text Language Model"));
    QVERIFY(familyTitle(QStringLiteral("multimodal")) != QStringLiteral("multimodal"));
    QCOMPARE(capabilityTitle(QStringLiteral("pretrain")), QStringLiteral("Pretrain from scratch"));
    QVERIFY(capabilityTitle(QStringLiteral("lora")) != QStringLiteral("lora"));
}

void RunTextsTest::unknownValuesStayAsTheyStand()
{
    for (const char *text : {"vision", "Text_Language", "", " text_language"}) {
        QCOMPARE(familyTitle(QString::fromLatin1(text)), QString::fromLatin1(text));
        QCOMPARE(capabilityTitle(QString::fromLatin1(text)), QString::fromLatin1(text));
    }
}

QTEST_APPLESS_MAIN(RunTextsTest)
#include "RunTextsTest.moc"
