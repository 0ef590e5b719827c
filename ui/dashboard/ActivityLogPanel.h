#pragma once

#include <QWidget>

#include <cstddef>

namespace zorel::backend::bridge {
class BackendController;
}
namespace zorel::platform {
class UserDefaults;
}
namespace zorel::ui::kit {
class ActionButton;
class CollapsibleSection;
class ElidedLabel;
} // namespace zorel::ui::kit

namespace zorel::ui::dashboard {

class LiveUpdates;
class LogView;

/// The activity log. Collapsed it knows only how many lines there are; the view is made when it is first
/// expanded. Remembers in the user defaults whether it is expanded.
class ActivityLogPanel : public QWidget
{
    Q_OBJECT

public:
    /// All must outlive the panel.
    ActivityLogPanel(backend::bridge::BackendController &backend, platform::UserDefaults &defaults,
                     LiveUpdates &updates, QWidget *parent = nullptr);

    bool logExpanded() const { return m_logExpanded; }
    void setLogExpanded(bool expanded);

Q_SIGNALS:
    void logExpandedChanged(bool expanded);

private:
    void showExpanded(bool expanded);
    void takeNewest(std::size_t lines);

    backend::bridge::BackendController &m_backend;
    platform::UserDefaults &m_defaults;
    LiveUpdates &m_updates;
    kit::CollapsibleSection *m_section;
    kit::ElidedLabel *m_count;
    kit::ActionButton *m_toggle;
    LogView *m_view = nullptr;
    bool m_logExpanded = false;
};

} // namespace zorel::ui::dashboard
