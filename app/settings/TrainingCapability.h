#pragma once

#include "app/settings/ModelFamily.h"

#include <span>

namespace zorel::app::settings {

/// How a run trains.
enum class TrainingCapability : std::uint8_t { pretrain, finetune, lora };

inline constexpr std::array allTrainingCapabilities{TrainingCapability::pretrain,
                                                    TrainingCapability::finetune, TrainingCapability::lora};

QString rawValue(TrainingCapability capability);
QString title(TrainingCapability capability);
QString summary(TrainingCapability capability);

/// The capability whose raw value is exactly `text`; pretrain when there is none.
TrainingCapability trainingCapabilityFromRawValue(const QString &text);

/// The capabilities that `family` allows, in display order; always begins with pretrain.
std::span<const TrainingCapability> supportedCapabilities(ModelFamily family);
bool supports(ModelFamily family, TrainingCapability capability);

} // namespace zorel::app::settings
