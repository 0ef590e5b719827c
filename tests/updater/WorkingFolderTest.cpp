#include "updater/WorkingFolder.h"
#include "tests/updater/Files.h"
#include "tests/updater/Outcome.h"
#include "updater/InstallSurroundings.h"

#include <QRegularExpression>

#include <fcntl.h>
#include <sys/stat.h>

using namespace zorel::tests;
using namespace zorel::updater;

namespace {

InstallSurroundings surroundingsIn(const Folder &folder)
{
    InstallSurroundings surroundings;
    surroundings.cachesFolder = folder / "Library/Caches";
    surroundings.temporaryFolder = folder / "Temporary";
    return surroundings;
}

mode_t modeOf(const QString &path)
{
    struct stat entry = {};
    ::lstat(QFile::encodeName(path).constData(), &entry);
    return entry.st_mode & 07777;
}

/// As if the folder had last been changed so long ago.
void age(const QString &path, std::chrono::hours age)
{
    const auto then = std::chrono::system_clock::now() - age;
    const timespec time{std::chrono::system_clock::to_time_t(then), 0};
    const timespec times[2] = {time, time};
    QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
}

} // namespace

class WorkingFolderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itStandsInTheCachesAndIsPrivate();
    void theTemporaryFolderStandsInForTheCaches_data();
    void theTemporaryFolderStandsInForTheCaches();
    void itGoesUnlessItIsKept();
    void onlyOneExistsAtATime();
    void aKeptOneKeepsOthersAwayUntilTheProcessEnds();
    void foldersOfEarlierDaysAreRemoved();
    void aFolderThatCannotBeMadeIsNamed_data();
    void aFolderThatCannotBeMadeIsNamed();
    void aFolderThatEverybodyMayChangeIsRefused_data();
    void aFolderThatEverybodyMayChangeIsRefused();
};

void WorkingFolderTest::itStandsInTheCachesAndIsPrivate()
{
    const Folder folder;
    const mode_t before = ::umask(0);
    const WorkingFolder working(surroundingsIn(folder));
    ::umask(before);
    const QString parent = folder / "Library/Caches/com.talvex.zorel/Updater";
    QVERIFY(working.path().startsWith(parent + u'/'));
    static const QRegularExpression uuid(
        QStringLiteral("^[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}$"));
    QVERIFY(uuid.match(working.path().mid(parent.size() + 1)).hasMatch());
    QCOMPARE(modeOf(working.path()), mode_t{0700});
    QCOMPARE(working.staged(), working.path() + QStringLiteral("/staged"));
    QCOMPARE(modeOf(working.staged()), mode_t{0700});
    QCOMPARE(modeOf(parent), mode_t{0700});
}

void WorkingFolderTest::theTemporaryFolderStandsInForTheCaches_data()
{
    QTest::addColumn<QString>("caches");
    QTest::newRow("none") << QString();
    QTest::newRow("one that no administrator command can name") << QStringLiteral("/home/o'brien/Caches");
}

void WorkingFolderTest::theTemporaryFolderStandsInForTheCaches()
{
    QFETCH(QString, caches);
    const Folder folder;
    InstallSurroundings surroundings = surroundingsIn(folder);
    surroundings.cachesFolder = caches;
    const WorkingFolder working(surroundings);
    QVERIFY(working.path().startsWith(folder / "Temporary/com.talvex.zorel/Updater/"));
}

void WorkingFolderTest::itGoesUnlessItIsKept()
{
    const Folder folder;
    QString gone;
    QString kept;
    {
        const WorkingFolder working(surroundingsIn(folder));
        gone = working.path();
        writeFile(working.staged() + QStringLiteral("/x/y"), "x");
    }
    {
        WorkingFolder working(surroundingsIn(folder));
        kept = working.path();
        working.keep();
    }
    QVERIFY(!QFile::exists(gone));
    QVERIFY(QFile::exists(kept));
}

void WorkingFolderTest::onlyOneExistsAtATime()
{
    const Folder folder;
    const auto another = [&folder] {
        return errorOf([&folder] { const WorkingFolder second(surroundingsIn(folder)); });
    };
    {
        const WorkingFolder first(surroundingsIn(folder));
        QCOMPARE(another(), std::optional(UpdateError(UpdateError::RelaunchFailed{QStringLiteral(
                                "another copy of Talvex LLM Trainer is installing an update")})));
    }
    QCOMPARE(another(), std::nullopt);
}

