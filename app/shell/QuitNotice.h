#pragma once

#include "ui/kit/Sheet.h"

namespace zorel::app::shell {

/// Shown while a quit waits for the sidecar to save its work. Cannot be closed: it goes with the application,
/// or at once when the user will not wait.
class QuitNotice : public ui::kit::Sheet
{
    Q_OBJECT

public:
    explicit QuitNotice(QWidget *parent);

    /// In answer to another request to quit, shows where the way out is.
    void remind();
    void reject() override;

Q_SIGNALS:
    void quitNowRequested();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    ui::kit::ActionButton *m_quitNow;
};

} // namespace zorel::app::shell
