#pragma once

#include <QWidget>

#include <utility>
#include <vector>

namespace zorel::app::settings {
class ZorelSettings;
}
namespace zorel::backend::bridge {
class BackendController;
}
namespace zorel::ui::kit {
class ActionButton;
class Card;
class ElidedLabel;
} // namespace zorel::ui::kit

namespace zorel::ui::dashboard {

class LiveUpdates;
class StartButton;

/// Starts, resumes, pauses and stops a run, and says in a line where it stands.
class RunControls : public QWidget
{
    Q_OBJECT

public:
    /// All must outlive the controls.
    RunControls(backend::bridge::BackendController &backend, app::settings::ZorelSettings &settings,
                LiveUpdates &updates, QWidget *parent = nullptr);

private:
    void follow();
    void allow(const std::vector<std::pair<QWidget *, bool>> &controls);

    backend::bridge::BackendController &m_backend;
    app::settings::ZorelSettings &m_settings;
    StartButton *m_start;
    kit::ActionButton *m_pause;
    kit::ActionButton *m_stop;
    kit::ActionButton *m_resume;
    kit::ElidedLabel *m_line;
    kit::Card *m_card;
};

} // namespace zorel::ui::dashboard
