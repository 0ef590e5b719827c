#include "app/settings/ZorelSettings.h"
#include "tests/support/InMemoryUserDefaults.h"

#include <QTest>

#include <vector>

using namespace zorel::app::settings;
using zorel::platform::StandardFolders;
using zorel::tests::InMemoryUserDefaults;

namespace {

const StandardFolders folders = StandardFolders::below(QStringLiteral("/Users/ada"));

struct TextProperty
{
    const char *key;
    const QString &(ZorelSettings::*read)() const;
    void (ZorelSettings::*write)(const QString &);
    void (ZorelSettings::*changed)();
    QString defaultValue;
};

const std::vector<TextProperty> &textProperties()
{
    using S = ZorelSettings;
    static const std::vector<TextProperty> properties{
        {"zorel.trainingDataPath", &S::trainingDataPath, &S::setTrainingDataPath, &S::trainingDataPathChanged,
         QStringLiteral("/Users/ada/Documents/Zorel/Training Data")},
        {"zorel.finishedModelsPath", &S::finishedModelsPath, &S::setFinishedModelsPath,
         &S::finishedModelsPathChanged, QStringLiteral("/Users/ada/Documents/Zorel/Finished models")},
        {"zorel.modelRootPath", &S::modelRootPath, &S::setModelRootPath, &S::modelRootPathChanged,
         QStringLiteral("/Users/ada/Library/Application Support/Zorel/Model")},
        {"zorel.modelName", &S::modelName, &S::setModelName, &S::modelNameChanged, QStringLiteral("MyModel")},
        {"zorel.modelVersion", &S::modelVersion, &S::setModelVersion, &S::modelVersionChanged,
         QStringLiteral("1.0.0")},
        {"zorel.modelAuthor", &S::modelAuthor, &S::setModelAuthor, &S::modelAuthorChanged, QString()},
        {"zorel.modelDescription", &S::modelDescription, &S::setModelDescription, &S::modelDescriptionChanged,
         QString()},
        {"zorel.modelLicense", &S::modelLicense, &S::setModelLicense, &S::modelLicenseChanged,
         QStringLiteral("MIT")},
    };
    return properties;
}

QStringList writtenTexts(const InMemoryUserDefaults &store)
{
    QStringList texts;
    for (const auto &[key, value] : store.writes) {
        texts.append(key + u'=' + value.toString());
    }
    return texts;
}

} // namespace

class ZorelSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freshUserGetsTheDefaultsAndNothingIsWritten();
    void storedTextsLoadAsTheyStand_data() { addTextProperties(); }
    void storedTextsLoadAsTheyStand();
    void storedEmptyTextStaysEmpty_data() { addTextProperties(); }
    void storedEmptyTextStaysEmpty();
    void storedValueOfAnotherTypeLoadsAsTheDefault_data() { addTextProperties(); }
    void storedValueOfAnotherTypeLoadsAsTheDefault();
    void everyTextAssignmentIsAnnouncedAndThenWritten_data() { addTextProperties(); }
    void everyTextAssignmentIsAnnouncedAndThenWritten();
    void enumerationsAreAnnouncedAndThenWrittenAsTheirRawValues();
    void listenerThatAssignsAgainHasTheLastWord();

    void storedProfileLoads_data();
    void storedProfileLoads();
    void profileOfAnotherTypeLoadsAsTheFirstCases();

    void selectingTheCurrentFamilyDoesNothing();
    void selectingAFamilyKeepsACapabilityItAllows();
    void selectingAFamilyReplacesACapabilityItDoesNotAllow();
    void selectingACapabilityTheFamilyDoesNotAllowIsIgnored();
    void selectingTheCurrentCapabilityDoesNothing();
    void selectingAnotherCapabilityPersistsIt();

    void resettingTheIdentityWritesTheDefaultsInOrder();
    void identityPayloadLeavesOutAnAuthorOfThreeSpaces();
    void identityPayloadHoldsTheNameWithoutSpacesAndLineBreaksAtItsEnds();
    void identityPayloadKeepsEverythingBetweenTheEnds();
    void identityPayloadOfBlankTextsIsEmpty();
    void identityPayloadHasAllFiveKeys();
    void profilePayloadHoldsTheRawValues();
    void sidecarEnvironmentHoldsTheExpandedFolders();

