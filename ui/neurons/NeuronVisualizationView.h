#pragma once

#include "ui/neurons/SnapshotSwitch.h"

#include <QWidget>

namespace zorel::app::settings {
class ZorelSettings;
}
namespace zorel::backend::bridge {
class BackendController;
}
namespace zorel::backend::protocol {
struct NeuronSnapshotPayload;
}
namespace zorel::ui::kit {
class FrameCoalescer;
class TextLabel;
} // namespace zorel::ui::kit

namespace zorel::ui::neurons {

class NeuronHeatmapPanel;

/// The dashboard's neuron section: the live or the final snapshot, or why there is none. Main thread only.
class NeuronVisualizationView : public QWidget
{
    Q_OBJECT

public:
    /// Both must outlive the view.
    NeuronVisualizationView(backend::bridge::BackendController &backend,
                            const app::settings::ZorelSettings &settings, QWidget *parent = nullptr);

    NeuronHeatmapPanel *panel() const { return m_panel; }

private:
    const backend::protocol::NeuronSnapshotPayload *chosenSnapshot() const;
    void follow();
    void refresh();
    void showMessage(const QString &text, int height);

    backend::bridge::BackendController &m_backend;
    const app::settings::ZorelSettings &m_settings;
    kit::FrameCoalescer *m_frames;
    SnapshotSwitch *m_switch;
    NeuronHeatmapPanel *m_panel;
    kit::TextLabel *m_message;
    bool m_showFinalSnapshot = false;
    bool m_snapshotIsStale = true; ///< the panel does not show the chosen snapshot yet
};

} // namespace zorel::ui::neurons
