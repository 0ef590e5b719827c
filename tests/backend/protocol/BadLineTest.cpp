#include "backend/protocol/BadLine.h"

#include <QTest>

using zorel::backend::protocol::startOfLine;

class BadLineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLineOf300CharactersIsCutTo120();
    void aShortLineIsShownWhole_data();
    void aShortLineIsShownWhole();
    void composedCharactersCountOnce_data();
    void composedCharactersCountOnce();
    void anAccentOnTheLastCharacterStays();
    void aCharacterCutByTheBoundIsLeftOut();
    void oneEndlessCharacterIsCut();
    void aHugeLineCostsNoMoreThanItsStart();
};

void BadLineTest::aLineOf300CharactersIsCutTo120()
{
    std::string line;
    for (int index = 0; index < 300; ++index) {
        line += static_cast<char>('a' + index % 26);
    }
    QCOMPARE(startOfLine(line), QString::fromStdString(line.substr(0, 120)));
}

void BadLineTest::aShortLineIsShownWhole_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("empty") << QString();
    QTest::newRow("short") << QStringLiteral("Traceback");
    QTest::newRow("120") << QString(120, u'x');
    QTest::newRow("control characters") << QStringLiteral("a\tb\x01"
                                                          "c");
    QTest::newRow("byte order mark") << QString(QChar(0xFEFF)) + QStringLiteral("{}");
    QTest::newRow("nul") << QString(QChar(0)) + QStringLiteral("x");
}

void BadLineTest::aShortLineIsShownWhole()
{
    QFETCH(QString, line);
    QCOMPARE(startOfLine(line.toStdString()), line);
}

void BadLineTest::composedCharactersCountOnce_data()
{
    QTest::addColumn<QString>("character");
    QTest::newRow("emoji") << QStringLiteral("😀");
    QTest::newRow("emoji of a family") << QStringLiteral("👨\u200D👩\u200D👧\u200D👦");
    QTest::newRow("emoji with a skin tone") << QStringLiteral("👍🏽");
    QTest::newRow("flag") << QStringLiteral("🇩🇪");
    QTest::newRow("combining marks") << QStringLiteral("e\u0301\u0302");
    QTest::newRow("umlaut") << QStringLiteral("ü");
}

void BadLineTest::composedCharactersCountOnce()
{
    QFETCH(QString, character);
    QCOMPARE(startOfLine(character.repeated(300).toStdString()), character.repeated(120));
    QCOMPARE(startOfLine(character.repeated(7).toStdString()), character.repeated(7));
}

void BadLineTest::anAccentOnTheLastCharacterStays()
{
    const QString start = QString(119, u'x') + QStringLiteral("e\u0301");
    QCOMPARE(startOfLine((start + QStringLiteral("yz")).toStdString()), start);
}

void BadLineTest::aCharacterCutByTheBoundIsLeftOut()
{
    // Each of these letters is so laden with accents that fewer than 120 fit into what is looked at.
    const QString laden = QStringLiteral("a") + QString(100, QChar(0x0301));
    const QString shown = startOfLine(laden.repeated(300).toStdString());
    QVERIFY(!shown.isEmpty());
    QCOMPARE(shown.size() % laden.size(), 0);
    QCOMPARE(shown, laden.repeated(shown.size() / laden.size()));
}

void BadLineTest::oneEndlessCharacterIsCut()
{
    for (int shift = 0; shift < 4; ++shift) { // the bound falls into every place of a four-byte sequence
        const QString line = QString(shift, u'x') + QStringLiteral("x\U0001D165").leftJustified(3) +
                             QStringLiteral("\U0001D165").repeated(100'000);
        const QString shown = startOfLine(line.toStdString());
        QVERIFY(!shown.isEmpty());
        QVERIFY(!shown.contains(QChar::ReplacementCharacter));
        QVERIFY(line.startsWith(shown));
        QVERIFY(!shown.back().isHighSurrogate());
    }
    const QString accents = QStringLiteral("a") + QString(100'000, QChar(0x0301));
    const QString shown = startOfLine(accents.toStdString());
    QVERIFY(shown.size() > 1 && shown.size() < 20'000 && accents.startsWith(shown));
}

void BadLineTest::aHugeLineCostsNoMoreThanItsStart()
{
    const std::string letters(64 * 1024 * 1024, 'x');
    std::string marks = "\xC3\xA4" + letters;
    for (int round = 0; round < 2000; ++round) {
        QCOMPARE(startOfLine(letters).size(), 120);
    }
    for (int round = 0; round < 200; ++round) {
        QCOMPARE(startOfLine(marks).size(), 120);
    }
}

QTEST_APPLESS_MAIN(BadLineTest)
#include "BadLineTest.moc"
