#include "ui/library/NoticeLine.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"

#include <QHBoxLayout>

namespace zorel::ui::library {

NoticeLine::NoticeLine(const QString &text, QWidget *parent)
    : QWidget(parent)
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kit::spacing::half);
    row->addWidget(new kit::SymbolLabel(QStringLiteral("exclamationmark.triangle.fill"), kit::symbolSize,
                                        kit::ColorRole::Warning),
                   0, Qt::AlignTop);
    row->addWidget(
        new kit::TextLabel(text, kit::TextRole::Caption, kit::Weight::Regular, kit::ColorRole::Warning), 1);
}

} // namespace zorel::ui::library
