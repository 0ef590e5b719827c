#include "app/presentation/NeuronTexts.h"

#include "app/presentation/DecimalText.h"

#include <algorithm>

namespace zorel::app::presentation {

namespace {

constexpr double rowWidth = 320;
constexpr double smallestCell = 6;
constexpr double largestCell = 14;

} // namespace

using backend::protocol::NeuronActivityTier;
using backend::protocol::NeuronSelection;
using backend::protocol::VisualNeuron;

QString tierTitle(NeuronActivityTier tier)
{
    switch (tier) {
    case NeuronActivityTier::inactive:
        return QStringLiteral("Inactive");
    case NeuronActivityTier::moderate:
        return QStringLiteral("Moderate");
    case NeuronActivityTier::high:
        return QStringLiteral("Highly active");
    }
    return {};
}

double heatmapCellSize(std::int64_t neuronsPerLayer)
{
    if (neuronsPerLayer == 0) {
        return largestCell;
    }
    return std::max(std::min(rowWidth / static_cast<double>(neuronsPerLayer), largestCell), smallestCell);
}

QString channelsText(const VisualNeuron &neuron)
{
    return QString::number(neuron.dimStart) + u'–' + QString::number(neuron.dimEnd);
}

QString neuronToolTip(std::int64_t layer, const VisualNeuron &neuron)
{
    return QStringLiteral("Layer ") + QString::number(layer) + QStringLiteral(", neuron ") +
           QString::number(neuron.index) + QStringLiteral(" (dims ") + channelsText(neuron) +
           QStringLiteral("): ") + tierTitle(neuron.tier);
}

QString selectedNeuronSentence(const NeuronSelection &selection, std::int64_t layerCount)
{
    return QStringLiteral("Hidden channels ") + channelsText(selection.neuron) +
           QStringLiteral(" in transformer block ") + QString::number(selection.layer) +
           QStringLiteral(" of ") + QString::number(layerCount) +
           QStringLiteral(". Mean absolute activation averaged over the training batch.");
}

QString activationText(double activation)
{
    return fixedText(activation, 4);
}

bool isSelected(const NeuronSelection &selection, std::int64_t layer, const VisualNeuron &neuron)
{
    const VisualNeuron &selected = selection.neuron;
    return selection.layer == layer && selected.index == neuron.index &&
           selected.dimStart == neuron.dimStart && selected.dimEnd == neuron.dimEnd;
}

QString missingSnapshotText(const QString &state)
{
    if (state == QLatin1String("preparing") || state == QLatin1String("starting")) {
        return QStringLiteral("Neuron activity will appear once training begins.");
    }
    if (state == QLatin1String("running") || state == QLatin1String("paused")) {
        return QStringLiteral("Capturing first neuron snapshot…");
    }
    if (state == QLatin1String("done") || state == QLatin1String("idle")) {
        return QStringLiteral("Start training to visualize neuron activations.");
    }
    return QStringLiteral("Press Start to begin neuron monitoring.");
}

QString neuronsOfOtherFamiliesText()
{
    return QStringLiteral("Neuron visualization is available for text language models.\n"
                          "Image and multimodal models use convolutional feature maps.");
}

} // namespace zorel::app::presentation
