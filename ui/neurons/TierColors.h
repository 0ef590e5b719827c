#pragma once

#include "backend/protocol/NeuronSnapshotPayload.h"

#include <QRgb>

namespace zorel::ui::neurons {

/// The colour of a cell of that tier, sRGB and opaque, the same in light and dark windows.
QRgb tierColor(backend::protocol::NeuronActivityTier tier);

} // namespace zorel::ui::neurons
