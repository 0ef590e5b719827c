#pragma once

#include <QWidget>

#include <cstddef>

namespace zorel::app::settings {
class ZorelSettings;
}
namespace zorel::backend::bridge {
class BackendController;
}
namespace zorel::ui::kit {
class LineChart;
}

namespace zorel::ui::dashboard {

class LiveUpdates;

/// The loss over the steps, as far as the history goes back.
class LossChartPanel : public QWidget
{
    Q_OBJECT

public:
    /// All must outlive the panel.
    LossChartPanel(backend::bridge::BackendController &backend, app::settings::ZorelSettings &settings,
                   LiveUpdates &updates, QWidget *parent = nullptr);

private:
    void takeNewest(std::size_t points);
    void followHint();

    backend::bridge::BackendController &m_backend;
    app::settings::ZorelSettings &m_settings;
    kit::LineChart *m_chart;
    int m_series;
};

} // namespace zorel::ui::dashboard
