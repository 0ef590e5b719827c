#include "ui/library/ModelDetailView.h"

#include "app/presentation/DecimalText.h"
#include "app/presentation/RunTexts.h"
#include "app/settings/ModelFamily.h"
#include "library/ModelLibraryStore.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Badge.h"
#include "ui/kit/BoundedText.h"
#include "ui/kit/Card.h"
#include "ui/kit/FlowLayout.h"
#include "ui/kit/LineChart.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"
#include "ui/library/CurveSeries.h"
#include "ui/library/RunTexts.h"
#include "ui/neurons/NeuronHeatmapPanel.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace zorel::ui::library {

using app::presentation::fixedText;
using zorel::library::ArchivedModelRecord;

namespace {

constexpr int chartHeight = 240;
constexpr int linesOfAName = 3;

QWidget *factWithSymbol(const QString &symbol, const QString &text)
{
    auto *fact = new QWidget;
    auto *row = new QHBoxLayout(fact);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kit::spacing::half);
    row->addWidget(new kit::SymbolLabel(symbol));
    row->addWidget(
        new kit::TextLabel(text, kit::TextRole::Caption, kit::Weight::Regular, kit::ColorRole::Secondary));
    return fact;
}

void removeAll(QLayout &layout)
{
    while (QLayoutItem *item = layout.takeAt(0)) {
        // A press inside a section may be what replaces it.
        if (QWidget *widget = item->widget()) {
            widget->hide();
            widget->deleteLater();
        }
        delete item;
    }
}

} // namespace

