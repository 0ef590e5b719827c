#include "platform/FileUserDefaults.h"

#include "tests/platform/FileUserDefaultsFixture.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QRegularExpression>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using zorel::platform::FileUserDefaults;

namespace {

const QString name = QStringLiteral("zorel.modelName");
const QString author = QStringLiteral("zorel.modelAuthor");
const QString logExpanded = QStringLiteral("zorel.logExpanded");

} // namespace

class FileUserDefaultsTest : public zorel::tests::FileUserDefaultsFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { makeFolder(); }
    void valuesComeBackFromTheFileWithTheirType();
    void datesAreTextsInTheFile();
    void textsOfAllKindsSurvive_data();
    void textsOfAllKindsSurvive();
    void fileIsOneKeyALineUnderTheSystemsNames();
    void valuesOfOtherTypesReadAsAbsent();
    void loadingWritesNothing();
    void valuesOfOneTurnAreWrittenTogetherOnTheNext();
    void destructionPersists();
    void equalValueLeavesTheFileUntouched();

    void missingFoldersAreMade();
    void impossiblePlaceKeepsValuesInMemory_data();
    void impossiblePlaceKeepsValuesInMemory();
    void valuesAreWrittenOnceThePlaceIsUsableAgain();
    void deletedFileIsMadeAgainWithEverythingKnown();

    void damagedFileGivesDefaultsAndIsKept_data();
    void damagedFileGivesDefaultsAndIsKept();
    void damagedFileStaysInPlaceUntilSomethingIsWritten();
    void emptyFileIsAnEmptyStore();
    void veryLargeFileIsNotRead();

    void valuesOfAnotherInstanceAreKept();
    void valuesOfALaterVersionAreKept();
    void writingWaitsForTheOtherInstanceWithoutBlocking();
    void stuckInstanceDoesNotKeepThisOneFromEnding();

private:
    QString folder() const { return m_folder->path(); }
    QStringList names() const { return QDir(folder()).entryList(QDir::Files | QDir::NoDotAndDotDot); }
    QByteArray contents(const QString &path) const
    {
        QFile file(path);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }
};

void FileUserDefaultsTest::valuesComeBackFromTheFileWithTheirType()
{
    {
        FileUserDefaults defaults(m_file);
        defaults.setString(name, QStringLiteral("Poet"));
        defaults.setString(author, QString());
        defaults.setBoolean(logExpanded, true);
        QCOMPARE(defaults.string(name), QStringLiteral("Poet"));
    }
    const FileUserDefaults defaults(m_file);
    QCOMPARE(defaults.string(name), QStringLiteral("Poet"));
    QCOMPARE(defaults.string(author), QString());
    QCOMPARE(defaults.boolean(logExpanded), true);
    QVERIFY(!defaults.string(QStringLiteral("zorel.absent")));
    QVERIFY(!defaults.boolean(QStringLiteral("zorel.absent")));
}

void FileUserDefaultsTest::datesAreTextsInTheFile()
{
    const QString key = QStringLiteral("talvex.updater.lastCheckAt");
    const QDateTime date(QDate(2026, 1, 2), QTime(5, 4, 5, 678), Qt::OffsetFromUTC, 7'200);
    FileUserDefaults(m_file).setDate(key, date);
    QCOMPARE(stored().value(key), QJsonValue(QStringLiteral("2026-01-02T03:04:05.678Z")));
    QCOMPARE(FileUserDefaults(m_file).date(key), std::optional(date));
    for (const char *text : {"", "yesterday", "2026-02-30T00:00:00Z"}) {
        FileUserDefaults(m_file).setString(key, QString::fromUtf8(text));
        QVERIFY2(!FileUserDefaults(m_file).date(key), text);
    }
    QVERIFY(!FileUserDefaults(m_file).date(QStringLiteral("zorel.absent")));
}

void FileUserDefaultsTest::textsOfAllKindsSurvive_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("quotes and backslashes") << QStringLiteral("\"a\\b\"\\");
    QTest::newRow("line breaks") << QStringLiteral("a\r\nb\u2028c");
    QTest::newRow("not Latin") << QStringLiteral("学習 данные 📚");
    QTest::newRow("NUL") << QStringLiteral("a") + QChar(u'\0') + QStringLiteral("b");
    QTest::newRow("looks like another type") << QStringLiteral("true");
    QTest::newRow("one million characters") << QString(1'000'000, u'ß');
}

