#include "ui/kit/ResponsiveColumns.h"

#include "ui/kit/Metrics.h"

#include <QBoxLayout>
#include <QResizeEvent>

namespace zorel::ui::kit {

namespace {

/// From here on the columns stand side by side.
constexpr int wideEnough = 1100;
/// More than a scroll bar's width: one that comes or goes with the arrangement must not change the
/// arrangement back.
constexpr int reluctance = 32;

QVBoxLayout *makeColumn(QWidget *column)
{
    auto *layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::two);
    return layout;
}

} // namespace

ResponsiveColumns::ResponsiveColumns(QWidget *parent)
    : QWidget(parent)
    , m_columns(new QBoxLayout(QBoxLayout::TopToBottom, this))
{
    auto *leading = new QWidget(this);
    auto *trailing = new QWidget(this);
    m_leading = makeColumn(leading);
    m_trailing = makeColumn(trailing);
    m_columns->setContentsMargins(0, 0, 0, 0);
    m_columns->setSpacing(spacing::two);
    m_columns->addWidget(leading);
    m_columns->addWidget(trailing);
    share();
}

void ResponsiveColumns::setStretch(int leading, int trailing)
{
    m_leadingStretch = leading;
    m_trailingStretch = trailing;
    share();
}

/// One below the other, height to spare goes below both.
void ResponsiveColumns::share()
{
    m_columns->setStretch(0, isWide() ? m_leadingStretch : 0);
    m_columns->setStretch(1, isWide() ? m_trailingStretch : 1);
}

bool ResponsiveColumns::isWide() const
{
    return m_columns->direction() == QBoxLayout::LeftToRight;
}

void ResponsiveColumns::choose(int width)
{
    const bool shouldBeWide = width >= (isWide() ? wideEnough - reluctance : wideEnough);
    if (shouldBeWide == isWide()) {
        return;
    }
    m_columns->setDirection(shouldBeWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    share();
}

void ResponsiveColumns::resizeEvent(QResizeEvent *event)
{
    choose(event->size().width());
    QWidget::resizeEvent(event);
}

} // namespace zorel::ui::kit
