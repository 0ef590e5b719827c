#include "ui/dashboard/StatusHeader.h"

#include "app/presentation/RunState.h"
#include "backend/bridge/BackendController.h"
#include "ui/dashboard/LiveUpdates.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Badge.h"
#include "ui/kit/BoundedText.h"
#include "ui/kit/Colors.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ProgressMeter.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"

#include <QHBoxLayout>
#include <QPainter>

namespace zorel::ui::dashboard {

using app::presentation::RunState;
using backend::bridge::BackendController;

namespace {

constexpr int maximumErrorLines = 6;

kit::ColorRole toneOf(RunState state)
{
    switch (state) {
    case RunState::running:
    case RunState::done:
        return kit::ColorRole::Success;
    case RunState::starting:
    case RunState::preparing:
        return kit::ColorRole::Accent;
    case RunState::paused:
    case RunState::stopping:
        return kit::ColorRole::Warning;
    case RunState::error:
        return kit::ColorRole::Danger;
    case RunState::idle:
    case RunState::other:
        return kit::ColorRole::Secondary;
    }
    return kit::ColorRole::Secondary;
}

} // namespace

StatusHeader::StatusHeader(BackendController &backend, LiveUpdates &updates, QWidget *parent)
    : QWidget(parent)
    , m_backend(backend)
    , m_state(new kit::Badge(QString(), QString(), kit::ColorRole::Secondary))
    , m_starting(new QWidget)
    , m_meter(new kit::ProgressMeter)
    , m_failure(new QWidget)
    , m_failureText(
          new kit::TextLabel(QString(), kit::TextRole::Body, kit::Weight::Medium, kit::ColorRole::Danger))
    , m_logToggle(
          new kit::ActionButton(QStringLiteral("terminal.fill"), QString(), kit::ActionButton::Style::Plain))
{
    m_meter->setFixedWidth(10 * kit::gridUnit);
    auto *starting = new QHBoxLayout(m_starting);
    starting->setContentsMargins({});
    starting->setSpacing(kit::spacing::one);
    starting->addWidget(m_meter);
    starting->addWidget(new kit::TextLabel(QStringLiteral("Starting Python backend…"), kit::TextRole::Body),
                        1);

    auto *failure = new QHBoxLayout(m_failure);
    failure->setContentsMargins({});
    failure->setSpacing(kit::spacing::one);
    failure->addWidget(new kit::SymbolLabel(QStringLiteral("exclamationmark.triangle.fill"), kit::symbolSize,
                                            kit::ColorRole::Danger),
                       0, Qt::AlignTop);
    m_failureText->setCopyable();
    failure->addWidget(new kit::BoundedText(m_failureText, maximumErrorLines), 1);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(kit::spacing::two, 0, kit::spacing::two, kit::spacing::one);
    layout->addWidget(m_state);
    layout->addWidget(m_starting, 1);
    layout->addWidget(m_failure, 1, Qt::AlignVCenter);
    layout->addStretch(0);
    layout->addWidget(m_logToggle, 0, Qt::AlignTop);

    connect(m_logToggle, &QPushButton::clicked, this, &StatusHeader::logToggleRequested);
    connect(&updates, &LiveUpdates::statusMoved, this, &StatusHeader::follow);
    connect(&m_backend, &BackendController::fatalErrorChanged, this, &StatusHeader::follow);
    // Every launch and every end is a line of it.
    connect(&updates, &LiveUpdates::logGrew, this, &StatusHeader::followProcess);
    setLogExpanded(false);
    follow();
}

void StatusHeader::setLogExpanded(bool expanded)
{
    m_logToggle->setTitle(expanded ? QStringLiteral("Hide log panel") : QStringLiteral("Show log panel"));
}

void StatusHeader::setSeparated(bool isSeparated)
{
    m_isSeparated = isSeparated;
    update();
}

void StatusHeader::paintEvent(QPaintEvent *)
{
    if (m_isSeparated) {
        QPainter(this).fillRect(0, height() - 1, width(), 1,
                                kit::color(kit::ColorRole::CardBorder, palette()));
    }
}

void StatusHeader::follow()
{
    const std::optional<QString> &failure = m_backend.fatalError();
    if (failure) {
        m_failureText->setText(*failure);
    }
    const QString &state = m_backend.status().state;
    m_state->setBadge(QString(), app::presentation::runStateTitle(state),
                      toneOf(app::presentation::runState(state)));
    m_failure->setVisible(failure.has_value());
    m_starting->setVisible(!failure && !m_backend.ready());
    m_state->setVisible(!failure && m_backend.ready());
    followProcess();
}

/// What has ended makes no progress; Start brings it back.
void StatusHeader::followProcess()
{
    m_meter->setFraction(m_backend.isRunning() ? std::nullopt : std::optional(0.0));
}

} // namespace zorel::ui::dashboard
