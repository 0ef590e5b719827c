#include "app/settings/TrainingCapability.h"

#include <QTest>

#include <algorithm>

using namespace zorel::app::settings;

class TrainingCapabilityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyTextIsTheOneUsersAndScriptsKnow_data();
    void everyTextIsTheOneUsersAndScriptsKnow();
    void rawValuesLeadBackToTheirCapability();
    void otherTextsLeadToPretrain_data();
    void otherTextsLeadToPretrain();
    void familiesAllowTheirCapabilitiesInDisplayOrder();
    void combinationIsSupported_data();
    void combinationIsSupported();
};

void TrainingCapabilityTest::everyTextIsTheOneUsersAndScriptsKnow_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("capability");
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("description");

    QTest::newRow("pretrain") << 0 << int(TrainingCapability::pretrain) << QStringLiteral("pretrain")
                              << QStringLiteral("Pretrain from scratch")
                              << QStringLiteral("Build new weights on your training data.");
    QTest::newRow("finetune") << 1 << int(TrainingCapability::finetune) << QStringLiteral("finetune")
                              << QStringLiteral("Fine-tune existing weights")
                              << QStringLiteral("Continue training from a saved checkpoint.");
    QTest::newRow("lora") << 2 << int(TrainingCapability::lora) << QStringLiteral("lora")
                          << QStringLiteral("LoRA adapter")
                          << QStringLiteral("Train a lightweight adapter on a base model.");
}

void TrainingCapabilityTest::everyTextIsTheOneUsersAndScriptsKnow()
{
    QFETCH(int, position);
    QFETCH(int, capability);
    const auto tested = static_cast<TrainingCapability>(capability);
    QVERIFY(allTrainingCapabilities.at(static_cast<std::size_t>(position)) == tested);
    QTEST(rawValue(tested), "raw");
    QTEST(title(tested), "name");
    QTEST(summary(tested), "description");
}

void TrainingCapabilityTest::rawValuesLeadBackToTheirCapability()
{
    for (const TrainingCapability capability : allTrainingCapabilities) {
        QVERIFY(trainingCapabilityFromRawValue(rawValue(capability)) == capability);
    }
}

void TrainingCapabilityTest::otherTextsLeadToPretrain_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("other letter case") << QStringLiteral("LoRA");
    QTest::newRow("space before") << QStringLiteral(" lora");
    QTest::newRow("title") << QStringLiteral("LoRA adapter");
    QTest::newRow("unknown") << QStringLiteral("distill");
}

void TrainingCapabilityTest::otherTextsLeadToPretrain()
{
    QFETCH(QString, text);
    QVERIFY(trainingCapabilityFromRawValue(text) == TrainingCapability::pretrain);
}

void TrainingCapabilityTest::familiesAllowTheirCapabilitiesInDisplayOrder()
{
    using enum TrainingCapability;
    const auto allows = [](ModelFamily family, std::initializer_list<TrainingCapability> expected) {
        return std::ranges::equal(supportedCapabilities(family), expected);
    };
    QVERIFY(allows(ModelFamily::textLanguage, {pretrain, finetune, lora}));
    QVERIFY(allows(ModelFamily::imageGeneration, {pretrain, finetune}));
    QVERIFY(allows(ModelFamily::multimodal, {pretrain}));
}

void TrainingCapabilityTest::combinationIsSupported_data()
{
    QTest::addColumn<int>("family");
    QTest::addColumn<int>("capability");
    QTest::addColumn<bool>("supported");

    const bool expected[3][3] = {{true, true, true}, {true, true, false}, {true, false, false}};
    for (int family = 0; family < 3; ++family) {
        for (int capability = 0; capability < 3; ++capability) {
            QTest::addRow("%s, %s", qPrintable(rawValue(static_cast<ModelFamily>(family))),
                          qPrintable(rawValue(static_cast<TrainingCapability>(capability))))
                << family << capability << expected[family][capability];
        }
    }
}

void TrainingCapabilityTest::combinationIsSupported()
{
    QFETCH(int, family);
    QFETCH(int, capability);
    QTEST(supports(static_cast<ModelFamily>(family), static_cast<TrainingCapability>(capability)),
          "supported");
}

QTEST_GUILESS_MAIN(TrainingCapabilityTest)
#include "TrainingCapabilityTest.moc"
