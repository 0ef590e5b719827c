#pragma once

#include "service/core/HTTPClient.h"
#include "service/featureflags/FeatureFlagRecords.h"

namespace caldra {

/// Feature flags and what they evaluate to for a subject.
///
/// Any thread. Every call fails with CaldraError alone.
struct FeatureFlagService
{
    HTTPClient http;
    QString orgId;

    QFuture<FeatureFlagsResponse> listFlags() const;
    QFuture<FlagEvaluationResponse> evaluate(const EvaluateFlagsRequest &subject) const;
};

} // namespace caldra
