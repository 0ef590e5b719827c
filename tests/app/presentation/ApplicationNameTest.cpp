#include "app/presentation/ApplicationName.h"

#include <QTest>

using namespace zorel::app::presentation;
using zorel::platform::InformationDictionary;

class ApplicationNameTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void displayNameIsTheFirstThatTheBundleGives_data();
    void displayNameIsTheFirstThatTheBundleGives();
    void versionIsTheBundles_data();
    void versionIsTheBundles();
};

void ApplicationNameTest::displayNameIsTheFirstThatTheBundleGives_data()
{
    const QString display = QStringLiteral("CFBundleDisplayName");
    const QString name = QStringLiteral("CFBundleName");
    QTest::addColumn<InformationDictionary>("information");
    QTest::addColumn<QString>("expected");
    QTest::newRow("both") << InformationDictionary{{display, QStringLiteral("Shown")},
                                                   {name, QStringLiteral("Named")}}
                          << QStringLiteral("Shown");
    QTest::newRow("display name alone")
        << InformationDictionary{{display, QStringLiteral("Shown")}} << QStringLiteral("Shown");
    QTest::newRow("empty display name")
        << InformationDictionary{{display, QStringLiteral("")}, {name, QStringLiteral("Named")}}
        << QStringLiteral("Named");
    QTest::newRow("bundle name alone")
        << InformationDictionary{{name, QStringLiteral("Named")}} << QStringLiteral("Named");
    QTest::newRow("neither") << InformationDictionary() << QStringLiteral("Talvex LLM Trainer");
    QTest::newRow("both empty") << InformationDictionary{{display, QStringLiteral("")},
                                                         {name, QStringLiteral("")}}
                                << QStringLiteral("Talvex LLM Trainer");
    QTest::newRow("no texts") << InformationDictionary{{display, 7}, {name, true}}
                              << QStringLiteral("Talvex LLM Trainer");
}

void ApplicationNameTest::displayNameIsTheFirstThatTheBundleGives()
{
    QFETCH(InformationDictionary, information);
    QTEST(displayName(information), "expected");
}

void ApplicationNameTest::versionIsTheBundles_data()
{
    const QString key = QStringLiteral("CFBundleShortVersionString");
    QTest::addColumn<InformationDictionary>("information");
    QTest::addColumn<QString>("expected");
    QTest::newRow("given") << InformationDictionary{{key, QStringLiteral("1.2.3")}}
                           << QStringLiteral("1.2.3");
    QTest::newRow("absent") << InformationDictionary() << QStringLiteral("unknown");
    QTest::newRow("no text") << InformationDictionary{{key, 2}} << QStringLiteral("unknown");
    QTest::newRow("empty") << InformationDictionary{{key, QStringLiteral("")}} << QStringLiteral("");
}

void ApplicationNameTest::versionIsTheBundles()
{
    QFETCH(InformationDictionary, information);
    QTEST(version(information), "expected");
}

QTEST_GUILESS_MAIN(ApplicationNameTest)
#include "ApplicationNameTest.moc"
