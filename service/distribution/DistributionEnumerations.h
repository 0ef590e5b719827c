#pragma once

#include "service/core/RecordFields.h"

#include <QString>

#include <array>

namespace caldra {

enum class DistributionPlatform { macos, windows };

constexpr auto wireTexts(DistributionPlatform)
{
    return std::array{WireText{DistributionPlatform::macos, "macos"},
                      WireText{DistributionPlatform::windows, "windows"}};
}

enum class DistributionChannel { stable, beta, dev };

constexpr auto wireTexts(DistributionChannel)
{
    return std::array{WireText{DistributionChannel::stable, "stable"},
                      WireText{DistributionChannel::beta, "beta"}, WireText{DistributionChannel::dev, "dev"}};
}

enum class DistributionArtifactPurpose { install, update };

constexpr auto wireTexts(DistributionArtifactPurpose)
{
    return std::array{WireText{DistributionArtifactPurpose::install, "install"},
                      WireText{DistributionArtifactPurpose::update, "update"}};
}

enum class DistributionArchitecture { x64, arm64, universal, x86 };

constexpr auto wireTexts(DistributionArchitecture)
{
    return std::array{WireText{DistributionArchitecture::x64, "x64"},
                      WireText{DistributionArchitecture::arm64, "arm64"},
                      WireText{DistributionArchitecture::universal, "universal"},
                      WireText{DistributionArchitecture::x86, "x86"}};
}

/// How the icon call answers: with a record, or with a redirect to the picture.
enum class IconFormat { json, redirect };

constexpr auto wireTexts(IconFormat)
{
    return std::array{WireText{IconFormat::json, "json"}, WireText{IconFormat::redirect, "redirect"}};
}

} // namespace caldra
