#include "app/settings/TrainingCapability.h"

#include <QStringView>

#include <algorithm>

namespace zorel::app::settings {

namespace {

struct Texts
{
    TrainingCapability capability;
    QStringView rawValue;
    QStringView title;
    QStringView summary;
};

constexpr std::array table{
    Texts{TrainingCapability::pretrain, u"pretrain", u"Pretrain from scratch",
          u"Build new weights on your training data."},
    Texts{TrainingCapability::finetune, u"finetune", u"Fine-tune existing weights",
          u"Continue training from a saved checkpoint."},
    Texts{TrainingCapability::lora, u"lora", u"LoRA adapter",
          u"Train a lightweight adapter on a base model."},
};

static_assert(std::ranges::equal(table, allTrainingCapabilities, {}, &Texts::capability));

const Texts &textsOf(TrainingCapability capability)
{
    return table.at(static_cast<std::size_t>(capability));
}

/// Every family allows a beginning of the list of all capabilities, so what it allows is a length.
std::size_t supportedCount(ModelFamily family)
{
    switch (family) {
    case ModelFamily::textLanguage:
        return 3;
    case ModelFamily::imageGeneration:
        return 2;
    case ModelFamily::multimodal:
        return 1;
    }
    Q_UNREACHABLE();
}

} // namespace

QString rawValue(TrainingCapability capability)
{
    return textsOf(capability).rawValue.toString();
}

QString title(TrainingCapability capability)
{
    return textsOf(capability).title.toString();
}

QString summary(TrainingCapability capability)
{
    return textsOf(capability).summary.toString();
}

TrainingCapability trainingCapabilityFromRawValue(const QString &text)
{
    const auto found = std::ranges::find(table, QStringView(text), &Texts::rawValue);
    return found == table.end() ? TrainingCapability::pretrain : found->capability;
}

std::span<const TrainingCapability> supportedCapabilities(ModelFamily family)
{
    return std::span(allTrainingCapabilities).first(supportedCount(family));
}

bool supports(ModelFamily family, TrainingCapability capability)
{
    const auto supported = supportedCapabilities(family);
    return std::ranges::find(supported, capability) != supported.end();
}

} // namespace zorel::app::settings
