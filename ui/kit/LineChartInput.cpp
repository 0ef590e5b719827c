// What a user does with a LineChart by pointer, keyboard and menu.

#include "ui/kit/ChartActions.h"
#include "ui/kit/ChartExport.h"
#include "ui/kit/ChartNavigation.h"
#include "ui/kit/LineChart.h"
#include "ui/kit/LineChartAccessible.h"
#include "ui/kit/Repaint.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QKeyEvent>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zorel::ui::kit {

namespace {

constexpr double zoomFactor = 0.5;
/// Of the points shown, by Page Up and Page Down.
constexpr int pagesPerView = 10;
/// A frame less wide or high than this many pixels goes from edge to edge.
constexpr int thinFrame = 16;

QString fileNameFor(const QString &title)
{
    QString name;
    for (const QChar c : title) {
        name += c.isLetterOrNumber() || c == QLatin1Char('-') || c == QLatin1Char('_') ? c : QLatin1Char(' ');
    }
    name = name.simplified();
    return (name.isEmpty() ? QStringLiteral("chart") : name) + QStringLiteral(".csv");
}

} // namespace

QPointF LineChart::inPlot(QPointF position)
{
    return position - QPointF(layoutNow().plot.topLeft());
}

void LineChart::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && !m_content.isEmpty() &&
        layoutNow().plot.contains(event->pos())) {
        m_dragStart = event->pos();
    }
}

void LineChart::mouseMoveEvent(QMouseEvent *event)
{
    if (m_content.isEmpty()) {
        return;
    }
    if (m_dragStart) {
        frameTo(event->pos());
    } else if (layoutNow().plot.adjusted(-1, -1, 1, 1).contains(event->pos())) {
        m_crosshair.follow(inPlot(event->position()));
    } else {
        m_crosshair.leave();
    }
    m_repaint->request();
}

void LineChart::frameTo(QPoint position)
{
    const QPoint way = position - *m_dragStart;
    if (!m_zoomFrame.isValid() && way.manhattanLength() < QApplication::startDragDistance()) {
        return;
    }
    const QRect &plot = layoutNow().plot;
    QRect frame = QRect(*m_dragStart, position).normalized();
    if (std::abs(way.y()) < thinFrame) {
        frame.setTop(plot.top());
        frame.setBottom(plot.bottom());
    } else if (std::abs(way.x()) < thinFrame) {
        frame.setLeft(plot.left());
        frame.setRight(plot.right());
    }
    m_zoomFrame = frame & plot;
}

void LineChart::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    m_dragStart.reset();
    if (m_zoomFrame.isValid()) {
        zoomToFrame();
        m_zoomFrame = QRect();
        m_repaint->request();
    }
}

void LineChart::zoomToFrame()
{
    const ChartLayout &layout = layoutNow();
    const QRectF frame = QRectF(m_zoomFrame).translated(-layout.plot.topLeft());
    ChartRange steps{layout.projection.stepAt(frame.left()), layout.projection.stepAt(frame.right())};
    std::optional<ChartRange> values = m_content.view.values();
    if (m_zoomFrame.width() == layout.plot.width()) {
        steps = m_content.view.steps();
    }
    if (m_zoomFrame.height() < layout.plot.height()) {
        values = {layout.projection.valueAt(frame.bottom()), layout.projection.valueAt(frame.top())};
    }
    m_content.view.zoomTo(steps, values);
    viewChanged();
}

void LineChart::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        resetZoom();
    }
}

void LineChart::leaveEvent(QEvent *)
{
    m_crosshair.leave();
    m_repaint->request();
}

void LineChart::wheelEvent(QWheelEvent *event)
{
    // Without the key the wheel belongs to the page that the chart stands on.
    if (!event->modifiers().testFlag(Qt::ControlModifier) || m_content.isEmpty()) {
        event->ignore();
        return;
    }
    constexpr double turnsPerDoubling = 2 * 120;
    const double turned = event->angleDelta().y() / turnsPerDoubling;
    zoomAround(std::pow(zoomFactor, turned), layoutNow().projection.stepAt(inPlot(event->position()).x()));
}

bool LineChart::event(QEvent *event)
{
    if (event->type() == QEvent::ChildRemoved) {
        // The tools may have moved elsewhere.
        contentChanged();
    }
    if (event->type() == QEvent::NativeGesture && !m_content.isEmpty()) {
        const auto *gesture = static_cast<QNativeGestureEvent *>(event);
        if (gesture->gestureType() == Qt::ZoomNativeGesture) {
            const double at = layoutNow().projection.stepAt(inPlot(gesture->position()).x());
            zoomAround(1 / std::max(0.1, 1 + gesture->value()), at);
            return true;
        }
    }
    return QWidget::event(event);
}

