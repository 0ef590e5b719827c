#include "ui/dashboard/ProgressPanel.h"

#include "app/presentation/Figures.h"
#include "app/presentation/RunState.h"
#include "app/presentation/StatusText.h"
#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "ui/dashboard/LiveUpdates.h"
#include "ui/dashboard/PreparationView.h"
#include "ui/kit/Card.h"
#include "ui/kit/ElidedLabel.h"
#include "ui/kit/Figure.h"
#include "ui/kit/FlowLayout.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ProgressMeter.h"

#include <QVBoxLayout>

namespace zorel::ui::dashboard {

using app::presentation::groupedText;
using app::presentation::RunState;
using app::settings::ZorelSettings;
using backend::bridge::BackendController;

ProgressPanel::ProgressPanel(BackendController &backend, ZorelSettings &settings, LiveUpdates &updates,
                             QWidget *parent)
    : QWidget(parent)
    , m_backend(backend)
    , m_settings(settings)
    , m_card(new kit::Card(app::presentation::progressTitle(settings.modelFamily())))
    , m_steps(new kit::ElidedLabel)
    , m_meter(new kit::ProgressMeter)
    , m_preparation(new PreparationView)
    , m_loss(new kit::Figure(QStringLiteral("Loss"), QStringLiteral("10.0000")))
    , m_perplexity(new kit::Figure(QStringLiteral("Perplexity"), QStringLiteral("10000.0")))
    , m_learningRate(new kit::Figure(QStringLiteral("Learning rate"), QStringLiteral("0.00e+00")))
    , m_gradNorm(new kit::Figure(QStringLiteral("Grad norm"), QStringLiteral("10.000")))
    , m_throughput(new kit::Figure(app::presentation::throughputLabel(settings.modelFamily()),
                                   QStringLiteral("100000")))
{
    m_steps->setTextStyle(kit::TextRole::Heading, kit::Weight::Semibold, kit::FontKind::Tabular);
    m_card->addHeaderWidget(m_steps);
    m_meter->setAccessibleName(QStringLiteral("Steps"));
    auto *figures = new kit::FlowLayout;
    figures->setGaps(kit::spacing::three, kit::spacing::two);
    for (kit::Figure *figure : {m_loss, m_perplexity, m_learningRate, m_gradNorm, m_throughput}) {
        figures->addWidget(figure);
    }
    m_card->content()->addWidget(m_meter);
    m_card->content()->addWidget(m_preparation);
    m_card->content()->addLayout(figures);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_card);

    connect(&updates, &LiveUpdates::statusMoved, this, &ProgressPanel::followStatus);
    connect(&m_settings, &ZorelSettings::modelFamilyChanged, this, &ProgressPanel::followFamily);
    followFamily();
}

void ProgressPanel::followFamily()
{
    m_card->setTitle(app::presentation::progressTitle(m_settings.modelFamily()));
    m_throughput->setLabel(app::presentation::throughputLabel(m_settings.modelFamily()));
    followStatus();
}

void ProgressPanel::followStatus()
{
    const backend::protocol::TrainStatusPayload &status = m_backend.status();
    m_steps->setText(groupedText(status.step) + QStringLiteral(" / ") + groupedText(status.maxSteps));
    m_meter->setFraction(
        status.maxSteps > 0 ? static_cast<double>(status.step) / static_cast<double>(status.maxSteps) : 0.0);
    const bool isPreparing = app::presentation::runState(status.state) == RunState::preparing;
    if (isPreparing) {
        m_preparation->follow(status, m_settings.modelFamily());
    }
    m_preparation->setVisible(isPreparing);
    m_loss->setValue(app::presentation::lossText(status.loss));
    m_perplexity->setValue(app::presentation::perplexityText(status.loss));
    m_learningRate->setValue(app::presentation::learningRateText(status.lr));
    m_gradNorm->setValue(app::presentation::gradNormText(status.gradNorm));
    m_throughput->setValue(app::presentation::throughputText(status.tokensPerSec));
}

} // namespace zorel::ui::dashboard
