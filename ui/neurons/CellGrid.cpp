#include "ui/neurons/CellGrid.h"

#include "ui/kit/Colors.h"
#include "ui/neurons/CellGridAccessible.h"

#include <QAccessible>
#include <QFontMetricsF>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace zorel::ui::neurons {

namespace {

constexpr qreal outlineWidth = 1.5;
constexpr int labelPixels = 9;
constexpr int rowsOfAPageWithoutWindow = 10;

QFont labelFont()
{
    QFont font(QStringLiteral("monospace"));
    font.setStyleHint(QFont::TypeWriter);
    font.setPixelSize(labelPixels);
    return font;
}

int longestRow(const CellGridSource &source)
{
    int columns = 0;
    for (int row = 0; row < source.rowCount(); ++row) {
        columns = std::max(columns, source.columnCount(row));
    }
    return columns;
}

qreal widestLabel(const CellGridSource &source)
{
    const QFontMetricsF metrics(labelFont());
    qreal width = 0;
    for (int row = 0; row < source.rowCount(); ++row) {
        width = std::max(width, metrics.horizontalAdvance(source.rowLabel(row)));
    }
    return width;
}

} // namespace

CellGrid::CellGrid(const QString &accessibleName, QWidget *parent)
    : QWidget(parent)
{
    installCellGridAccessibility();
    setAccessibleName(accessibleName);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

CellGrid::~CellGrid() = default;

void CellGrid::setSource(std::shared_ptr<const CellGridSource> source, qreal cellSize)
{
    const CellGridGeometry before = m_geometry;
    m_source = std::move(source);
    m_labelWidth = m_source ? widestLabel(*m_source) : 0;
    m_geometry = m_source ? fittingGeometry(m_source->rowCount(), longestRow(*m_source), cellSize)
                          : CellGridGeometry();
    if (cellSize != before.cellSize()) {
        m_squares.clear();
    }
    if (m_current && !hasCell(*m_current)) {
        m_current.reset();
    }
    if (!m_current && hasCell({0, 0})) {
        m_current = CellPosition{0, 0};
    }
    if (m_selected && !hasCell(*m_selected)) {
        m_selected.reset();
    }
    followSize(before);
    if (m_geometry.rows() != before.rows() || m_geometry.columns() != before.columns()) {
        QAccessibleTableModelChangeEvent change(this, QAccessibleTableModelChangeEvent::ModelReset);
        QAccessible::updateAccessibility(&change);
    }
    update();
}

void CellGrid::fitInto(int width)
{
    if (std::exchange(m_room, width) == width) {
        return;
    }
    const CellGridGeometry before = m_geometry;
    m_geometry = fittingGeometry(before.rows(), before.columns(), before.cellSize());
    followSize(before);
}

// Rows stay as far apart as they are, so that the height does not depend on the width: a view would come and
// go with its scroll bars otherwise.
CellGridGeometry CellGrid::fittingGeometry(int rows, int columns, qreal cellSize) const
{
    const CellGridGeometry wide(rows, columns, cellSize, m_labelWidth);
    const CellGridGeometry narrow(rows, columns, cellSize, m_labelWidth, CellGridGeometry::narrowGap);
    const bool isHelpful = m_room && wide.size().width() > *m_room && narrow.size().width() <= *m_room;
    return isHelpful ? narrow : wide;
}

void CellGrid::followSize(const CellGridGeometry &before)
{
    if (m_geometry.size() != before.size()) {
        updateGeometry();
        update();
        Q_EMIT neededSizeChanged();
    }
}

bool CellGrid::hasCell(CellPosition cell) const
{
    return m_source && cell.row >= 0 && cell.row < m_source->rowCount() && cell.column >= 0 &&
           cell.column < m_source->columnCount(cell.row);
}

void CellGrid::setSelectedCell(std::optional<CellPosition> cell)
{
    if (cell && !hasCell(*cell)) {
        cell.reset();
    }
    if (cell == m_selected) {
        return;
    }
    m_selected = cell;
    update();
}

void CellGrid::setCurrentCell(CellPosition cell)
{
    if (!hasCell(cell) || cell == m_current) {
        return;
    }
    m_current = cell;
    update();
    Q_EMIT currentCellChanged(m_geometry.cell(cell).toAlignedRect());
    announce(cell);
}

void CellGrid::announce(CellPosition cell)
{
    if (!hasFocus() || !QAccessible::isActive()) {
        return;
    }
    QAccessibleEvent focus(this, QAccessible::Focus);
    focus.setChild(accessibleChildIndex(*this, cell));
    QAccessible::updateAccessibility(&focus);
}

void CellGrid::pressCell(CellPosition cell)
{
    if (hasCell(cell)) {
        setCurrentCell(cell);
        Q_EMIT cellPressed(cell);
    }
}

QSize CellGrid::sizeHint() const
{
    return m_geometry.size();
}

int CellGrid::rowsOfAPage() const
{
    const QWidget *view = parentWidget();
    if (!view || m_geometry.rowPitch() <= 0) {
        return rowsOfAPageWithoutWindow;
    }
    return std::max(1, static_cast<int>(view->height() / m_geometry.rowPitch()) - 1);
}

std::optional<CellPosition> CellGrid::neighbour(int key, Qt::KeyboardModifiers modifiers) const
{
    CellPosition cell = *m_current;
    const bool whole = modifiers.testFlag(Qt::ControlModifier);
    switch (key) {
    case Qt::Key_Left:
        --cell.column;
        break;
    case Qt::Key_Right:
        ++cell.column;
        break;
    case Qt::Key_Up:
        --cell.row;
        break;
    case Qt::Key_Down:
        ++cell.row;
        break;
    case Qt::Key_PageUp:
        cell.row = std::max(0, cell.row - rowsOfAPage());
        break;
    case Qt::Key_PageDown:
        cell.row = std::min(m_source->rowCount() - 1, cell.row + rowsOfAPage());
        break;
    case Qt::Key_Home:
        cell = {whole ? 0 : cell.row, 0};
        break;
    case Qt::Key_End:
        cell.row = whole ? m_source->rowCount() - 1 : cell.row;
        cell.column = m_source->columnCount(cell.row) - 1;
        break;
    default:
        return std::nullopt;
    }
    if (cell.row >= 0 && cell.row < m_source->rowCount() && cell.row != m_current->row) {
        cell.column = std::min(cell.column, m_source->columnCount(cell.row) - 1);
    }
    return hasCell(cell) ? cell : *m_current;
}

void CellGrid::keyPressEvent(QKeyEvent *event)
{
    if (!m_current) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        pressCell(*m_current);
    } else if (const auto cell = neighbour(event->key(), event->modifiers())) {
        setCurrentCell(*cell);
    } else {
        QWidget::keyPressEvent(event);
    }
}

