#include "ui/library/EmptyPage.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"

#include <QVBoxLayout>

namespace zorel::ui::library {

namespace {

constexpr qreal symbolSize = 40;

} // namespace

EmptyPage::EmptyPage(const QString &symbol, const QString &title, const QString &text, QWidget *parent)
    : QWidget(parent)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kit::spacing::one);
    column->addStretch(1);
    if (!symbol.isEmpty()) {
        column->addWidget(new kit::SymbolLabel(symbol, symbolSize), 0, Qt::AlignHCenter);
    }
    auto *heading = new kit::TextLabel(title, kit::TextRole::Heading, kit::Weight::Semibold);
    heading->setAlignment(Qt::AlignHCenter);
    column->addWidget(heading);
    auto *rest = new QWidget;
    auto *restColumn = new QVBoxLayout(rest);
    restColumn->setContentsMargins(0, 0, 0, 0);
    if (!text.isEmpty()) {
        auto *explanation =
            new kit::TextLabel(text, kit::TextRole::Body, kit::Weight::Regular, kit::ColorRole::Secondary);
        explanation->setAlignment(Qt::AlignHCenter);
        restColumn->addWidget(explanation);
    }
    restColumn->addStretch(1);
    column->addWidget(rest, 2);
}

} // namespace zorel::ui::library
