#pragma once

#include <QString>
#include <QWidget>

namespace zorel::app::shell {

/// Invisible, behind a window's content: gives the window the application's name as its title and, where the
/// system allows it, hides the title's text, since the toolbar shows the name already.
class WindowTitleBarConfigurator : public QWidget
{
    Q_OBJECT

public:
    WindowTitleBarConfigurator(const QString &displayName, QWidget *parent);

protected:
    void showEvent(QShowEvent *event) override;

private:
    QString m_displayName;
};

} // namespace zorel::app::shell
