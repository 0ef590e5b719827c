#include "ui/dashboard/FolderAccessBanner.h"

#include "app/folders/FolderAccessChecker.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Card.h"
#include "ui/kit/FlowLayout.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/PlainText.h"
#include "ui/kit/TextLabel.h"

#include <QVBoxLayout>

namespace zorel::ui::dashboard {

using app::folders::FolderAccessChecker;

FolderAccessBanner::FolderAccessBanner(FolderAccessChecker &access, QWidget *parent)
    : QWidget(parent)
    , m_access(access)
    , m_message(new kit::TextLabel(QString(), kit::TextRole::Body))
{
    auto *card = new kit::Card(QStringLiteral("Talvex LLM Trainer needs folder access"),
                               QStringLiteral("lock.shield.fill"));
    card->setTone(kit::ColorRole::Warning);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(card);

    auto *open =
        new kit::ActionButton(QStringLiteral("arrow.up.right.square"),
                              QStringLiteral("Open Privacy Settings"), kit::ActionButton::Style::Prominent);
    kit::setPlainToolTip(
        open, QStringLiteral("Where the system has no such settings, shows the folder in the file manager, "
                             "whose properties say who may write into it"));
    connect(open, &QPushButton::clicked, this, [this] { m_access.openPrivacySettings(); });
    auto *recheck =
        new kit::ActionButton(QStringLiteral("arrow.clockwise"), QStringLiteral("Re-check folder access"));
    connect(recheck, &QPushButton::clicked, this, [this] { m_access.refresh(); });

    card->content()->addWidget(m_message);
    auto *buttons = new kit::FlowLayout;
    buttons->addWidget(open);
    buttons->addWidget(recheck);
    card->content()->addLayout(buttons);

    // Once a check is over: a banner that hid itself between two folders would lose the keyboard.
    connect(&m_access, &FolderAccessChecker::lastCheckedAtChanged, this, &FolderAccessBanner::follow);
    follow();
}

void FolderAccessBanner::follow()
{
    m_message->setText(m_access.blockedMessage());
    setVisible(m_access.anyBlocked());
}

} // namespace zorel::ui::dashboard
