#pragma once

#include "backend/protocol/NeuronSelection.h"
#include "library/ModelRunComparison.h"

#include <QWidget>

#include <optional>

namespace zorel::ui::neurons {
class NeuronHeatmapPanel;
}

namespace zorel::ui::library {

/// How the activations of two runs differ: the grid of differences, and both snapshots with one selection. Or
/// why there is nothing to compare.
class PathwayChanges : public QWidget
{
    Q_OBJECT

public:
    PathwayChanges(const zorel::library::ModelRunComparison &comparison,
                   const zorel::library::ComparisonData &files, QWidget *parent = nullptr);

private:
    QWidget *makeDeltaGrid(const zorel::library::ComparisonData &files);
    QWidget *makeSnapshots(const zorel::library::ComparisonData &files);
    void setSelectedNeuron(const std::optional<backend::protocol::NeuronSelection> &selection);

    std::optional<backend::protocol::NeuronSelection> m_selectedNeuron;
    neurons::NeuronHeatmapPanel *m_baseline = nullptr;
    neurons::NeuronHeatmapPanel *m_candidate = nullptr;
};

} // namespace zorel::ui::library
