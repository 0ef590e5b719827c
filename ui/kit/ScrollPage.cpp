#include "ui/kit/ScrollPage.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/ReadingOrder.h"

#include <QApplication>
#include <QBoxLayout>
#include <QScrollBar>

#include <algorithm>

namespace zorel::ui::kit {

ScrollPage::ScrollPage(QWidget *parent)
    : QScrollArea(parent)
    , m_leadingMargin(spacing::two)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    auto *page = new QWidget;
    m_content = new QVBoxLayout(page);
    m_content->setContentsMargins(spacing::two, spacing::two, spacing::two, spacing::two);
    m_content->setSpacing(spacing::two);
    setWidget(page);
    // The window's colour, not that of a list.
    viewport()->setAutoFillBackground(false);
    page->setAutoFillBackground(false);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget *, QWidget *focused) { reveal(focused); });
}

ScrollPage::~ScrollPage()
{
    // Taking the content down moves the focus, when this is no page any more.
    disconnect(qApp, nullptr, this, nullptr);
}

void ScrollPage::setLeadingMargin(int margin)
{
    m_leadingMargin = margin;
    setSideMargins();
}

QSize ScrollPage::minimumSizeHint() const
{
    return {widget()->minimumSizeHint().width(), 20 * gridUnit};
}

void ScrollPage::showEvent(QShowEvent *event)
{
    applyReadingOrder(this);
    QScrollArea::showEvent(event);
}

void ScrollPage::resizeEvent(QResizeEvent *event)
{
    setSideMargins();
    QScrollArea::resizeEvent(event);
}

void ScrollPage::setSideMargins()
{
    const int besideBar = std::max(spacing::two - (width() - viewport()->width()), spacing::half);
    QMargins margins = m_content->contentsMargins();
    margins.setLeft(isRightToLeft() ? besideBar : m_leadingMargin);
    margins.setRight(isRightToLeft() ? m_leadingMargin : besideBar);
    m_content->setContentsMargins(margins);
}

bool ScrollPage::focusNextPrevChild(bool next)
{
    applyReadingOrder(this);
    return QScrollArea::focusNextPrevChild(next);
}

QWidget *ScrollPage::placeOf(QWidget *widget) const
{
    QWidget *place = widget;
    for (QWidget *around = widget; around && around != this; around = around->parentWidget()) {
        if (qobject_cast<QAbstractScrollArea *>(around)) {
            place = around;
        }
    }
    return place;
}

void ScrollPage::reveal(QWidget *focused)
{
    if (!focused || focused == widget() || !widget()->isAncestorOf(focused)) {
        return;
    }
    QWidget *place = placeOf(focused);
    const QRect area(place->mapTo(widget(), QPoint()), place->size());
    if (area.height() <= viewport()->height()) {
        ensureWidgetVisible(place, spacing::two, spacing::two);
    } else if (place->visibleRegion().isEmpty()) {
        verticalScrollBar()->setValue(area.top() - spacing::two);
    }
}

} // namespace zorel::ui::kit
