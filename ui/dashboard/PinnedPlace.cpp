#include "ui/dashboard/PinnedPlace.h"

#include "ui/kit/Colors.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ReadingOrder.h"

#include <QEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace zorel::ui::dashboard {

namespace {

constexpr int gap = kit::spacing::one;
constexpr int fade = kit::spacing::two;

/// Covers what scrolls beneath the bar, from the edge of the view to a little beyond the bar.
class Backdrop : public QWidget
{
public:
    using QWidget::QWidget;

    void setEdge(Qt::Edge edge)
    {
        m_edge = edge;
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        const QColor solid = kit::color(kit::ColorRole::WindowBackground, palette());
        QColor clear = solid;
        clear.setAlpha(0);
        QLinearGradient gradient(0, 0, 0, height());
        const double end = std::min(1.0, static_cast<double>(fade) / std::max(height(), 1));
        if (m_edge == Qt::BottomEdge) {
            gradient.setStops({{0, clear}, {end, solid}, {1, solid}});
        } else {
            gradient.setStops({{0, solid}, {1 - end, solid}, {1, clear}});
        }
        QPainter(this).fillRect(rect(), gradient);
    }

private:
    Qt::Edge m_edge = Qt::BottomEdge;
};

} // namespace

PinnedPlace::PinnedPlace(QWidget *bar, QScrollArea *page)
    : m_bar(bar)
    , m_page(page)
    , m_backdrop(new Backdrop(page->widget()))
{
    // Not Fixed, which would hold the height to that of the hint, whatever the width.
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    m_backdrop->hide();
    m_bar->setParent(page->widget());
    kit::setReadingPlace(m_bar, this);
    m_bar->installEventFilter(this);
    m_page->viewport()->installEventFilter(this);
    connect(m_page->verticalScrollBar(), &QScrollBar::valueChanged, this, &PinnedPlace::placeBar);
}

QSize PinnedPlace::sizeHint() const
{
    return m_bar->sizeHint();
}

QSize PinnedPlace::minimumSizeHint() const
{
    return m_bar->minimumSizeHint();
}

bool PinnedPlace::hasHeightForWidth() const
{
    return m_bar->hasHeightForWidth();
}

int PinnedPlace::heightForWidth(int width) const
{
    return m_bar->heightForWidth(width);
}

void PinnedPlace::uncover(const QWidget *widget)
{
    if (m_bar->isAncestorOf(widget) || !m_page->widget()->isAncestorOf(widget)) {
        return;
    }
    const QRect bar = m_backdrop->isHidden() ? m_bar->geometry() : m_backdrop->geometry();
    const QRect hidden(widget->mapTo(m_page->widget(), QPoint(0, 0)), widget->size());
    if (!hidden.intersects(bar)) {
        return;
    }
    // Pinned to the lower edge the bar hides what lies below, at the upper edge what lies above.
    const int place = mapTo(m_page->widget(), QPoint(0, 0)).y();
    const int by = m_bar->y() < place ? hidden.bottom() + 1 - bar.top() : hidden.top() - bar.bottom() - 1;
    m_page->verticalScrollBar()->setValue(m_page->verticalScrollBar()->value() + by);
}

bool PinnedPlace::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::Show:
    case QEvent::ParentChange:
        watchAncestors();
        placeBar();
        break;
    case QEvent::Move:
    case QEvent::Resize:
        placeBar();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

bool PinnedPlace::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
        if (watched != m_bar) {
            placeBar();
        }
        break;
    case QEvent::LayoutRequest:
        if (watched == m_bar) {
            updateGeometry();
        }
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void PinnedPlace::watchAncestors()
{
    for (QWidget *ancestor = parentWidget(); ancestor != nullptr && ancestor != m_page->viewport();
         ancestor = ancestor->parentWidget()) {
        ancestor->installEventFilter(this);
    }
}

void PinnedPlace::placeBar()
{
    QWidget *content = m_page->widget();
    if (!content->isAncestorOf(this)) {
        return;
    }
    const int height = this->height();
    const QPoint place = mapTo(content, QPoint(0, 0));
    const int viewTop = -content->y();
    const int viewBottom = viewTop + m_page->viewport()->height();
    // In a view lower than the bar, its top is seen.
    const int lowest = std::max(viewTop, viewBottom - height - gap);
    const int highest = std::min(viewTop + gap, lowest);
    m_bar->setGeometry(place.x(), std::clamp(place.y(), highest, lowest), width(), height);
    placeBackdrop(viewTop, viewBottom);
    m_bar->raise();
}

void PinnedPlace::placeBackdrop(int viewTop, int viewBottom)
{
    const QRect bar = m_bar->geometry();
    const int place = mapTo(m_page->widget(), QPoint(0, 0)).y();
    m_backdrop->setVisible(bar.top() != place);
    if (bar.top() < place) {
        const int top = bar.top() - fade;
        m_backdrop->setGeometry(bar.left(), top, bar.width(), viewBottom - top);
        static_cast<Backdrop *>(m_backdrop)->setEdge(Qt::BottomEdge);
    } else {
        m_backdrop->setGeometry(bar.left(), viewTop, bar.width(), bar.bottom() + 1 + fade - viewTop);
        static_cast<Backdrop *>(m_backdrop)->setEdge(Qt::TopEdge);
    }
    m_backdrop->raise();
}

} // namespace zorel::ui::dashboard
