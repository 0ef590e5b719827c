#pragma once

#include "service/core/RecordFields.h"

#include <QString>

#include <array>
#include <optional>
#include <vector>

namespace caldra {

enum class SupportPriority { low, medium, high, urgent };

constexpr auto wireTexts(SupportPriority)
{
    return std::array{WireText{SupportPriority::low, "low"}, WireText{SupportPriority::medium, "medium"},
                      WireText{SupportPriority::high, "high"}, WireText{SupportPriority::urgent, "urgent"}};
}

enum class SupportCategory { billing, technical, account, featureRequest, general, other };

constexpr auto wireTexts(SupportCategory)
{
    return std::array{WireText{SupportCategory::billing, "billing"},
                      WireText{SupportCategory::technical, "technical"},
                      WireText{SupportCategory::account, "account"},
                      WireText{SupportCategory::featureRequest, "featureRequest"},
                      WireText{SupportCategory::general, "general"},
                      WireText{SupportCategory::other, "other"}};
}

struct SupportTicket
{
    QString id;
    std::optional<QString> contactEmail;
    std::optional<QString> applicationName;
    std::optional<QString> subject;
    std::optional<QString> body;
    std::optional<SupportPriority> priority;
    std::optional<SupportCategory> category;
    std::optional<QString> status;
    std::optional<QString> channel;
    std::optional<QString> environment;
    std::optional<QString> deviceInfo;
    std::optional<QString> relatedUrl;
    std::optional<QString> requesterName;
    std::optional<QString> createdAt;
    std::optional<QString> updatedAt;

    bool operator==(const SupportTicket &) const = default;

    static constexpr auto fields = std::tuple{field("id", &SupportTicket::id),
                                              field("contactEmail", &SupportTicket::contactEmail),
                                              field("applicationName", &SupportTicket::applicationName),
                                              field("subject", &SupportTicket::subject),
                                              field("body", &SupportTicket::body),
                                              field("priority", &SupportTicket::priority),
                                              field("category", &SupportTicket::category),
                                              field("status", &SupportTicket::status),
                                              field("channel", &SupportTicket::channel),
                                              field("environment", &SupportTicket::environment),
                                              field("deviceInfo", &SupportTicket::deviceInfo),
                                              field("relatedUrl", &SupportTicket::relatedUrl),
                                              field("requesterName", &SupportTicket::requesterName),
                                              field("createdAt", &SupportTicket::createdAt),
                                              field("updatedAt", &SupportTicket::updatedAt)};
};

struct SupportTicketComment
{
    QString id;
    std::optional<QString> ticketId;
    std::optional<QString> body;
    std::optional<QString> authorDisplayName;
    std::optional<QString> authorEmail;
    std::optional<bool> isInternal;
    std::optional<QString> createdAt;

    bool operator==(const SupportTicketComment &) const = default;

    static constexpr auto fields =
        std::tuple{field("id", &SupportTicketComment::id),
                   field("ticketId", &SupportTicketComment::ticketId),
                   field("body", &SupportTicketComment::body),
                   field("authorDisplayName", &SupportTicketComment::authorDisplayName),
                   field("authorEmail", &SupportTicketComment::authorEmail),
                   field("isInternal", &SupportTicketComment::isInternal),
                   field("createdAt", &SupportTicketComment::createdAt)};
};

struct CreateSupportTicketRequest
{
    QString contactEmail;
    std::optional<QString> applicationName;
    QString subject;
    QString body;
    std::optional<SupportPriority> priority;
    std::optional<SupportCategory> category;
    std::optional<QString> channel;
    std::optional<QString> environment;
    std::optional<QString> deviceInfo;
    std::optional<QString> relatedUrl;
    std::optional<QString> requesterName;

    bool operator==(const CreateSupportTicketRequest &) const = default;

    static constexpr auto fields =
        std::tuple{field("contactEmail", &CreateSupportTicketRequest::contactEmail),
                   field("applicationName", &CreateSupportTicketRequest::applicationName),
                   field("subject", &CreateSupportTicketRequest::subject),
                   field("body", &CreateSupportTicketRequest::body),
                   field("priority", &CreateSupportTicketRequest::priority),
                   field("category", &CreateSupportTicketRequest::category),
                   field("channel", &CreateSupportTicketRequest::channel),
                   field("environment", &CreateSupportTicketRequest::environment),
                   field("deviceInfo", &CreateSupportTicketRequest::deviceInfo),
                   field("relatedUrl", &CreateSupportTicketRequest::relatedUrl),
                   field("requesterName", &CreateSupportTicketRequest::requesterName)};
};

struct CreateSupportCommentRequest
{
    QString body;
    std::optional<QString> authorDisplayName;
    std::optional<QString> authorEmail;
    std::optional<bool> isInternal;

    bool operator==(const CreateSupportCommentRequest &) const = default;

    static constexpr auto fields =
        std::tuple{field("body", &CreateSupportCommentRequest::body),
                   field("authorDisplayName", &CreateSupportCommentRequest::authorDisplayName),
                   field("authorEmail", &CreateSupportCommentRequest::authorEmail),
                   field("isInternal", &CreateSupportCommentRequest::isInternal)};
};

struct SupportTicketFilter
{
    std::optional<QString> contactEmail;

    bool operator==(const SupportTicketFilter &) const = default;

    static constexpr auto fields = std::tuple{field("contactEmail", &SupportTicketFilter::contactEmail)};
};

struct SupportTicketsResponse
{
    std::vector<SupportTicket> tickets;

    bool operator==(const SupportTicketsResponse &) const = default;

    static constexpr auto fields = std::tuple{field("tickets", &SupportTicketsResponse::tickets)};
};

struct SupportTicketResponse
{
    SupportTicket ticket;

    bool operator==(const SupportTicketResponse &) const = default;

    static constexpr auto fields = std::tuple{field("ticket", &SupportTicketResponse::ticket)};
};

struct SupportCommentsResponse
{
    std::vector<SupportTicketComment> comments;

    bool operator==(const SupportCommentsResponse &) const = default;

    static constexpr auto fields = std::tuple{field("comments", &SupportCommentsResponse::comments)};
};

struct SupportCommentResponse
{
    SupportTicketComment comment;

    bool operator==(const SupportCommentResponse &) const = default;

    static constexpr auto fields = std::tuple{field("comment", &SupportCommentResponse::comment)};
};

} // namespace caldra
