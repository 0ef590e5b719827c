#include "app/folders/ConfiguredFolder.h"

#include "app/settings/ZorelSettings.h"
#include "tests/support/InMemoryUserDefaults.h"

#include <QTest>

using namespace zorel::app::folders;
using zorel::app::settings::ZorelSettings;
using zorel::platform::StandardFolders;
using zorel::tests::InMemoryUserDefaults;

class ConfiguredFolderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyTextIsTheOneUsersKnow_data();
    void everyTextIsTheOneUsersKnow();
    void foldersAreListedInDisplayOrder();
    void eachFolderHasASettingOfItsOwn_data();
    void eachFolderHasASettingOfItsOwn();
    void defaultsStandBelowTheHomeFolder();
    void pathIsTheDefaultOnlyLetterForLetter_data();
    void pathIsTheDefaultOnlyLetterForLetter();

private:
    InMemoryUserDefaults m_store;
    StandardFolders m_folders = StandardFolders::below(QStringLiteral("/home/ada"));
};

void ConfiguredFolderTest::everyTextIsTheOneUsersKnow_data()
{
    QTest::addColumn<ConfiguredFolder>("folder");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<QString>("help");

    QTest::newRow("training data") << ConfiguredFolder::trainingData << QStringLiteral("Training Data")
                                   << QStringLiteral("folder")
                                   << QStringLiteral(
                                          "Drop pretraining and fine-tuning corpora into this folder. Each "
                                          "corpus should live in its own subfolder.");
    QTest::newRow("finished models")
        << ConfiguredFolder::finishedModels << QStringLiteral("Finished Models")
        << QStringLiteral("shippingbox.fill")
        << QStringLiteral("Every completed training run is archived here under a subfolder named with the "
                          "date and time it finished.");
    QTest::newRow("model root")
        << ConfiguredFolder::modelRoot << QStringLiteral("Model Working Directory")
        << QStringLiteral("internaldrive.fill")
        << QStringLiteral("Where Zorel keeps intermediate state during training \u2014 checkpoints, "
                          "tokenizer cache, prepared tokens, and logs. These files can be large; only "
                          "change this if you want to put them on a different disk.");
}

void ConfiguredFolderTest::everyTextIsTheOneUsersKnow()
{
    QFETCH(ConfiguredFolder, folder);
    QTEST(displayName(folder), "name");
    QTEST(symbolName(folder), "symbol");
    QTEST(helpText(folder), "help");
}

void ConfiguredFolderTest::foldersAreListedInDisplayOrder()
{
    QCOMPARE(allConfiguredFolders.size(), std::size_t{3});
    QVERIFY(allConfiguredFolders[0] == ConfiguredFolder::trainingData);
    QVERIFY(allConfiguredFolders[1] == ConfiguredFolder::finishedModels);
    QVERIFY(allConfiguredFolders[2] == ConfiguredFolder::modelRoot);
}

void ConfiguredFolderTest::eachFolderHasASettingOfItsOwn_data()
{
    QTest::addColumn<ConfiguredFolder>("folder");
    QTest::addColumn<QString>("key");
    QTest::newRow("training data") << ConfiguredFolder::trainingData
                                   << QStringLiteral("zorel.trainingDataPath");
    QTest::newRow("finished models") << ConfiguredFolder::finishedModels
                                     << QStringLiteral("zorel.finishedModelsPath");
    QTest::newRow("model root") << ConfiguredFolder::modelRoot << QStringLiteral("zorel.modelRootPath");
}

void ConfiguredFolderTest::eachFolderHasASettingOfItsOwn()
{
    QFETCH(ConfiguredFolder, folder);
    QFETCH(QString, key);
    const QString chosen = QStringLiteral("~/Elsewhere");
    ZorelSettings settings(m_store, m_folders);
    m_store.writes.clear();

    setPath(settings, folder, chosen);

    QCOMPARE(m_store.writes, (std::vector<InMemoryUserDefaults::Write>{{key, chosen}}));
    for (const ConfiguredFolder other : allConfiguredFolders) {
        QCOMPARE(path(settings, other), other == folder ? chosen : defaultPath(settings, other));
        QCOMPARE(isDefault(settings, other), other != folder);
    }
    setPath(settings, folder, defaultPath(settings, folder));
}

void ConfiguredFolderTest::defaultsStandBelowTheHomeFolder()
{
    const ZorelSettings settings(m_store, m_folders);
    QCOMPARE(defaultPath(settings, ConfiguredFolder::trainingData),
             QStringLiteral("/home/ada/Documents/Zorel/Training Data"));
    QCOMPARE(defaultPath(settings, ConfiguredFolder::finishedModels),
             QStringLiteral("/home/ada/Documents/Zorel/Finished models"));
    QCOMPARE(defaultPath(settings, ConfiguredFolder::modelRoot),
             QStringLiteral("/home/ada/Library/Application Support/Zorel/Model"));
}

void ConfiguredFolderTest::pathIsTheDefaultOnlyLetterForLetter_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("expected");
    QTest::newRow("the default") << QStringLiteral("/home/ada/Documents/Zorel/Training Data") << true;
    QTest::newRow("with a tilde") << QStringLiteral("~/Documents/Zorel/Training Data") << false;
    QTest::newRow("with a slash") << QStringLiteral("/home/ada/Documents/Zorel/Training Data/") << false;
    QTest::newRow("with dots") << QStringLiteral("/home/ada/./Documents/Zorel/Training Data") << false;
    QTest::newRow("other letter case") << QStringLiteral("/home/ada/Documents/Zorel/training data") << false;
    QTest::newRow("empty") << QString() << false;
}

void ConfiguredFolderTest::pathIsTheDefaultOnlyLetterForLetter()
{
    QFETCH(QString, path);
    ZorelSettings settings(m_store, m_folders);
    setPath(settings, ConfiguredFolder::trainingData, path);
    QTEST(isDefault(settings, ConfiguredFolder::trainingData), "expected");
}

QTEST_GUILESS_MAIN(ConfiguredFolderTest)
#include "ConfiguredFolderTest.moc"
