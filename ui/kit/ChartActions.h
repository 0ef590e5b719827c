#pragma once

#include "ui/kit/ChartPoint.h"

#include <QObject>

class QAction;
class QMenu;
class QWidget;

namespace zorel::ui::kit {

/// What a user can do with a chart apart from pointing at it, each declared once for its menu and its tools.
class ChartActions : public QObject
{
    Q_OBJECT

public:
    /// `chart` gets the shortcuts, while it has the focus.
    explicit ChartActions(QWidget *chart);

    QAction *logarithmic() const { return m_logarithmic; }
    QAction *resetZoom() const { return m_resetZoom; }
    QAction *copyImage() const { return m_copyImage; }
    QAction *exportPoints() const { return m_exportPoints; }
    /// Everything; the chart's context menu.
    QMenu *menu() const { return m_menu; }
    QMenu *smoothingMenu() const { return m_smoothingMenu; }
    /// "Off", "Light", ..., or the weight where it is none of these.
    QString smoothingName() const;

    /// Shows what holds, without asking for it.
    void show(ChartScaleKind scale, double smoothing);

Q_SIGNALS:
    void scaleChosen(zorel::ui::kit::ChartScaleKind scale);
    void smoothingChosen(double weight);

private:
    QAction *m_logarithmic;
    QAction *m_resetZoom;
    QAction *m_copyImage;
    QAction *m_exportPoints;
    QMenu *m_menu;
    QMenu *m_smoothingMenu;
    double m_smoothing = 0;
};

} // namespace zorel::ui::kit
