#include "ui/update/UpdatePresenter.h"

#include "ui/kit/Colors.h"
#include "ui/kit/Symbols.h"
#include "ui/update/UpdateSheet.h"
#include "updater/AvailableUpdate.h"
#include "updater/UpdateAlert.h"
#include "updater/UpdateChecker.h"

#include <QApplication>
#include <QIcon>
#include <QMessageBox>
#include <QPixmap>
#include <QPushButton>

namespace zorel::ui::update {

using zorel::updater::UpdateAlert;
using zorel::updater::UpdateChecker;

namespace {

/// A Mac's alerts bear the program's icon; elsewhere the symbol says what the alert is about.
QPixmap iconFor(UpdateAlert::Kind kind, qreal pixelRatio)
{
#ifdef Q_OS_MACOS
    Q_UNUSED(kind)
    constexpr int iconSize = 56;
    return QApplication::windowIcon().pixmap(QSize(iconSize, iconSize), pixelRatio);
#else
    constexpr int iconSize = 40;
    const QIcon icon =
        kind == UpdateAlert::Kind::UpToDate
            ? kit::symbolIcon(QStringLiteral("checkmark.circle.fill"), kit::ColorRole::Success)
            : kit::symbolIcon(QStringLiteral("exclamationmark.triangle.fill"), kit::ColorRole::Warning);
    return icon.pixmap(QSize(iconSize, iconSize), pixelRatio);
#endif
}

/// A bold title, lines that are not broken after a few words, and buttons that only say what they do, as all
/// of the program's.
void setAppearance(QMessageBox &alert, UpdateAlert::Kind kind)
{
    const QPixmap icon = iconFor(kind, alert.devicePixelRatioF());
    if (!icon.isNull()) {
        alert.setIconPixmap(icon);
    }
    alert.setStyleSheet(QStringLiteral("#qt_msgbox_label { font-weight: 600; }"
                                       "#qt_msgbox_informativelabel { min-width: 340px; }"));
    const QList<QAbstractButton *> buttons = alert.buttons();
    for (QAbstractButton *button : buttons) {
        button->setIcon(QIcon());
    }
}

/// What the user has in front of this window: a sheet, the settings, or the window itself. Two sheets of one
/// window would hand the keyboard to the window below, which takes no input.
QWidget *inFrontOf(QWidget &window)
{
    if (QWidget *const sheet = QApplication::activeModalWidget()) {
        return sheet;
    }
    QWidget *const active = QApplication::activeWindow();
    return active ? active : &window;
}

} // namespace

UpdatePresenter::UpdatePresenter(UpdateChecker &checker, std::function<void(const QUrl &)> openPage,
                                 QWidget &window)
    : m_checker(checker)
    , m_openPage(std::move(openPage))
    , m_window(window)
{
    connect(&m_checker, &UpdateChecker::presentedUpdateChanged, this, &UpdatePresenter::present);
    connect(&m_checker, &UpdateChecker::alertRequested, this, &UpdatePresenter::tell);
    present();
}

UpdatePresenter::~UpdatePresenter()
{
    delete m_sheet;
    delete m_alert;
}

UpdateSheet *UpdatePresenter::sheet() const
{
    return m_sheet;
}

QMessageBox *UpdatePresenter::alert() const
{
    return m_alert;
}

void UpdatePresenter::present()
{
    if (!m_checker.presentedUpdate()) {
        if (m_sheet) {
            // The checker may have been told by the sheet itself.
            m_sheet->hide();
            m_sheet->deleteLater();
            m_sheet = nullptr;
        }
        return;
    }
    if (!m_sheet) {
        dismissAlert();
        m_sheet = new UpdateSheet(m_checker, m_openPage, inFrontOf(m_window));
        m_sheet->open();
    }
}

/// What it told of an earlier check is no longer so, and nothing may belong to it that outlives it.
void UpdatePresenter::dismissAlert()
{
    if (m_alert) {
        // No longer in front.
        m_alert->hide();
        m_alert->deleteLater();
    }
}

void UpdatePresenter::tell(const UpdateAlert &alert)
{
    dismissAlert();
    m_alert = new QMessageBox(inFrontOf(m_window));
    m_alert->setAttribute(Qt::WA_DeleteOnClose);
    m_alert->setTextFormat(Qt::PlainText);
    m_alert->setWindowTitle(alert.title);
    m_alert->setText(alert.title);
    m_alert->setInformativeText(alert.text);
    QPushButton *close = m_alert->addButton(QMessageBox::Ok);
    m_alert->setDefaultButton(close);
    // Of two buttons neither is by itself, and such an alert keeps the application from quitting.
    m_alert->setEscapeButton(close);
    if (alert.link) {
        QPushButton *open = m_alert->addButton(alert.link->title, QMessageBox::ActionRole);
        connect(open, &QPushButton::clicked, this, [this, page = alert.link->page] { m_openPage(page); });
    }
    setAppearance(*m_alert, alert.kind);
    m_alert->open();
}

} // namespace zorel::ui::update
