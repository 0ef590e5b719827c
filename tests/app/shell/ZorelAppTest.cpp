#include "app/shell/ZorelApp.h"

#include "app/settings/ZorelSettings.h"
#include "library/ModelLibraryStore.h"
#include "tests/app/shell/AppStage.h"

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>

using namespace zorel;
using app::shell::ZorelApp;
using tests::AppStage;

class ZorelAppTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_stage = std::make_unique<AppStage>(); }
    void cleanup() { m_stage.reset(); }

    void nothingIsMadeBeforeItIsAskedFor();
    void eachObjectIsMadeOnce();
    void startUpGoesInOrder();
    void theFoldersComeBeforeTheReadme();
    void startUpHappensOnce();
    void theLibraryIsScannedOnceTheSidecarIsReady();
    void startUpSurvivesAHomeThatCannotBeWritten();
    void theSystemStaysAwakeWhileARunComputes_data();
    void theSystemStaysAwakeWhileARunComputes();
    void theSystemMaySleepWhenTheSidecarDies();
    void theAboutFlagIsAnnouncedWhenItChanges();
    void nameAndVersionComeFromTheBundle();
    void theEndOfTheWaitQuits();
    void anUpdateThatIsReadyQuits();

private:
    std::unique_ptr<AppStage> m_stage;
};

void ZorelAppTest::nothingIsMadeBeforeItIsAskedFor()
{
    m_stage->app();
    QCOMPARE(m_stage->settingsMade, 0);
    QVERIFY(!m_stage->app().appDelegate().backend());
    QVERIFY(m_stage->store.writes.empty());
    QVERIFY(!QFileInfo::exists(m_stage->home() + QStringLiteral("/Documents")));
}

void ZorelAppTest::eachObjectIsMadeOnce()
{
    ZorelApp &app = m_stage->app();
    QCOMPARE(&app.backend(), &app.backend());
    QCOMPARE(&app.settings(), &app.settings());
    QCOMPARE(&app.library(), &app.library());
    QCOMPARE(&app.access(), &app.access());
    QCOMPARE(m_stage->settingsMade, 1);
    QVERIFY(!app.showAbout());
}

void ZorelAppTest::startUpGoesInOrder()
{
    ZorelApp &app = m_stage->app();
    const QString root = m_stage->home() + QStringLiteral("/Documents/Zorel");
    m_stage->beforeProbe = [&](qsizetype earlier) {
        if (earlier == 0) {
            QCOMPARE(app.appDelegate().backend(), &app.backend());
            QVERIFY(QFileInfo(app.settings().modelRootPath()).isDir());
            QVERIFY(QFileInfo(root + QStringLiteral("/README.md")).isFile());
            QVERIFY(QFileInfo(root + QStringLiteral("/Finished models")).isDir());
        }
        QVERIFY(!app.backend().isRunning());
    };
    bool launched = false;
    m_stage->beforeLaunch = [&] {
        launched = true;
        QCOMPARE(m_stage->probed,
                 QStringList({root + QStringLiteral("/Training Data"),
                              root + QStringLiteral("/Finished models"), app.settings().modelRootPath()}));
        QVERIFY(app.access().lastCheckedAt().has_value());
        QVERIFY(m_stage->checks.empty());
    };
    app.contentAppeared();
    QVERIFY(launched);
    QVERIFY(app.backend().isRunning());
    QCOMPARE(m_stage->checks.size(), std::size_t{1});
    QCOMPARE(m_stage->checks.front().first, std::chrono::seconds(2));
}

void ZorelAppTest::theFoldersComeBeforeTheReadme()
{
    // Whichever comes first takes the place.
    const QString place = m_stage->home() + QStringLiteral("/Documents/Zorel/README.md");
    m_stage->app().settings().setTrainingDataPath(place);
    m_stage->app().contentAppeared();
    QVERIFY(QFileInfo(place).isDir());
}

void ZorelAppTest::startUpHappensOnce()
{
    int launches = 0;
    m_stage->beforeLaunch = [&launches] {
        ++launches;
    };
    m_stage->app().contentAppeared();
    m_stage->app().contentAppeared();
    QCOMPARE(launches, 1);
    QCOMPARE(m_stage->probed.size(), 3);
}

