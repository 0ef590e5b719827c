#pragma once

#include "service/core/RecordFields.h"
#include "service/distribution/DistributionEnumerations.h"

#include <QString>

#include <map>
#include <optional>
#include <vector>

namespace caldra {

/// Which release is the latest of a platform and channel.
struct DistributionLatestPointer
{
    QString releaseId;
    QString version;
    std::optional<QString> updatedAt;

    bool operator==(const DistributionLatestPointer &) const = default;

    static constexpr auto fields = std::tuple{field("releaseId", &DistributionLatestPointer::releaseId),
                                              field("version", &DistributionLatestPointer::version),
                                              field("updatedAt", &DistributionLatestPointer::updatedAt)};
};

struct DistributionApplication
{
    QString id;
    QString slug;
    QString name;
    std::vector<DistributionPlatform> platforms;
    std::optional<QString> bundleId;
    std::optional<QString> description;
    std::optional<QString> homepageUrl;
    std::optional<QString> iconUrl;
    std::optional<QString> iconStoragePath;
    std::optional<bool> isPublic;
    std::optional<std::map<QString, std::map<QString, DistributionLatestPointer>>>
        latest; ///< by platform, then by channel
    std::optional<QString> createdAt;
    std::optional<QString> updatedAt;

    bool operator==(const DistributionApplication &) const = default;

    static constexpr auto fields =
        std::tuple{field("id", &DistributionApplication::id),
                   field("slug", &DistributionApplication::slug),
                   field("name", &DistributionApplication::name),
                   field("platforms", &DistributionApplication::platforms),
                   field("bundleId", &DistributionApplication::bundleId),
                   field("description", &DistributionApplication::description),
                   field("homepageUrl", &DistributionApplication::homepageUrl),
                   field("iconUrl", &DistributionApplication::iconUrl),
                   field("iconStoragePath", &DistributionApplication::iconStoragePath),
                   field("isPublic", &DistributionApplication::isPublic),
                   field("latest", &DistributionApplication::latest),
                   field("createdAt", &DistributionApplication::createdAt),
                   field("updatedAt", &DistributionApplication::updatedAt)};
};

} // namespace caldra
