#include "service/systemstatus/SystemStatusService.h"

#include "service/core/HTTPClientRequest.h"

using namespace Qt::StringLiterals;

namespace caldra {

QFuture<SystemStatusResponse> SystemStatusService::overallStatus() const
{
    return http.request<SystemStatusResponse>(HTTPMethod::GET, organizationPath(orgId) + u"/status"_s);
}

QFuture<SystemComponentResponse> SystemStatusService::getComponent(const QString &componentId) const
{
    return http.request<SystemComponentResponse>(
        HTTPMethod::GET, organizationPath(orgId) + u"/status/components/"_s + pathSegment(componentId));
}

QFuture<SystemComponentResponse>
SystemStatusService::createComponent(const CreateSystemComponentRequest &component) const
{
    return http.request<SystemComponentResponse>(
        HTTPMethod::POST, organizationPath(orgId) + u"/status/components"_s, {}, component);
}

QFuture<SystemComponentResponse>
SystemStatusService::updateComponent(const QString &componentId,
                                     const UpdateSystemComponentRequest &changes) const
{
    return http.request<SystemComponentResponse>(
        HTTPMethod::PUT, organizationPath(orgId) + u"/status/components/"_s + pathSegment(componentId), {},
        changes);
}

QFuture<EmptyResponse> SystemStatusService::deleteComponent(const QString &componentId) const
{
    return http.request<EmptyResponse>(
        HTTPMethod::DELETE, organizationPath(orgId) + u"/status/components/"_s + pathSegment(componentId));
}

} // namespace caldra