void FileUserDefaultsTest::textsOfAllKindsSurvive()
{
    QFETCH(QString, text);
    FileUserDefaults(m_file).setString(name, text);
    QCOMPARE(FileUserDefaults(m_file).string(name), text);
}

void FileUserDefaultsTest::fileIsOneKeyALineUnderTheSystemsNames()
{
    {
        FileUserDefaults defaults(m_file);
        defaults.setString(name, QStringLiteral("Poet"));
        defaults.setBoolean(logExpanded, false);
        defaults.setString(author, QStringLiteral("Ada"));
    }
    QCOMPARE(contents(m_file),
             QByteArray("{\n    \"zorel.logExpanded\": false,\n    \"zorel.modelAuthor\": \"Ada\",\n"
                        "    \"zorel.modelName\": \"Poet\"\n}\n"));
}

void FileUserDefaultsTest::valuesOfOtherTypesReadAsAbsent()
{
    store(
        R"({"number": 7, "text": "x", "truth": true, "nothing": null, "list": ["x"], "object": {"a": "b"}})");
    const FileUserDefaults defaults(m_file);
    for (const char *const key : {"number", "truth", "nothing", "list", "object"}) {
        QVERIFY2(!defaults.string(QLatin1String(key)), key);
    }
    for (const char *const key : {"number", "text", "nothing", "list", "object"}) {
        QVERIFY2(!defaults.boolean(QLatin1String(key)), key);
    }
    QCOMPARE(defaults.string(QStringLiteral("text")), QStringLiteral("x"));
    QCOMPARE(defaults.boolean(QStringLiteral("truth")), true);
}

