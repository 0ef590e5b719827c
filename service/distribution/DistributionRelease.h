#pragma once

#include "service/core/RecordFields.h"
#include "service/distribution/DistributionEnumerations.h"

#include <QString>

#include <optional>
#include <vector>

namespace caldra {

/// A downloadable file of a release.
struct DistributionArtifact
{
    DistributionPlatform platform = DistributionPlatform::macos;
    QString fileName;
    QString downloadUrl;
    qint64 sizeBytes = 0;
    QString contentType;
    std::optional<QString> sha256;
    std::optional<QString> version;
    std::optional<QString> buildNumber;
    std::optional<QString> minOsVersion;
    std::optional<DistributionArchitecture> architecture;
    std::optional<DistributionArtifactPurpose> installPurpose;
    std::optional<bool> metadataAutoDetected;

    bool operator==(const DistributionArtifact &) const = default;

    static constexpr auto fields =
        std::tuple{field("platform", &DistributionArtifact::platform),
                   field("fileName", &DistributionArtifact::fileName),
                   field("downloadUrl", &DistributionArtifact::downloadUrl),
                   field("sizeBytes", &DistributionArtifact::sizeBytes),
                   field("contentType", &DistributionArtifact::contentType),
                   field("sha256", &DistributionArtifact::sha256),
                   field("version", &DistributionArtifact::version),
                   field("buildNumber", &DistributionArtifact::buildNumber),
                   field("minOsVersion", &DistributionArtifact::minOsVersion),
                   field("architecture", &DistributionArtifact::architecture),
                   field("installPurpose", &DistributionArtifact::installPurpose),
                   field("metadataAutoDetected", &DistributionArtifact::metadataAutoDetected)};
};

struct DistributionRelease
{
    QString id;
    QString version;
    DistributionChannel channel = DistributionChannel::stable;
    std::optional<QString> buildNumber;
    std::optional<QString> notes;
    bool isYanked = false;
    std::optional<QString> releasedAt;
    std::optional<QString> updatedAt;
    std::vector<DistributionArtifact> artifacts;

    bool operator==(const DistributionRelease &) const = default;

    static constexpr auto fields = std::tuple{field("id", &DistributionRelease::id),
                                              field("version", &DistributionRelease::version),
                                              field("channel", &DistributionRelease::channel),
                                              field("buildNumber", &DistributionRelease::buildNumber),
                                              field("notes", &DistributionRelease::notes),
                                              field("isYanked", &DistributionRelease::isYanked),
                                              field("releasedAt", &DistributionRelease::releasedAt),
                                              field("updatedAt", &DistributionRelease::updatedAt),
                                              field("artifacts", &DistributionRelease::artifacts)};
};

} // namespace caldra
