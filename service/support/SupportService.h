#pragma once

#include "service/core/HTTPClient.h"
#include "service/support/SupportRecords.h"

namespace caldra {

/// Tickets of the people who use the applications, and the comments on them.
///
/// Any thread. Every call fails with CaldraError alone.
struct SupportService
{
    HTTPClient http;
    QString orgId;

    QFuture<SupportTicketResponse> createTicket(const CreateSupportTicketRequest &ticket) const;
    QFuture<SupportTicketsResponse> listTickets(const SupportTicketFilter &filter = {}) const;
    QFuture<SupportTicketResponse> getTicket(const QString &ticketId) const;
    QFuture<SupportCommentsResponse> listComments(const QString &ticketId) const;
    QFuture<SupportCommentResponse> addComment(const QString &ticketId,
                                               const CreateSupportCommentRequest &comment) const;
};

} // namespace caldra
