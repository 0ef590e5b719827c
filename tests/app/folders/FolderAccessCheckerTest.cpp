#include "app/folders/FolderAccessChecker.h"

#include "app/settings/ZorelSettings.h"
#include "tests/support/InMemoryUserDefaults.h"

#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <set>

using namespace zorel::app::folders;
using zorel::app::settings::ZorelSettings;
using zorel::platform::StandardFolders;
using zorel::tests::InMemoryUserDefaults;

class FolderAccessCheckerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void everythingCountsAsAllowedBeforeTheFirstCheck();
    void refreshProbesTheThreeFoldersInOrderWithTildesExpanded();
    void refreshNotesTheTimeAfterTheLastProbe();
    void recheckProbesTheOneFolderAlone_data();
    void recheckProbesTheOneFolderAlone();
    void pathOfTheMomentIsProbed();
    void everyProbeIsAnnouncedAlsoWhenNothingChanges();
    void nobodyIsAskedUnlessTheUserAsks();
    void messageNamesTheBlockedFolders_data();
    void messageNamesTheBlockedFolders();
    void folderThatIsFreedIsAllowedAgain();
    void privacySettingsAreOpenedThroughTheSystem();
    void folderIsShownWhereThereAreNoPrivacySettings();
    void nothingFollowsTheLastAddressWhereThereArePrivacySettings();
    void realFoldersAreProbed();
    void oneBadPathSpoilsNothingElse_data();
    void oneBadPathSpoilsNothingElse();

private:
    std::unique_ptr<FolderAccessChecker> makeChecker();
    void block(std::initializer_list<ConfiguredFolder> folders)
    {
        m_blocked.clear();
        for (const ConfiguredFolder folder : folders) {
            m_blocked.insert(path(*m_settings, folder));
        }
    }

    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<InMemoryUserDefaults> m_store;
    std::unique_ptr<ZorelSettings> m_settings;
    std::set<QString> m_blocked;
    QStringList m_probed;
    QStringList m_opened;
    QDateTime m_now;
};

void FolderAccessCheckerTest::init()
{
    m_settings.reset();
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
    m_store = std::make_unique<InMemoryUserDefaults>();
    m_settings = std::make_unique<ZorelSettings>(*m_store, StandardFolders::below(m_home->path()));
    m_blocked.clear();
    m_probed.clear();
    m_opened.clear();
    m_now = QDateTime(QDate(2026, 6, 1), QTime(21, 44, 12), Qt::UTC);
}

std::unique_ptr<FolderAccessChecker> FolderAccessCheckerTest::makeChecker()
{
    return std::make_unique<FolderAccessChecker>(
        *m_settings, FolderAccessChecker::Surroundings{.probe =
                                                           [this](const QString &folder) {
                                                               m_probed.append(folder);
                                                               m_now = m_now.addSecs(1);
                                                               return !m_blocked.contains(folder);
                                                           },
                                                       .now = [this] { return m_now; },
                                                       .openUrl =
                                                           [this](const QUrl &url) {
                                                               m_opened.append(url.toString());
                                                               return true;
                                                           }});
}

void FolderAccessCheckerTest::everythingCountsAsAllowedBeforeTheFirstCheck()
{
    const auto checker = makeChecker();
    QVERIFY(checker->trainingDataAllowed());
    QVERIFY(checker->finishedModelsAllowed());
    QVERIFY(checker->modelRootAllowed());
    QVERIFY(!checker->anyBlocked());
    QCOMPARE(checker->blockedFolderNames(), QStringList());
    QVERIFY(!checker->lastCheckedAt().has_value());
    QCOMPARE(m_probed, QStringList());
}

void FolderAccessCheckerTest::refreshProbesTheThreeFoldersInOrderWithTildesExpanded()
{
    m_settings->setFinishedModelsPath(QStringLiteral("~/Finished elsewhere"));
    const auto checker = makeChecker();
    checker->refresh();
    QCOMPARE(m_probed, QStringList({m_settings->trainingDataPath(),
                                    m_home->filePath(QStringLiteral("Finished elsewhere")),
                                    m_settings->modelRootPath()}));
    QCOMPARE(m_settings->finishedModelsPath(), QStringLiteral("~/Finished elsewhere"));
}

void FolderAccessCheckerTest::refreshNotesTheTimeAfterTheLastProbe()
{
    const auto checker = makeChecker();
    checker->refresh();
    QCOMPARE(m_probed.size(), 3);
    QCOMPARE(checker->lastCheckedAt(), m_now);
}

void FolderAccessCheckerTest::recheckProbesTheOneFolderAlone_data()
{
    QTest::addColumn<ConfiguredFolder>("folder");
    QTest::newRow("training data") << ConfiguredFolder::trainingData;
    QTest::newRow("finished models") << ConfiguredFolder::finishedModels;
    QTest::newRow("model root") << ConfiguredFolder::modelRoot;
}

