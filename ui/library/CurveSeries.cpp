#include "ui/library/CurveSeries.h"

#include "ui/kit/LineChart.h"

namespace zorel::ui::library {

namespace {

constexpr int placeholderHeight = 96;

} // namespace

kit::LineChart *makeLossChart(const QString &title)
{
    auto *chart = new kit::LineChart(title);
    chart->setAxisTitles(QStringLiteral("Step"), QStringLiteral("Loss"));
    return chart;
}

void addCurve(kit::LineChart &chart, const QString &name,
              const std::vector<backend::protocol::LossPoint> &points)
{
    std::vector<kit::ChartPoint> line;
    line.reserve(points.size());
    for (const auto &point : points) {
        line.push_back({point.step, point.loss});
    }
    chart.setPoints(chart.addSeries(name), line);
}

void fitHeight(kit::LineChart &chart, int series, int height)
{
    bool hasPoints = false;
    for (int place = 0; place < series; ++place) {
        hasPoints = hasPoints || !chart.points(place).empty();
    }
    if (hasPoints) {
        chart.setMinimumHeight(height);
    } else {
        chart.setFixedHeight(placeholderHeight);
    }
}

} // namespace zorel::ui::library