private:
    static void addTextProperties();
    static const TextProperty &fetchedProperty();
};

void ZorelSettingsTest::addTextProperties()
{
    QTest::addColumn<qsizetype>("index");
    for (qsizetype index = 0; index < qsizetype(textProperties().size()); ++index) {
        QTest::addRow("%s", textProperties()[std::size_t(index)].key) << index;
    }
}

const TextProperty &ZorelSettingsTest::fetchedProperty()
{
    QFETCH(qsizetype, index);
    return textProperties()[std::size_t(index)];
}

void ZorelSettingsTest::freshUserGetsTheDefaultsAndNothingIsWritten()
{
    InMemoryUserDefaults store;
    const ZorelSettings settings(store, folders);
    for (const TextProperty &property : textProperties()) {
        QCOMPARE((settings.*property.read)(), property.defaultValue);
    }
    QVERIFY(settings.modelFamily() == ModelFamily::textLanguage);
    QVERIFY(settings.trainingCapability() == TrainingCapability::pretrain);
    QCOMPARE(settings.libraryRoot(), QStringLiteral("/Users/ada/Documents/Zorel"));
    QCOMPARE(settings.defaultTrainingDataPath(), settings.trainingDataPath());
    QCOMPARE(settings.defaultFinishedModelsPath(), settings.finishedModelsPath());
    QCOMPARE(settings.defaultModelRootPath(), settings.modelRootPath());
    QVERIFY(store.writes.empty());
}

void ZorelSettingsTest::storedTextsLoadAsTheyStand()
{
    const TextProperty &property = fetchedProperty();
    const QString text = QStringLiteral("~/ wörds \n");
    InMemoryUserDefaults store;
    store.values.insert(QLatin1String(property.key), text);
    const ZorelSettings settings(store, folders);
    for (const TextProperty &each : textProperties()) {
        QCOMPARE((settings.*each.read)(), each.key == property.key ? text : each.defaultValue);
    }
    QVERIFY(store.writes.empty());
}

void ZorelSettingsTest::storedEmptyTextStaysEmpty()
{
    const TextProperty &property = fetchedProperty();
    InMemoryUserDefaults store;
    store.values.insert(QLatin1String(property.key), QStringLiteral(""));
    const ZorelSettings settings(store, folders);
    QCOMPARE((settings.*property.read)(), QString());
    QVERIFY(store.writes.empty());
}

void ZorelSettingsTest::storedValueOfAnotherTypeLoadsAsTheDefault()
{
    const TextProperty &property = fetchedProperty();
    for (const QVariant &value : {QVariant(7), QVariant(true), QVariant(QStringList{QStringLiteral("x")}),
                                  QVariant(QByteArray("bytes")), QVariant()}) {
        InMemoryUserDefaults store;
        store.values.insert(QLatin1String(property.key), value);
        const ZorelSettings settings(store, folders);
        QCOMPARE((settings.*property.read)(), property.defaultValue);
        QVERIFY(store.writes.empty());
    }
}

void ZorelSettingsTest::everyTextAssignmentIsAnnouncedAndThenWritten()
{
    const TextProperty &property = fetchedProperty();
    InMemoryUserDefaults store;
    ZorelSettings settings(store, folders);
    QStringList happened;
    store.onWrite = [&](const auto &write) {
        happened += write.first + u'=' + write.second.toString();
    };
    for (const TextProperty &each : textProperties()) {
        connect(&settings, each.changed, this,
                [&] { happened += QLatin1String(each.key) + u':' + (settings.*each.read)(); });
    }

    const QString key = QLatin1String(property.key);
    (settings.*property.write)(QStringLiteral("new"));
    QCOMPARE(happened, QStringList({key + QStringLiteral(":new"), key + QStringLiteral("=new")}));

    happened.clear();
    (settings.*property.write)(QStringLiteral("new"));
    QCOMPARE(happened, QStringList({key + QStringLiteral("=new")}));

    happened.clear();
    (settings.*property.write)(QString());
    QCOMPARE(happened, QStringList({key + u':', key + u'='}));
}