void WorkingFolderTest::aKeptOneKeepsOthersAwayUntilTheProcessEnds()
{
    const Folder folder;
    const auto another = [&folder] {
        return errorOf([&folder] { const WorkingFolder second(surroundingsIn(folder)); });
    };
    const pid_t process = ::fork();
    if (process == 0) {
        {
            WorkingFolder kept(surroundingsIn(folder));
            kept.keep();
        }
        std::_Exit(another() ? 0 : 1);
    }
    int status = -1;
    QCOMPARE(::waitpid(process, &status, 0), process);
    QCOMPARE(status, 0);
    QCOMPARE(another(), std::nullopt);
}

void WorkingFolderTest::foldersOfEarlierDaysAreRemoved()
{
    using namespace std::chrono_literals;
    const Folder folder;
    const QString parent = folder / "Library/Caches/com.talvex.zorel/Updater/";
    const QString old = QStringLiteral("E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    const QString recent = QStringLiteral("E621E1F8-C36C-495A-93FC-0C247A3E6E60");
    const QString other = QStringLiteral("something else");
    for (const QString &name : {old, recent, other}) {
        writeFile(parent + name + QStringLiteral("/install.sh"), "x");
    }
    writeFile(folder / "outside/x", "x");
    const QString link = QStringLiteral("E621E1F8-C36C-495A-93FC-0C247A3E6E61");
    makeLink(parent + link, QFile::encodeName(folder / "outside"));
    age(parent + old, 25h);
    age(parent + recent, 23h);
    age(parent + other, 25h);
    age(folder / "outside", 25h);
    const WorkingFolder working(surroundingsIn(folder));
    QVERIFY(!QFile::exists(parent + old));
    QVERIFY(QFile::exists(parent + recent + QStringLiteral("/install.sh")));
    QVERIFY(QFile::exists(parent + other));
    QVERIFY(QFile::exists(folder / "outside/x"));
}

void WorkingFolderTest::aFolderThatCannotBeMadeIsNamed_data()
{
    QTest::addColumn<QString>("inTheWay");
    QTest::addColumn<bool>("isLink");
    QTest::newRow("the caches are a file") << QStringLiteral("Library/Caches") << false;
    QTest::newRow("ours is a file") << QStringLiteral("Library/Caches/com.talvex.zorel") << false;
    QTest::newRow("ours is a link") << QStringLiteral("Library/Caches/com.talvex.zorel") << true;
    QTest::newRow("the updater's is a link")
        << QStringLiteral("Library/Caches/com.talvex.zorel/Updater") << true;
}

void WorkingFolderTest::aFolderThatCannotBeMadeIsNamed()
{
    QFETCH(QString, inTheWay);
    QFETCH(bool, isLink);
    const Folder folder;
    QDir().mkpath(folder / "elsewhere");
    if (isLink) {
        makeLink(folder / inTheWay, QFile::encodeName(folder / "elsewhere"));
    } else {
        writeFile(folder / inTheWay, "x");
    }
    const auto error = errorOf([&] { const WorkingFolder working(surroundingsIn(folder)); });
    QVERIFY(error);
    QCOMPARE(error->errorCase(), UpdateError::Case::extractionFailed);
    QVERIFY2(error->message().contains(QStringLiteral("the folder ") + (folder / inTheWay)),
             qPrintable(error->message()));
    QCOMPARE(namesIn(folder / "elsewhere"), QStringList());
}

void WorkingFolderTest::aFolderThatEverybodyMayChangeIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("ours") << QStringLiteral("Library/Caches/com.talvex.zorel");
    QTest::newRow("the updater's") << QStringLiteral("Library/Caches/com.talvex.zorel/Updater");
}

void WorkingFolderTest::aFolderThatEverybodyMayChangeIsRefused()
{
    QFETCH(QString, name);
    const Folder folder;
    QDir().mkpath(folder / name);
    QCOMPARE(::chmod(QFile::encodeName(folder / name).constData(), 0777), 0);
    const auto error = errorOf([&] { const WorkingFolder working(surroundingsIn(folder)); });
    QCOMPARE(error, extractionFailed(QStringLiteral("the folder %1 could not be made: %2")
                                         .arg(folder / name, qt_error_string(EPERM))));
}

QTEST_GUILESS_MAIN(WorkingFolderTest)
#include "WorkingFolderTest.moc"
