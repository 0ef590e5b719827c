#pragma once

#include "backend/protocol/NeuronSelection.h"
#include "library/ArchivedModelRecord.h"

#include <QWidget>

#include <functional>
#include <optional>

class QVBoxLayout;

namespace zorel::library {
class ModelLibraryStore;
}
namespace zorel::ui::neurons {
class NeuronHeatmapPanel;
}

namespace zorel::ui::library {

/// One archived run: who and what, its figures, its loss curve and its neuron snapshot. Main thread only.
class ModelDetailView : public QWidget
{
    Q_OBJECT

public:
    /// `reveal` shows a folder in the file manager. The store must outlive the view.
    ModelDetailView(const zorel::library::ModelLibraryStore &store,
                    std::function<void(const QString &path)> reveal, QWidget *parent = nullptr);

    /// Loads the run's curve and snapshot as they are now and clears the selected cell, unless this very run
    /// is shown already.
    void setModel(const zorel::library::ArchivedModelRecord &model);
    /// Shows no run.
    void clear();
    const std::optional<zorel::library::ArchivedModelRecord> &model() const { return m_model; }

private:
    QWidget *makeHeader();
    QWidget *makeBadges();
    QWidget *makeMetrics();
    QWidget *makeCurve();
    QWidget *makePathways();
    void setSelectedNeuron(const std::optional<backend::protocol::NeuronSelection> &selection);

    const zorel::library::ModelLibraryStore &m_store;
    std::function<void(const QString &)> m_reveal;
    std::optional<zorel::library::ArchivedModelRecord> m_model;
    std::optional<backend::protocol::NeuronSelection> m_selectedNeuron;
    neurons::NeuronHeatmapPanel *m_heatmap = nullptr;
    QVBoxLayout *m_sections;
};

} // namespace zorel::ui::library
