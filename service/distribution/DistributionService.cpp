#include "service/distribution/DistributionService.h"

#include "service/core/HTTPClientRequest.h"
#include "service/core/QueryEncoder.h"

using namespace Qt::StringLiterals;

namespace caldra {

QFuture<DistributionApplicationsResponse> DistributionService::publicApplications() const
{
    return http.request<DistributionApplicationsResponse>(HTTPMethod::GET, organizationPath(orgId) +
                                                                               u"/applications/public"_s);
}

QFuture<DistributionApplicationsResponse> DistributionService::listApplications() const
{
    return http.request<DistributionApplicationsResponse>(HTTPMethod::GET,
                                                          organizationPath(orgId) + u"/applications"_s);
}

QFuture<DistributionApplicationResponse> DistributionService::getApplication(const QString &application) const
{
    return http.request<DistributionApplicationResponse>(
        HTTPMethod::GET, organizationPath(orgId) + u"/applications/"_s + pathSegment(application));
}

QFuture<DistributionReleasesResponse>
DistributionService::listReleases(const QString &application, const DistributionReleaseFilter &filter) const
{
    return http.request<DistributionReleasesResponse>(HTTPMethod::GET,
                                                      organizationPath(orgId) + u"/applications/"_s +
                                                          pathSegment(application) + u"/releases"_s,
                                                      queryItems(filter));
}

QFuture<DistributionReleaseResponse> DistributionService::getRelease(const QString &application,
                                                                     const QString &releaseId) const
{
    return http.request<DistributionReleaseResponse>(
        HTTPMethod::GET, organizationPath(orgId) + u"/applications/"_s + pathSegment(application) +
                             u"/releases/"_s + pathSegment(releaseId));
}

QFuture<DistributionLatestResponse> DistributionService::latest(const QString &application,
                                                                const DistributionLookup &lookup) const
{
    return http.request<DistributionLatestResponse>(HTTPMethod::GET,
                                                    organizationPath(orgId) + u"/applications/"_s +
                                                        pathSegment(application) + u"/latest"_s,
                                                    queryItems(lookup));
}

QFuture<QUrl> DistributionService::download(const QString &application,
                                            const DistributionLookup &lookup) const
{
    return http.location(organizationPath(orgId) + u"/applications/"_s + pathSegment(application) +
                             u"/download"_s,
                         queryItems(lookup));
}

QFuture<DistributionIconResponse> DistributionService::icon(const QString &application) const
{
    return http.request<DistributionIconResponse>(HTTPMethod::GET,
                                                  organizationPath(orgId) + u"/applications/"_s +
                                                      pathSegment(application) + u"/icon"_s,
                                                  queryItems(DistributionIconQuery{IconFormat::json}));
}

QFuture<QUrl> DistributionService::iconLocation(const QString &application) const
{
    return http.location(organizationPath(orgId) + u"/applications/"_s + pathSegment(application) +
                             u"/icon"_s,
                         queryItems(DistributionIconQuery{IconFormat::redirect}));
}

QFuture<DistributionReleaseResponse>
DistributionService::publishRelease(const QString &application, const PublishReleaseRequest &release) const
{
    return http.request<DistributionReleaseResponse>(HTTPMethod::POST,
                                                     organizationPath(orgId) + u"/applications/"_s +
                                                         pathSegment(application) + u"/releases"_s,
                                                     {}, release);
}

QFuture<DistributionReleaseResponse>
DistributionService::updateRelease(const QString &application, const QString &releaseId,
                                   const UpdateReleaseRequest &changes) const
{
    return http.request<DistributionReleaseResponse>(HTTPMethod::PATCH,
                                                     organizationPath(orgId) + u"/applications/"_s +
                                                         pathSegment(application) + u"/releases/"_s +
                                                         pathSegment(releaseId),
                                                     {}, changes);
}

} // namespace caldra