void FileUserDefaultsTest::loadingWritesNothing()
{
    {
        FileUserDefaults defaults(m_file);
        QVERIFY(!defaults.string(name));
        QCoreApplication::processEvents();
    }
    QVERIFY(QDir(folder()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

void FileUserDefaultsTest::valuesOfOneTurnAreWrittenTogetherOnTheNext()
{
    FileUserDefaults defaults(m_file);
    defaults.setString(name, QStringLiteral("P"));
    defaults.setString(name, QStringLiteral("Po"));
    defaults.setString(author, QStringLiteral("Ada"));
    QVERIFY(!QFile::exists(m_file));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(stored(), QJsonObject({{name, QStringLiteral("Po")}, {author, QStringLiteral("Ada")}}));

    defaults.setString(name, QStringLiteral("Poet"));
    QCOMPARE(stored().value(name).toString(), QStringLiteral("Po"));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(stored().value(name).toString(), QStringLiteral("Poet"));
}

void FileUserDefaultsTest::destructionPersists()
{
    FileUserDefaults(m_file).setString(name, QStringLiteral("Poet"));
    QCOMPARE(stored().value(name).toString(), QStringLiteral("Poet"));
}

void FileUserDefaultsTest::equalValueLeavesTheFileUntouched()
{
    FileUserDefaults defaults(m_file);
    defaults.setString(name, QStringLiteral("Poet"));
    defaults.synchronize();
    QFile holder(m_file);
    QVERIFY(holder.open(QFile::ReadOnly));
    struct stat before = {};
    struct stat after = {};
    QCOMPARE(::fstat(holder.handle(), &before), 0);
    defaults.setString(name, QStringLiteral("Poet"));
    defaults.synchronize();
    QCOMPARE(::stat(QFile::encodeName(m_file).constData(), &after), 0);
    QCOMPARE(after.st_ino, before.st_ino);
}

void FileUserDefaultsTest::missingFoldersAreMade()
{
    m_file = folder() + QStringLiteral("/one/two/zorel.json");
    FileUserDefaults(m_file).setString(name, QStringLiteral("Poet"));
    QCOMPARE(stored().value(name).toString(), QStringLiteral("Poet"));
}

void FileUserDefaultsTest::impossiblePlaceKeepsValuesInMemory_data()
{
    QTest::addColumn<QString>("place");
    QTest::newRow("below a file") << QStringLiteral("file/zorel.json");
    QTest::newRow("a folder") << QStringLiteral("folder");
    QTest::newRow("a named pipe") << QStringLiteral("pipe");
    QTest::newRow("a device") << QStringLiteral("/dev/full");
    QTest::newRow("a link to itself") << QStringLiteral("loop");
    QTest::newRow("a name too long") << QString(4000, u'x');
}

void FileUserDefaultsTest::impossiblePlaceKeepsValuesInMemory()
{
    QFETCH(QString, place);
    const QDir root(folder());
    QFile file(root.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QFile::WriteOnly));
    QVERIFY(root.mkdir(QStringLiteral("folder")));
    QCOMPARE(::mkfifo(QFile::encodeName(root.filePath(QStringLiteral("pipe"))).constData(), 0600), 0);
    QVERIFY(QFile::link(QStringLiteral("loop"), root.filePath(QStringLiteral("loop"))));
    const auto everything = QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot;
    const QStringList before = root.entryList(everything);

    // The place of a device is not ours to leave a lock file in.
    const QString path =
        place.startsWith(u'/') ? root.filePath(QStringLiteral("device")) : root.filePath(place);
    if (place.startsWith(u'/')) {
        QVERIFY(QFile::link(place, path));
    }
    FileUserDefaults defaults(path);
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(QStringLiteral("^The settings cannot be saved to ")));
    defaults.setString(name, QStringLiteral("Po"));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(defaults.string(name), QStringLiteral("Po"));
    defaults.setString(name, QStringLiteral("Poet"));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(defaults.string(name), QStringLiteral("Poet"));
    QFile::remove(root.filePath(QStringLiteral("device")));
    QCOMPARE(root.entryList(everything), before);
}

void FileUserDefaultsTest::valuesAreWrittenOnceThePlaceIsUsableAgain()
{
    QVERIFY(QDir().mkdir(m_file));
    FileUserDefaults defaults(m_file);
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(QStringLiteral("^The settings cannot be saved to ")));
    defaults.setString(name, QStringLiteral("Poet"));
    QCoreApplication::sendPostedEvents();
    QVERIFY(QDir().rmdir(m_file));
    defaults.setString(author, QStringLiteral("Ada"));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(stored(), QJsonObject({{name, QStringLiteral("Poet")}, {author, QStringLiteral("Ada")}}));
}

void FileUserDefaultsTest::deletedFileIsMadeAgainWithEverythingKnown()
{
    store(R"({"zorel.modelName": "Poet"})");
    FileUserDefaults defaults(m_file);
    QVERIFY(QFile::remove(m_file));
    defaults.setString(author, QStringLiteral("Ada"));
    defaults.synchronize();
    QCOMPARE(stored(), QJsonObject({{name, QStringLiteral("Poet")}, {author, QStringLiteral("Ada")}}));
}

