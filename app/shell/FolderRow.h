#pragma once

#include "app/folders/ConfiguredFolder.h"

#include <QWidget>

namespace zorel::app::folders {
class FolderAccessChecker;
}
namespace zorel::app::settings {
class ZorelSettings;
}
namespace zorel::ui::kit {
class Badge;
class ElidedLabel;
} // namespace zorel::ui::kit

namespace zorel::app::shell {

/// One configured folder in the settings window: what it is for, where it lies, whether it can be used, and
/// what can be done about it. Decides nothing: it tells what the user asked for. Main thread only.
class FolderRow : public QWidget
{
    Q_OBJECT

public:
    /// Settings and checker must outlive the row.
    FolderRow(folders::ConfiguredFolder folder, const settings::ZorelSettings &settings,
              const folders::FolderAccessChecker &access, QWidget *parent = nullptr);

    folders::ConfiguredFolder folder() const { return m_folder; }

Q_SIGNALS:
    void chooseRequested();
    void revealRequested();
    void privacySettingsRequested();
    void recheckRequested();

private:
    QWidget *makeHeading();
    QWidget *makeButtons();
    QWidget *makeWarning();
    void follow();
    void refresh();

    folders::ConfiguredFolder m_folder;
    const settings::ZorelSettings &m_settings;
    const folders::FolderAccessChecker &m_access;
    ui::kit::ElidedLabel *m_path;
    ui::kit::Badge *m_defaultBadge;
    ui::kit::Badge *m_accessBadge;
    QWidget *m_warning;
};

} // namespace zorel::app::shell