void ZorelSettingsTest::enumerationsAreAnnouncedAndThenWrittenAsTheirRawValues()
{
    InMemoryUserDefaults store;
    ZorelSettings settings(store, folders);
    QStringList happened;
    store.onWrite = [&](const auto &write) {
        happened += write.first + u'=' + write.second.toString();
    };
    connect(&settings, &ZorelSettings::modelFamilyChanged, this,
            [&] { happened += QStringLiteral("family:") + rawValue(settings.modelFamily()); });
    connect(&settings, &ZorelSettings::trainingCapabilityChanged, this,
            [&] { happened += QStringLiteral("capability:") + rawValue(settings.trainingCapability()); });

    settings.setModelFamily(ModelFamily::imageGeneration);
    settings.setModelFamily(ModelFamily::imageGeneration);
    settings.setTrainingCapability(TrainingCapability::finetune);
    settings.setTrainingCapability(TrainingCapability::finetune);
    QCOMPARE(happened, QStringList({QStringLiteral("family:image_generation"),
                                    QStringLiteral("zorel.modelFamily=image_generation"),
                                    QStringLiteral("zorel.modelFamily=image_generation"),
                                    QStringLiteral("capability:finetune"),
                                    QStringLiteral("zorel.trainingCapability=finetune"),
                                    QStringLiteral("zorel.trainingCapability=finetune")}));
}

void ZorelSettingsTest::listenerThatAssignsAgainHasTheLastWord()
{
    InMemoryUserDefaults store;
    ZorelSettings settings(store, folders);
    connect(&settings, &ZorelSettings::modelNameChanged, this, [&] {
        if (settings.modelName() == QLatin1String("typed")) {
            settings.setModelName(QStringLiteral("corrected"));
        }
    });
    settings.setModelName(QStringLiteral("typed"));
    QCOMPARE(settings.modelName(), QStringLiteral("corrected"));
    QCOMPARE(store.string(QStringLiteral("zorel.modelName")), QStringLiteral("corrected"));
}

void ZorelSettingsTest::storedProfileLoads_data()
{
    QTest::addColumn<QString>("storedFamily");
    QTest::addColumn<QString>("storedCapability");
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("capability");
    QTest::addColumn<bool>("repaired");
    const auto row = [](const char *name, const char *storedFamily, const char *storedCapability,
                        const char *family, const char *capability, bool repaired) {
        QTest::newRow(name) << QString::fromLatin1(storedFamily) << QString::fromLatin1(storedCapability)
                            << QString::fromLatin1(family) << QString::fromLatin1(capability) << repaired;
    };
    row("multimodal with lora is repaired", "multimodal", "lora", "multimodal", "pretrain", true);
    row("multimodal with finetune is repaired", "multimodal", "finetune", "multimodal", "pretrain", true);
    row("multimodal with pretrain", "multimodal", "pretrain", "multimodal", "pretrain", false);
    row("images with finetune", "image_generation", "finetune", "image_generation", "finetune", false);
    row("images with lora is repaired", "image_generation", "lora", "image_generation", "pretrain", true);
    row("text with lora", "text_language", "lora", "text_language", "lora", false);
    row("family in another letter case", "Multimodal", "lora", "text_language", "lora", false);
    row("unknown family", "audio", "finetune", "text_language", "finetune", false);
    row("unknown capability", "multimodal", "distill", "multimodal", "pretrain", false);
    row("empty texts", "", "", "text_language", "pretrain", false);
}

void ZorelSettingsTest::storedProfileLoads()
{
    QFETCH(QString, storedFamily);
    QFETCH(QString, storedCapability);
    QFETCH(bool, repaired);
    InMemoryUserDefaults store;
    store.values.insert(QStringLiteral("zorel.modelFamily"), storedFamily);
    store.values.insert(QStringLiteral("zorel.trainingCapability"), storedCapability);
    const ZorelSettings settings(store, folders);
    QTEST(rawValue(settings.modelFamily()), "family");
    QTEST(rawValue(settings.trainingCapability()), "capability");
    QCOMPARE(writtenTexts(store),
             repaired ? QStringList{QStringLiteral("zorel.trainingCapability=pretrain")} : QStringList());
}

void ZorelSettingsTest::profileOfAnotherTypeLoadsAsTheFirstCases()
{
    InMemoryUserDefaults store;
    store.values.insert(QStringLiteral("zorel.modelFamily"), 2);
    store.values.insert(QStringLiteral("zorel.trainingCapability"), true);
    const ZorelSettings settings(store, folders);
    QVERIFY(settings.modelFamily() == ModelFamily::textLanguage);
    QVERIFY(settings.trainingCapability() == TrainingCapability::pretrain);
    QVERIFY(store.writes.empty());
}

