#pragma once

#include "service/core/RecordFields.h"

#include <QString>

#include <array>
#include <optional>
#include <vector>

namespace caldra {

enum class LegalPolicyStatus { draft, published, archived };

constexpr auto wireTexts(LegalPolicyStatus)
{
    return std::array{WireText{LegalPolicyStatus::draft, "draft"},
                      WireText{LegalPolicyStatus::published, "published"},
                      WireText{LegalPolicyStatus::archived, "archived"}};
}

struct LegalPolicy
{
    QString id;
    std::optional<QString> key;
    std::optional<QString> title;
    std::optional<QString> description;
    std::optional<LegalPolicyStatus> status;
    std::optional<qint64> sectionCount;
    std::optional<QString> createdAt;
    std::optional<QString> updatedAt;

    bool operator==(const LegalPolicy &) const = default;

    static constexpr auto fields = std::tuple{field("id", &LegalPolicy::id),
                                              field("key", &LegalPolicy::key),
                                              field("title", &LegalPolicy::title),
                                              field("description", &LegalPolicy::description),
                                              field("status", &LegalPolicy::status),
                                              field("sectionCount", &LegalPolicy::sectionCount),
                                              field("createdAt", &LegalPolicy::createdAt),
                                              field("updatedAt", &LegalPolicy::updatedAt)};
};

struct LegalPolicySection
{
    QString id;
    std::optional<QString> title;
    std::optional<QString> body;
    std::optional<qint64> sortOrder;
    std::optional<QString> createdAt;
    std::optional<QString> updatedAt;

    bool operator==(const LegalPolicySection &) const = default;

    static constexpr auto fields = std::tuple{field("id", &LegalPolicySection::id),
                                              field("title", &LegalPolicySection::title),
                                              field("body", &LegalPolicySection::body),
                                              field("sortOrder", &LegalPolicySection::sortOrder),
                                              field("createdAt", &LegalPolicySection::createdAt),
                                              field("updatedAt", &LegalPolicySection::updatedAt)};
};

struct CreateLegalPolicyRequest
{
    QString key;
    QString title;
    std::optional<QString> description;
    std::optional<LegalPolicyStatus> status;

    bool operator==(const CreateLegalPolicyRequest &) const = default;

    static constexpr auto fields = std::tuple{field("key", &CreateLegalPolicyRequest::key),
                                              field("title", &CreateLegalPolicyRequest::title),
                                              field("description", &CreateLegalPolicyRequest::description),
                                              field("status", &CreateLegalPolicyRequest::status)};
};

struct UpdateLegalPolicyRequest
{
    std::optional<QString> title;
    std::optional<QString> description;
    std::optional<LegalPolicyStatus> status;

    bool operator==(const UpdateLegalPolicyRequest &) const = default;

    static constexpr auto fields = std::tuple{field("title", &UpdateLegalPolicyRequest::title),
                                              field("description", &UpdateLegalPolicyRequest::description),
                                              field("status", &UpdateLegalPolicyRequest::status)};
};

/// Adds or updates a section.
struct LegalSectionRequest
{
    std::optional<QString> title;
    std::optional<QString> body;
    std::optional<qint64> sortOrder;

    bool operator==(const LegalSectionRequest &) const = default;

    static constexpr auto fields =
        std::tuple{field("title", &LegalSectionRequest::title), field("body", &LegalSectionRequest::body),
                   field("sortOrder", &LegalSectionRequest::sortOrder)};
};

struct LegalPoliciesResponse
{
    std::optional<QString> orgId;
    std::vector<LegalPolicy> policies;
    std::optional<QString> generatedAt;

    bool operator==(const LegalPoliciesResponse &) const = default;

    static constexpr auto fields = std::tuple{field("orgId", &LegalPoliciesResponse::orgId),
                                              field("policies", &LegalPoliciesResponse::policies),
                                              field("generatedAt", &LegalPoliciesResponse::generatedAt)};
};

struct LegalPolicyResponse
{
    std::optional<QString> orgId;
    LegalPolicy policy;
    std::optional<std::vector<LegalPolicySection>> sections;
    std::optional<QString> generatedAt;

    bool operator==(const LegalPolicyResponse &) const = default;

    static constexpr auto fields =
        std::tuple{field("orgId", &LegalPolicyResponse::orgId), field("policy", &LegalPolicyResponse::policy),
                   field("sections", &LegalPolicyResponse::sections),
                   field("generatedAt", &LegalPolicyResponse::generatedAt)};
};

struct LegalSectionResponse
{
    LegalPolicySection section;

    bool operator==(const LegalSectionResponse &) const = default;

    static constexpr auto fields = std::tuple{field("section", &LegalSectionResponse::section)};
};

} // namespace caldra
