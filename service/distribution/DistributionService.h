#pragma once

#include "service/core/HTTPClient.h"
#include "service/distribution/DistributionRequests.h"
#include "service/distribution/DistributionResponses.h"

namespace caldra {

/// Applications, their releases and the files to download. An application is named by its id or its slug.
///
/// Any thread. Every call fails with CaldraError alone.
struct DistributionService
{
    HTTPClient http;
    QString orgId;

    QFuture<DistributionApplicationsResponse> publicApplications() const;
    QFuture<DistributionApplicationsResponse> listApplications() const;
    QFuture<DistributionApplicationResponse> getApplication(const QString &application) const;
    QFuture<DistributionReleasesResponse> listReleases(const QString &application,
                                                       const DistributionReleaseFilter &filter = {}) const;
    QFuture<DistributionReleaseResponse> getRelease(const QString &application,
                                                    const QString &releaseId) const;
    QFuture<DistributionLatestResponse> latest(const QString &application,
                                               const DistributionLookup &lookup = {}) const;
    /// Where the file is to be had. Nothing is downloaded.
    QFuture<QUrl> download(const QString &application, const DistributionLookup &lookup = {}) const;
    /// The icon call in the format "json".
    QFuture<DistributionIconResponse> icon(const QString &application) const;
    /// The icon call in the format "redirect": the address of the picture.
    QFuture<QUrl> iconLocation(const QString &application) const;
    QFuture<DistributionReleaseResponse> publishRelease(const QString &application,
                                                        const PublishReleaseRequest &release) const;
    QFuture<DistributionReleaseResponse> updateRelease(const QString &application, const QString &releaseId,
                                                       const UpdateReleaseRequest &changes) const;
};

} // namespace caldra
