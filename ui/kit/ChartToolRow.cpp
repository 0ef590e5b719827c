#include "ui/kit/ChartToolRow.h"

#include "ui/kit/ActionButton.h"
#include "ui/kit/ChartActions.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Typography.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMenu>

namespace zorel::ui::kit {

namespace {

/// Tells that a button opens a menu.
const QString menuMark = QStringLiteral(" ▾");

} // namespace

ChartToolRow::ChartToolRow(ChartActions *actions, QWidget *parent)
    : QWidget(parent)
    , m_actions(actions)
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::half);
    m_resetZoom = addButton(QStringLiteral("Reset zoom"));
    m_logarithmic = addButton(QStringLiteral("Log scale"));
    m_smoothing = addButton(QStringLiteral("Smoothing"));
    m_more = addButton(QStringLiteral("More") + menuMark);
    m_logarithmic->setCheckable(true);
    m_logarithmic->setToolTip(QStringLiteral("Logarithmic scale (L)"));
    m_resetZoom->setToolTip(QStringLiteral("Show everything again (Esc)"));
    m_smoothing->setMenu(actions->smoothingMenu());
    m_more->setMenu(actions->menu());
    m_more->setAccessibleName(QStringLiteral("More"));
    connect(m_logarithmic, &QAbstractButton::clicked, actions->logarithmic(), &QAction::trigger);
    connect(m_resetZoom, &QAbstractButton::clicked, actions->resetZoom(), &QAction::trigger);
    refresh();
}

ActionButton *ChartToolRow::addButton(const QString &title)
{
    auto *button = new ActionButton({}, title, ActionButton::Style::Plain, this);
    setTextFont(button, TextRole::Caption);
    button->setTone(ColorRole::Secondary);
    layout()->addWidget(button);
    return button;
}

void ChartToolRow::refresh()
{
    m_logarithmic->setChecked(m_actions->logarithmic()->isChecked());
    const QString smoothing = QStringLiteral("Smoothing: %1").arg(m_actions->smoothingName());
    m_smoothing->setTitle(smoothing + menuMark);
    m_smoothing->setAccessibleName(smoothing);
    arrange();
}

void ChartToolRow::setRoom(int width)
{
    if (m_room != width) {
        m_room = width;
        arrange();
    }
}

void ChartToolRow::arrange()
{
    int used = m_more->sizeHint().width();
    const auto place = [&](ActionButton *button, bool isWanted) {
        const int width = button->sizeHint().width() + spacing::half;
        const bool fits = isWanted && used + width <= m_room;
        button->setVisible(fits);
        used += fits ? width : 0;
    };
    // In the order of what is missed most.
    place(m_resetZoom, m_actions->resetZoom()->isEnabled());
    place(m_logarithmic, true);
    place(m_smoothing, true);
}

} // namespace zorel::ui::kit