ModelDetailView::ModelDetailView(const zorel::library::ModelLibraryStore &store,
                                 std::function<void(const QString &)> reveal, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_reveal(std::move(reveal))
    , m_sections(new QVBoxLayout(this))
{
    m_sections->setContentsMargins(0, 0, 0, 0);
    m_sections->setSpacing(kit::spacing::two);
}

void ModelDetailView::setModel(const ArchivedModelRecord &model)
{
    if (m_model == model) {
        return;
    }
    clear();
    m_model = model;
    // The snapshot first, then the curve.
    QWidget *pathways = makePathways();
    QWidget *curve = makeCurve();
    for (QWidget *section : {makeHeader(), makeBadges(), makeMetrics(), curve, pathways}) {
        if (section) {
            m_sections->addWidget(section);
        }
    }
    m_sections->addStretch();
}

void ModelDetailView::clear()
{
    m_model.reset();
    m_selectedNeuron.reset();
    m_heatmap = nullptr;
    removeAll(*m_sections);
}

QWidget *ModelDetailView::makeHeader()
{
    auto *header = new QWidget;
    auto *columns = new QHBoxLayout(header);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(kit::spacing::two);
    auto *lines = new QVBoxLayout;
    lines->setSpacing(kit::spacing::half);
    columns->addLayout(lines, 1);

    auto *name = new kit::TextLabel(nameAndVersion(*m_model), kit::TextRole::Title, kit::Weight::Semibold);
    name->setCopyable();
    lines->addWidget(new kit::BoundedText(name, linesOfAName));
    if (!m_model->author.trimmed().isEmpty()) {
        lines->addWidget(new kit::TextLabel(QStringLiteral("by ") + m_model->author, kit::TextRole::Body,
                                            kit::Weight::Regular, kit::ColorRole::Secondary));
    }
    auto *facts = new QWidget;
    auto *flow = new kit::FlowLayout(facts);
    flow->setContentsMargins(0, 0, 0, 0);
    flow->setGaps(kit::spacing::two, kit::spacing::half);
    flow->addWidget(
        factWithSymbol(QStringLiteral("cube"), app::presentation::familyTitle(m_model->modelFamily)));
    flow->addWidget(factWithSymbol(QStringLiteral("gearshape"),
                                   app::presentation::capabilityTitle(m_model->trainingCapability)));
    if (const QString date = longDateText(*m_model); !date.isEmpty()) {
        flow->addWidget(factWithSymbol(QStringLiteral("calendar"), date));
    }
    lines->addWidget(facts);

    auto *reveal = new kit::ActionButton(QStringLiteral("folder"), QStringLiteral("Reveal in Finder"));
    connect(reveal, &kit::ActionButton::clicked, this, [this] { m_reveal(m_model->path); });
    columns->addWidget(reveal, 0, Qt::AlignTop);
    return header;
}

QWidget *ModelDetailView::makeBadges()
{
    if (!m_model->hasLossCurve && !m_model->hasNeuronSnapshot) {
        return nullptr;
    }
    auto *badges = new QWidget;
    auto *flow = new kit::FlowLayout(badges);
    flow->setContentsMargins(0, 0, 0, 0);
    if (m_model->hasLossCurve) {
        flow->addWidget(new kit::Badge(QStringLiteral("chart.line.uptrend.xyaxis"),
                                       QStringLiteral("Loss curve saved"), kit::ColorRole::Success));
    }
    if (m_model->hasNeuronSnapshot) {
        flow->addWidget(new kit::Badge(QStringLiteral("brain.head.profile"),
                                       QStringLiteral("Neuron snapshot saved"), kit::ColorRole::Success));
    }
    return badges;
}

QWidget *ModelDetailView::makeMetrics()
{
    std::vector<std::pair<QString, QString>> metrics{
        {QStringLiteral("Steps"),
         QString::number(m_model->step) + QStringLiteral(" / ") + QString::number(m_model->maxSteps)},
        {QStringLiteral("Final loss"), fixedText(m_model->finalLoss, 4)}};
    if (m_model->valLoss) {
        metrics.emplace_back(QStringLiteral("Val loss"), fixedText(*m_model->valLoss, 4));
    }
    metrics.emplace_back(QStringLiteral("Elapsed"), fixedText(m_model->elapsedS, 0) + QStringLiteral(" s"));
    metrics.emplace_back(QStringLiteral("Throughput"),
                         fixedText(m_model->tokensPerSec, 0) + QStringLiteral(" tok/s"));

    auto *card = new kit::Card(QStringLiteral("Metrics"));
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(kit::spacing::three);
    grid->setVerticalSpacing(kit::spacing::one);
    grid->setColumnStretch(1, 1);
    int row = 0;
    for (const auto &[label, value] : metrics) {
        auto *figure = new kit::TextLabel(value, kit::TextRole::Body, kit::Weight::Medium);
        figure->setFontKind(kit::FontKind::Tabular);
        figure->setCopyable();
        grid->addWidget(
            new kit::TextLabel(label, kit::TextRole::Body, kit::Weight::Regular, kit::ColorRole::Secondary),
            row, 0);
        grid->addWidget(figure, row, 1);
        ++row;
    }
    card->content()->addLayout(grid);
    return card;
}

QWidget *ModelDetailView::makeCurve()
{
    const QString title = QStringLiteral("Training loss curve");
    auto *card = new kit::Card(title);
    auto *chart = makeLossChart(title);
    chart->setPlaceholder(m_model->hasLossCurve ? QStringLiteral("The saved loss curve holds no points.")
                                                : QStringLiteral("No loss curve was saved for this run."));
    addCurve(*chart, QStringLiteral("Loss"), m_store.loadLossCurve(*m_model));
    fitHeight(*chart, 1, chartHeight);
    card->addHeaderWidget(chart->toolRow());
    card->content()->addWidget(chart);
    return card;
}

QWidget *ModelDetailView::makePathways()
{
    auto *card = new kit::Card(QStringLiteral("Neuron pathways"));
    const auto snapshot = m_store.loadNeuronSnapshot(*m_model);
    if (snapshot &&
        m_model->modelFamily == app::settings::rawValue(app::settings::ModelFamily::textLanguage)) {
        m_heatmap = new neurons::NeuronHeatmapPanel(QStringLiteral("Neuron activity"));
        m_heatmap->setSubtitle(QStringLiteral("archived snapshot"));
        m_heatmap->setSnapshot(*snapshot);
        connect(m_heatmap, &neurons::NeuronHeatmapPanel::selectionChosen, this,
                &ModelDetailView::setSelectedNeuron);
        card->content()->addWidget(m_heatmap);
    } else {
        card->content()->addWidget(
            new kit::TextLabel(QStringLiteral("No neuron snapshot was saved for this run. Complete a new "
                                              "text-language training run to capture "
                                              "pathway activations at archive time."),
                               kit::TextRole::Body, kit::Weight::Regular, kit::ColorRole::Secondary));
    }
    return card;
}

void ModelDetailView::setSelectedNeuron(const std::optional<backend::protocol::NeuronSelection> &selection)
{
    m_selectedNeuron = selection;
    m_heatmap->setSelection(selection);
}

} // namespace zorel::ui::library
