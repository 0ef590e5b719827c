#pragma once

#include "service/core/RecordFields.h"

#include <QString>

#include <array>
#include <optional>
#include <vector>

namespace caldra {

enum class SystemComponentStatus { operational, degraded, partialOutage, majorOutage, maintenance, unknown };

constexpr auto wireTexts(SystemComponentStatus)
{
    return std::array{WireText{SystemComponentStatus::operational, "operational"},
                      WireText{SystemComponentStatus::degraded, "degraded"},
                      WireText{SystemComponentStatus::partialOutage, "partialOutage"},
                      WireText{SystemComponentStatus::majorOutage, "majorOutage"},
                      WireText{SystemComponentStatus::maintenance, "maintenance"},
                      WireText{SystemComponentStatus::unknown, "unknown"}};
}

struct SystemComponent
{
    QString id;
    std::optional<QString> key;
    std::optional<QString> name;
    std::optional<QString> description;
    std::optional<SystemComponentStatus> status;
    std::optional<qint64> sortOrder;
    std::optional<QString> updatedAt;

    bool operator==(const SystemComponent &) const = default;

    static constexpr auto fields = std::tuple{field("id", &SystemComponent::id),
                                              field("key", &SystemComponent::key),
                                              field("name", &SystemComponent::name),
                                              field("description", &SystemComponent::description),
                                              field("status", &SystemComponent::status),
                                              field("sortOrder", &SystemComponent::sortOrder),
                                              field("updatedAt", &SystemComponent::updatedAt)};
};

struct CreateSystemComponentRequest
{
    QString key;
    QString name;
    std::optional<QString> description;
    std::optional<SystemComponentStatus> status;
    std::optional<qint64> sortOrder;

    bool operator==(const CreateSystemComponentRequest &) const = default;

    static constexpr auto fields = std::tuple{
        field("key", &CreateSystemComponentRequest::key), field("name", &CreateSystemComponentRequest::name),
        field("description", &CreateSystemComponentRequest::description),
        field("status", &CreateSystemComponentRequest::status),
        field("sortOrder", &CreateSystemComponentRequest::sortOrder)};
};

struct UpdateSystemComponentRequest
{
    std::optional<QString> name;
    std::optional<QString> description;
    std::optional<SystemComponentStatus> status;
    std::optional<qint64> sortOrder;

    bool operator==(const UpdateSystemComponentRequest &) const = default;

    static constexpr auto fields =
        std::tuple{field("name", &UpdateSystemComponentRequest::name),
                   field("description", &UpdateSystemComponentRequest::description),
                   field("status", &UpdateSystemComponentRequest::status),
                   field("sortOrder", &UpdateSystemComponentRequest::sortOrder)};
};

struct SystemStatusResponse
{
    std::optional<SystemComponentStatus> status;
    std::optional<QString> updatedAt;
    std::vector<SystemComponent> components;

    bool operator==(const SystemStatusResponse &) const = default;

    static constexpr auto fields = std::tuple{field("status", &SystemStatusResponse::status),
                                              field("updatedAt", &SystemStatusResponse::updatedAt),
                                              field("components", &SystemStatusResponse::components)};
};

struct SystemComponentResponse
{
    SystemComponent component;

    bool operator==(const SystemComponentResponse &) const = default;

    static constexpr auto fields = std::tuple{field("component", &SystemComponentResponse::component)};
};

} // namespace caldra
