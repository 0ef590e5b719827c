#pragma once

#include "service/core/HTTPClient.h"
#include "service/sales/SalesRecords.h"

namespace caldra {

/// Submissions of the sales forms and the comments on them.
///
/// Any thread. Every call fails with CaldraError alone.
struct SalesService
{
    HTTPClient http;
    QString orgId;

    QFuture<SalesSubmissionResponse> submit(const SalesSubmissionRequest &submission) const;
    QFuture<SalesSubmissionsResponse> listSubmissions(const SalesSubmissionFilter &filter = {}) const;
    QFuture<SalesSubmissionResponse> getSubmission(const QString &submissionId) const;
    QFuture<SalesCommentsResponse> listComments(const QString &submissionId) const;
    QFuture<SalesCommentResponse> addComment(const QString &submissionId,
                                             const SalesCommentRequest &comment) const;
};

} // namespace caldra
