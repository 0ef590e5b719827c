#include "ui/dashboard/ActivityLogPanel.h"

#include "backend/bridge/BackendController.h"
#include "platform/UserDefaults.h"
#include "ui/dashboard/LiveUpdates.h"
#include "ui/dashboard/LogView.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/CollapsibleSection.h"
#include "ui/kit/ElidedLabel.h"

#include <QVBoxLayout>

namespace zorel::ui::dashboard {

using backend::bridge::BackendController;

namespace {

constexpr int viewHeight = 280;

QString expandedKey()
{
    return QStringLiteral("zorel.logExpanded");
}

} // namespace

ActivityLogPanel::ActivityLogPanel(BackendController &backend, platform::UserDefaults &defaults,
                                   LiveUpdates &updates, QWidget *parent)
    : QWidget(parent)
    , m_backend(backend)
    , m_defaults(defaults)
    , m_updates(updates)
    , m_section(
          new kit::CollapsibleSection(QStringLiteral("Recent activity"), QStringLiteral("terminal.fill")))
    , m_count(new kit::ElidedLabel)
    , m_toggle(new kit::ActionButton(QString(), QString(), kit::ActionButton::Style::Plain))
{
    m_count->setTextStyle(kit::TextRole::Caption, kit::Weight::Regular, kit::FontKind::Tabular);
    m_count->setColorRole(kit::ColorRole::Secondary);
    m_section->addHeaderWidget(m_count);
    m_section->addHeaderWidget(m_toggle);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_section);

    connect(m_section, &kit::CollapsibleSection::expandedChanged, this, &ActivityLogPanel::setLogExpanded);
    connect(m_toggle, &QPushButton::clicked, this, [this] { setLogExpanded(!m_logExpanded); });
    connect(&updates, &LiveUpdates::logGrew, this, &ActivityLogPanel::takeNewest);
    takeNewest(0);
    showExpanded(m_defaults.boolean(expandedKey()).value_or(false));
}

void ActivityLogPanel::setLogExpanded(bool expanded)
{
    if (expanded == m_logExpanded) {
        return;
    }
    m_defaults.setBoolean(expandedKey(), expanded);
    showExpanded(expanded);
    Q_EMIT logExpandedChanged(expanded);
}

void ActivityLogPanel::showExpanded(bool expanded)
{
    // What waits is in the log already; it must not be added to the view once more.
    m_updates.publish();
    m_logExpanded = expanded;
    if (expanded && m_view == nullptr) {
        m_view = new LogView(static_cast<int>(BackendController::maximumLogLines));
        m_view->setAccessibleName(QStringLiteral("Recent activity"));
        m_view->setFixedHeight(viewHeight);
        m_section->content()->addWidget(m_view);
    }
    if (expanded) {
        m_view->setLines(m_backend.logLines());
    }
    m_section->setExpanded(expanded);
    m_toggle->setTitle(expanded ? QStringLiteral("Hide") : QStringLiteral("Show"));
}

void ActivityLogPanel::takeNewest(std::size_t lines)
{
    m_count->setText(QStringLiteral("%1 lines").arg(m_backend.logLines().size()));
    if (m_logExpanded && lines > 0) {
        m_view->appendNewest(m_backend.logLines(), lines);
    }
}

} // namespace zorel::ui::dashboard
