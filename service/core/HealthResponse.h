#pragma once

#include "service/core/RecordFields.h"

namespace caldra {

struct HealthResponse
{
    bool ok = false;
    QString service;

    bool operator==(const HealthResponse &) const = default;

    static constexpr auto fields =
        std::tuple{field("ok", &HealthResponse::ok), field("service", &HealthResponse::service)};
};

} // namespace caldra
