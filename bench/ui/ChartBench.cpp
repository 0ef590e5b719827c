// What it costs to paint a chart and to append to it. Every repaint follows an appended point, so that
// nothing is taken from an earlier picture.

#include "bench/support/RatioTable.h"
#include "ui/kit/LineChart.h"

#include <QApplication>
#include <QImage>
#include <QPainter>

#include <cmath>
#include <cstdint>
#include <random>

using namespace zorel;
using ui::kit::ChartPoint;
using ui::kit::LineChart;

namespace {

constexpr QSize chartSize(1200, 400);
constexpr int appendsPerRound = 1000;

std::vector<ChartPoint> lossCurve(std::int64_t count)
{
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0, 0.15);
    std::vector<ChartPoint> points;
    for (std::int64_t step = 0; step < count; ++step) {
        const double passed = static_cast<double>(step) / static_cast<double>(count);
        points.push_back({step, 2 + 8 * std::exp(-5 * passed) + noise(random)});
    }
    return points;
}

QImage blankImage()
{
    QImage image(chartSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    return image;
}

/// A chart that holds as many points however many are appended.
class FullChart
{
public:
    explicit FullChart(std::int64_t count)
        : m_next(count)
    {
        m_chart.setAxisTitles(QStringLiteral("Step"), QStringLiteral("Loss"));
        m_chart.addSeries(QStringLiteral("Loss"));
        m_chart.setPoints(0, lossCurve(count));
        m_chart.setCapacity(0, static_cast<std::size_t>(count));
        m_chart.resize(chartSize);
        m_chart.toolRow()->hide();
        repaint();
    }

    LineChart &chart() { return m_chart; }

    void append()
    {
        m_chart.append(0, m_next, 2 + 0.1 * static_cast<double>(m_next % 7));
        ++m_next;
    }

    void repaint()
    {
        m_chart.render(&m_image, QPoint(), QRegion(), QWidget::DrawChildren);
        benchmark::DoNotOptimize(m_image.constBits());
    }

private:
    LineChart m_chart{QStringLiteral("Loss curve")};
    QImage m_image = blankImage();
    std::int64_t m_next;
};

void repaint(benchmark::State &state, std::int64_t count, double smoothing, ui::kit::ChartScaleKind scale)
{
    FullChart full(count);
    full.chart().setSmoothing(smoothing);
    full.chart().setScale(scale);
    full.repaint();
    for (auto _ : state) {
        full.append();
        full.repaint();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

void repaintUnchanged(benchmark::State &state)
{
    FullChart full(4000);
    for (auto _ : state) {
        full.repaint();
    }
}

void append(benchmark::State &state, std::int64_t count)
{
    FullChart full(count);
    for (auto _ : state) {
        for (int i = 0; i < appendsPerRound; ++i) {
            full.append();
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * appendsPerRound);
}

/// The least that a repaint can cost: one colour everywhere.
void fillPicture(benchmark::State &state)
{
    QImage image = blankImage();
    for (auto _ : state) {
        QPainter painter(&image);
        painter.fillRect(image.rect(), Qt::white);
        benchmark::DoNotOptimize(image.constBits());
    }
}

QPolygonF polyline(std::int64_t count)
{
    QPolygonF line;
    for (const ChartPoint &point : lossCurve(count)) {
        line << QPointF(static_cast<double>(point.step) * chartSize.width() / static_cast<double>(count),
                        chartSize.height() * (1 - point.value / 11));
    }
    return line;
}

/// Every point through the toolkit, smooth as ours where that ends in finite time.
void drawPolyline(benchmark::State &state, std::int64_t count, bool isSmooth)
{
    const QPolygonF line = polyline(count);
    QImage image = blankImage();
    for (auto _ : state) {
        QPainter painter(&image);
        painter.fillRect(image.rect(), Qt::white);
        painter.setRenderHint(QPainter::Antialiasing, isSmooth);
        painter.setPen(QPen(Qt::blue, isSmooth ? 1.6 : 0));
        painter.drawPolyline(line);
        benchmark::DoNotOptimize(image.constBits());
    }
}

constexpr auto linear = ui::kit::ChartScaleKind::Linear;
constexpr auto logarithmic = ui::kit::ChartScaleKind::Logarithmic;

BENCHMARK_CAPTURE(repaint, thousands, 4000, 0.0, linear);
BENCHMARK_CAPTURE(repaint, thousandsSmoothed, 4000, 0.9, linear);
BENCHMARK_CAPTURE(repaint, million, 1'000'000, 0.0, linear);
BENCHMARK_CAPTURE(repaint, millionLogarithmic, 1'000'000, 0.0, logarithmic);
BENCHMARK(repaintUnchanged);
BENCHMARK_CAPTURE(append, to1e3, 1000)->MinTime(0.2);
BENCHMARK_CAPTURE(append, to1e4, 10'000)->MinTime(0.2);
BENCHMARK_CAPTURE(append, to1e5, 100'000)->MinTime(0.2);
BENCHMARK_CAPTURE(append, to1e6, 1'000'000)->MinTime(0.2);
BENCHMARK(fillPicture);
BENCHMARK_CAPTURE(drawPolyline, thousandsSmooth, 4000, true);
BENCHMARK_CAPTURE(drawPolyline, millionPlain, 1'000'000, false);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    using bench::Row;
    constexpr auto atMost = Row::Promise::timeAtMost;
    constexpr auto faster = Row::Promise::fasterAtLeast;
    constexpr auto perSecond = Row::Promise::perSecondAtLeast;
    const std::string thousands = "repaint/thousands";
    const std::string million = "repaint/million";
    // 2 ms and 8 ms are 500 and 125 repaints a second.
    bench::RatioTable table({
        {"repaints, 4,000 points", thousands, "", perSecond, 500},
        {"repaints, 4,000 points, smoothed", "repaint/thousandsSmoothed", "", perSecond, 500},
        {"repaints, 1,000,000 points", million, "", perSecond, 125},
        {"repaints, 1,000,000 points, logarithmic", "repaint/millionLogarithmic", "", perSecond, 125},
        {"4,000 points / filling the picture", thousands, "fillPicture", atMost, 20},
        {"crosshair only / filling the picture", "repaintUnchanged", "fillPicture", atMost, 6},
        {"4,000 points / smooth drawPolyline", thousands, "drawPolyline/thousandsSmooth", faster, 10},
        {"1,000,000 points / plain drawPolyline", million, "drawPolyline/millionPlain", faster, 5},
        {"1,000 appends to 10,000 / to 1,000 points", "append/to1e4", "append/to1e3", atMost, 2},
        {"1,000 appends to 100,000 / to 1,000 points", "append/to1e5", "append/to1e3", atMost, 2},
        {"1,000 appends to 1,000,000 / to 1,000 points", "append/to1e6", "append/to1e3", atMost, 2},
    });
    return table.run(argc, argv);
}
