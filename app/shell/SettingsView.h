#pragma once

#include "app/folders/ConfiguredFolder.h"

#include <QPointer>
#include <QWidget>

#include <functional>

class QFileDialog;
class QTabWidget;

namespace zorel::app::folders {
class FolderAccessChecker;
}
namespace zorel::app::settings {
class ZorelSettings;
}
namespace zorel::backend::bridge {
class BackendController;
}
namespace zorel::ui::kit {
class Card;
}

namespace zorel::app::shell {

class FolderRow;

/// The settings window: the library's folders, the working directory, and what the application is. Main
/// thread only.
class SettingsView : public QWidget
{
    Q_OBJECT

public:
    /// Shows an absolute path in the file manager.
    using Reveal = std::function<void(const QString &path)>;

    /// All but `about`, the content of the last tab, which becomes a child, must outlive the window.
    SettingsView(settings::ZorelSettings &settings, backend::bridge::BackendController &backend,
                 folders::FolderAccessChecker &access, Reveal reveal, QWidget *about,
                 QWidget *parent = nullptr);

    /// The open folder chooser; null when there is none.
    QFileDialog *folderChooser() const;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *makeLibraryTab();
    QWidget *makeAdvancedTab();
    FolderRow *makeRow(folders::ConfiguredFolder folder);
    void addTab(QTabWidget &tabs, QWidget *page, const QString &symbol, const QString &title);

    void chooseFolder(folders::ConfiguredFolder folder);
    void takeFolder(folders::ConfiguredFolder folder, const QString &path);
    void resetFolders();
    void resetWorkingDirectory();

    settings::ZorelSettings &m_settings;
    backend::bridge::BackendController &m_backend;
    folders::FolderAccessChecker &m_access;
    Reveal m_reveal;
    QPointer<QFileDialog> m_chooser;
};

} // namespace zorel::app::shell
