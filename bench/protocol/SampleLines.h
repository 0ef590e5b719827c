#pragma once

#include <string>

namespace zorel::bench {

/// A "neurons" event as Python's json.dumps writes it, with activations of full precision.
std::string neuronLine(int layers, int neuronsPerLayer);

/// A "status" event of a run in progress, with every key.
std::string statusLine();

} // namespace zorel::bench
