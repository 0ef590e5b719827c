#include "ui/neurons/NeuronVisualizationView.h"

#include "app/presentation/NeuronTexts.h"
#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "ui/kit/Card.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Repaint.h"
#include "ui/kit/TextLabel.h"
#include "ui/neurons/NeuronHeatmapPanel.h"

#include <QVBoxLayout>

namespace zorel::ui::neurons {

namespace {

constexpr int heatmapHeight = 220;
constexpr int emptyHeight = 160;
constexpr int otherFamilyHeight = 120;

} // namespace

using backend::bridge::BackendController;

NeuronVisualizationView::NeuronVisualizationView(BackendController &backend,
                                                 const app::settings::ZorelSettings &settings,
                                                 QWidget *parent)
    : QWidget(parent)
    , m_backend(backend)
    , m_settings(settings)
    , m_frames(new kit::FrameCoalescer(this, [this] { refresh(); }))
    , m_switch(new SnapshotSwitch)
    , m_panel(new NeuronHeatmapPanel(QStringLiteral("Neuron activity"), heatmapHeight))
    , m_message(
          new kit::TextLabel(QString(), kit::TextRole::Body, kit::Weight::Regular, kit::ColorRole::Secondary))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    auto *card = new kit::Card(QString());
    card->setAccessibleName(QStringLiteral("Neuron activity"));
    column->addWidget(card);
    card->content()->addWidget(m_switch, 0, Qt::AlignTrailing);
    card->content()->addWidget(m_panel);
    card->content()->addWidget(m_message);
    m_message->setAlignment(Qt::AlignCenter);

    follow();
    refresh();
}

void NeuronVisualizationView::follow()
{
    const auto snapshotChanged = [this] {
        m_snapshotIsStale = true;
        m_frames->request();
    };
    connect(&m_backend, &BackendController::liveNeuronsChanged, this, snapshotChanged);
    connect(&m_backend, &BackendController::finalNeuronsChanged, this, snapshotChanged);
    connect(&m_settings, &app::settings::ZorelSettings::modelFamilyChanged, this,
            [this] { m_frames->request(); });
    connect(&m_backend, &BackendController::statusChanged, this, [this] {
        if (!m_message->isHidden()) {
            m_frames->request();
        }
    });
    connect(&m_backend, &BackendController::selectedNeuronChanged, this,
            [this] { m_panel->setSelection(m_backend.selectedNeuron()); });
    connect(m_panel, &NeuronHeatmapPanel::selectionChosen, this,
            [this](const auto &selection) { m_backend.setSelectedNeuron(selection); });
    connect(m_switch, &SnapshotSwitch::chosen, this, [this](SnapshotSwitch::Choice choice) {
        m_showFinalSnapshot = choice == SnapshotSwitch::Choice::Final; // for the runs to come as well
        m_snapshotIsStale = true;
        refresh();
    });
}

const backend::protocol::NeuronSnapshotPayload *NeuronVisualizationView::chosenSnapshot() const
{
    if (m_showFinalSnapshot && m_backend.finalNeurons()) {
        return &*m_backend.finalNeurons();
    }
    return m_backend.liveNeurons() ? &*m_backend.liveNeurons() : nullptr;
}

void NeuronVisualizationView::refresh()
{
    m_switch->setFinalAvailable(m_backend.finalNeurons().has_value());
    if (m_settings.modelFamily() != app::settings::ModelFamily::textLanguage) {
        m_switch->hide();
        showMessage(app::presentation::neuronsOfOtherFamiliesText(), otherFamilyHeight);
        return;
    }
    m_switch->show();
    const auto *snapshot = chosenSnapshot();
    if (!snapshot) {
        showMessage(app::presentation::missingSnapshotText(m_backend.status().state), emptyHeight);
        return;
    }
    m_message->hide();
    m_panel->show();
    if (m_snapshotIsStale) {
        m_snapshotIsStale = false;
        m_panel->setSubtitle(snapshot->final ? QStringLiteral("final") : QStringLiteral("live"));
        m_panel->setSnapshot(*snapshot);
        m_panel->setSelection(m_backend.selectedNeuron());
    }
}

void NeuronVisualizationView::showMessage(const QString &text, int height)
{
    m_panel->hide();
    m_message->setText(text);
    m_message->setMinimumHeight(height);
    m_message->show();
}

} // namespace zorel::ui::neurons
