#pragma once

#include "ui/kit/Sheet.h"

#include <QUrl>

#include <functional>

class QStackedWidget;

namespace zorel::updater {
struct AvailableUpdate;
class UpdateChecker;
} // namespace zorel::updater
namespace zorel::ui::kit {
class ActionButton;
class ProgressMeter;
class ScrollPage;
class TextLabel;
} // namespace zorel::ui::kit

namespace zorel::ui::update {

/// Offers a newer release, and shows its installation and how that failed. To be open while the checker has a
/// `presentedUpdate`. Closing it by Esc means "Remind Me Later"; while an installation runs it stays, unless
/// the application quits. Main thread only.
class UpdateSheet : public kit::Sheet
{
    Q_OBJECT

public:
    /// `openPage` shows an address in the browser. The checker must outlive the sheet.
    UpdateSheet(zorel::updater::UpdateChecker &checker, std::function<void(const QUrl &)> openPage,
                QWidget *parent);

    void reject() override;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    QWidget *makeHeading();
    QWidget *makeNotes();
    QWidget *makeOfferPage();
    QWidget *makeProgressPage();
    QWidget *makeFailurePage();
    void showUpdate();
    void showInstall();
    void showFailure(const QString &message);
    /// The page's own first button gets the keyboard, and not the next thing that would be in the way of it.
    void showPage(int page);

    zorel::updater::UpdateChecker &m_checker;
    std::function<void(const QUrl &)> m_openPage;
    kit::TextLabel *m_sentence;
    kit::TextLabel *m_notes;
    kit::TextLabel *m_details;
    kit::TextLabel *m_progressText;
    kit::TextLabel *m_failureText;
    kit::ProgressMeter *m_progress;
    kit::ActionButton *m_cancel;
    kit::ScrollPage *m_failure;
    kit::ActionButton *m_install;
    kit::ActionButton *m_again;
    QStackedWidget *m_pages;
};

} // namespace zorel::ui::update
