#include "ui/dashboard/ModelTypePanel.h"

#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "ui/kit/Card.h"
#include "ui/kit/ChoicePicker.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"

#include <QVBoxLayout>

#include <vector>

namespace zorel::ui::dashboard {

using app::settings::ModelFamily;
using app::settings::TrainingCapability;
using app::settings::ZorelSettings;

namespace {

std::vector<kit::Choice> familyChoices()
{
    std::vector<kit::Choice> choices;
    choices.reserve(app::settings::allModelFamilies.size());
    for (const ModelFamily family : app::settings::allModelFamilies) {
        choices.push_back({rawValue(family), symbolName(family), title(family), summary(family)});
    }
    return choices;
}

std::vector<kit::Choice> capabilityChoices(ModelFamily family)
{
    std::vector<kit::Choice> choices;
    choices.reserve(supportedCapabilities(family).size());
    for (const TrainingCapability capability : supportedCapabilities(family)) {
        choices.push_back({rawValue(capability), QString(), title(capability), summary(capability)});
    }
    return choices;
}

} // namespace

ModelTypePanel::ModelTypePanel(backend::bridge::BackendController &backend, ZorelSettings &settings,
                               QWidget *parent)
    : QWidget(parent)
    , m_backend(backend)
    , m_settings(settings)
    , m_families(new kit::ChoicePicker(QStringLiteral("Model Type")))
    , m_hint(new QWidget)
    , m_hintText(new kit::TextLabel(QString(), kit::TextRole::Caption, kit::Weight::Regular,
                                    kit::ColorRole::Secondary))
    , m_capabilities(new kit::ChoicePicker(QStringLiteral("Training mode")))
{
    auto *hint = new QHBoxLayout(m_hint);
    hint->setContentsMargins({});
    hint->setSpacing(kit::spacing::one);
    hint->addWidget(new kit::SymbolLabel(QStringLiteral("folder.badge.questionmark")), 0, Qt::AlignTop);
    hint->addWidget(m_hintText, 1);

    auto *card = new kit::Card(QStringLiteral("Choose what you want to build and how it should be trained."));
    const auto addHeading = [card](const QString &text) {
        card->content()->addWidget(new kit::TextLabel(text, kit::TextRole::Subheading, kit::Weight::Medium));
    };
    addHeading(QStringLiteral("Model Type"));
    card->content()->addWidget(m_families);
    card->content()->addWidget(m_hint);
    card->content()->addSpacing(kit::spacing::one);
    addHeading(QStringLiteral("Training mode"));
    card->content()->addWidget(m_capabilities);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(card);

    m_families->setChoices(familyChoices());
    connect(m_families, &kit::ChoicePicker::chosen, this,
            [this](const QString &id) { chooseFamily(app::settings::modelFamilyFromRawValue(id)); });
    connect(m_capabilities, &kit::ChoicePicker::chosen, this, [this](const QString &id) {
        chooseCapability(app::settings::trainingCapabilityFromRawValue(id));
    });
    connect(&m_settings, &ZorelSettings::modelFamilyChanged, this, &ModelTypePanel::followFamily);
    connect(&m_settings, &ZorelSettings::trainingCapabilityChanged, this, &ModelTypePanel::followCapability);
    followFamily();
}

void ModelTypePanel::chooseFamily(ModelFamily family)
{
    m_settings.selectFamily(family);
    m_backend.sendTrainingProfile();
}

void ModelTypePanel::chooseCapability(TrainingCapability capability)
{
    m_settings.selectCapability(capability);
    m_backend.sendTrainingProfile();
    followCapability();
}

void ModelTypePanel::followFamily()
{
    const ModelFamily family = m_settings.modelFamily();
    m_families->setCurrent(rawValue(family));
    m_hintText->setText(trainingDataHint(family));
    m_hint->setVisible(!trainingDataHint(family).isEmpty());
    m_capabilities->setChoices(capabilityChoices(family));
    followCapability();
}

void ModelTypePanel::followCapability()
{
    m_capabilities->setCurrent(rawValue(m_settings.trainingCapability()));
}

} // namespace zorel::ui::dashboard
