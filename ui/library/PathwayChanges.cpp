#include "ui/library/PathwayChanges.h"

#include "app/presentation/ComparisonTexts.h"
#include "ui/kit/Card.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/TextLabel.h"
#include "ui/library/DeltaCells.h"
#include "ui/library/NoticeLine.h"
#include "ui/neurons/CellGrid.h"
#include "ui/neurons/CellGridView.h"
#include "ui/neurons/ColorLegend.h"
#include "ui/neurons/NeuronHeatmapPanel.h"

#include <QVBoxLayout>

namespace zorel::ui::library {

using neurons::NeuronHeatmapPanel;
using zorel::library::ComparisonData;
using zorel::library::ModelRunComparison;

namespace {

constexpr int legendGap = 14;
constexpr int deltaGridHeight = 160;
constexpr int snapshotGap = 12;

neurons::ColorLegend *makeLegend()
{
    std::vector<neurons::ColorLegend::Entry> entries;
    entries.reserve(app::presentation::legendChanges.size());
    for (const auto change : app::presentation::legendChanges) {
        entries.push_back({app::presentation::changeTitle(change), changeRgb(change)});
    }
    return new neurons::ColorLegend(entries, legendGap);
}

} // namespace

PathwayChanges::PathwayChanges(const ModelRunComparison &comparison, const ComparisonData &files,
                               QWidget *parent)
    : QWidget(parent)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    auto *card = new kit::Card(QStringLiteral("Neuron pathway changes"));
    column->addWidget(card);
    if (!files.baselineNeurons || !files.candidateNeurons) {
        card->content()->addWidget(new kit::TextLabel(app::presentation::snapshotMessage(comparison),
                                                      kit::TextRole::Caption, kit::Weight::Regular,
                                                      kit::ColorRole::Secondary));
        return;
    }
    if (const QString notice = app::presentation::shapeNotice(files); !notice.isEmpty()) {
        card->content()->addWidget(new NoticeLine(notice));
    }
    card->content()->addWidget(makeLegend());
    card->content()->addWidget(makeDeltaGrid(files));
    card->content()->addWidget(makeSnapshots(files));
}

QWidget *PathwayChanges::makeDeltaGrid(const ComparisonData &files)
{
    const QString title = QStringLiteral("Activation delta (candidate − baseline)");
    auto *section = new QWidget;
    auto *column = new QVBoxLayout(section);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kit::spacing::half);
    column->addWidget(
        new kit::TextLabel(title, kit::TextRole::Caption, kit::Weight::Semibold, kit::ColorRole::Secondary));
    auto *grid = new neurons::CellGrid(title);
    auto *view = new neurons::CellGridView(grid, deltaGridHeight, neurons::CellGridView::Indicators::Never,
                                           neurons::CellGridView::Columns::StayApart);
    grid->setSource(std::make_shared<DeltaCells>(
                        zorel::library::activationDeltas(*files.baselineNeurons, *files.candidateNeurons)),
                    app::presentation::deltaCellSize(files.baselineNeurons->neuronsPerLayer));
    column->addWidget(view);
    return section;
}

QWidget *PathwayChanges::makeSnapshots(const ComparisonData &files)
{
    m_baseline = new NeuronHeatmapPanel(QStringLiteral("Baseline"));
    m_candidate = new NeuronHeatmapPanel(QStringLiteral("Candidate"));
    m_baseline->setSnapshot(*files.baselineNeurons);
    m_candidate->setSnapshot(*files.candidateNeurons);

    auto *pair = new QWidget;
    auto *row = new QHBoxLayout(pair);
    row->setContentsMargins(0, kit::spacing::one, 0, 0);
    row->setSpacing(snapshotGap);
    for (NeuronHeatmapPanel *panel : {m_baseline, m_candidate}) {
        row->addWidget(panel, 1, Qt::AlignTop);
        connect(panel, &NeuronHeatmapPanel::selectionChosen, this, &PathwayChanges::setSelectedNeuron);
    }
    return pair;
}

void PathwayChanges::setSelectedNeuron(const std::optional<backend::protocol::NeuronSelection> &selection)
{
    m_selectedNeuron = selection;
    m_baseline->setSelection(selection);
    m_candidate->setSelection(selection);
}

} // namespace zorel::ui::library
