#include "ui/dashboard/ModelTypePanel.h"

#include "tests/ui/dashboard/Stage.h"
#include "ui/kit/ChoicePicker.h"
#include "ui/kit/TextLabel.h"

namespace zorel::tests {

using app::settings::ModelFamily;
using app::settings::TrainingCapability;
using ui::dashboard::ModelTypePanel;
using ui::kit::ChoicePicker;

class ModelTypePanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void showsItsTexts();
    void showsItsSymbols();
    void showsTheHintOfAFamilyThatHasOne();
    void offersWhatTheFamilyAllows_data();
    void offersWhatTheFamilyAllows();
    void marksWhatIsSet();
    void switchingAwayFromLoraPretrains();
    void aCapabilityThatTheFamilyLacksChangesNothingAndIsSent();
    void choosingTheCurrentOnesSendsAllTheSame();

private:
    ChoicePicker *picker(const char *name) const;
    void choose(const char *title) const;
    std::vector<QJsonObject> profiles() const;

    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<ModelTypePanel> m_panel;
};

void ModelTypePanelTest::init()
{
    m_stage = std::make_unique<Stage>();
    m_panel = std::make_unique<ModelTypePanel>(m_stage->backend, m_stage->settings);
    m_panel->show();
}

void ModelTypePanelTest::cleanup()
{
    m_panel.reset();
    m_stage.reset();
}

ChoicePicker *ModelTypePanelTest::picker(const char *name) const
{
    for (ChoicePicker *candidate : m_panel->findChildren<ChoicePicker *>()) {
        if (candidate->accessibleName() == QLatin1String(name)) {
            return candidate;
        }
    }
    return nullptr;
}

void ModelTypePanelTest::choose(const char *title) const
{
    QAbstractButton *choice = button(m_panel.get(), QString::fromUtf8(title));
    QVERIFY2(choice != nullptr, title);
    choice->click();
}

/// All but the one that follows "ready".
std::vector<QJsonObject> ModelTypePanelTest::profiles() const
{
    auto sent = m_stage->commands(QStringLiteral("set_training_profile"));
    sent.erase(sent.begin());
    return sent;
}

namespace {

QJsonObject profile(const char *family, const char *capability)
{
    return {{QStringLiteral("cmd"), QStringLiteral("set_training_profile")},
            {QStringLiteral("profile"),
             QJsonObject{{QStringLiteral("model_family"), QString::fromLatin1(family)},
                         {QStringLiteral("training_capability"), QString::fromLatin1(capability)}}}};
}

} // namespace

void ModelTypePanelTest::showsItsTexts()
{
    for (const char *text :
         {"Choose what you want to build and how it should be trained.", "Model Type", "Training mode",
          "Text Language Model", "Image Generation", "Text + Image (Multimodal)", "Pretrain from scratch",
          "Fine-tune existing weights", "LoRA adapter"}) {
        QVERIFY2(shows(m_panel.get(), QString::fromUtf8(text)), text);
    }
    // Above the pickers, which are named so for those who do not see them.
    QStringList headings;
    for (const auto *label : m_panel->findChildren<ui::kit::TextLabel *>()) {
        headings << label->text();
    }
    QVERIFY(headings.contains(QStringLiteral("Model Type")));
    QVERIFY(headings.contains(QStringLiteral("Training mode")));
    for (const ModelFamily family : app::settings::allModelFamilies) {
        QVERIFY(shows(m_panel.get(), summary(family)));
    }
    for (const TrainingCapability capability : app::settings::allTrainingCapabilities) {
        QVERIFY(shows(m_panel.get(), summary(capability)));
    }
}

void ModelTypePanelTest::showsItsSymbols()
{
    QStringList expected;
    for (const ModelFamily family : app::settings::allModelFamilies) {
        expected << symbolName(family);
    }
    QCOMPARE(symbols(m_panel.get()), expected);
    m_stage->settings.selectFamily(ModelFamily::multimodal);
    QVERIFY(symbols(m_panel.get()).contains(QStringLiteral("folder.badge.questionmark")));
}

