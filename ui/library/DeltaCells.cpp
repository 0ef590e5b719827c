#include "ui/library/DeltaCells.h"

#include "app/presentation/ComparisonTexts.h"

#include <QColor>

namespace zorel::ui::library {

using zorel::library::ActivityChange;

QRgb changeRgb(ActivityChange change)
{
    const auto color = app::presentation::changeColor(change);
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue))
        .rgb();
}

QRgb DeltaCells::color(neurons::CellPosition cell) const
{
    return changeRgb(zorel::library::activityChange(delta(cell)));
}

QString DeltaCells::toolTip(neurons::CellPosition cell) const
{
    return app::presentation::deltaToolTip(delta(cell));
}

QString DeltaCells::description(neurons::CellPosition cell) const
{
    return QStringLiteral("Layer ") + QString::number(at(cell.row).layer) + QStringLiteral(", cell ") +
           QString::number(cell.column) + QStringLiteral(", ") + toolTip(cell) + QStringLiteral(", ") +
           app::presentation::changeTitle(zorel::library::activityChange(delta(cell)));
}

} // namespace zorel::ui::library
