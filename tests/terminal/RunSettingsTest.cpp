#include "terminal/RunSettings.h"

#include "tests/support/InMemoryUserDefaults.h"

#include <QTemporaryDir>
#include <QTest>

namespace zorel::tests {

using app::settings::ModelFamily;
using app::settings::TrainingCapability;
using terminal::OverlayUserDefaults;
using terminal::RunSettings;
using terminal::TerminalOptions;
using terminal::UsageError;

class RunSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void overlayReadsThroughAndKeepsWrites();
    void writesNothingForOneRun();
    void savesOnlyWhatWasGiven();
    void refusesImpossibleProfiles();
    void needsTheTrainingDataFolder();

private:
    QTemporaryDir m_home;
    platform::StandardFolders m_folders = platform::StandardFolders::below(m_home.path());
};

void RunSettingsTest::overlayReadsThroughAndKeepsWrites()
{
    InMemoryUserDefaults base;
    base.values[QStringLiteral("text")] = QStringLiteral("stored");
    base.values[QStringLiteral("flag")] = true;
    OverlayUserDefaults overlay(base);
    QCOMPARE(overlay.string(QStringLiteral("text")), QStringLiteral("stored"));
    QCOMPARE(overlay.boolean(QStringLiteral("flag")), true);
    QVERIFY(!overlay.string(QStringLiteral("absent")));

    overlay.setString(QStringLiteral("text"), QString());
    overlay.setBoolean(QStringLiteral("flag"), false);
    QCOMPARE(overlay.string(QStringLiteral("text")), QString());
    QCOMPARE(overlay.boolean(QStringLiteral("flag")), false);
    // A key holds one value, of one type.
    overlay.setBoolean(QStringLiteral("text"), true);
    overlay.setString(QStringLiteral("flag"), QStringLiteral("on"));
    QVERIFY(!overlay.string(QStringLiteral("text")));
    QVERIFY(!overlay.boolean(QStringLiteral("flag")));
    QVERIFY(base.writes.empty());
}

void RunSettingsTest::writesNothingForOneRun()
{
    InMemoryUserDefaults store;
    // Loading repairs this pair, which is a write too.
    store.values[QStringLiteral("zorel.modelFamily")] = QStringLiteral("multimodal");
    store.values[QStringLiteral("zorel.trainingCapability")] = QStringLiteral("lora");
    TerminalOptions options;
    options.modelName = QStringLiteral("Poet");
    options.family = ModelFamily::textLanguage;
    options.capability = TrainingCapability::lora;
    options.finishedModels = QStringLiteral("/out");
    RunSettings run(store, m_folders, options);
    QCOMPARE(run.settings().modelName(), QStringLiteral("Poet"));
    QCOMPARE(run.settings().finishedModelsPath(), QStringLiteral("/out"));
    QVERIFY(run.settings().trainingCapability() == TrainingCapability::lora);
    QVERIFY(store.writes.empty());
}

void RunSettingsTest::savesOnlyWhatWasGiven()
{
    InMemoryUserDefaults store;
    TerminalOptions options;
    options.keep = TerminalOptions::Keep::saved;
    options.modelVersion = QStringLiteral("2");
    options.trainingData = m_home.path();
    RunSettings run(store, m_folders, options);
    QCOMPARE(store.writes.size(), 2U);
    QCOMPARE(store.values.value(QStringLiteral("zorel.modelVersion")), QVariant(QStringLiteral("2")));
    QCOMPARE(store.values.value(QStringLiteral("zorel.trainingDataPath")), QVariant(m_home.path()));
    QCOMPARE(run.settings().modelVersion(), QStringLiteral("2"));
}

void RunSettingsTest::refusesImpossibleProfiles()
{
    InMemoryUserDefaults store;
    store.values[QStringLiteral("zorel.modelFamily")] = QStringLiteral("image_generation");
    store.values[QStringLiteral("zorel.trainingCapability")] = QStringLiteral("finetune");
    TerminalOptions options;
    options.keep = TerminalOptions::Keep::saved;
    options.capability = TrainingCapability::lora;
    QVERIFY_THROWS_EXCEPTION(UsageError, RunSettings(store, m_folders, options));
    QVERIFY(store.writes.empty());

    // A family alone brings a training mode that it allows.
    TerminalOptions familyOnly;
    familyOnly.family = ModelFamily::multimodal;
    RunSettings run(store, m_folders, familyOnly);
    QVERIFY(run.settings().trainingCapability() == TrainingCapability::pretrain);
}

void RunSettingsTest::needsTheTrainingDataFolder()
{
    InMemoryUserDefaults store;
    TerminalOptions options;
    options.trainingData = QStringLiteral("~/texts");
    QVERIFY_THROWS_EXCEPTION(UsageError, RunSettings(store, m_folders, options));
    QVERIFY(QDir(m_home.path()).mkdir(QStringLiteral("texts")));
    RunSettings run(store, m_folders, options);
    QCOMPARE(run.settings().trainingDataPath(), QStringLiteral("~/texts"));
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::RunSettingsTest)
#include "RunSettingsTest.moc"
