#pragma once

#include <QDialog>

namespace zorel::updater {
class UpdateChecker;
}

namespace zorel::app::shell {

/// Presents the About content over the main window. Closed by its button or Esc.
class AboutSheet : public QDialog
{
    Q_OBJECT

public:
    AboutSheet(const QString &displayName, const QString &version, updater::UpdateChecker &updater,
               QWidget *parent);
};

} // namespace zorel::app::shell
