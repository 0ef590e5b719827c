#pragma once

#include "ui/dashboard/Actions.h"

#include <QWidget>

class QLayout;

namespace zorel::app::settings {
class ZorelSettings;
}
namespace zorel::backend::bridge {
class BackendController;
}
namespace zorel::ui::kit {
class Badge;
}

namespace zorel::ui::dashboard {

/// The ways to the finished runs, to the user's folders and to the settings.
class LibraryPanel : public QWidget
{
    Q_OBJECT

public:
    /// Both must outlive the panel.
    LibraryPanel(backend::bridge::BackendController &backend, const app::settings::ZorelSettings &settings,
                 Actions actions, QWidget *parent = nullptr);

private:
    QLayout *makeBrowseRow();
    void showCount();

    backend::bridge::BackendController &m_backend;
    const app::settings::ZorelSettings &m_settings;
    Actions m_actions;
    kit::Badge *m_count = nullptr;
};

} // namespace zorel::ui::dashboard
