#pragma once

#include "service/careers/CareersRecords.h"
#include "service/core/HTTPClient.h"
#include "service/core/HealthResponse.h"

namespace caldra {

/// Open positions and the applications for them.
///
/// Any thread. Every call fails with CaldraError alone.
struct CareersService
{
    HTTPClient http;
    QString orgId;

    /// Whether the service runs; belongs to no organization.
    QFuture<HealthResponse> health() const;
    QFuture<CareersPostingsResponse> listPostings() const;
    QFuture<CareersPostingResponse> getPosting(const QString &postingId) const;
    QFuture<CareersTemplateResponse> applicationTemplate() const;
    QFuture<CareersApplicationsResponse> listApplications(const CareersApplicationFilter &filter = {}) const;
    QFuture<CareersApplicationResponse> getApplication(const QString &applicationId) const;
    QFuture<CareersApplicationResponse>
    submitApplication(const SubmitCareersApplicationRequest &application) const;
};

} // namespace caldra
