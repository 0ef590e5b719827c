#include "updater/InstallSurroundings.h"
#include "platform/StandardFolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QTest>

using namespace zorel::updater;
using namespace std::chrono_literals;

class InstallSurroundingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theToolsAreThoseOfTheSystem();
    void aServerMayBeSilentForAMinute();
    void theSystemsAreThoseOfThisProcess();
    void nothingMeddlesWithTheTools();
};

void InstallSurroundingsTest::theToolsAreThoseOfTheSystem()
{
    const ToolPaths tools = InstallSurroundings::system().tools;
    QCOMPARE(tools.ditto, QStringLiteral("/usr/bin/ditto"));
    QCOMPARE(tools.tar, QStringLiteral("/usr/bin/tar"));
    QCOMPARE(tools.hdiutil, QStringLiteral("/usr/bin/hdiutil"));
    QCOMPARE(tools.cp, QStringLiteral("/bin/cp"));
    QCOMPARE(tools.bash, QStringLiteral("/bin/bash"));
}

void InstallSurroundingsTest::aServerMayBeSilentForAMinute()
{
    QVERIFY(InstallSurroundings::system().limits.downloadInactivity == 60s);
}

void InstallSurroundingsTest::theSystemsAreThoseOfThisProcess()
{
    const InstallSurroundings surroundings = InstallSurroundings::system();
    QCOMPARE(surroundings.processId, QCoreApplication::applicationPid());
    QCOMPARE(surroundings.cachesFolder, zorel::platform::StandardFolders::current().caches);
    QCOMPARE(surroundings.temporaryFolder, QDir::tempPath());
    // A test is no bundle.
    QCOMPARE(surroundings.targetBundle, QString());
}

void InstallSurroundingsTest::nothingMeddlesWithTheTools()
{
    zorel::platform::Environment environment{{"PATH", "/bin"}, {"HOME", "/home/ada"}, {"MY_ENV", "kept"}};
    const zorel::platform::Environment wanted = environment;
    for (const char *name :
         {"BASH_ENV", "ENV", "SHELLOPTS", "BASHOPTS", "POSIXLY_CORRECT", "CDPATH", "GLOBIGNORE",
          "BASH_FUNC_cp%%", "BASH_FUNC_kill%%", "TAR_OPTIONS", "TAR_READER_OPTIONS", "GZIP", "BZIP", "BZIP2",
          "XZ_DEFAULTS", "XZ_OPT", "COPYFILE_DISABLE", "DITTONORSRC", "DITTOABORT"}) {
        environment.insert(name, "() { :; }");
    }
    QCOMPARE(toolEnvironment(environment), wanted);
    // No tool of an installation gets them.
    qputenv("TAR_OPTIONS", "--absolute-names");
    const auto given = InstallSurroundings::system().environment;
    qunsetenv("TAR_OPTIONS");
    QVERIFY(!given.contains("TAR_OPTIONS"));
    QVERIFY(given.contains("PATH"));
}

QTEST_GUILESS_MAIN(InstallSurroundingsTest)
#include "InstallSurroundingsTest.moc"
