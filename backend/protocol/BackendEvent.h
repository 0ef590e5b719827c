#pragma once

#include "backend/protocol/ArchivedModel.h"
#include "backend/protocol/BackendPaths.h"
#include "backend/protocol/NeuronSnapshotPayload.h"
#include "backend/protocol/TrainStatusPayload.h"

#include <variant>

namespace zorel::backend::protocol {

struct ReadyEvent
{
    std::int64_t defaultMaxSteps = 0;
    bool operator==(const ReadyEvent &) const = default;
};

struct LogEvent
{
    QString level;
    QString msg;
    bool operator==(const LogEvent &) const = default;
};

struct ErrorEvent
{
    QString msg;
    bool operator==(const ErrorEvent &) const = default;
};

/// Accepted and without effect: the sidecar confirms the identity it was given.
struct ModelIdentityEvent
{
    bool operator==(const ModelIdentityEvent &) const = default;
};

struct DoneEvent
{
    bool operator==(const DoneEvent &) const = default;
};

/// Everything the sidecar can say, in the order in which the event names are documented.
using BackendEvent = std::variant<ReadyEvent, TrainStatusPayload, NeuronSnapshotPayload, LogEvent, ErrorEvent,
                                  ArchivedModel, BackendPaths, ModelIdentityEvent, DoneEvent>;

} // namespace zorel::backend::protocol
