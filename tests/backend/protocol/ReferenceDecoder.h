#pragma once

#include "backend/protocol/BackendEvent.h"

#include <QByteArray>

#include <optional>

namespace zorel::tests {

/// Decodes an event slowly and plainly from Qt's JSON tree: what the real decoder is compared with. Expects
/// valid JSON, on which Qt is less strict than it should be.
std::optional<backend::protocol::BackendEvent> decodeByReference(const QByteArray &line);

} // namespace zorel::tests
