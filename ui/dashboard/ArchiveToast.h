#pragma once

#include "ui/dashboard/Actions.h"

#include <QObject>

class QWidget;

namespace zorel::backend::bridge {
class BackendController;
}
namespace zorel::ui::kit {
class ElidedLabel;
class Toast;
} // namespace zorel::ui::kit

namespace zorel::ui::dashboard {

/// The notice that a run has been archived, over the window for as long as the controller keeps it.
class ArchiveToast : public QObject
{
    Q_OBJECT

public:
    /// `backend` must outlive this object, which belongs to `window`.
    ArchiveToast(backend::bridge::BackendController &backend, Actions actions, QWidget *window);

    /// What the notice must not cover.
    void keepClearOf(QWidget *widget);

private:
    void follow();

    backend::bridge::BackendController &m_backend;
    Actions m_actions;
    kit::Toast *m_toast;
    kit::ElidedLabel *m_line;
};

} // namespace zorel::ui::dashboard