void ZorelSettingsTest::selectingTheCurrentFamilyDoesNothing()
{
    InMemoryUserDefaults store;
    ZorelSettings settings(store, folders);
    settings.selectFamily(ModelFamily::textLanguage);
    QVERIFY(store.writes.empty());
}

void ZorelSettingsTest::selectingAFamilyKeepsACapabilityItAllows()
{
    InMemoryUserDefaults store;
    store.values.insert(QStringLiteral("zorel.trainingCapability"), QStringLiteral("finetune"));
    ZorelSettings settings(store, folders);
    settings.selectFamily(ModelFamily::imageGeneration);
    QVERIFY(settings.trainingCapability() == TrainingCapability::finetune);
    QCOMPARE(writtenTexts(store), QStringList{QStringLiteral("zorel.modelFamily=image_generation")});
}

void ZorelSettingsTest::selectingAFamilyReplacesACapabilityItDoesNotAllow()
{
    InMemoryUserDefaults store;
    store.values.insert(QStringLiteral("zorel.trainingCapability"), QStringLiteral("lora"));
    ZorelSettings settings(store, folders);
    settings.selectFamily(ModelFamily::multimodal);
    QVERIFY(settings.modelFamily() == ModelFamily::multimodal);
    QVERIFY(settings.trainingCapability() == TrainingCapability::pretrain);
    QCOMPARE(writtenTexts(store), QStringList({QStringLiteral("zorel.modelFamily=multimodal"),
                                               QStringLiteral("zorel.trainingCapability=pretrain")}));
}

void ZorelSettingsTest::selectingACapabilityTheFamilyDoesNotAllowIsIgnored()
{
    InMemoryUserDefaults store;
    store.values.insert(QStringLiteral("zorel.modelFamily"), QStringLiteral("image_generation"));
    ZorelSettings settings(store, folders);
    settings.selectCapability(TrainingCapability::lora);
    QVERIFY(settings.trainingCapability() == TrainingCapability::pretrain);
    QVERIFY(store.writes.empty());
}

void ZorelSettingsTest::selectingTheCurrentCapabilityDoesNothing()
{
    InMemoryUserDefaults store;
    ZorelSettings settings(store, folders);
    settings.selectCapability(TrainingCapability::pretrain);
    QVERIFY(store.writes.empty());
}

void ZorelSettingsTest::selectingAnotherCapabilityPersistsIt()
{
    InMemoryUserDefaults store;
    ZorelSettings settings(store, folders);
    settings.selectCapability(TrainingCapability::lora);
    QVERIFY(settings.trainingCapability() == TrainingCapability::lora);
    QCOMPARE(writtenTexts(store), QStringList{QStringLiteral("zorel.trainingCapability=lora")});
}

void ZorelSettingsTest::resettingTheIdentityWritesTheDefaultsInOrder()
{
    InMemoryUserDefaults store;
    store.values.insert(QStringLiteral("zorel.modelName"), QStringLiteral("Poet"));
    store.values.insert(QStringLiteral("zorel.modelAuthor"), QStringLiteral("Ada"));
    ZorelSettings settings(store, folders);
    settings.resetModelIdentity();
    QCOMPARE(
        writtenTexts(store),
        QStringList({QStringLiteral("zorel.modelName=MyModel"), QStringLiteral("zorel.modelVersion=1.0.0"),
                     QStringLiteral("zorel.modelAuthor="), QStringLiteral("zorel.modelDescription="),
                     QStringLiteral("zorel.modelLicense=MIT")}));
    QCOMPARE(settings.modelName(), QStringLiteral("MyModel"));
    QCOMPARE(settings.modelAuthor(), QString());
}

void ZorelSettingsTest::identityPayloadLeavesOutAnAuthorOfThreeSpaces()
{
    InMemoryUserDefaults store;
    ZorelSettings settings(store, folders);
    settings.setModelAuthor(QStringLiteral("   "));
    QVERIFY(!settings.modelIdentityPayload().contains(QStringLiteral("author")));
    QCOMPARE(settings.modelAuthor(), QStringLiteral("   "));
}

