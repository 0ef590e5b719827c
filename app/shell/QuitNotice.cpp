#include "app/shell/QuitNotice.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/ProgressMeter.h"
#include "ui/kit/TextLabel.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QShortcut>

namespace zorel::app::shell {

namespace kit = ui::kit;

QuitNotice::QuitNotice(QWidget *parent)
    : Sheet(QStringLiteral("Finishing the training run…"), parent)
    , m_quitNow(addButton(QStringLiteral("Quit Now")))
{
    // The settings window is to wait as well.
    setWindowModality(Qt::ApplicationModal);
    auto *meter = new kit::ProgressMeter(QStringLiteral("Waiting for the training run to end"));
    content()->addWidget(new kit::TextLabel(
        QStringLiteral("The training stops and saves a checkpoint, so that it can be resumed later. The "
                       "application quits as soon as this is done, after two minutes at the latest.")));
    content()->addWidget(meter);
    content()->addWidget(new kit::TextLabel(
        QStringLiteral("Quit Now closes the window at once; the training ends by itself in the background."),
        kit::TextRole::Caption, kit::Weight::Regular, kit::ColorRole::Secondary));
    setMinimumWidth(52 * kit::gridUnit);

    connect(m_quitNow, &QPushButton::clicked, this, &QuitNotice::quitNowRequested);
    auto *quitAgain = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q), this);
    connect(quitAgain, &QShortcut::activated, this, &QuitNotice::remind);
}

void QuitNotice::remind()
{
    raise();
    activateWindow();
    m_quitNow->setFocus(Qt::ShortcutFocusReason);
}

void QuitNotice::reject()
{
    remind();
}

void QuitNotice::closeEvent(QCloseEvent *event)
{
    event->ignore();
    remind();
}

} // namespace zorel::app::shell
