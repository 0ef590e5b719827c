#include "ui/dashboard/RunControls.h"

#include "app/presentation/RunControlState.h"
#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "ui/dashboard/LiveUpdates.h"
#include "ui/dashboard/StartButton.h"
#include "ui/kit/Card.h"
#include "ui/kit/ElidedLabel.h"
#include "ui/kit/FlowLayout.h"
#include "ui/kit/Metrics.h"

#include <QVBoxLayout>

#include <algorithm>

namespace zorel::ui::dashboard {

using app::presentation::RunControlState;
using app::settings::ZorelSettings;
using backend::bridge::BackendController;

RunControls::RunControls(BackendController &backend, ZorelSettings &settings, LiveUpdates &updates,
                         QWidget *parent)
    : QWidget(parent)
    , m_backend(backend)
    , m_settings(settings)
    , m_start(new StartButton)
    , m_pause(new kit::ActionButton(QStringLiteral("pause.fill"), QStringLiteral("Pause")))
    , m_stop(new kit::ActionButton(QStringLiteral("stop.fill"), QStringLiteral("Stop")))
    , m_resume(new kit::ActionButton(QStringLiteral("arrow.clockwise"),
                                     QStringLiteral("Resume from latest checkpoint")))
    , m_line(new kit::ElidedLabel(Qt::ElideRight))
    , m_card(new kit::Card(QString()))
{
    m_line->setTextStyle(kit::TextRole::Caption, kit::Weight::Regular, kit::FontKind::Tabular);
    m_line->setColorRole(kit::ColorRole::Secondary);
    auto *buttons = new kit::FlowLayout;
    for (QWidget *button : std::initializer_list<QWidget *>{m_start, m_pause, m_stop, m_resume}) {
        buttons->addWidget(button);
    }
    m_card->content()->addLayout(buttons);
    m_card->content()->addWidget(m_line);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_card);

    connect(m_start, &QPushButton::clicked, this, [this] { m_backend.startTraining(false); });
    connect(m_resume, &QPushButton::clicked, this, [this] { m_backend.startTraining(true); });
    connect(m_pause, &QPushButton::clicked, this,
            [this] { m_backend.sendCommand(QStringLiteral("toggle_pause")); });
    connect(m_stop, &QPushButton::clicked, this, [this] { m_backend.sendCommand(QStringLiteral("stop")); });
    connect(&updates, &LiveUpdates::statusMoved, this, &RunControls::follow);
    connect(&m_settings, &ZorelSettings::modelFamilyChanged, this, &RunControls::follow);
    follow();
}

void RunControls::follow()
{
    const backend::protocol::TrainStatusPayload &status = m_backend.status();
    const RunControlState controls =
        app::presentation::runControlState({.ready = m_backend.ready(),
                                            .state = status.state,
                                            .step = status.step,
                                            .maxSteps = status.maxSteps,
                                            .error = status.error.value_or(QString()),
                                            .family = m_settings.modelFamily()});
    allow({{m_start, controls.canStart},
           {m_pause, controls.canPause},
           {m_stop, controls.canStop},
           {m_resume, controls.canStart}});
    m_start->setLabel(controls.startLabel);
    if (controls.pauseAction == RunControlState::PauseAction::resume) {
        m_pause->setSymbol(QStringLiteral("play.fill"));
        m_pause->setTitle(QStringLiteral("Resume"));
    } else {
        m_pause->setSymbol(QStringLiteral("pause.fill"));
        m_pause->setTitle(QStringLiteral("Pause"));
    }
    m_line->setText(controls.statusLine);
    m_line->setVisible(!controls.statusLine.isEmpty());
}

/// A button that is disabled hands the focus to the next one anywhere, and the page would scroll there. It
/// stays among the controls instead.
void RunControls::allow(const std::vector<std::pair<QWidget *, bool>> &controls)
{
    const auto isAllowed = [](const auto &control) {
        return control.second;
    };
    const QWidget *focused = window()->focusWidget();
    const auto holder = std::ranges::find(controls, focused, &std::pair<QWidget *, bool>::first);
    const bool losesFocus = holder != controls.end() && !holder->second;
    const auto heir = std::ranges::find_if(controls, isAllowed);
    for (const auto &[control, allowed] : controls) {
        if (allowed) {
            control->setEnabled(true);
        }
    }
    if (losesFocus || focused == m_card) {
        (heir != controls.end() ? heir->first : m_card)->setFocus(Qt::OtherFocusReason);
    }
    for (const auto &[control, allowed] : controls) {
        control->setEnabled(allowed);
    }
}

} // namespace zorel::ui::dashboard
