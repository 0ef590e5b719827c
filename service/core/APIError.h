#pragma once

#include "service/core/JSONValue.h"

#include <optional>

namespace caldra {

/// The service's own account of why it refused a call.
struct APIError
{
    int status = 0; ///< the HTTP status
    QString code;   ///< "unknown_error" when the service gave none
    QString message;
    std::optional<JSONValue> details;

    bool operator==(const APIError &) const = default;
};

} // namespace caldra
