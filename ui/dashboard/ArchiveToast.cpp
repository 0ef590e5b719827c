#include "ui/dashboard/ArchiveToast.h"

#include "backend/bridge/BackendController.h"
#include "ui/kit/Accessibility.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/ElidedLabel.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"
#include "ui/kit/Toast.h"
#include "ui/kit/Typography.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <utility>

namespace zorel::ui::dashboard {

using backend::bridge::BackendController;

ArchiveToast::ArchiveToast(BackendController &backend, Actions actions, QWidget *window)
    : QObject(window)
    , m_backend(backend)
    , m_actions(std::move(actions))
    , m_toast(new kit::Toast(window))
    , m_line(new kit::ElidedLabel)
{
    m_line->setTextStyle(kit::TextRole::Caption, kit::Weight::Regular, kit::FontKind::Monospaced);
    m_line->setColorRole(kit::ColorRole::Secondary);
    auto *texts = new QVBoxLayout;
    texts->setSpacing(kit::spacing::half);
    texts->addWidget(new kit::TextLabel(QStringLiteral("Model archived"), kit::TextRole::Subheading,
                                        kit::Weight::Semibold));
    texts->addWidget(m_line);
    auto *reveal = new kit::ActionButton(QString(), QStringLiteral("Reveal in Finder"));
    connect(reveal, &QPushButton::clicked, this, [this] {
        if (const auto &archive = m_backend.recentArchive()) {
            m_actions.reveal(archive->path);
        }
    });
    m_toast->content()->addWidget(
        new kit::SymbolLabel(QStringLiteral("checkmark.seal.fill"), 24, kit::ColorRole::Success));
    m_toast->content()->addLayout(texts, 1);
    m_toast->content()->addWidget(reveal);

    connect(&m_backend, &BackendController::recentArchiveChanged, this, &ArchiveToast::follow);
    follow();
}

void ArchiveToast::keepClearOf(QWidget *widget)
{
    m_toast->keepClearOf(widget);
}

void ArchiveToast::follow()
{
    const auto &archive = m_backend.recentArchive();
    if (!archive) {
        m_toast->hideToast();
        return;
    }
    m_line->setText(archive->folderName);
    kit::setSpokenName(m_toast, QStringLiteral("Model archived: %1").arg(archive->folderName));
    m_toast->showToast();
}

} // namespace zorel::ui::dashboard
