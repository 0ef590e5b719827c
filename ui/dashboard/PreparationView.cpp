#include "ui/dashboard/PreparationView.h"

#include "app/presentation/DecimalText.h"
#include "app/presentation/Figures.h"
#include "app/presentation/StatusText.h"
#include "backend/protocol/TrainStatusPayload.h"
#include "ui/kit/ElidedLabel.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ProgressMeter.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/Typography.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace zorel::ui::dashboard {

using app::presentation::durationText;
using app::presentation::fixedText;

namespace {

kit::ElidedLabel *makeValue()
{
    auto *value = new kit::ElidedLabel;
    value->setTextStyle(kit::TextRole::Caption, kit::Weight::Regular, kit::FontKind::Tabular);
    return value;
}

QString percentageText(double fraction)
{
    return std::isfinite(fraction) ? fixedText(std::clamp(fraction, 0.0, 1.0) * 100, 0) + QLatin1Char('%')
                                   : QStringLiteral("—");
}

} // namespace

PreparationView::PreparationView(QWidget *parent)
    : QWidget(parent)
    , m_percentage(makeValue())
    , m_meter(new kit::ProgressMeter)
    , m_detail(new kit::ElidedLabel)
    , m_elapsed(makeValue())
    , m_remaining(makeValue())
    , m_remainingGroup(makeDuration(QStringLiteral("hourglass"), QStringLiteral("Time left"), m_remaining))
{
    auto *heading = new QHBoxLayout;
    heading->setSpacing(kit::spacing::one);
    heading->addWidget(
        new kit::SymbolLabel(QStringLiteral("wand.and.stars"), kit::symbolSize, kit::ColorRole::Accent));
    auto *title = new kit::ElidedLabel;
    title->setText(QStringLiteral("Preparing data"));
    title->setTextStyle(kit::TextRole::Body, kit::Weight::Medium);
    heading->addWidget(title);
    heading->addWidget(m_percentage);
    heading->addStretch(1);
    heading->addWidget(makeDuration(QStringLiteral("clock"), QStringLiteral("Time taken"), m_elapsed));
    heading->addWidget(m_remainingGroup);
    m_meter->setAccessibleName(QStringLiteral("Preparing data"));
    m_detail->setTextStyle(kit::TextRole::Caption);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(kit::spacing::half);
    layout->addLayout(heading);
    layout->addWidget(m_meter);
    layout->addWidget(m_detail);
}

void PreparationView::follow(const backend::protocol::TrainStatusPayload &status,
                             app::settings::ModelFamily family)
{
    m_percentage->setText(percentageText(status.prepProgress));
    m_meter->setFraction(std::isfinite(status.prepProgress) ? std::optional(status.prepProgress)
                                                            : std::nullopt);
    m_detail->setText(app::presentation::preparationDetail(status.prepDetail, family));
    m_elapsed->setText(durationText(status.prepElapsedS));
    m_remaining->setText(durationText(status.prepEtaS));
    // An estimate of nothing is none.
    m_remainingGroup->setVisible(status.prepEtaS > 0);
}

QWidget *PreparationView::makeDuration(const QString &symbol, const QString &name, kit::ElidedLabel *value)
{
    auto *group = new QWidget;
    group->setToolTip(name);
    value->setAccessibleDescription(name);
    auto *layout = new QHBoxLayout(group);
    layout->setContentsMargins({});
    layout->setSpacing(kit::spacing::half);
    layout->addWidget(new kit::SymbolLabel(symbol, 12));
    layout->addWidget(value);
    return group;
}

} // namespace zorel::ui::dashboard
