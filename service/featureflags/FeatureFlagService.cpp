#include "service/featureflags/FeatureFlagService.h"

#include "service/core/HTTPClientRequest.h"

using namespace Qt::StringLiterals;

namespace caldra {

QFuture<FeatureFlagsResponse> FeatureFlagService::listFlags() const
{
    return http.request<FeatureFlagsResponse>(HTTPMethod::GET, organizationPath(orgId) + u"/flags"_s);
}

QFuture<FlagEvaluationResponse> FeatureFlagService::evaluate(const EvaluateFlagsRequest &subject) const
{
    return http.request<FlagEvaluationResponse>(HTTPMethod::POST, organizationPath(orgId) + u"/evaluate"_s,
                                                {}, subject);
}

} // namespace caldra
