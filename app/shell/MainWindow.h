#pragma once

#include <QMainWindow>
#include <QPointer>

#include <memory>

namespace zorel::ui::library {
class ModelLibraryView;
}

namespace zorel::ui::update {
class UpdatePresenter;
}

namespace zorel::app::shell {

class AboutSheet;
class QuitNotice;
class SettingsView;
class ZorelApp;

/// The window of the dashboard, with the toolbar, the menus and the sheets. Closing it quits.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// `app` must outlive the window.
    explicit MainWindow(ZorelApp &app);
    ~MainWindow() override;

Q_SIGNALS:
    /// Once, after the first paint.
    void contentAppeared();

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void addToolBar();
    void addContent();
    /// A screen can be smaller than what the content asks for.
    void fitScreen();
    void presentAbout();
    void presentLibrary();
    void showSettings();
    void showQuitNotice();

    ZorelApp &m_app;
    QPointer<AboutSheet> m_about;
    QPointer<ui::library::ModelLibraryView> m_library;
    QPointer<SettingsView> m_settings;
    QPointer<QuitNotice> m_quitNotice;
    std::unique_ptr<ui::update::UpdatePresenter> m_updates; ///< from the end of the start-up on
    bool m_hasAppeared = false;
};

} // namespace zorel::app::shell
