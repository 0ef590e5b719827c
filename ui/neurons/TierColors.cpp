#include "ui/neurons/TierColors.h"

#include <QColor>

namespace zorel::ui::neurons {

using backend::protocol::NeuronActivityTier;

QRgb tierColor(NeuronActivityTier tier)
{
    switch (tier) {
    case NeuronActivityTier::inactive:
        return QColor::fromRgbF(0.78F, 0.78F, 0.78F).rgb();
    case NeuronActivityTier::moderate:
        return QColor::fromRgbF(0.95F, 0.72F, 0.15F).rgb();
    case NeuronActivityTier::high:
        return QColor::fromRgbF(0.15F, 0.72F, 0.35F).rgb();
    }
    return 0;
}

} // namespace zorel::ui::neurons
