#include "ui/kit/ChartCsv.h"

#include <QLocale>

#include <algorithm>

namespace zorel::ui::kit {

namespace {

QByteArray field(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    const auto isSpecial = [](char c) {
        return c == ',' || c == '"' || c == '\n' || c == '\r';
    };
    if (std::none_of(bytes.cbegin(), bytes.cend(), isSpecial)) {
        return bytes;
    }
    return '"' + QByteArray(bytes).replace('"', "\"\"") + '"';
}

} // namespace

QByteArray chartCsv(const std::vector<ChartTable> &tables)
{
    constexpr qsizetype usualLine = 32;
    qsizetype size = usualLine;
    for (const ChartTable &table : tables) {
        size += static_cast<qsizetype>(table.points.size()) * (usualLine + table.name.size());
    }
    QByteArray csv;
    csv.reserve(size);
    csv += "series,step,value\n";
    for (const ChartTable &table : tables) {
        const QByteArray start = field(table.name) + ',';
        for (const ChartPoint &point : table.points) {
            csv += start;
            csv += QByteArray::number(static_cast<qlonglong>(point.step));
            csv += ',';
            csv += QByteArray::number(point.value, 'g', QLocale::FloatingPointShortest);
            csv += '\n';
        }
    }
    return csv;
}

} // namespace zorel::ui::kit
