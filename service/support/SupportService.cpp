#include "service/support/SupportService.h"

#include "service/core/HTTPClientRequest.h"
#include "service/core/QueryEncoder.h"

using namespace Qt::StringLiterals;

namespace caldra {

QFuture<SupportTicketResponse> SupportService::createTicket(const CreateSupportTicketRequest &ticket) const
{
    return http.request<SupportTicketResponse>(HTTPMethod::POST,
                                               organizationPath(orgId) + u"/support/tickets"_s, {}, ticket);
}

QFuture<SupportTicketsResponse> SupportService::listTickets(const SupportTicketFilter &filter) const
{
    return http.request<SupportTicketsResponse>(
        HTTPMethod::GET, organizationPath(orgId) + u"/support/tickets"_s, queryItems(filter));
}

QFuture<SupportTicketResponse> SupportService::getTicket(const QString &ticketId) const
{
    return http.request<SupportTicketResponse>(
        HTTPMethod::GET, organizationPath(orgId) + u"/support/tickets/"_s + pathSegment(ticketId));
}

QFuture<SupportCommentsResponse> SupportService::listComments(const QString &ticketId) const
{
    return http.request<SupportCommentsResponse>(HTTPMethod::GET, organizationPath(orgId) +
                                                                      u"/support/tickets/"_s +
                                                                      pathSegment(ticketId) + u"/comments"_s);
}

QFuture<SupportCommentResponse> SupportService::addComment(const QString &ticketId,
                                                           const CreateSupportCommentRequest &comment) const
{
    return http.request<SupportCommentResponse>(HTTPMethod::POST,
                                                organizationPath(orgId) + u"/support/tickets/"_s +
                                                    pathSegment(ticketId) + u"/comments"_s,
                                                {}, comment);
}

} // namespace caldra
