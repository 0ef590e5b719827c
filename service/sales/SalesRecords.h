#pragma once

#include "service/core/JSONValue.h"
#include "service/core/RecordFields.h"

#include <QString>

#include <array>
#include <optional>
#include <vector>

namespace caldra {

enum class SalesLeadStatus { newLead, working, qualified, unqualified, converted };

constexpr auto wireTexts(SalesLeadStatus)
{
    return std::array{WireText{SalesLeadStatus::newLead, "new"},
                      WireText{SalesLeadStatus::working, "working"},
                      WireText{SalesLeadStatus::qualified, "qualified"},
                      WireText{SalesLeadStatus::unqualified, "unqualified"},
                      WireText{SalesLeadStatus::converted, "converted"}};
}

struct SalesSubmission
{
    QString id;
    std::optional<QString> contactEmail;
    std::optional<QString> formName;
    std::optional<QString> firstName;
    std::optional<QString> lastName;
    std::optional<QString> message;
    std::optional<JSONValue> details;
    std::optional<SalesLeadStatus> leadStatus;
    std::optional<QString> leadSource;
    std::optional<QString> company;
    std::optional<QString> companySize;
    std::optional<QString> companyWebsite;
    std::optional<QString> address;
    std::optional<QString> phone;
    std::optional<QString> createdAt;
    std::optional<QString> updatedAt;

    bool operator==(const SalesSubmission &) const = default;

    static constexpr auto fields = std::tuple{field("id", &SalesSubmission::id),
                                              field("contactEmail", &SalesSubmission::contactEmail),
                                              field("formName", &SalesSubmission::formName),
                                              field("firstName", &SalesSubmission::firstName),
                                              field("lastName", &SalesSubmission::lastName),
                                              field("message", &SalesSubmission::message),
                                              field("details", &SalesSubmission::details),
                                              field("leadStatus", &SalesSubmission::leadStatus),
                                              field("leadSource", &SalesSubmission::leadSource),
                                              field("company", &SalesSubmission::company),
                                              field("companySize", &SalesSubmission::companySize),
                                              field("companyWebsite", &SalesSubmission::companyWebsite),
                                              field("address", &SalesSubmission::address),
                                              field("phone", &SalesSubmission::phone),
                                              field("createdAt", &SalesSubmission::createdAt),
                                              field("updatedAt", &SalesSubmission::updatedAt)};
};

struct SalesSubmissionRequest
{
    QString contactEmail;
    std::optional<QString> formName;
    std::optional<QString> firstName;
    std::optional<QString> lastName;
    std::optional<QString> message;
    std::optional<JSONValue> details;
    std::optional<SalesLeadStatus> leadStatus;
    std::optional<QString> leadSource;
    std::optional<QString> company;
    std::optional<QString> companySize;
    std::optional<QString> companyWebsite;
    std::optional<QString> address;
    std::optional<QString> phone;

    bool operator==(const SalesSubmissionRequest &) const = default;

    static constexpr auto fields =
        std::tuple{field("contactEmail", &SalesSubmissionRequest::contactEmail),
                   field("formName", &SalesSubmissionRequest::formName),
                   field("firstName", &SalesSubmissionRequest::firstName),
                   field("lastName", &SalesSubmissionRequest::lastName),
                   field("message", &SalesSubmissionRequest::message),
                   field("details", &SalesSubmissionRequest::details),
                   field("leadStatus", &SalesSubmissionRequest::leadStatus),
                   field("leadSource", &SalesSubmissionRequest::leadSource),
                   field("company", &SalesSubmissionRequest::company),
                   field("companySize", &SalesSubmissionRequest::companySize),
                   field("companyWebsite", &SalesSubmissionRequest::companyWebsite),
                   field("address", &SalesSubmissionRequest::address),
                   field("phone", &SalesSubmissionRequest::phone)};
};

struct SalesComment
{
    QString id;
    std::optional<QString> body;
    std::optional<QString> authorDisplayName;
    std::optional<QString> authorEmail;
    std::optional<QString> createdAt;

    bool operator==(const SalesComment &) const = default;

    static constexpr auto fields = std::tuple{
        field("id", &SalesComment::id), field("body", &SalesComment::body),
        field("authorDisplayName", &SalesComment::authorDisplayName),
        field("authorEmail", &SalesComment::authorEmail), field("createdAt", &SalesComment::createdAt)};
};

struct SalesCommentRequest
{
    QString body;
    std::optional<QString> authorDisplayName;
    std::optional<QString> authorEmail;

    bool operator==(const SalesCommentRequest &) const = default;

    static constexpr auto fields =
        std::tuple{field("body", &SalesCommentRequest::body),
                   field("authorDisplayName", &SalesCommentRequest::authorDisplayName),
                   field("authorEmail", &SalesCommentRequest::authorEmail)};
};

struct SalesSubmissionFilter
{
    std::optional<QString> contactEmail;
    std::optional<qint64> limit;

    bool operator==(const SalesSubmissionFilter &) const = default;

    static constexpr auto fields = std::tuple{field("contactEmail", &SalesSubmissionFilter::contactEmail),
                                              field("limit", &SalesSubmissionFilter::limit)};
};

struct SalesSubmissionsResponse
{
    std::vector<SalesSubmission> submissions;

    bool operator==(const SalesSubmissionsResponse &) const = default;

    static constexpr auto fields = std::tuple{field("submissions", &SalesSubmissionsResponse::submissions)};
};

struct SalesSubmissionResponse
{
    SalesSubmission submission;

    bool operator==(const SalesSubmissionResponse &) const = default;

    static constexpr auto fields = std::tuple{field("submission", &SalesSubmissionResponse::submission)};
};

struct SalesCommentsResponse
{
    std::vector<SalesComment> comments;

    bool operator==(const SalesCommentsResponse &) const = default;

    static constexpr auto fields = std::tuple{field("comments", &SalesCommentsResponse::comments)};
};

struct SalesCommentResponse
{
    SalesComment comment;

    bool operator==(const SalesCommentResponse &) const = default;

    static constexpr auto fields = std::tuple{field("comment", &SalesCommentResponse::comment)};
};

} // namespace caldra