void CellGrid::mousePressEvent(QMouseEvent *event)
{
    const auto cell = m_geometry.cellAt(event->position());
    if (event->button() == Qt::LeftButton && cell) {
        pressCell(*cell);
    } else {
        QWidget::mousePressEvent(event);
    }
}

void CellGrid::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    update();
    if (m_current) {
        // The mouse is at a cell of its own, which must not move away beneath it.
        if (event->reason() != Qt::MouseFocusReason) {
            Q_EMIT currentCellChanged(m_geometry.cell(*m_current).toAlignedRect());
        }
        announce(*m_current);
    }
}

void CellGrid::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    update();
}

void CellGrid::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        update();
    }
}

bool CellGrid::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip) {
        return QWidget::event(event);
    }
    const auto *help = static_cast<QHelpEvent *>(event);
    const auto cell = m_geometry.cellAt(help->pos());
    if (cell && hasCell(*cell)) {
        QToolTip::showText(help->globalPos(), m_source->toolTip(*cell), this,
                           m_geometry.cell(*cell).toAlignedRect());
    } else {
        QToolTip::hideText();
        event->ignore();
    }
    return true;
}

void CellGrid::paintEvent(QPaintEvent *event)
{
    if (!m_source) {
        return;
    }
    QPainter painter(this);
    painter.setFont(labelFont());
    painter.setPen(kit::color(kit::ColorRole::Secondary, palette()));
    if (m_squareRatio != devicePixelRatioF()) {
        m_squares.clear();
        m_squareRatio = devicePixelRatioF();
    }
    const QRect exposed = event->rect();
    const auto rows = m_geometry.rowsBetween(exposed.top(), exposed.bottom());
    for (int row = rows.first; row <= rows.last; ++row) {
        paintRow(painter, row, exposed);
    }
    paintOutlines(painter);
}

void CellGrid::paintRow(QPainter &painter, int row, const QRect &exposed)
{
    const QRectF label = m_geometry.label(row);
    if (label.right() >= exposed.left()) {
        painter.drawText(label, Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip,
                         m_source->rowLabel(row));
    }
    const auto columns = m_geometry.columnsBetween(exposed.left(), exposed.right());
    const int last = std::min(columns.last, m_source->columnCount(row) - 1);
    for (int column = columns.first; column <= last; ++column) {
        const CellPosition cell{row, column};
        painter.drawPixmap(m_geometry.cell(cell).topLeft(), square(m_source->color(cell), m_squareRatio));
    }
}

const QPixmap &CellGrid::square(QRgb color, qreal devicePixelRatio)
{
    QPixmap &pixmap = m_squares[color];
    if (pixmap.isNull()) {
        const qreal side = m_geometry.cellSize();
        const int pixels = static_cast<int>(std::ceil(side * devicePixelRatio));
        pixmap = QPixmap(pixels, pixels);
        pixmap.setDevicePixelRatio(devicePixelRatio);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor::fromRgb(color));
        painter.drawRoundedRect(QRectF(0, 0, side, side), CellGridGeometry::cornerRadius,
                                CellGridGeometry::cornerRadius);
    }
    return pixmap;
}

void CellGrid::paintOutlines(QPainter &painter) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    const qreal radius = CellGridGeometry::cornerRadius;
    if (m_selected) {
        const qreal half = outlineWidth / 2;
        painter.setPen(QPen(kit::color(kit::ColorRole::AccentFill, palette()), outlineWidth));
        painter.drawRoundedRect(m_geometry.cell(*m_selected).adjusted(half, half, -half, -half), radius,
                                radius);
    }
    if (m_current && hasFocus()) {
        painter.setPen(QPen(kit::color(kit::ColorRole::Text, palette()), 1));
        painter.drawRoundedRect(m_geometry.cell(*m_current).adjusted(-1, -1, 1, 1), radius + 1, radius + 1);
    }
}

} // namespace zorel::ui::neurons
