#include "app/shell/WindowTitleBarConfigurator.h"

#include "platform/WindowChrome.h"

#include <QTimer>

namespace zorel::app::shell {

WindowTitleBarConfigurator::WindowTitleBarConfigurator(const QString &displayName, QWidget *parent)
    : QWidget(parent)
    , m_displayName(displayName)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setGeometry(0, 0, 0, 0);
    lower();
}

void WindowTitleBarConfigurator::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    window()->setWindowTitle(m_displayName);
    // The system's window is there once this event has passed.
    QTimer::singleShot(0, this, [this] { platform::unifyTitleBar(window()->winId()); });
}

} // namespace zorel::app::shell
