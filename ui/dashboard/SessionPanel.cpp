#include "ui/dashboard/SessionPanel.h"

#include "app/presentation/Figures.h"
#include "app/presentation/RunState.h"
#include "backend/bridge/BackendController.h"
#include "ui/dashboard/LiveUpdates.h"
#include "ui/kit/BoundedText.h"
#include "ui/kit/Card.h"
#include "ui/kit/Figure.h"
#include "ui/kit/FlowLayout.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/TextLabel.h"

#include <QVBoxLayout>

namespace zorel::ui::dashboard {

namespace {

constexpr int maximumErrorLines = 10;

} // namespace

SessionPanel::SessionPanel(backend::bridge::BackendController &backend, LiveUpdates &updates, QWidget *parent)
    : QWidget(parent)
    , m_backend(backend)
    , m_state(new kit::Figure(QStringLiteral("State"), QStringLiteral("Preparing")))
    , m_elapsed(new kit::Figure(QStringLiteral("Elapsed"), QStringLiteral("59m59s")))
    , m_step(new kit::Figure(QStringLiteral("Step"), QStringLiteral("50,000")))
    , m_loss(new kit::Figure(QStringLiteral("Loss"), QStringLiteral("10.0000")))
    , m_throughput(new kit::Figure(QStringLiteral("Tok/sec"), QStringLiteral("100000")))
    , m_validationLoss(new kit::Figure(QStringLiteral("Val loss"), QStringLiteral("10.0000")))
    , m_error(new QWidget)
    , m_errorText(
          new kit::TextLabel(QString(), kit::TextRole::Body, kit::Weight::Regular, kit::ColorRole::Danger))
{
    auto *figures = new kit::FlowLayout;
    figures->setGaps(kit::spacing::three, kit::spacing::two);
    for (kit::Figure *figure : {m_state, m_elapsed, m_step, m_loss, m_throughput, m_validationLoss}) {
        figures->addWidget(figure);
    }
    m_errorText->setCopyable();
    auto *error = new QVBoxLayout(m_error);
    error->setContentsMargins({});
    error->setSpacing(kit::spacing::half);
    error->addWidget(new kit::TextLabel(QStringLiteral("Error"), kit::TextRole::Caption, kit::Weight::Regular,
                                        kit::ColorRole::Secondary));
    error->addWidget(new kit::BoundedText(m_errorText, maximumErrorLines));

    auto *card = new kit::Card(QStringLiteral("Session"));
    card->content()->addLayout(figures);
    card->content()->addWidget(m_error);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(card);

    connect(&updates, &LiveUpdates::statusMoved, this, &SessionPanel::follow);
    follow();
}

void SessionPanel::follow()
{
    const backend::protocol::TrainStatusPayload &status = m_backend.status();
    m_state->setValue(app::presentation::runStateTitle(status.state));
    m_elapsed->setValue(app::presentation::durationText(status.elapsedS));
    m_step->setValue(app::presentation::groupedText(status.step));
    m_loss->setValue(app::presentation::lossText(status.loss));
    m_throughput->setValue(app::presentation::throughputText(status.tokensPerSec));
    if (status.valLoss) {
        m_validationLoss->setValue(app::presentation::lossText(*status.valLoss));
    }
    m_validationLoss->setVisible(status.valLoss.has_value());
    if (status.error) {
        m_errorText->setText(*status.error);
    }
    m_error->setVisible(status.error.has_value());
}

} // namespace zorel::ui::dashboard
