#pragma once

#include <cstddef>

namespace zorel::library {

/// The files in a run folder that the application reads.
inline constexpr char manifestFile[] = "manifest.json";
inline constexpr char lossCurveFile[] = "loss_curve.jsonl";
inline constexpr char neuronSnapshotFile[] = "neuron_snapshot.json";

/// The longest manifest, snapshot or line of a loss curve that is read; as long as a line of the sidecar may
/// be.
inline constexpr std::size_t mostBytesOfAFile = std::size_t{64} * 1024 * 1024;
/// The longest loss curve that is read: some 25 million points.
inline constexpr std::size_t mostBytesOfACurve = std::size_t{1024} * 1024 * 1024;

} // namespace zorel::library
