#pragma once

#include "service/core/Envelope.h"
#include "service/core/HTTPClient.h"
#include "service/systemstatus/SystemStatusRecords.h"

namespace caldra {

/// How the system and its components are doing.
///
/// Any thread. Every call fails with CaldraError alone.
struct SystemStatusService
{
    HTTPClient http;
    QString orgId;

    QFuture<SystemStatusResponse> overallStatus() const;
    QFuture<SystemComponentResponse> getComponent(const QString &componentId) const;
    QFuture<SystemComponentResponse> createComponent(const CreateSystemComponentRequest &component) const;
    QFuture<SystemComponentResponse> updateComponent(const QString &componentId,
                                                     const UpdateSystemComponentRequest &changes) const;
    QFuture<EmptyResponse> deleteComponent(const QString &componentId) const;
};

} // namespace caldra