void ModelTypePanelTest::showsTheHintOfAFamilyThatHasOne()
{
    const QString images = trainingDataHint(ModelFamily::imageGeneration);
    const QString pairs = trainingDataHint(ModelFamily::multimodal);
    QVERIFY(!shows(m_panel.get(), images) && !shows(m_panel.get(), pairs));
    m_stage->settings.selectFamily(ModelFamily::imageGeneration);
    QVERIFY(shows(m_panel.get(), images) && !shows(m_panel.get(), pairs));
    m_stage->settings.selectFamily(ModelFamily::multimodal);
    QVERIFY(!shows(m_panel.get(), images) && shows(m_panel.get(), pairs));
    m_stage->settings.selectFamily(ModelFamily::textLanguage);
    QVERIFY(!shows(m_panel.get(), images) && !shows(m_panel.get(), pairs));
}

void ModelTypePanelTest::offersWhatTheFamilyAllows_data()
{
    QTest::addColumn<ModelFamily>("family");
    QTest::newRow("text") << ModelFamily::textLanguage;
    QTest::newRow("images") << ModelFamily::imageGeneration;
    QTest::newRow("both") << ModelFamily::multimodal;
}

void ModelTypePanelTest::offersWhatTheFamilyAllows()
{
    QFETCH(ModelFamily, family);
    m_stage->settings.selectFamily(family);
    for (const TrainingCapability capability : app::settings::allTrainingCapabilities) {
        QCOMPARE(button(m_panel.get(), title(capability)) != nullptr, supports(family, capability));
    }
}

void ModelTypePanelTest::marksWhatIsSet()
{
    QCOMPARE(picker("Model Type")->current(), QStringLiteral("text_language"));
    QCOMPARE(picker("Training mode")->current(), QStringLiteral("pretrain"));
    m_stage->settings.setTrainingCapability(TrainingCapability::lora);
    QCOMPARE(picker("Training mode")->current(), QStringLiteral("lora"));
    m_stage->settings.selectFamily(ModelFamily::imageGeneration);
    QCOMPARE(picker("Model Type")->current(), QStringLiteral("image_generation"));
    QCOMPARE(picker("Training mode")->current(), QStringLiteral("pretrain"));
}

void ModelTypePanelTest::switchingAwayFromLoraPretrains()
{
    m_stage->settings.selectCapability(TrainingCapability::lora);
    m_stage->launchRecorder();
    choose("Image Generation");
    QCOMPARE(m_stage->settings.trainingCapability(), TrainingCapability::pretrain);
    QVERIFY(button(m_panel.get(), QStringLiteral("Pretrain from scratch"))->isChecked());
    QTRY_COMPARE(profiles().size(), std::size_t{1});
    QCOMPARE(profiles().front(), profile("image_generation", "pretrain"));
}

void ModelTypePanelTest::aCapabilityThatTheFamilyLacksChangesNothingAndIsSent()
{
    m_stage->settings.selectFamily(ModelFamily::multimodal);
    m_stage->launchRecorder();
    m_panel->chooseCapability(TrainingCapability::finetune);
    QCOMPARE(m_stage->settings.modelFamily(), ModelFamily::multimodal);
    QCOMPARE(m_stage->settings.trainingCapability(), TrainingCapability::pretrain);
    QCOMPARE(picker("Training mode")->current(), QStringLiteral("pretrain"));
    QTRY_COMPARE(profiles().size(), std::size_t{1});
    QCOMPARE(profiles().front(), profile("multimodal", "pretrain"));
}

void ModelTypePanelTest::choosingTheCurrentOnesSendsAllTheSame()
{
    m_stage->launchRecorder();
    choose("Text Language Model");
    choose("Pretrain from scratch");
    choose("Fine-tune existing weights");
    QTRY_COMPARE(profiles().size(), std::size_t{3});
    QCOMPARE(profiles()[0], profile("text_language", "pretrain"));
    QCOMPARE(profiles()[1], profile("text_language", "pretrain"));
    QCOMPARE(profiles()[2], profile("text_language", "finetune"));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ModelTypePanelTest)
#include "ModelTypePanelTest.moc"
