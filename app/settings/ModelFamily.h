#pragma once

#include <QString>

#include <array>
#include <cstdint>

namespace zorel::app::settings {

/// What kind of model is trained.
enum class ModelFamily : std::uint8_t { textLanguage, imageGeneration, multimodal };

inline constexpr std::array allModelFamilies{ModelFamily::textLanguage, ModelFamily::imageGeneration,
                                             ModelFamily::multimodal};

/// The text under which the family is stored and sent.
QString rawValue(ModelFamily family);
QString title(ModelFamily family);
QString summary(ModelFamily family);
/// The name of the symbol shown beside the title.
QString symbolName(ModelFamily family);
/// What belongs into the Training Data folder; empty when nothing needs saying.
QString trainingDataHint(ModelFamily family);

/// The family whose raw value is exactly `text`; textLanguage when there is none.
ModelFamily modelFamilyFromRawValue(const QString &text);

} // namespace zorel::app::settings
