#include "ui/neurons/NeuronHeatmapPanel.h"

#include "app/presentation/NeuronTexts.h"
#include "ui/kit/FlowLayout.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"
#include "ui/neurons/CellGrid.h"
#include "ui/neurons/CellGridView.h"
#include "ui/neurons/ColorLegend.h"
#include "ui/neurons/NeuronDetailsBox.h"
#include "ui/neurons/SnapshotCells.h"
#include "ui/neurons/TierColors.h"

#include <QVBoxLayout>

namespace zorel::ui::neurons {

namespace {

constexpr qreal headerSymbol = 12;
constexpr int legendGap = 12;

ColorLegend *makeLegend()
{
    using backend::protocol::NeuronActivityTier;
    std::vector<ColorLegend::Entry> entries;
    for (const auto tier :
         {NeuronActivityTier::high, NeuronActivityTier::moderate, NeuronActivityTier::inactive}) {
        entries.push_back({app::presentation::tierTitle(tier), tierColor(tier)});
    }
    return new ColorLegend(entries, legendGap);
}

} // namespace

NeuronHeatmapPanel::NeuronHeatmapPanel(const QString &title, std::optional<int> maximumHeight,
                                       QWidget *parent)
    : QWidget(parent)
    , m_subtitle(new kit::TextLabel(QString(), kit::TextRole::Caption2, kit::Weight::Regular,
                                    kit::ColorRole::Secondary))
    , m_step(new kit::TextLabel(QString(), kit::TextRole::Caption2, kit::Weight::Regular,
                                kit::ColorRole::Secondary))
    , m_grid(new CellGrid(QStringLiteral("Neuron activation heatmap")))
    , m_details(new NeuronDetailsBox)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kit::spacing::one);
    column->addWidget(makeHeader(title));
    column->addWidget(new CellGridView(m_grid, maximumHeight, CellGridView::Indicators::WhenNeeded,
                                       CellGridView::Columns::MayMoveTogether));
    column->addWidget(m_details);
    column->addStretch();
    m_details->hide();
    m_subtitle->hide();
    connect(m_grid, &CellGrid::cellPressed, this, [this](CellPosition cell) {
        const auto pressed = m_cells->selection(cell);
        const bool again =
            m_selection && app::presentation::isSelected(*m_selection, pressed.layer, pressed.neuron);
        Q_EMIT selectionChosen(again ? std::nullopt : std::optional{pressed});
    });
}

NeuronHeatmapPanel::~NeuronHeatmapPanel() = default;

QWidget *NeuronHeatmapPanel::makeHeader(const QString &title)
{
    m_step->setFontKind(kit::FontKind::Tabular);
    auto *header = new QWidget;
    auto *items = new kit::FlowLayout(header);
    items->setContentsMargins(0, 0, 0, 0);
    items->setGaps(kit::spacing::one, kit::spacing::half);
    items->addWidget(new kit::SymbolLabel(QStringLiteral("brain.head.profile"), headerSymbol));
    items->addWidget(new kit::TextLabel(title, kit::TextRole::Caption2, kit::Weight::Semibold));
    items->addWidget(m_subtitle);
    items->addWidget(m_step);
    items->addWidget(makeLegend());
    return header;
}

void NeuronHeatmapPanel::setSubtitle(const QString &subtitle)
{
    m_subtitle->setText(subtitle);
    m_subtitle->setVisible(!subtitle.isEmpty());
}

void NeuronHeatmapPanel::setSnapshot(const backend::protocol::NeuronSnapshotPayload &snapshot)
{
    m_cells = std::make_shared<SnapshotCells>(snapshot);
    m_step->setText(QStringLiteral("step ") + QString::number(snapshot.step));
    m_grid->setSource(m_cells, app::presentation::heatmapCellSize(snapshot.neuronsPerLayer));
    showSelection();
}

void NeuronHeatmapPanel::setSelection(const std::optional<backend::protocol::NeuronSelection> &selection)
{
    m_selection = selection;
    showSelection();
}

void NeuronHeatmapPanel::showSelection()
{
    if (m_selection && m_cells) {
        // What the snapshot says of the group now; when it has no such group, what it was when it was
        // selected.
        const auto cell = m_cells->find(*m_selection);
        m_grid->setSelectedCell(cell);
        m_details->showSelection(cell ? m_cells->selection(*cell) : *m_selection,
                                 m_cells->snapshot().nLayers);
        m_details->setVisible(true);
    } else {
        m_grid->setSelectedCell(std::nullopt);
        m_details->setVisible(false);
    }
}

} // namespace zorel::ui::neurons
