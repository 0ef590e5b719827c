#include "ui/kit/ChartActions.h"

#include "ui/kit/ContextMenu.h"

#include <QAction>
#include <QActionGroup>
#include <QLocale>

#include <array>

namespace zorel::ui::kit {

namespace {

struct SmoothingChoice
{
    double weight;
    const char *name;
};

constexpr std::array smoothingChoices{SmoothingChoice{0, "Off"}, SmoothingChoice{0.6, "Light"},
                                      SmoothingChoice{0.9, "Medium"}, SmoothingChoice{0.98, "Strong"}};

QAction *makeAction(QWidget *chart, const QString &text, const QKeySequence &shortcut)
{
    auto *action = new QAction(text, chart);
    if (!shortcut.isEmpty()) {
        action->setShortcut(shortcut);
        action->setShortcutContext(Qt::WidgetShortcut);
    }
    chart->addAction(action);
    return action;
}

} // namespace

ChartActions::ChartActions(QWidget *chart)
    : QObject(chart)
    , m_logarithmic(makeAction(chart, QStringLiteral("Logarithmic Scale"), Qt::Key_L))
    , m_resetZoom(makeAction(chart, QStringLiteral("Reset Zoom"), {}))
    , m_copyImage(makeAction(chart, QStringLiteral("Copy as Image"), QKeySequence::Copy))
    , m_exportPoints(makeAction(chart, QStringLiteral("Export Points as CSV…"), {}))
    , m_menu(new ContextMenu(chart))
    , m_smoothingMenu(new QMenu(QStringLiteral("Smoothing"), m_menu))
{
    m_logarithmic->setCheckable(true);
    connect(m_logarithmic, &QAction::triggered, this, [this](bool isOn) {
        Q_EMIT scaleChosen(isOn ? ChartScaleKind::Logarithmic : ChartScaleKind::Linear);
    });
    auto *group = new QActionGroup(this);
    for (const SmoothingChoice &choice : smoothingChoices) {
        QAction *action = m_smoothingMenu->addAction(QLatin1String(choice.name));
        action->setCheckable(true);
        action->setData(choice.weight);
        group->addAction(action);
        connect(action, &QAction::triggered, this,
                [this, weight = choice.weight] { Q_EMIT smoothingChosen(weight); });
    }
    m_menu->addAction(m_logarithmic);
    m_menu->addMenu(m_smoothingMenu);
    m_menu->addAction(m_resetZoom);
    m_menu->addSeparator();
    m_menu->addAction(m_copyImage);
    m_menu->addAction(m_exportPoints);
    show(ChartScaleKind::Linear, 0);
}

QString ChartActions::smoothingName() const
{
    for (const SmoothingChoice &choice : smoothingChoices) {
        if (choice.weight == m_smoothing) {
            return QLatin1String(choice.name);
        }
    }
    return QLocale().toString(m_smoothing);
}

void ChartActions::show(ChartScaleKind scale, double smoothing)
{
    m_smoothing = smoothing;
    m_logarithmic->setChecked(scale == ChartScaleKind::Logarithmic);
    for (QAction *action : m_smoothingMenu->actions()) {
        action->setChecked(action->data().toDouble() == smoothing);
    }
}

} // namespace zorel::ui::kit
