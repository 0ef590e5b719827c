#include "ui/dashboard/LossChartPanel.h"

#include "app/presentation/StatusText.h"
#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "ui/dashboard/LiveUpdates.h"
#include "ui/kit/Card.h"
#include "ui/kit/LineChart.h"

#include <QVBoxLayout>

#include <algorithm>

namespace zorel::ui::dashboard {

using app::settings::ZorelSettings;
using backend::bridge::BackendController;

LossChartPanel::LossChartPanel(BackendController &backend, ZorelSettings &settings, LiveUpdates &updates,
                               QWidget *parent)
    : QWidget(parent)
    , m_backend(backend)
    , m_settings(settings)
    , m_chart(new kit::LineChart(QStringLiteral("Loss curve")))
    , m_series(m_chart->addSeries(QStringLiteral("Loss")))
{
    m_chart->setAxisTitles(QStringLiteral("Step"), QStringLiteral("Loss"));
    m_chart->setCapacity(m_series, BackendController::maximumLossPoints);
    auto *card = new kit::Card(QStringLiteral("Loss curve"));
    card->addHeaderWidget(m_chart->toolRow());
    card->content()->addWidget(m_chart);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(card);

    // What waits is in the history already; it must not be added once more.
    updates.publish();
    connect(&updates, &LiveUpdates::lossHistoryGrew, this, &LossChartPanel::takeNewest);
    connect(&updates, &LiveUpdates::statusMoved, this, &LossChartPanel::followHint);
    connect(&m_settings, &ZorelSettings::modelFamilyChanged, this, &LossChartPanel::followHint);
    takeNewest(m_backend.lossHistory().size());
    followHint();
}

void LossChartPanel::takeNewest(std::size_t points)
{
    const auto &history = m_backend.lossHistory();
    for (std::size_t index = history.size() - std::min(points, history.size()); index < history.size();
         ++index) {
        m_chart->append(m_series, history[index].step, history[index].loss);
    }
}

void LossChartPanel::followHint()
{
    m_chart->setPlaceholder(
        app::presentation::emptyChartHint(m_backend.status().state, m_settings.modelFamily()));
}

} // namespace zorel::ui::dashboard
