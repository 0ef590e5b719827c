#pragma once

#include "ui/kit/ChartPoint.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace zorel::ui::kit {

struct ChartTable
{
    QString name;
    std::vector<ChartPoint> points;
};

/// A line "series,step,value", then one for each point, in list order. Values have as many digits as it takes
/// to read them back the same; those that are not finite are "nan", "inf" and "-inf". UTF-8. Any thread.
QByteArray chartCsv(const std::vector<ChartTable> &tables);

} // namespace zorel::ui::kit
