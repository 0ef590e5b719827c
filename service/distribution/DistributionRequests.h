#pragma once

#include "service/core/RecordFields.h"
#include "service/distribution/DistributionRelease.h"

#include <QString>

#include <optional>
#include <vector>

namespace caldra {

struct PublishReleaseRequest
{
    QString version;
    DistributionChannel channel = DistributionChannel::stable;
    std::optional<QString> buildNumber;
    std::optional<QString> notes;
    std::vector<DistributionArtifact> artifacts;

    bool operator==(const PublishReleaseRequest &) const = default;

    static constexpr auto fields = std::tuple{
        field("version", &PublishReleaseRequest::version), field("channel", &PublishReleaseRequest::channel),
        field("buildNumber", &PublishReleaseRequest::buildNumber),
        field("notes", &PublishReleaseRequest::notes), field("artifacts", &PublishReleaseRequest::artifacts)};
};

struct UpdateReleaseRequest
{
    std::optional<QString> notes;
    std::optional<bool> isYanked;

    bool operator==(const UpdateReleaseRequest &) const = default;

    static constexpr auto fields = std::tuple{field("notes", &UpdateReleaseRequest::notes),
                                              field("isYanked", &UpdateReleaseRequest::isYanked)};
};

/// What narrows a list of releases; an absent value does not.
struct DistributionReleaseFilter
{
    std::optional<DistributionChannel> channel;
    std::optional<DistributionPlatform> platform;
    std::optional<qint64> limit;

    bool operator==(const DistributionReleaseFilter &) const = default;

    static constexpr auto fields = std::tuple{field("channel", &DistributionReleaseFilter::channel),
                                              field("platform", &DistributionReleaseFilter::platform),
                                              field("limit", &DistributionReleaseFilter::limit)};
};

/// What the latest release or its file is looked up by.
struct DistributionLookup
{
    std::optional<DistributionPlatform> platform;
    std::optional<DistributionChannel> channel;
    std::optional<DistributionArtifactPurpose> purpose;

    bool operator==(const DistributionLookup &) const = default;

    static constexpr auto fields = std::tuple{field("platform", &DistributionLookup::platform),
                                              field("channel", &DistributionLookup::channel),
                                              field("purpose", &DistributionLookup::purpose)};
};

struct DistributionIconQuery
{
    std::optional<IconFormat> format;

    bool operator==(const DistributionIconQuery &) const = default;

    static constexpr auto fields = std::tuple{field("format", &DistributionIconQuery::format)};
};

} // namespace caldra
