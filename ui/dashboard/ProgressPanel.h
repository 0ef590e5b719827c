#pragma once

#include <QWidget>

namespace zorel::app::settings {
class ZorelSettings;
}
namespace zorel::backend::bridge {
class BackendController;
}
namespace zorel::ui::kit {
class Card;
class ElidedLabel;
class Figure;
class ProgressMeter;
} // namespace zorel::ui::kit

namespace zorel::ui::dashboard {

class LiveUpdates;
class PreparationView;

/// How far the run has come, and its figures.
class ProgressPanel : public QWidget
{
    Q_OBJECT

public:
    /// All must outlive the panel.
    ProgressPanel(backend::bridge::BackendController &backend, app::settings::ZorelSettings &settings,
                  LiveUpdates &updates, QWidget *parent = nullptr);

private:
    void followFamily();
    void followStatus();

    backend::bridge::BackendController &m_backend;
    app::settings::ZorelSettings &m_settings;
    kit::Card *m_card;
    kit::ElidedLabel *m_steps;
    kit::ProgressMeter *m_meter;
    PreparationView *m_preparation;
    kit::Figure *m_loss;
    kit::Figure *m_perplexity;
    kit::Figure *m_learningRate;
    kit::Figure *m_gradNorm;
    kit::Figure *m_throughput;
};

} // namespace zorel::ui::dashboard
