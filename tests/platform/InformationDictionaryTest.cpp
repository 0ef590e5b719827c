#include "platform/InformationDictionary.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace zorel::platform;

class InformationDictionaryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsAreReadByTheirKeys();
    void valuesOfOtherTypesAreLeftOut();
    void textsStayAsTheyStand_data();
    void textsStayAsTheyStand();
    void keyTwiceHasItsLastValue();
    void damagedListIsEmpty_data();
    void damagedListIsEmpty();
    void bundleIsRead();
    void unreadableListIsEmpty_data();
    void unreadableListIsEmpty();
    void processOutsideABundleHasNone();

private:
    static QByteArray list(const QByteArray &content)
    {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
               "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
               "<plist version=\"1.0\">\n" +
               content + "\n</plist>\n";
    }
};

void InformationDictionaryTest::textsAreReadByTheirKeys()
{
    const InformationDictionary expected{
        {QStringLiteral("CFBundleDisplayName"), QStringLiteral("Talvex LLM Trainer")},
        {QStringLiteral("CFBundleShortVersionString"), QStringLiteral("1.2.3")}};
    QCOMPARE(
        parseInformationDictionary(list("<dict><key>CFBundleDisplayName</key>\n<string>Talvex LLM "
                                        "Trainer</string><!-- a remark --><key>CFBundleShortVersionString"
                                        "</key><string>1.2.3</string></dict>")),
        expected);
}

void InformationDictionaryTest::valuesOfOtherTypesAreLeftOut()
{
    const InformationDictionary expected{{QStringLiteral("Last"), QStringLiteral("text")}};
    QCOMPARE(parseInformationDictionary(
                 list("<dict><key>Flag</key><true/><key>Number</key><integer>7</integer>"
                      "<key>List</key><array><string>one</string><dict><key>Inner</key>"
                      "<string>two</string></dict></array>"
                      "<key>Dictionary</key><dict><key>Last</key><string>inner</string></dict>"
                      "<key>Last</key><string>text</string></dict>")),
             expected);
}

void InformationDictionaryTest::textsStayAsTheyStand_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QByteArray("<string></string>") << QStringLiteral("");
    QTest::newRow("empty in short") << QByteArray("<string/>") << QStringLiteral("");
    QTest::newRow("spaces at the ends") << QByteArray("<string> a </string>") << QStringLiteral(" a ");
    QTest::newRow("entities") << QByteArray("<string>&lt;A &amp; B&gt; &#x2192;</string>")
                              << QStringLiteral("<A & B> \u2192");
    QTest::newRow("not Latin") << QByteArray("<string>学習</string>") << QStringLiteral("学習");
    QTest::newRow("character data") << QByteArray("<string><![CDATA[a < b]]></string>")
                                    << QStringLiteral("a < b");
}

void InformationDictionaryTest::textsStayAsTheyStand()
{
    QFETCH(QByteArray, xml);
    const InformationDictionary information =
        parseInformationDictionary(list("<dict><key>Text</key>" + xml + "</dict>"));
    QCOMPARE(information.value(QStringLiteral("Text")).typeId(), int(QMetaType::QString));
    QTEST(information.value(QStringLiteral("Text")).toString(), "text");
}

void InformationDictionaryTest::keyTwiceHasItsLastValue()
{
    QCOMPARE(parseInformationDictionary(
                 list("<dict><key>A</key><string>1</string><key>A</key><string>2</string></dict>"))
                 .value(QStringLiteral("A")),
             QStringLiteral("2"));
    QVERIFY(
        !parseInformationDictionary(list("<dict><key>A</key><string>1</string><key>A</key><true/></dict>"))
             .contains(QStringLiteral("A")));
}

void InformationDictionaryTest::damagedListIsEmpty_data()
{
    const QByteArray good = "<key>Good</key><string>text</string>";
    QTest::addColumn<QByteArray>("xml");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no XML") << QByteArray("bplist00\xd1\x01");
    QTest::newRow("no dictionary") << list("<array><string>text</string></array>");
    QTest::newRow("another document") << QByteArray("<html><dict>" + good + "</dict></html>");
    QTest::newRow("cut off") << QByteArray("<plist version=\"1.0\"><dict>" + good);
    QTest::newRow("not well-formed behind the dictionary")
        << QByteArray("<plist version=\"1.0\"><dict>" + good + "</dict></wrong>");
    QTest::newRow("a value without a key") << list("<dict>" + good + "<string>stray</string></dict>");
    QTest::newRow("a key without a value") << list("<dict>" + good + "<key>Lonely</key></dict>");
    QTest::newRow("an element in a text")
        << list("<dict>" + good + "<key>A</key><string><b/></string></dict>");
    QTest::newRow("not UTF-8") << list("<dict>" + good + "<key>A</key><string>\xff\xfe</string></dict>");
    QTest::newRow("entities that grow without end")
        << QByteArray("<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaaaaaaaaaaaa\"><!ENTITY b "
                      "\"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\"><!ENTITY c "
                      "\"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\"><!ENTITY d "
                      "\"&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;\">]><plist><dict><key>A</key><string>&d;"
                      "</string></dict></plist>");
}

void InformationDictionaryTest::damagedListIsEmpty()
{
    QFETCH(QByteArray, xml);
    QCOMPARE(parseInformationDictionary(xml), InformationDictionary());
}

void InformationDictionaryTest::bundleIsRead()
{
    const QTemporaryDir folder;
    const QString bundle = folder.filePath(QStringLiteral("X.app"));
    QVERIFY(QDir().mkpath(bundle + QStringLiteral("/Contents")));
    QFile file(bundle + QStringLiteral("/Contents/Info.plist"));
    QVERIFY(file.open(QFile::WriteOnly));
    file.write(list("<dict><key>CFBundleName</key><string>X</string></dict>"));
    file.close();
    QCOMPARE(informationDictionaryOf(Bundle{bundle, {}, {}}).value(QStringLiteral("CFBundleName")),
             QStringLiteral("X"));
}

void InformationDictionaryTest::unreadableListIsEmpty_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *const kind : {"missing", "folder", "pipe", "huge"}) {
        QTest::newRow(kind) << QString::fromLatin1(kind);
    }
}

void InformationDictionaryTest::unreadableListIsEmpty()
{
    QFETCH(QString, kind);
    const QTemporaryDir folder;
    const QString contents = folder.filePath(QStringLiteral("X.app/Contents"));
    QVERIFY(QDir().mkpath(contents));
    const QString path = contents + QStringLiteral("/Info.plist");
    if (kind == QLatin1String("folder")) {
        QVERIFY(QDir().mkpath(path));
    } else if (kind == QLatin1String("pipe")) {
        QVERIFY(::mkfifo(QFile::encodeName(path).constData(), 0600) == 0);
    } else if (kind == QLatin1String("huge")) {
        QFile file(path);
        QVERIFY(file.open(QFile::WriteOnly));
        file.write(list("<dict><key>A</key><string>text</string></dict>") + QByteArray(2'000'000, '\n'));
    }
    QCOMPARE(informationDictionaryOf(Bundle{folder.filePath(QStringLiteral("X.app")), {}, {}}),
             InformationDictionary());
}

void InformationDictionaryTest::processOutsideABundleHasNone()
{
    QCOMPARE(informationDictionaryOf(std::nullopt), InformationDictionary());
    QCOMPARE(mainInformationDictionary(), InformationDictionary());
}

QTEST_GUILESS_MAIN(InformationDictionaryTest)
#include "InformationDictionaryTest.moc"
