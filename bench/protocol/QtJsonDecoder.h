#pragma once

#include "backend/protocol/BackendEvent.h"

#include <QByteArray>

#include <optional>

namespace zorel::bench {

/// The same records filled by way of QJsonDocument: what the protocol would cost without a parser of its own.
std::optional<backend::protocol::NeuronSnapshotPayload> neuronsByQtJson(const QByteArray &line);
std::optional<backend::protocol::TrainStatusPayload> statusByQtJson(const QByteArray &line);

} // namespace zorel::bench
