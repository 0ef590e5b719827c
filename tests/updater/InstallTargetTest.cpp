#include "tests/updater/Installation.h"

#include <QStorageInfo>

using namespace zorel::tests;
using namespace zorel::updater;

/// Where an update is installed to, and where it cannot be.
class InstallTargetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTargetThatCannotBeReplacedStopsBeforeTheScript_data();
    void aTargetThatCannotBeReplacedStopsBeforeTheScript();
    void aTargetWithoutRightsStopsBeforeTheScript();
    void aProgramOutsideOfABundleIsNotReplaced();
    void pathsWithOddCharactersAreInstalledTo_data();
    void pathsWithOddCharactersAreInstalledTo();
    void aBundleNameThatNoCommandCanCarryIsRefused_data();
    void aBundleNameThatNoCommandCanCarryIsRefused();
#ifdef Q_OS_LINUX
    void aTargetOnAnotherVolumeIsReplaced();
#endif
};

void InstallTargetTest::aTargetThatCannotBeReplacedStopsBeforeTheScript_data()
{
    QTest::addColumn<QString>("inTheWay");
    QTest::newRow("no folder") << QString();
    QTest::newRow("a file") << QStringLiteral("a file");
}

void InstallTargetTest::aTargetThatCannotBeReplacedStopsBeforeTheScript()
{
    QFETCH(QString, inTheWay);
    Installation installation;
    if (!inTheWay.isEmpty()) {
        writeFile(installation.stage / "elsewhere", "x");
    }
    installation.surroundings.targetBundle = installation.stage / "elsewhere/Talvex LLM Trainer.app";
    QCOMPARE(installation.run(),
             std::optional(UpdateError(UpdateError::TargetNotWritable{installation.stage / "elsewhere"})));
    QCOMPARE(installation.stateKinds(), (std::vector<std::size_t>{0, 3, 4}));
    QVERIFY(installation.stage.calls().isEmpty());
    QVERIFY(installation.leftNothing());
}

void InstallTargetTest::aTargetWithoutRightsStopsBeforeTheScript()
{
    Installation installation;
    QVERIFY(QFile::setPermissions(installation.stage / "Applications", QFile::ReadOwner | QFile::ExeOwner));
    const UpdateError expected(UpdateError::TargetNotWritable{installation.stage / "Applications"});
    QVERIFY(succeedsWithoutRights(installation.stage / ".", [&] {
        return installation.run() == expected && installation.stage.calls().isEmpty();
    }));
    QFile::setPermissions(installation.stage / "Applications",
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void InstallTargetTest::aProgramOutsideOfABundleIsNotReplaced()
{
    Installation installation;
    installation.surroundings.targetBundle.clear();
    QCOMPARE(installation.run(), std::optional(UpdateError(UpdateError::RelaunchFailed{QStringLiteral(
                                     "this copy of the program is not an application bundle")})));
    QVERIFY(installation.host.server.requests().empty());
}

void InstallTargetTest::pathsWithOddCharactersAreInstalledTo_data()
{
    QTest::addColumn<QString>("installedName");
    QTest::addColumn<bool>("isLiteral");
    const auto row = [](const char *name, const char *installedName, bool isLiteral) {
        QTest::newRow(name) << QString::fromUtf8(installedName) << isLiteral;
    };
    row("a command", "$(touch pwned) `touch pwned`; touch pwned/A $HOME & B.app", true);
    row("a leading dash", "-rf/-x.app", true);
    row("not Latin", "Программы/Тренер.app", true);
    row("quotes", "Bob's \"best\" 'apps'; touch pwned; '/A.app", false);
    row("a backslash", "back\\slash/A.app", false);
    row("line breaks", "two\nlines\r/A.app", false);
}

void InstallTargetTest::pathsWithOddCharactersAreInstalledTo()
{
    QFETCH(QString, installedName);
    QFETCH(bool, isLiteral);
    Installation installation(QStringLiteral("gz"), installedName);
    QCOMPARE(installation.run(), std::nullopt);
    QVERIFY(installation.isRelaunched());
    QCOMPARE(InstallStage::versionAt(installation.stage.installed()), QByteArray("2"));
    QCOMPARE(contentsOf(installation.handoff.scriptPath)
                 .contains("\nTARGET_APP='" + installation.stage.installed().toUtf8() + "'\n"),
             isLiteral);
    QVERIFY(!QFile::exists(QStringLiteral("/pwned")));
    QVERIFY(!QFile::exists(installation.stage / "pwned"));
}

void InstallTargetTest::aBundleNameThatNoCommandCanCarryIsRefused_data()
{
    QTest::addColumn<QString>("bundleName");
    QTest::addColumn<bool>("isNew");
    for (const bool isNew : {false, true}) {
        const char *const which = isNew ? "new" : "installed";
        QTest::addRow("%s, a quote", which) << QStringLiteral("Bob's.app") << isNew;
        QTest::addRow("%s, a double quote", which) << QStringLiteral("a\"b.app") << isNew;
        QTest::addRow("%s, a backslash", which) << QStringLiteral("a\\b.app") << isNew;
        QTest::addRow("%s, a line break", which) << QStringLiteral("a\nb.app") << isNew;
    }
}

void InstallTargetTest::aBundleNameThatNoCommandCanCarryIsRefused()
{
    QFETCH(QString, bundleName);
    QFETCH(bool, isNew);
    Installation installation;
    if (isNew) {
        InstallStage::makeBundle(installation.stage / ("contents/" + bundleName.toUtf8()).constData(), "2");
        ArtifactHost host(QStringLiteral("a.gz"),
                          installation.stage.archive(installation.stage / "contents", QStringLiteral("gz")));
        installation.host.update = host.update;
        QCOMPARE(caseOf(installation.run()), UpdateError::Case::relaunchFailed);
    } else {
        installation.surroundings.targetBundle =
            installation.stage / ("Applications/" + bundleName.toUtf8()).constData();
        QCOMPARE(caseOf(installation.run()), UpdateError::Case::relaunchFailed);
    }
    QVERIFY(installation.leftNothing());
}

#ifdef Q_OS_LINUX
void InstallTargetTest::aTargetOnAnotherVolumeIsReplaced()
{
    Installation installation;
    // In memory, which is a volume of its own on every Linux.
    const QTemporaryDir caches(QStringLiteral("/dev/shm/zorel-XXXXXX"));
    QVERIFY(QStorageInfo(caches.path()).device() != QStorageInfo(installation.stage.installed()).device());
    installation.surroundings.cachesFolder = caches.path();
    QCOMPARE(installation.run(), std::nullopt);
    QVERIFY(installation.handoff.scriptPath.startsWith(caches.path()));
    QVERIFY(installation.isRelaunched());
    QCOMPARE(InstallStage::versionAt(installation.stage.installed()), QByteArray("2"));
}
#endif

QTEST_GUILESS_MAIN(InstallTargetTest)
#include "InstallTargetTest.moc"
