#include "ui/library/ComparisonSheet.h"

#include "app/presentation/ComparisonTexts.h"
#include "library/RunJson.h"
#include "platform/AtomicFile.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Card.h"
#include "ui/kit/Colors.h"
#include "ui/kit/ElidedLabel.h"
#include "ui/kit/LineChart.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ScrollPage.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"
#include "ui/library/CurveSeries.h"
#include "ui/library/DifferenceCard.h"
#include "ui/library/NoticeLine.h"
#include "ui/library/PathwayChanges.h"
#include "ui/library/RunTexts.h"

#include <QBuffer>
#include <QClipboard>
#include <QFileDialog>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QImage>
#include <QJsonDocument>
#include <QMenu>
#include <QPixmap>
#include <QVBoxLayout>

namespace zorel::ui::library {

using zorel::library::ArchivedModelRecord;
using zorel::library::ModelRunComparison;

namespace {

constexpr QSize preferredSize(960, 720);
constexpr int chartHeight = 260;

} // namespace

ComparisonSheet::ComparisonSheet(const zorel::library::ModelLibraryStore &store,
                                 ModelRunComparison comparison, QWidget *parent)
    : kit::Sheet(QStringLiteral("Compare retrainings"), parent)
    , m_comparison(std::move(comparison))
    , m_data(zorel::library::ComparisonData::load(store, m_comparison))
    , m_body(new QWidget)
    , m_outcome(new kit::TextLabel(QString(), kit::TextRole::Caption, kit::Weight::Regular,
                                   kit::ColorRole::Secondary))
{
    addHeaderWidget(makeHeaderButtons());
    auto *column = new QVBoxLayout(m_body);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kit::spacing::two);
    column->addWidget(makeRuns());
    if (const QString warning = app::presentation::identityWarning(m_comparison); !warning.isEmpty()) {
        column->addWidget(new NoticeLine(warning));
    }
    column->addWidget(makeDifferences());
    column->addWidget(makeCurves());
    column->addWidget(new PathwayChanges(m_comparison, m_data));
    // A chart takes what room there is left; without curves the cards are not to grow.
    const bool hasCurve = !m_data.baselineLoss.empty() || !m_data.candidateLoss.empty();
    column->addStretch(hasCurve ? 0 : 1);

    auto *page = new kit::ScrollPage;
    page->content()->setContentsMargins({});
    page->content()->addWidget(m_body);
    // The page has margins of its own, in which its scroll bar stands.
    content()->setContentsMargins(kit::spacing::one, 0, kit::spacing::one, 0);
    content()->addWidget(page, 1);
    m_outcome->hide();
    auto *outcome = new QVBoxLayout;
    outcome->setContentsMargins(kit::spacing::two, 0, kit::spacing::two, 0);
    outcome->addWidget(m_outcome);
    content()->addLayout(outcome);
    resize(parent ? preferredSize.boundedTo(parent->size()) : preferredSize);
}

QWidget *ComparisonSheet::makeHeaderButtons()
{
    auto *buttons = new QWidget;
    auto *row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kit::spacing::one);
    auto *share = new kit::ActionButton(QStringLiteral("square.and.arrow.up"), QStringLiteral("Export"));
    auto *menu = new QMenu(share);
    connect(menu->addAction(QStringLiteral("Copy as Image")), &QAction::triggered, this,
            &ComparisonSheet::copyImage);
    connect(menu->addAction(QStringLiteral("Save Image…")), &QAction::triggered, this,
            &ComparisonSheet::chooseImageFile);
    connect(menu->addAction(QStringLiteral("Save Figures as JSON…")), &QAction::triggered, this,
            &ComparisonSheet::chooseFiguresFile);
    connect(share, &kit::ActionButton::clicked, this,
            [share, menu] { menu->popup(share->mapToGlobal(QPoint(0, share->height()))); });
    auto *back =
        new kit::ActionButton(QString(), QStringLiteral("Back"), kit::ActionButton::Style::Prominent);
    connect(back, &kit::ActionButton::clicked, this, &ComparisonSheet::accept);
    row->addWidget(share);
    row->addWidget(back);
    return buttons;
}

QWidget *ComparisonSheet::makeRuns()
{
    auto *runs = new QWidget;
    auto *row = new QHBoxLayout(runs);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kit::spacing::two);
    row->addWidget(makeRun(QStringLiteral("Baseline"), m_comparison.baseline), 1);
    row->addWidget(new kit::SymbolLabel(QStringLiteral("arrow.right"), kit::symbolSize), 0, Qt::AlignVCenter);
    row->addWidget(makeRun(QStringLiteral("Candidate"), m_comparison.candidate), 1);
    return runs;
}

