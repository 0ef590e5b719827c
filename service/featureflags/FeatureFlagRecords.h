#pragma once

#include "service/core/JSONValue.h"
#include "service/core/RecordFields.h"

#include <QString>

#include <optional>
#include <vector>

namespace caldra {

struct FeatureFlag
{
    QString id;
    std::optional<QString> key;
    std::optional<QString> name;
    std::optional<QString> description;
    std::optional<bool> enabled;
    std::optional<double> rolloutPercent;
    std::optional<QString> countryMode;
    std::optional<std::vector<QString>> countryCodes;
    std::optional<QString> status;
    std::optional<QString> startsAt;
    std::optional<QString> endsAt;

    bool operator==(const FeatureFlag &) const = default;

    static constexpr auto fields = std::tuple{field("id", &FeatureFlag::id),
                                              field("key", &FeatureFlag::key),
                                              field("name", &FeatureFlag::name),
                                              field("description", &FeatureFlag::description),
                                              field("enabled", &FeatureFlag::enabled),
                                              field("rolloutPercent", &FeatureFlag::rolloutPercent),
                                              field("countryMode", &FeatureFlag::countryMode),
                                              field("countryCodes", &FeatureFlag::countryCodes),
                                              field("status", &FeatureFlag::status),
                                              field("startsAt", &FeatureFlag::startsAt),
                                              field("endsAt", &FeatureFlag::endsAt)};
};

struct EvaluateFlagsRequest
{
    QString subjectId;
    std::optional<QString> countryCode;
    std::optional<std::vector<QString>> flagKeys; ///< absent: every flag

    bool operator==(const EvaluateFlagsRequest &) const = default;

    static constexpr auto fields = std::tuple{field("subjectId", &EvaluateFlagsRequest::subjectId),
                                              field("countryCode", &EvaluateFlagsRequest::countryCode),
                                              field("flagKeys", &EvaluateFlagsRequest::flagKeys)};
};

struct FeatureFlagsResponse
{
    std::optional<QString> orgId;
    std::optional<QString> generatedAt;
    std::vector<FeatureFlag> flags;

    bool operator==(const FeatureFlagsResponse &) const = default;

    static constexpr auto fields = std::tuple{field("orgId", &FeatureFlagsResponse::orgId),
                                              field("generatedAt", &FeatureFlagsResponse::generatedAt),
                                              field("flags", &FeatureFlagsResponse::flags)};
};

struct FlagEvaluationResponse
{
    std::optional<QString> orgId;
    std::optional<QString> subjectId;
    std::optional<QString> countryCode;
    std::optional<QString> evaluatedAt;
    JSONValue results;

    bool operator==(const FlagEvaluationResponse &) const = default;

    static constexpr auto fields = std::tuple{field("orgId", &FlagEvaluationResponse::orgId),
                                              field("subjectId", &FlagEvaluationResponse::subjectId),
                                              field("countryCode", &FlagEvaluationResponse::countryCode),
                                              field("evaluatedAt", &FlagEvaluationResponse::evaluatedAt),
                                              field("results", &FlagEvaluationResponse::results)};
};

} // namespace caldra
