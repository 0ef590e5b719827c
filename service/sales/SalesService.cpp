#include "service/sales/SalesService.h"

#include "service/core/HTTPClientRequest.h"
#include "service/core/QueryEncoder.h"

using namespace Qt::StringLiterals;

namespace caldra {

QFuture<SalesSubmissionResponse> SalesService::submit(const SalesSubmissionRequest &submission) const
{
    return http.request<SalesSubmissionResponse>(
        HTTPMethod::POST, organizationPath(orgId) + u"/sales/submissions"_s, {}, submission);
}

QFuture<SalesSubmissionsResponse> SalesService::listSubmissions(const SalesSubmissionFilter &filter) const
{
    return http.request<SalesSubmissionsResponse>(
        HTTPMethod::GET, organizationPath(orgId) + u"/sales/submissions"_s, queryItems(filter));
}

QFuture<SalesSubmissionResponse> SalesService::getSubmission(const QString &submissionId) const
{
    return http.request<SalesSubmissionResponse>(
        HTTPMethod::GET, organizationPath(orgId) + u"/sales/submissions/"_s + pathSegment(submissionId));
}

QFuture<SalesCommentsResponse> SalesService::listComments(const QString &submissionId) const
{
    return http.request<SalesCommentsResponse>(HTTPMethod::GET,
                                               organizationPath(orgId) + u"/sales/submissions/"_s +
                                                   pathSegment(submissionId) + u"/comments"_s);
}

QFuture<SalesCommentResponse> SalesService::addComment(const QString &submissionId,
                                                       const SalesCommentRequest &comment) const
{
    return http.request<SalesCommentResponse>(HTTPMethod::POST,
                                              organizationPath(orgId) + u"/sales/submissions/"_s +
                                                  pathSegment(submissionId) + u"/comments"_s,
                                              {}, comment);
}

} // namespace caldra