QWidget *ComparisonSheet::makeRun(const QString &role, const ArchivedModelRecord &run)
{
    auto *side = new QWidget;
    auto *lines = new QVBoxLayout(side);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(kit::spacing::half);
    auto *name = new kit::ElidedLabel;
    name->setTextStyle(kit::TextRole::Heading, kit::Weight::Semibold);
    name->setText(nameAndVersion(run));
    lines->addWidget(
        new kit::TextLabel(role, kit::TextRole::Caption, kit::Weight::Regular, kit::ColorRole::Secondary));
    lines->addWidget(name);
    lines->addWidget(new kit::TextLabel(shortDateText(run), kit::TextRole::Caption, kit::Weight::Regular,
                                        kit::ColorRole::Secondary));
    return side;
}

QWidget *ComparisonSheet::makeDifferences()
{
    auto *cards = new QWidget;
    auto *row = new QHBoxLayout(cards);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kit::spacing::two);
    row->addWidget(new DifferenceCard(QStringLiteral("Loss change"),
                                      app::presentation::lossChangeText(m_comparison),
                                      app::presentation::lossTrend(m_comparison)),
                   1);
    row->addWidget(new DifferenceCard(QStringLiteral("Steps"), app::presentation::stepsText(m_comparison),
                                      app::presentation::stepsTrend(m_comparison)),
                   1);
    row->addWidget(new DifferenceCard(QStringLiteral("Training time"),
                                      app::presentation::trainingTimeText(m_comparison), std::nullopt),
                   1);
    return cards;
}

QWidget *ComparisonSheet::makeCurves()
{
    const QString title = QStringLiteral("Loss curves");
    auto *card = new kit::Card(title);
    auto *chart = makeLossChart(title);
    chart->setLegendKey(QStringLiteral("Run"));
    chart->setPlaceholder(QStringLiteral("Neither run has a saved loss curve."));
    addCurve(*chart, QStringLiteral("Baseline"), m_data.baselineLoss);
    addCurve(*chart, QStringLiteral("Candidate"), m_data.candidateLoss);
    fitHeight(*chart, 2, chartHeight);
    card->addHeaderWidget(chart->toolRow());
    card->content()->addWidget(chart);
    for (const QString &notice :
         {app::presentation::missingCurveNotice(m_data), app::presentation::commonStepsNotice(m_data)}) {
        if (!notice.isEmpty()) {
            card->content()->addWidget(new kit::TextLabel(notice, kit::TextRole::Caption,
                                                          kit::Weight::Regular, kit::ColorRole::Secondary));
        }
    }
    return card;
}

QImage ComparisonSheet::image() const
{
    QPixmap picture(m_body->size() * devicePixelRatioF());
    picture.setDevicePixelRatio(devicePixelRatioF());
    picture.fill(kit::color(kit::ColorRole::WindowBackground, palette()));
    m_body->render(&picture, QPoint(), QRegion(), QWidget::DrawChildren);
    return picture.toImage();
}

QByteArray ComparisonSheet::figures() const
{
    return QJsonDocument(zorel::library::toJson(m_comparison, m_data)).toJson();
}

void ComparisonSheet::chooseImageFile()
{
    auto *dialog =
        new QFileDialog(this, QStringLiteral("Save Image"), QString(), QStringLiteral("PNG images (*.png)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("png"));
    dialog->selectFile(QStringLiteral("Comparison.png"));
    connect(dialog, &QFileDialog::fileSelected, this, &ComparisonSheet::saveImage);
    dialog->open();
}

void ComparisonSheet::chooseFiguresFile()
{
    auto *dialog = new QFileDialog(this, QStringLiteral("Save Figures as JSON"), QString(),
                                   QStringLiteral("JSON files (*.json)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("json"));
    dialog->selectFile(QStringLiteral("Comparison.json"));
    connect(dialog, &QFileDialog::fileSelected, this, &ComparisonSheet::saveFigures);
    dialog->open();
}

void ComparisonSheet::copyImage()
{
    QGuiApplication::clipboard()->setImage(image());
    say(QStringLiteral("Copied to the clipboard."), kit::ColorRole::Secondary);
}

void ComparisonSheet::saveImage(const QString &path)
{
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image().save(&buffer, "PNG");
    save(path, png);
}

void ComparisonSheet::saveFigures(const QString &path)
{
    save(path, figures());
}

void ComparisonSheet::save(const QString &path, const QByteArray &content)
{
    const bool isSaved = platform::replaceFile(path, content);
    say((isSaved ? QStringLiteral("Saved → ") : QStringLiteral("Could not be saved → ")) + path,
        isSaved ? kit::ColorRole::Secondary : kit::ColorRole::Danger);
}

void ComparisonSheet::say(const QString &outcome, kit::ColorRole tone)
{
    m_outcome->setColorRole(tone);
    m_outcome->setText(outcome);
    m_outcome->show();
}

} // namespace zorel::ui::library
