#pragma once

#include <QWidget>

namespace zorel::backend::bridge {
class BackendController;
}
namespace zorel::ui::kit {
class Figure;
class TextLabel;
} // namespace zorel::ui::kit

namespace zorel::ui::dashboard {

class LiveUpdates;

/// The figures of the run as a whole, and its error.
class SessionPanel : public QWidget
{
    Q_OBJECT

public:
    /// Both must outlive the panel.
    SessionPanel(backend::bridge::BackendController &backend, LiveUpdates &updates,
                 QWidget *parent = nullptr);

private:
    void follow();

    backend::bridge::BackendController &m_backend;
    kit::Figure *m_state;
    kit::Figure *m_elapsed;
    kit::Figure *m_step;
    kit::Figure *m_loss;
    kit::Figure *m_throughput;
    kit::Figure *m_validationLoss;
    QWidget *m_error;
    kit::TextLabel *m_errorText;
};

} // namespace zorel::ui::dashboard