void ZorelAppTest::theLibraryIsScannedOnceTheSidecarIsReady()
{
    QVERIFY(m_stage->app().library().lastScanPath().isEmpty());
    m_stage->startWithState(QStringLiteral("idle"));
    QCOMPARE(m_stage->app().library().lastScanPath(),
             m_stage->home() + QStringLiteral("/Documents/Zorel/Finished models"));
}

void ZorelAppTest::startUpSurvivesAHomeThatCannotBeWritten()
{
    // A file where the folders would go stops root as well.
    QFile file(m_stage->home() + QStringLiteral("/Documents"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    m_stage->isAccessAllowed = false;
    m_stage->startWithState(QStringLiteral("idle"));
    QVERIFY(m_stage->app().access().anyBlocked());
    QVERIFY(m_stage->app().backend().ready());
}

void ZorelAppTest::theSystemStaysAwakeWhileARunComputes_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<bool>("awake");
    for (const char *state : {"starting", "preparing", "running", "stopping"}) {
        QTest::newRow(state) << QString::fromLatin1(state) << true;
    }
    for (const char *state : {"idle", "paused", "done", "error"}) {
        QTest::newRow(state) << QString::fromLatin1(state) << false;
    }
}

void ZorelAppTest::theSystemStaysAwakeWhileARunComputes()
{
    QFETCH(const QString, state);
    QFETCH(const bool, awake);
    m_stage->startWithState(state);
    QCOMPARE(m_stage->awakeReason.has_value(), awake);
}

void ZorelAppTest::theSystemMaySleepWhenTheSidecarDies()
{
    m_stage->startWithState(QStringLiteral("running"));
    QVERIFY(m_stage->awakeReason.has_value());
    m_stage->app().backend().killSidecar();
    QTRY_VERIFY_WITH_TIMEOUT(!m_stage->awakeReason.has_value(), 30'000);
    QCOMPARE(m_stage->app().backend().status().state, QStringLiteral("running"));
}

void ZorelAppTest::theAboutFlagIsAnnouncedWhenItChanges()
{
    QSignalSpy changed(&m_stage->app(), &ZorelApp::showAboutChanged);
    m_stage->app().setShowAbout(true);
    m_stage->app().setShowAbout(true);
    QCOMPARE(changed.count(), 1);
    m_stage->app().setShowAbout(false);
    QCOMPARE(changed.count(), 2);
}

void ZorelAppTest::nameAndVersionComeFromTheBundle()
{
    QCOMPARE(m_stage->app().displayName(), QStringLiteral("Talvex LLM Trainer"));
    QCOMPARE(m_stage->app().version(), QStringLiteral("unknown"));
    AppStage named;
    named.information = {{QStringLiteral("CFBundleName"), QStringLiteral("Trainer")},
                         {QStringLiteral("CFBundleShortVersionString"), QStringLiteral("2.5")}};
    QCOMPARE(named.app().displayName(), QStringLiteral("Trainer"));
    QCOMPARE(named.app().version(), QStringLiteral("2.5"));
}

void ZorelAppTest::theEndOfTheWaitQuits()
{
    using Reply = app::shell::AppDelegate::TerminateReply;
    m_stage->startWithState(QStringLiteral("running"));
    QCOMPARE(m_stage->app().appDelegate().applicationShouldTerminate(), Reply::later);
    m_stage->pass(std::chrono::seconds(1));
    QCOMPARE(m_stage->quits, 0);
    m_stage->letSidecarExit();
    QTRY_VERIFY_WITH_TIMEOUT(!m_stage->app().backend().isRunning(), 30'000);
    m_stage->pass(std::chrono::milliseconds(250));
    QTRY_COMPARE(m_stage->quits, 1);
    QCOMPARE(m_stage->app().appDelegate().applicationShouldTerminate(), Reply::now);
}

void ZorelAppTest::anUpdateThatIsReadyQuits()
{
    Q_EMIT m_stage->app().updater().quitRequested();
    QCOMPARE(m_stage->quits, 1);
}

QTEST_GUILESS_MAIN(ZorelAppTest)
#include "ZorelAppTest.moc"