void LineChart::zoomAround(double factor, double step)
{
    m_content.view.zoomBy(factor, std::clamp(step, m_content.view.steps().low, m_content.view.steps().high));
    viewChanged();
}

void LineChart::keyPressEvent(QKeyEvent *event)
{
    const bool isPlain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    if (m_content.isEmpty() || !isPlain || !takeKey(event->key())) {
        event->ignore();
    }
}

bool LineChart::takeKey(int key)
{
    switch (key) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        zoomByKey(zoomFactor);
        return true;
    case Qt::Key_Minus:
        zoomByKey(1 / zoomFactor);
        return true;
    case Qt::Key_Escape:
        return escape();
    default:
        return moveCrosshair(key);
    }
}

void LineChart::zoomByKey(double factor)
{
    const ChartRange steps = layoutNow().projection.steps.range();
    const auto mark = crosshair();
    zoomAround(factor, mark ? static_cast<double>(m_content.at(*mark).step) : (steps.low + steps.high) / 2);
}

/// One thing at a time, and nothing where nothing is to be taken back: a sheet around the chart closes then.
bool LineChart::escape()
{
    if (m_zoomFrame.isValid()) {
        m_zoomFrame = QRect();
        m_dragStart.reset();
    } else if (m_crosshair.isChosen()) {
        m_crosshair.hide();
        tellDescriptionChanged(this);
    } else if (isZoomed()) {
        resetZoom();
    } else {
        return false;
    }
    m_repaint->request();
    return true;
}

bool LineChart::moveCrosshair(int key)
{
    const bool isBack =
        key == Qt::Key_Left || key == Qt::Key_PageUp || key == Qt::Key_Home || key == Qt::Key_Up;
    const ChartDirection direction = isBack ? ChartDirection::Back : ChartDirection::Forward;
    const auto mark = crosshair();
    std::optional<ChartMark> target;
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        target = mark ? neighbourOf(m_content, *mark, direction, 1) : entryFrom(m_content, direction);
        break;
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: {
        const auto shown = mark ? points(mark->series).size() : 0;
        target =
            mark ? neighbourOf(m_content, *mark, direction, std::max<std::size_t>(1, shown / pagesPerView))
                 : entryFrom(m_content, direction);
        break;
    }
    case Qt::Key_Home:
    case Qt::Key_End: {
        const auto entry = mark ? mark : entryFrom(m_content, direction);
        target = entry ? endOf(m_content, entry->series, direction) : std::nullopt;
        break;
    }
    case Qt::Key_Up:
    case Qt::Key_Down:
        // With one series these belong to the page.
        if (m_content.series.size() < 2) {
            return false;
        }
        target = mark ? acrossFrom(m_content, *mark, direction) : entryFrom(m_content, direction);
        break;
    default:
        return false;
    }
    if (target) {
        chooseByKey(*target);
    } else if (mark) {
        chooseByKey(*mark);
    }
    return true;
}

void LineChart::chooseByKey(ChartMark mark)
{
    m_crosshair.choose(mark);
    m_content.view.show(static_cast<double>(m_content.at(mark).step));
    if (isZoomed()) {
        viewChanged();
    }
    m_repaint->request();
    tellDescriptionChanged(this);
}

void LineChart::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    m_repaint->request();
}

void LineChart::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    // Behind a menu of its own the crosshair stays.
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason &&
        m_crosshair.isChosen()) {
        m_crosshair.hide();
    }
    m_repaint->request();
}

void LineChart::contextMenuEvent(QContextMenuEvent *event)
{
    if (m_content.isEmpty()) {
        event->ignore();
        return;
    }
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    m_actions->menu()->popup(isByKey ? mapToGlobal(layoutNow().plot.center()) : event->globalPos());
}

void LineChart::exportPoints(const QString &path)
{
    std::vector<ChartTable> tables;
    for (int number = 0; number < static_cast<int>(m_content.series.size()); ++number) {
        const auto all = points(number);
        tables.push_back({m_content.nameOf(number), {all.begin(), all.end()}});
    }
    m_export->write(path, std::move(tables));
}

void LineChart::chooseExport()
{
    auto *dialog = new QFileDialog(this, QStringLiteral("Export Points as CSV"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("csv"));
    dialog->setNameFilter(QStringLiteral("Comma-separated values (*.csv)"));
    dialog->selectFile(fileNameFor(m_content.title));
    connect(dialog, &QFileDialog::fileSelected, this, &LineChart::exportPoints);
    dialog->open();
}

void LineChart::exportHasFailed(const QString &path, const QString &message)
{
    auto *box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Export Points as CSV"), message,
                                QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->open();
    Q_EMIT exportFailed(path, message);
}

} // namespace zorel::ui::kit
