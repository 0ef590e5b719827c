#pragma once

#include "service/core/JSONValue.h"
#include "service/core/RecordFields.h"

#include <QString>

#include <map>
#include <optional>
#include <vector>

namespace caldra {

struct CareersPosting
{
    QString requisitionNodeId;
    std::optional<QString> title;
    std::optional<QString> location;
    std::optional<QString> department;
    std::optional<QString> employmentType;
    std::optional<QString> description;
    std::optional<QString> publishedAt;
    std::optional<QString> updatedAt;
    std::optional<bool> isOpen;

    bool operator==(const CareersPosting &) const = default;

    static constexpr auto fields = std::tuple{field("requisitionNodeId", &CareersPosting::requisitionNodeId),
                                              field("title", &CareersPosting::title),
                                              field("location", &CareersPosting::location),
                                              field("department", &CareersPosting::department),
                                              field("employmentType", &CareersPosting::employmentType),
                                              field("description", &CareersPosting::description),
                                              field("publishedAt", &CareersPosting::publishedAt),
                                              field("updatedAt", &CareersPosting::updatedAt),
                                              field("isOpen", &CareersPosting::isOpen)};
};

/// One question of the application form.
struct CareersTemplateField
{
    QString id;
    std::optional<QString> type;
    std::optional<QString> label;
    std::optional<bool> required;
    std::optional<std::vector<QString>> options;
    std::optional<QString> helpText;

    bool operator==(const CareersTemplateField &) const = default;

    static constexpr auto fields = std::tuple{
        field("id", &CareersTemplateField::id),           field("type", &CareersTemplateField::type),
        field("label", &CareersTemplateField::label),     field("required", &CareersTemplateField::required),
        field("options", &CareersTemplateField::options), field("helpText", &CareersTemplateField::helpText)};
};

struct CareersTemplateSection
{
    QString id;
    std::optional<QString> title;
    std::optional<QString> description;
    std::optional<std::vector<CareersTemplateField>> formFields;

    bool operator==(const CareersTemplateSection &) const = default;

    static constexpr auto fields =
        std::tuple{field("id", &CareersTemplateSection::id), field("title", &CareersTemplateSection::title),
                   field("description", &CareersTemplateSection::description),
                   field("fields", &CareersTemplateSection::formFields)};
};

struct CareersApplicationTemplate
{
    QString templateVersion;
    std::optional<std::vector<CareersTemplateSection>> sections;

    bool operator==(const CareersApplicationTemplate &) const = default;

    static constexpr auto fields =
        std::tuple{field("templateVersion", &CareersApplicationTemplate::templateVersion),
                   field("sections", &CareersApplicationTemplate::sections)};
};

struct CareersApplication
{
    QString id;
    std::optional<QString> requisitionNodeId;
    std::optional<QString> applicantEmail;
    std::optional<QString> contactEmail;
    std::optional<QString> templateVersion;
    std::optional<QString> status;
    std::optional<JSONValue> answers;
    std::optional<QString> createdAt;
    std::optional<QString> updatedAt;

    bool operator==(const CareersApplication &) const = default;

    static constexpr auto fields =
        std::tuple{field("id", &CareersApplication::id),
                   field("requisitionNodeId", &CareersApplication::requisitionNodeId),
                   field("applicantEmail", &CareersApplication::applicantEmail),
                   field("contactEmail", &CareersApplication::contactEmail),
                   field("templateVersion", &CareersApplication::templateVersion),
                   field("status", &CareersApplication::status),
                   field("answers", &CareersApplication::answers),
                   field("createdAt", &CareersApplication::createdAt),
                   field("updatedAt", &CareersApplication::updatedAt)};
};

struct SubmitCareersApplicationRequest
{
    QString requisitionNodeId;
    QString templateVersion;
    QString applicantEmail;
    std::map<QString, JSONValue> answers; ///< by the id of the form's field

    bool operator==(const SubmitCareersApplicationRequest &) const = default;

    static constexpr auto fields =
        std::tuple{field("requisitionNodeId", &SubmitCareersApplicationRequest::requisitionNodeId),
                   field("templateVersion", &SubmitCareersApplicationRequest::templateVersion),
                   field("applicantEmail", &SubmitCareersApplicationRequest::applicantEmail),
                   field("answers", &SubmitCareersApplicationRequest::answers)};
};

struct CareersApplicationFilter
{
    std::optional<QString> applicantEmail;
    std::optional<QString> contactEmail;
    std::optional<QString> status;
    std::optional<qint64> limit;

    bool operator==(const CareersApplicationFilter &) const = default;

    static constexpr auto fields = std::tuple{
        field("applicantEmail", &CareersApplicationFilter::applicantEmail),
        field("contactEmail", &CareersApplicationFilter::contactEmail),
        field("status", &CareersApplicationFilter::status), field("limit", &CareersApplicationFilter::limit)};
};

struct CareersPostingsResponse
{
    std::vector<CareersPosting> postings;

    bool operator==(const CareersPostingsResponse &) const = default;

    static constexpr auto fields = std::tuple{field("postings", &CareersPostingsResponse::postings)};
};

struct CareersPostingResponse
{
    CareersPosting posting;

    bool operator==(const CareersPostingResponse &) const = default;

    static constexpr auto fields = std::tuple{field("posting", &CareersPostingResponse::posting)};
};

struct CareersTemplateResponse
{
    CareersApplicationTemplate applicationTemplate;

    bool operator==(const CareersTemplateResponse &) const = default;

    static constexpr auto fields =
        std::tuple{field("template", &CareersTemplateResponse::applicationTemplate)};
};

struct CareersApplicationsResponse
{
    std::vector<CareersApplication> applications;

    bool operator==(const CareersApplicationsResponse &) const = default;

    static constexpr auto fields =
        std::tuple{field("applications", &CareersApplicationsResponse::applications)};
};

struct CareersApplicationResponse
{
    CareersApplication application;

    bool operator==(const CareersApplicationResponse &) const = default;

    static constexpr auto fields = std::tuple{field("application", &CareersApplicationResponse::application)};
};

} // namespace caldra
