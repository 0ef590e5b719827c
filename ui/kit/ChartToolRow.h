#pragma once

#include <QWidget>

namespace zorel::ui::kit {

class ActionButton;
class ChartActions;

/// The small row of buttons of a chart. Those for which there is no room are left out, all but "More", whose
/// menu has everything.
class ChartToolRow : public QWidget
{
    Q_OBJECT

public:
    explicit ChartToolRow(ChartActions *actions, QWidget *parent);

    /// Takes over what the actions show.
    void refresh();
    /// Buttons to leave out where there is less room than this.
    void setRoom(int width);

private:
    ActionButton *addButton(const QString &title);
    void arrange();

    ChartActions *m_actions;
    int m_room = QWIDGETSIZE_MAX;
    ActionButton *m_logarithmic;
    ActionButton *m_smoothing;
    ActionButton *m_resetZoom;
    ActionButton *m_more;
};

} // namespace zorel::ui::kit
