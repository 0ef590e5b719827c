#pragma once

#include <QObject>
#include <QPointer>
#include <QUrl>

#include <functional>

class QMessageBox;
class QWidget;

namespace zorel::updater {
struct UpdateAlert;
class UpdateChecker;
} // namespace zorel::updater

namespace zorel::ui::update {

class UpdateSheet;

/// Puts what the update checker has to say in front of the main window: the sheet while there is an update to
/// present, and the answers to the user's own checks. Main thread only.
class UpdatePresenter : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive the presenter.
    UpdatePresenter(zorel::updater::UpdateChecker &checker, std::function<void(const QUrl &)> openPage,
                    QWidget &window);
    ~UpdatePresenter() override;

    UpdateSheet *sheet() const;
    QMessageBox *alert() const;

private:
    void present();
    void dismissAlert();
    void tell(const zorel::updater::UpdateAlert &alert);

    zorel::updater::UpdateChecker &m_checker;
    std::function<void(const QUrl &)> m_openPage;
    QWidget &m_window;
    QPointer<UpdateSheet> m_sheet;
    QPointer<QMessageBox> m_alert;
};

} // namespace zorel::ui::update
