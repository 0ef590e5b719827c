#pragma once

#include <QWidget>

namespace zorel::backend::bridge {
class BackendController;
}
namespace zorel::ui::kit {
class ActionButton;
class Badge;
class ProgressMeter;
class TextLabel;
} // namespace zorel::ui::kit

namespace zorel::ui::dashboard {

class LiveUpdates;

/// The strip above the panels that always stands: whether the backend can be used, and the switch of the log.
class StatusHeader : public QWidget
{
    Q_OBJECT

public:
    /// Both must outlive the header.
    StatusHeader(backend::bridge::BackendController &backend, LiveUpdates &updates,
                 QWidget *parent = nullptr);

    void setLogExpanded(bool expanded);
    /// A line below the header, for a page that has been scrolled beneath it.
    void setSeparated(bool isSeparated);

Q_SIGNALS:
    void logToggleRequested();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void follow();
    void followProcess();

    backend::bridge::BackendController &m_backend;
    kit::Badge *m_state;
    QWidget *m_starting;
    kit::ProgressMeter *m_meter;
    QWidget *m_failure;
    kit::TextLabel *m_failureText;
    kit::ActionButton *m_logToggle;
    bool m_isSeparated = false;
};

} // namespace zorel::ui::dashboard
