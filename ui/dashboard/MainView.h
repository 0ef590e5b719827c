#pragma once

#include "ui/dashboard/Actions.h"

#include <QWidget>

class QVBoxLayout;

namespace zorel::app::folders {
class FolderAccessChecker;
}
namespace zorel::app::settings {
class ZorelSettings;
}
namespace zorel::backend::bridge {
class BackendController;
}
namespace zorel::platform {
class UserDefaults;
}
namespace zorel::ui::kit {
class ScrollPage;
}

namespace zorel::ui::dashboard {

class ActivityLogPanel;
class LiveUpdates;
class PinnedPlace;
class StatusHeader;

/// The content of the main window: chooses what is trained, runs it and shows how it goes. Holds no training
/// state of its own.
class MainView : public QWidget
{
    Q_OBJECT

public:
    /// What the dashboard shows and acts on; everything must outlive it.
    struct Model
    {
        backend::bridge::BackendController &backend;
        app::settings::ZorelSettings &settings;
        app::folders::FolderAccessChecker &access;
        /// Remembers what is expanded.
        platform::UserDefaults &defaults;
    };

    MainView(const Model &model, const Actions &actions, QWidget *parent = nullptr);
    ~MainView() override;

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

private:
    void fillConfiguration(const Model &model, QVBoxLayout &column);
    void fillProgress(const Model &model, QVBoxLayout &column);
    void bringIntoSight(const QWidget *focused);
    void showOpened(QWidget *section);
    void toggleLog();

    LiveUpdates *m_updates;
    StatusHeader *m_header;
    kit::ScrollPage *m_page;
    PinnedPlace *m_controlsPlace = nullptr;
    ActivityLogPanel *m_log = nullptr;
};

} // namespace zorel::ui::dashboard