void ZorelSettingsTest::identityPayloadHoldsTheNameWithoutSpacesAndLineBreaksAtItsEnds()
{
    InMemoryUserDefaults store;
    ZorelSettings settings(store, folders);
    settings.setModelName(QStringLiteral("  Poet\n"));
    QCOMPARE(settings.modelIdentityPayload().value(QStringLiteral("name")), QStringLiteral("Poet"));
    // Tab, line and paragraph separators, next line, the unbreakable, the ideographic and the thin space.
    settings.setModelName(QStringLiteral("\t\r\n\v\f\u0085\u00a0\u2009Poet\u2028\u2029\u3000"));
    QCOMPARE(settings.modelIdentityPayload().value(QStringLiteral("name")), QStringLiteral("Poet"));
}

void ZorelSettingsTest::identityPayloadKeepsEverythingBetweenTheEnds()
{
    InMemoryUserDefaults store;
    ZorelSettings settings(store, folders);
    const QString description = QStringLiteral("Écrit  des\n\n  poèmes \u2028 📚");
    settings.setModelDescription(u' ' + description);
    QCOMPARE(settings.modelIdentityPayload().value(QStringLiteral("description")), description);
}

void ZorelSettingsTest::identityPayloadOfBlankTextsIsEmpty()
{
    InMemoryUserDefaults store;
    ZorelSettings settings(store, folders);
    settings.setModelName(QString());
    settings.setModelVersion(QStringLiteral(" "));
    settings.setModelLicense(QStringLiteral("\n"));
    QVERIFY(settings.modelIdentityPayload().isEmpty());
}

void ZorelSettingsTest::identityPayloadHasAllFiveKeys()
{
    InMemoryUserDefaults store;
    ZorelSettings settings(store, folders);
    settings.setModelName(QStringLiteral("Poet"));
    settings.setModelVersion(QStringLiteral("2"));
    settings.setModelAuthor(QStringLiteral("Ada"));
    settings.setModelDescription(QStringLiteral("Rhymes"));
    settings.setModelLicense(QStringLiteral("CC0"));
    const QMap<QString, QString> expected{{QStringLiteral("name"), QStringLiteral("Poet")},
                                          {QStringLiteral("version"), QStringLiteral("2")},
                                          {QStringLiteral("author"), QStringLiteral("Ada")},
                                          {QStringLiteral("description"), QStringLiteral("Rhymes")},
                                          {QStringLiteral("license"), QStringLiteral("CC0")}};
    QCOMPARE(settings.modelIdentityPayload(), expected);
}

void ZorelSettingsTest::profilePayloadHoldsTheRawValues()
{
    InMemoryUserDefaults store;
    ZorelSettings settings(store, folders);
    settings.selectFamily(ModelFamily::imageGeneration);
    settings.selectCapability(TrainingCapability::finetune);
    const QMap<QString, QString> expected{
        {QStringLiteral("model_family"), QStringLiteral("image_generation")},
        {QStringLiteral("training_capability"), QStringLiteral("finetune")}};
    QCOMPARE(settings.trainingProfilePayload(), expected);
}

void ZorelSettingsTest::sidecarEnvironmentHoldsTheExpandedFolders()
{
    InMemoryUserDefaults store;
    ZorelSettings settings(store, folders);
    settings.setTrainingDataPath(QStringLiteral("~/Corpora"));
    settings.setFinishedModelsPath(QStringLiteral("~"));
    settings.setModelRootPath(QStringLiteral("/Volumes/~/Model"));
    const QMap<QString, QString> expected{
        {QStringLiteral("ZOREL_DATA_ROOT"), QStringLiteral("/Users/ada/Corpora")},
        {QStringLiteral("ZOREL_FINISHED_MODELS_ROOT"), QStringLiteral("/Users/ada")},
        {QStringLiteral("ZOREL_MODEL_ROOT"), QStringLiteral("/Volumes/~/Model")}};
    QCOMPARE(settings.sidecarEnvironment(), expected);
    QCOMPARE(settings.trainingDataPath(), QStringLiteral("~/Corpora"));
}

QTEST_GUILESS_MAIN(ZorelSettingsTest)
#include "ZorelSettingsTest.moc"
