#pragma once

#include "service/core/RecordFields.h"

namespace caldra {

/// What every successful answer is wrapped in.
template <class Payload>
struct Envelope
{
    Payload data{};

    static constexpr auto fields = std::tuple{field("data", &Envelope::data)};
};

/// The payload of calls that return nothing of interest; it may be any JSON value.
struct EmptyResponse
{
    bool operator==(const EmptyResponse &) const = default;

    static constexpr std::tuple<> fields{};
};

} // namespace caldra
