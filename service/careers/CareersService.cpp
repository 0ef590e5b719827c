#include "service/careers/CareersService.h"

#include "service/core/HTTPClientRequest.h"
#include "service/core/QueryEncoder.h"

using namespace Qt::StringLiterals;

namespace caldra {

QFuture<HealthResponse> CareersService::health() const
{
    return http.request<HealthResponse>(HTTPMethod::GET, u"/health"_s);
}

QFuture<CareersPostingsResponse> CareersService::listPostings() const
{
    return http.request<CareersPostingsResponse>(HTTPMethod::GET,
                                                 organizationPath(orgId) + u"/careers/postings"_s);
}

QFuture<CareersPostingResponse> CareersService::getPosting(const QString &postingId) const
{
    return http.request<CareersPostingResponse>(
        HTTPMethod::GET, organizationPath(orgId) + u"/careers/postings/"_s + pathSegment(postingId));
}

QFuture<CareersTemplateResponse> CareersService::applicationTemplate() const
{
    return http.request<CareersTemplateResponse>(HTTPMethod::GET, organizationPath(orgId) +
                                                                      u"/careers/application-template"_s);
}

QFuture<CareersApplicationsResponse>
CareersService::listApplications(const CareersApplicationFilter &filter) const
{
    return http.request<CareersApplicationsResponse>(
        HTTPMethod::GET, organizationPath(orgId) + u"/careers/applications"_s, queryItems(filter));
}

QFuture<CareersApplicationResponse> CareersService::getApplication(const QString &applicationId) const
{
    return http.request<CareersApplicationResponse>(
        HTTPMethod::GET, organizationPath(orgId) + u"/careers/applications/"_s + pathSegment(applicationId));
}

QFuture<CareersApplicationResponse>
CareersService::submitApplication(const SubmitCareersApplicationRequest &application) const
{
    return http.request<CareersApplicationResponse>(
        HTTPMethod::POST, organizationPath(orgId) + u"/careers/applications"_s, {}, application);
}

} // namespace caldra
