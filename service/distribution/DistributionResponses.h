#pragma once

#include "service/core/RecordFields.h"
#include "service/distribution/DistributionApplication.h"
#include "service/distribution/DistributionRelease.h"

#include <QString>

#include <optional>
#include <vector>

namespace caldra {

struct DistributionApplicationsResponse
{
    std::optional<QString> schema;
    std::optional<QString> orgId;
    std::vector<DistributionApplication> applications;

    bool operator==(const DistributionApplicationsResponse &) const = default;

    static constexpr auto fields =
        std::tuple{field("schema", &DistributionApplicationsResponse::schema),
                   field("orgId", &DistributionApplicationsResponse::orgId),
                   field("applications", &DistributionApplicationsResponse::applications)};
};

struct DistributionApplicationResponse
{
    std::optional<QString> schema;
    DistributionApplication application;

    bool operator==(const DistributionApplicationResponse &) const = default;

    static constexpr auto fields =
        std::tuple{field("schema", &DistributionApplicationResponse::schema),
                   field("application", &DistributionApplicationResponse::application)};
};

struct DistributionReleasesResponse
{
    std::optional<QString> schema;
    std::optional<QString> appId;
    std::vector<DistributionRelease> releases;

    bool operator==(const DistributionReleasesResponse &) const = default;

    static constexpr auto fields = std::tuple{field("schema", &DistributionReleasesResponse::schema),
                                              field("appId", &DistributionReleasesResponse::appId),
                                              field("releases", &DistributionReleasesResponse::releases)};
};

struct DistributionReleaseResponse
{
    std::optional<QString> schema;
    DistributionRelease release;

    bool operator==(const DistributionReleaseResponse &) const = default;

    static constexpr auto fields = std::tuple{field("schema", &DistributionReleaseResponse::schema),
                                              field("release", &DistributionReleaseResponse::release)};
};

struct DistributionLatestResponse
{
    std::optional<QString> schema;
    QString appId;
    DistributionChannel channel = DistributionChannel::stable;
    DistributionPlatform platform = DistributionPlatform::macos;
    DistributionRelease release;
    DistributionArtifact artifact;

    bool operator==(const DistributionLatestResponse &) const = default;

    static constexpr auto fields = std::tuple{field("schema", &DistributionLatestResponse::schema),
                                              field("appId", &DistributionLatestResponse::appId),
                                              field("channel", &DistributionLatestResponse::channel),
                                              field("platform", &DistributionLatestResponse::platform),
                                              field("release", &DistributionLatestResponse::release),
                                              field("artifact", &DistributionLatestResponse::artifact)};
};

struct DistributionIconResponse
{
    std::optional<QString> schema;
    std::optional<QString> appId;
    QString iconUrl;
    std::optional<QString> iconStoragePath;

    bool operator==(const DistributionIconResponse &) const = default;

    static constexpr auto fields = std::tuple{
        field("schema", &DistributionIconResponse::schema), field("appId", &DistributionIconResponse::appId),
        field("iconUrl", &DistributionIconResponse::iconUrl),
        field("iconStoragePath", &DistributionIconResponse::iconStoragePath)};
};

} // namespace caldra