void FolderAccessCheckerTest::recheckProbesTheOneFolderAlone()
{
    QFETCH(ConfiguredFolder, folder);
    block({ConfiguredFolder::trainingData, ConfiguredFolder::finishedModels, ConfiguredFolder::modelRoot});
    const auto checker = makeChecker();
    checker->recheck(folder);
    QCOMPARE(m_probed, QStringList(path(*m_settings, folder)));
    QCOMPARE(checker->trainingDataAllowed(), folder != ConfiguredFolder::trainingData);
    QCOMPARE(checker->finishedModelsAllowed(), folder != ConfiguredFolder::finishedModels);
    QCOMPARE(checker->modelRootAllowed(), folder != ConfiguredFolder::modelRoot);
    QVERIFY(checker->anyBlocked());
    QCOMPARE(checker->lastCheckedAt(), m_now);
}

void FolderAccessCheckerTest::pathOfTheMomentIsProbed()
{
    const auto checker = makeChecker();
    m_settings->setTrainingDataPath(QStringLiteral("/data/one"));
    checker->recheck(ConfiguredFolder::trainingData);
    m_settings->setTrainingDataPath(QStringLiteral("/data/two"));
    checker->recheck(ConfiguredFolder::trainingData);
    QCOMPARE(m_probed, QStringList({QStringLiteral("/data/one"), QStringLiteral("/data/two")}));
}

void FolderAccessCheckerTest::everyProbeIsAnnouncedAlsoWhenNothingChanges()
{
    const auto checker = makeChecker();
    const QSignalSpy trainingData(checker.get(), &FolderAccessChecker::trainingDataAllowedChanged);
    const QSignalSpy finishedModels(checker.get(), &FolderAccessChecker::finishedModelsAllowedChanged);
    const QSignalSpy modelRoot(checker.get(), &FolderAccessChecker::modelRootAllowedChanged);
    const QSignalSpy time(checker.get(), &FolderAccessChecker::lastCheckedAtChanged);
    checker->refresh();
    QCOMPARE(trainingData.size(), 1);
    QCOMPARE(finishedModels.size(), 1);
    QCOMPARE(modelRoot.size(), 1);
    QCOMPARE(time.size(), 1);
    checker->recheck(ConfiguredFolder::finishedModels);
    QCOMPARE(trainingData.size(), 1);
    QCOMPARE(finishedModels.size(), 2);
    QCOMPARE(modelRoot.size(), 1);
    QCOMPARE(time.size(), 2);
}

void FolderAccessCheckerTest::nobodyIsAskedUnlessTheUserAsks()
{
    const auto checker = makeChecker();
    m_settings->setTrainingDataPath(QStringLiteral("/elsewhere"));
    QVERIFY(!QFileInfo::exists(m_settings->finishedModelsPath()));
    QCOMPARE(m_probed, QStringList());
    QVERIFY(checker->children().isEmpty());
}

void FolderAccessCheckerTest::messageNamesTheBlockedFolders_data()
{
    QTest::addColumn<bool>("trainingData");
    QTest::addColumn<bool>("finishedModels");
    QTest::addColumn<bool>("modelRoot");
    QTest::addColumn<QString>("names");
    QTest::newRow("none") << false << false << false << QStringLiteral("your library folders");
    QTest::newRow("training data") << true << false << false << QStringLiteral("Training Data");
    QTest::newRow("finished models") << false << true << false << QStringLiteral("Finished Models");
    QTest::newRow("working directory") << false << false << true << QStringLiteral("Model Working Directory");
    QTest::newRow("training data and finished models")
        << true << true << false << QStringLiteral("Training Data and Finished Models");
    QTest::newRow("training data and working directory")
        << true << false << true << QStringLiteral("Training Data and Model Working Directory");
    QTest::newRow("finished models and working directory")
        << false << true << true << QStringLiteral("Finished Models and Model Working Directory");
    QTest::newRow("all") << true << true << true
                         << QStringLiteral("Training Data, Finished Models, and Model Working Directory");
}

void FolderAccessCheckerTest::messageNamesTheBlockedFolders()
{
    QFETCH(bool, trainingData);
    QFETCH(bool, finishedModels);
    QFETCH(bool, modelRoot);
    QFETCH(QString, names);
    if (trainingData) {
        m_blocked.insert(m_settings->trainingDataPath());
    }
    if (finishedModels) {
        m_blocked.insert(m_settings->finishedModelsPath());
    }
    if (modelRoot) {
        m_blocked.insert(m_settings->modelRootPath());
    }
    const auto checker = makeChecker();
    checker->refresh();
    QCOMPARE(checker->anyBlocked(), trainingData || finishedModels || modelRoot);
    QCOMPARE(checker->blockedMessage(),
             QStringLiteral("Access to ") + names +
                 QStringLiteral(" is blocked. Allow it in System Settings \u2192 Privacy & Security "
                                "\u2192 Files & Folders, then come back and press refresh."));
}

