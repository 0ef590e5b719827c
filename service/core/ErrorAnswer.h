#pragma once

#include "service/core/JSONValue.h"
#include "service/core/RecordFields.h"

namespace caldra {

/// The error body as it travels; APIError is what callers see.
struct ErrorAnswer
{
    struct Body
    {
        std::optional<QString> code;
        QString message;
        std::optional<JSONValue> details;

        static constexpr auto fields = std::tuple{
            field("code", &Body::code), field("message", &Body::message), field("details", &Body::details)};
    };

    Body error;

    static constexpr auto fields = std::tuple{field("error", &ErrorAnswer::error)};
};

} // namespace caldra