void FileUserDefaultsTest::damagedFileGivesDefaultsAndIsKept_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("half an object") << QByteArray(R"({"zorel.modelName": "Po)");
    QTest::newRow("an array") << QByteArray("[]");
    QTest::newRow("binary") << QByteArray("\0\1\2\xff\xfe", 5);
    QTest::newRow("invalid UTF-8") << QByteArray("{\"zorel.modelName\": \"\xff\"}");
    QTest::newRow("something behind") << QByteArray(R"({"zorel.modelName": "Poet"} {)");
    QTest::newRow("only zeros, as after a power cut") << QByteArray(4096, '\0');
    QTest::newRow("nested deeply") << QByteArray(100'000, '[');
}

void FileUserDefaultsTest::damagedFileGivesDefaultsAndIsKept()
{
    QFETCH(QByteArray, bytes);
    store(bytes);
    {
        FileUserDefaults defaults(m_file);
        QVERIFY(!defaults.string(name));
        defaults.setString(author, QStringLiteral("Ada"));
    }
    QCOMPARE(stored(), QJsonObject({{author, QStringLiteral("Ada")}}));
    QCOMPARE(contents(m_file + QStringLiteral(".damaged")), bytes);
}

void FileUserDefaultsTest::damagedFileStaysInPlaceUntilSomethingIsWritten()
{
    store("{");
    QVERIFY(!FileUserDefaults(m_file).string(name));
    QCOMPARE(contents(m_file), QByteArray("{"));
    QCOMPARE(names(), QStringList{QStringLiteral("zorel.json")});
}

void FileUserDefaultsTest::emptyFileIsAnEmptyStore()
{
    store(QByteArray());
    {
        FileUserDefaults defaults(m_file);
        QVERIFY(!defaults.string(name));
        defaults.setString(name, QStringLiteral("Poet"));
    }
    QCOMPARE(stored(), QJsonObject({{name, QStringLiteral("Poet")}}));
    QCOMPARE(names(), QStringList{QStringLiteral("zorel.json")});
}

void FileUserDefaultsTest::veryLargeFileIsNotRead()
{
    constexpr qint64 size = qint64{64} * 1024 * 1024 * 1024;
    QFile large(m_file);
    QVERIFY(large.open(QFile::WriteOnly));
    QVERIFY(large.resize(size));
    large.close();
    FileUserDefaults(m_file).setString(name, QStringLiteral("Poet"));
    QCOMPARE(FileUserDefaults(m_file).string(name), QStringLiteral("Poet"));
    QCOMPARE(QFileInfo(m_file + QStringLiteral(".damaged")).size(), size);
}

void FileUserDefaultsTest::valuesOfAnotherInstanceAreKept()
{
    FileUserDefaults first(m_file);
    FileUserDefaults second(m_file);
    first.setString(name, QStringLiteral("Poet"));
    first.synchronize();
    second.setString(author, QStringLiteral("Ada"));
    second.synchronize();
    QCOMPARE(stored(), QJsonObject({{name, QStringLiteral("Poet")}, {author, QStringLiteral("Ada")}}));
    QCOMPARE(second.string(name), QStringLiteral("Poet"));

    // An equal value is an assignment too: the last one to assign has the last word.
    second.setString(name, QStringLiteral("Critic"));
    second.synchronize();
    first.setString(name, QStringLiteral("Poet"));
    first.synchronize();
    QCOMPARE(stored().value(name).toString(), QStringLiteral("Poet"));
}

void FileUserDefaultsTest::valuesOfALaterVersionAreKept()
{
    store(R"({"later": {"list": [1, 2.5, null, 9007199254740993]}, "zorel.modelName": "Poet"})");
    FileUserDefaults(m_file).setString(name, QStringLiteral("Critic"));
    QCOMPARE(stored().value(QStringLiteral("later")).toObject().value(QStringLiteral("list")).toArray(),
             QJsonArray({1, 2.5, QJsonValue(), qint64{9007199254740993}}));
}

void FileUserDefaultsTest::writingWaitsForTheOtherInstanceWithoutBlocking()
{
    FileUserDefaults defaults(m_file);
    const QByteArray lockFile = QFile::encodeName(folder() + QStringLiteral("/.zorel.json.lock"));
    const int lock = ::open(lockFile.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    QCOMPARE(::flock(lock, LOCK_EX), 0);
    defaults.setString(name, QStringLiteral("Poet"));
    QCoreApplication::sendPostedEvents();
    QVERIFY(!QFile::exists(m_file));
    QCOMPARE(defaults.string(name), QStringLiteral("Poet"));
    ::close(lock);
    QTRY_VERIFY(QFile::exists(m_file));
    QCOMPARE(stored(), QJsonObject({{name, QStringLiteral("Poet")}}));
}

void FileUserDefaultsTest::stuckInstanceDoesNotKeepThisOneFromEnding()
{
    const QByteArray lockFile = QFile::encodeName(folder() + QStringLiteral("/.zorel.json.lock"));
    const int lock = ::open(lockFile.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    QCOMPARE(::flock(lock, LOCK_EX), 0);
    FileUserDefaults(m_file).setString(name, QStringLiteral("Poet"));
    QVERIFY(!QFile::exists(m_file));
    ::close(lock);
}

QTEST_GUILESS_MAIN(FileUserDefaultsTest)
#include "FileUserDefaultsTest.moc"
