#include "ui/library/DifferenceCard.h"

#include "ui/kit/Card.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace zorel::ui::library {

using app::presentation::Trend;

namespace {

constexpr qreal arrowSize = 12;

} // namespace

DifferenceCard::DifferenceCard(const QString &title, const QString &value, std::optional<Trend> trend,
                               QWidget *parent)
    : QWidget(parent)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    auto *card = new kit::Card(title);
    column->addWidget(card);
    auto *row = new QHBoxLayout;
    row->setSpacing(kit::spacing::one);
    auto *figure = new kit::TextLabel(value, kit::TextRole::Body, kit::Weight::Medium);
    figure->setFontKind(kit::FontKind::Monospaced);
    figure->setCopyable();
    row->addWidget(figure);
    if (trend) {
        auto *arrow =
            new kit::SymbolLabel(app::presentation::trendSymbol(*trend), arrowSize,
                                 *trend == Trend::good ? kit::ColorRole::Success : kit::ColorRole::Warning);
        arrow->setAccessibleName(*trend == Trend::good ? QStringLiteral("Good") : QStringLiteral("Bad"));
        row->addWidget(arrow, 0, Qt::AlignVCenter);
    }
    row->addStretch();
    card->content()->addLayout(row);
}

} // namespace zorel::ui::library
