#include "ui/kit/LineChart.h"

#include "ui/kit/ChartActions.h"
#include "ui/kit/ChartExport.h"
#include "ui/kit/ChartPainter.h"
#include "ui/kit/ChartReadout.h"
#include "ui/kit/ChartText.h"
#include "ui/kit/ChartToolRow.h"
#include "ui/kit/Colors.h"
#include "ui/kit/LineChartAccessible.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Repaint.h"
#include "ui/kit/TextLabel.h"
#include "ui/kit/Typography.h"

#include <QAction>
#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace zorel::ui::kit {

LineChart::LineChart(const QString &title, QWidget *parent)
    : QWidget(parent)
    , m_repaint(new FrameCoalescer(this, [this] { update(); }))
    , m_actions(new ChartActions(this))
    , m_tools(new ChartToolRow(m_actions, this))
    , m_export(new ChartExport(this))
    , m_placeholder(new TextLabel({}, TextRole::Body, Weight::Regular, ColorRole::Secondary, this))
{
    installChartAccessibility();
    setTitle(title);
    setAxisTitles(QStringLiteral("Step"), QStringLiteral("Value"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    m_placeholder->setAlignment(Qt::AlignCenter);
    m_placeholder->setAttribute(Qt::WA_TransparentForMouseEvents);
    setPlaceholder(QStringLiteral("No points yet."));
    connectActions();
    m_wasEmpty = false;
    pointsChanged();
}

LineChart::~LineChart() = default;

void LineChart::connectActions()
{
    connect(m_actions, &ChartActions::scaleChosen, this, &LineChart::setScale);
    connect(m_actions, &ChartActions::smoothingChosen, this, &LineChart::setSmoothing);
    connect(m_actions->resetZoom(), &QAction::triggered, this, &LineChart::resetZoom);
    connect(m_actions->copyImage(), &QAction::triggered, this, &LineChart::copyImage);
    connect(m_actions->exportPoints(), &QAction::triggered, this, &LineChart::chooseExport);
    connect(m_export, &ChartExport::written, this, &LineChart::pointsExported);
    connect(m_export, &ChartExport::failed, this, &LineChart::exportHasFailed);
}

void LineChart::setTitle(const QString &title)
{
    m_content.title = title;
    setAccessibleName(title);
    m_tools->setAccessibleName(title);
    // Where it stands among others, these stay in their places when it comes.
    QSizePolicy policy = m_tools->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_tools->setSizePolicy(policy);
}

void LineChart::setAxisTitles(const QString &step, const QString &value)
{
    m_content.stepTitle = step;
    m_content.valueTitle = value;
    contentChanged();
}

void LineChart::setLegendKey(const QString &key)
{
    m_content.legendKey = key;
    contentChanged();
}

void LineChart::setPlaceholder(const QString &text)
{
    m_placeholder->setText(text);
    placePlaceholder();
}

int LineChart::addSeries(const QString &name)
{
    ChartSeries &added = m_content.series.emplace_back(name);
    added.setScale(m_content.scale);
    added.setSmoothing(m_content.smoothing);
    contentChanged();
    return static_cast<int>(m_content.series.size()) - 1;
}

ChartSeries &LineChart::series(int number)
{
    return m_content.series.at(static_cast<std::size_t>(number));
}

void LineChart::append(int number, std::int64_t step, double value)
{
    series(number).append({step, value});
    pointsChanged();
}

void LineChart::setPoints(int number, std::span<const ChartPoint> points)
{
    // Another run's points are looked at from the start; the zoom is kept for a list that goes on.
    const auto before = series(number).raw().points();
    const bool goesOn =
        !before.empty() && std::find(points.rbegin(), points.rend(), before.back()) != points.rend();
    if (!goesOn) {
        m_content.view.reset();
        m_crosshair.hide();
    }
    series(number).assign(points);
    pointsChanged();
    viewChanged();
}

void LineChart::setCapacity(int number, std::size_t capacity)
{
    series(number).setCapacity(capacity);
    pointsChanged();
}

void LineChart::dropOldest(int number, std::size_t count)
{
    series(number).dropOldest(count);
    pointsChanged();
}

void LineChart::clear(int number)
{
    series(number).clear();
    pointsChanged();
}

std::span<const ChartPoint> LineChart::points(int number) const
{
    return m_content.series.at(static_cast<std::size_t>(number)).raw().points();
}

void LineChart::setScale(ChartScaleKind scale)
{
    m_content.scale = scale;
    for (ChartSeries &one : m_content.series) {
        one.setScale(scale);
    }
    // What was zoomed to may have no place on the other scale.
    m_content.view.zoomTo(m_content.view.steps());
    viewChanged();
}

void LineChart::setSmoothing(double weight)
{
    m_content.smoothing = ChartSmoothing(weight).weight();
    for (ChartSeries &one : m_content.series) {
        one.setSmoothing(weight);
    }
    viewChanged();
}

void LineChart::zoomToSteps(double first, double last)
{
    layoutNow();
    m_content.view.zoomTo({first, last});
    viewChanged();
}

void LineChart::resetZoom()
{
    m_content.view.reset();
    viewChanged();
}

QWidget *LineChart::toolRow()
{
    return m_tools;
}

void LineChart::contentChanged()
{
    m_isLayoutStale = true;
    m_isPictureStale = true;
    // A hidden chart is painted when it is shown.
    if (isVisible()) {
        m_repaint->request();
    }
}

void LineChart::pointsChanged()
{
    contentChanged();
    const bool isEmpty = m_content.isEmpty();
    if (isEmpty == m_wasEmpty) {
        return;
    }
    m_wasEmpty = isEmpty;
    if (isEmpty) {
        m_content.view.reset();
        m_crosshair.hide();
    }
    m_placeholder->setVisible(isEmpty);
    m_actions->menu()->setEnabled(!isEmpty);
    for (QAction *action : actions()) {
        action->setEnabled(!isEmpty);
    }
    if (m_tools) {
        m_tools->setVisible(!isEmpty);
    }
    viewChanged();
}

void LineChart::viewChanged()
{
    m_actions->show(m_content.scale, m_content.smoothing);
    m_actions->resetZoom()->setEnabled(isZoomed());
    if (m_tools) {
        m_tools->refresh();
        placeTools();
    }
    contentChanged();
}

int LineChart::headerHeight() const
{
    return m_tools && m_tools->parentWidget() == this ? m_tools->sizeHint().height() : 0;
}

void LineChart::placeTools()
{
    if (!m_tools) {
        return;
    }
    if (m_tools->parentWidget() != this) {
        m_tools->setRoom(QWIDGETSIZE_MAX);
        return;
    }
    m_tools->setRoom(width() - chartHeaderWidth(m_content, m_fonts));
    const QSize size = m_tools->sizeHint();
    m_tools->setGeometry(width() - size.width(), 0, size.width(), size.height());
}

const ChartLayout &LineChart::layoutNow()
{
    if (m_isLayoutStale) {
        m_isLayoutStale = false;
        m_content.view.setAllSteps(m_content.allSteps());
        m_layout = layoutChart(m_content, rect(), headerHeight(), m_fonts, locale());
    }
    return m_layout;
}

void LineChart::refreshPicture()
{
    const qreal ratio = devicePixelRatioF();
    const QSize size(static_cast<int>(std::ceil(width() * ratio)),
                     static_cast<int>(std::ceil(height() * ratio)));
    if (!m_isPictureStale && m_picture.size() == size && m_picture.devicePixelRatioF() == ratio) {
        return;
    }
    m_isPictureStale = false;
    if (m_picture.size() != size) {
        m_picture = QImage(size, QImage::Format_ARGB32_Premultiplied);
    }
    m_picture.setDevicePixelRatio(ratio);
    m_picture.fill(Qt::transparent);
    paintChart(m_picture, m_content, layoutNow(), palette());
}

void LineChart::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (!m_content.isEmpty() && !size().isEmpty()) {
        refreshPicture();
        painter.drawImage(0, 0, m_picture);
        if (m_zoomFrame.isValid()) {
            paintZoomFrame(painter, m_layout, m_zoomFrame, palette());
        } else if (const auto mark = crosshair()) {
            paintCrosshair(painter, m_content, m_layout, *mark, palette(), locale());
        }
    }
    if (showsFocus(this)) {
        paintFocusRing(painter, rect(), controlCornerRadius, palette());
    }
}

std::optional<ChartMark> LineChart::crosshair()
{
    return m_crosshair.isHidden() ? std::nullopt : m_crosshair.mark(m_content, layoutNow().projection);
}

QString LineChart::spokenDescription() const
{
    if (m_content.isEmpty()) {
        return m_placeholder->text();
    }
    if (m_crosshair.isChosen()) {
        if (const auto mark = m_crosshair.mark(m_content, ChartProjection())) {
            return chartMarkText(m_content, *mark, locale());
        }
    }
    return chartSummary(m_content, locale());
}

QImage LineChart::image()
{
    const qreal ratio = std::max(2.0, devicePixelRatioF());
    const QFont font = textFont(TextRole::Heading, Weight::Semibold);
    const int margin = spacing::two;
    const int titleHeight = m_content.title.isEmpty() ? 0 : QFontMetrics(font).height() + spacing::one;
    const QSize size =
        this->size().expandedTo(minimumSizeHint()) + QSize(2 * margin, 2 * margin + titleHeight);
    QImage picture(size * ratio, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(ratio);
    picture.fill(color(ColorRole::CardBackground, palette()));
    const QRect inside = QRect(QPoint(0, 0), size).adjusted(margin, margin, -margin, -margin);
    {
        QPainter painter(&picture);
        painter.setFont(font);
        painter.setPen(color(ColorRole::Text, palette()));
        painter.drawText(inside, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine, m_content.title);
    }
    layoutNow();
    const ChartLayout layout =
        layoutChart(m_content, inside.adjusted(0, titleHeight, 0, 0), 0, m_fonts, locale());
    paintChart(picture, m_content, layout, palette());
    return picture;
}

void LineChart::copyImage()
{
    QGuiApplication::clipboard()->setImage(image());
}

QSize LineChart::sizeHint() const
{
    return {75 * gridUnit, 35 * gridUnit};
}

QSize LineChart::minimumSizeHint() const
{
    return {30 * gridUnit, 20 * gridUnit};
}

void LineChart::resizeEvent(QResizeEvent *)
{
    placePlaceholder();
    placeTools();
    contentChanged();
}

void LineChart::placePlaceholder()
{
    const int width = std::max(0, this->width() - 2 * spacing::two);
    const int height = std::min(m_placeholder->heightForWidth(width), this->height());
    m_placeholder->setGeometry(spacing::two, (this->height() - height) / 2, width, height);
}

void LineChart::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    switch (event->type()) {
    case QEvent::PaletteChange:
    case QEvent::FontChange:
    case QEvent::ApplicationFontChange:
    case QEvent::LocaleChange:
    case QEvent::StyleChange:
        m_fonts = ChartFonts::current();
        placePlaceholder();
        placeTools();
        contentChanged();
        break;
    default:
        break;
    }
}

} // namespace zorel::ui::kit