void FolderAccessCheckerTest::folderThatIsFreedIsAllowedAgain()
{
    block({ConfiguredFolder::modelRoot});
    const auto checker = makeChecker();
    checker->refresh();
    QVERIFY(!checker->modelRootAllowed());
    m_blocked.clear();
    checker->recheck(ConfiguredFolder::modelRoot);
    QVERIFY(checker->modelRootAllowed());
    QVERIFY(!checker->anyBlocked());
}

void FolderAccessCheckerTest::privacySettingsAreOpenedThroughTheSystem()
{
    makeChecker()->openPrivacySettings();
    QCOMPARE(m_opened, QStringList(QStringLiteral(
                           "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension"
                           "?Privacy_FilesAndFolders")));
    QCOMPARE(m_probed, QStringList());
}

void FolderAccessCheckerTest::folderIsShownWhereThereAreNoPrivacySettings()
{
    QStringList shown;
    bool hasSettings = false;
    FolderAccessChecker checker(
        *m_settings, {.probe = [this](const QString &folder) { return !m_blocked.contains(folder); },
                      .openUrl = [&hasSettings](const QUrl &) { return hasSettings; },
                      .showFolder =
                          [&shown](const QString &folder) {
                              shown.append(folder);
                          }});
    m_settings->setModelRootPath(QStringLiteral("~/Work"));
    block({ConfiguredFolder::finishedModels, ConfiguredFolder::modelRoot});
    checker.refresh();
    checker.openPrivacySettings();
    checker.openPrivacySettings(ConfiguredFolder::modelRoot);
    QCOMPARE(shown,
             QStringList({m_settings->finishedModelsPath(), m_home->filePath(QStringLiteral("Work"))}));
    hasSettings = true;
    checker.openPrivacySettings();
    QCOMPARE(shown.size(), 2);
}

void FolderAccessCheckerTest::nothingFollowsTheLastAddressWhereThereArePrivacySettings()
{
    // As on a Mac: no folder is shown, whatever became of the addresses.
    QStringList tried;
    const FolderAccessChecker checker(*m_settings, {.openUrl = [&tried](const QUrl &url) {
        tried.append(url.query());
        return false;
    }});
    checker.openPrivacySettings();
    QCOMPARE(tried, QStringList({QStringLiteral("Privacy_FilesAndFolders"),
                                 QStringLiteral("Privacy_FilesAndFolders"),
                                 QStringLiteral("Privacy_DocumentsFolder")}));
}

void FolderAccessCheckerTest::realFoldersAreProbed()
{
    QFile file(m_home->filePath(QStringLiteral("file")));
    QVERIFY(file.open(QFile::WriteOnly));
    m_settings->setFinishedModelsPath(QStringLiteral("~/file"));
    const QDateTime before = QDateTime::currentDateTime();
    FolderAccessChecker checker(*m_settings, {});
    checker.refresh();
    QVERIFY(checker.trainingDataAllowed());
    QVERIFY(!checker.finishedModelsAllowed());
    QVERIFY(checker.modelRootAllowed());
    QVERIFY(QFileInfo(m_settings->trainingDataPath()).isDir());
    QVERIFY(checker.lastCheckedAt() >= before);
}

void FolderAccessCheckerTest::oneBadPathSpoilsNothingElse_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("a file") << QStringLiteral("~/file") << false;
    QTest::newRow("a dangling link") << QStringLiteral("~/dangling") << false;
    QTest::newRow("not writable") << QStringLiteral("/dev/null/folder") << false;
    QTest::newRow("quotes") << QStringLiteral("~/it's \"mine\"") << true;
    QTest::newRow("a line break") << QStringLiteral("~/two\nlines") << true;
    QTest::newRow("not Latin") << QStringLiteral("~/данные/学習/📚") << true;
    QTest::newRow("a name of 4,000 characters") << QStringLiteral("~/") + QString(4000, u'x') << false;
}

void FolderAccessCheckerTest::oneBadPathSpoilsNothingElse()
{
    QFETCH(QString, path);
    QFile file(m_home->filePath(QStringLiteral("file")));
    QVERIFY(file.open(QFile::WriteOnly));
    QVERIFY(QFile::link(QStringLiteral("nowhere"), m_home->filePath(QStringLiteral("dangling"))));
    m_settings->setTrainingDataPath(path);
    FolderAccessChecker checker(*m_settings, {});
    checker.refresh();
    QTEST(checker.trainingDataAllowed(), "allowed");
    QVERIFY(checker.finishedModelsAllowed());
    QVERIFY(checker.modelRootAllowed());
    QCOMPARE(m_settings->trainingDataPath(), path);
}

QTEST_GUILESS_MAIN(FolderAccessCheckerTest)
#include "FolderAccessCheckerTest.moc"
