#include "ui/kit/ChartPainter.h"

#include "ui/kit/ChartColors.h"
#include "ui/kit/ChartTrace.h"
#include "ui/kit/Colors.h"
#include "ui/kit/LineRaster.h"
#include "ui/kit/Metrics.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace zorel::ui::kit {

namespace {

constexpr int gridAlpha = 160;
constexpr double lineWidth = 1.6;
constexpr double smoothedWidth = 2;
constexpr double rawBesideSmoothedWidth = 1;
constexpr int rawBesideSmoothedAlpha = 90;

/// Rectangles, because the painter hands lines of a translucent colour to other threads, which takes longer
/// than all the rest of the chart.
void paintGrid(QPainter &painter, const ChartLayout &layout, const QPalette &palette)
{
    const QRect &plot = layout.plot;
    QColor grid = color(ColorRole::Separator, palette);
    grid.setAlpha(gridAlpha);
    const QColor axis = color(ColorRole::ControlBorder, palette);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const ChartTick &tick : layout.values) {
        const int y = plot.top() + qRound(layout.projection.y(tick.value));
        painter.fillRect(plot.left(), y, plot.width(), 1, grid);
    }
    const int bottom = plot.bottom() + 1;
    for (const ChartTick &tick : layout.steps) {
        const int x = plot.left() + qRound(layout.projection.x(tick.value));
        painter.fillRect(x, plot.top(), 1, plot.height(), grid);
        painter.fillRect(x, bottom, 1, chartTickLength + 1, axis);
    }
    painter.fillRect(plot.left(), bottom, plot.width(), 1, axis);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

void paintLabels(QPainter &painter, const ChartLayout &layout, const QPalette &palette)
{
    const QRect &plot = layout.plot;
    painter.setFont(layout.fonts.label);
    painter.setPen(color(ColorRole::Secondary, palette));
    const int height = painter.fontMetrics().height();
    for (const ChartTick &tick : layout.values) {
        const int y = plot.top() + qRound(layout.projection.y(tick.value));
        const QRect place(layout.header.left(), y - height / 2,
                          plot.left() - layout.header.left() - spacing::one, height);
        painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip, tick.text);
    }
    for (const ChartTick &tick : layout.steps) {
        painter.drawText(stepLabelPlace(layout, tick, painter.fontMetrics()),
                         Qt::AlignCenter | Qt::TextDontClip, tick.text);
    }
}

void paintTitles(QPainter &painter, const ChartContent &content, const ChartLayout &layout,
                 const QPalette &palette)
{
    painter.setFont(layout.fonts.title);
    painter.setPen(color(ColorRole::Secondary, palette));
    painter.drawText(layout.header, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     content.valueTitle);
    QRect below = layout.stepTitle;
    below.setLeft(layout.plot.left());
    below.setRight(layout.plot.right());
    painter.drawText(below, Qt::AlignHCenter | Qt::AlignBottom | Qt::TextSingleLine, content.stepTitle);
    if (!layout.omission.isEmpty()) {
        painter.setFont(layout.fonts.label);
        const QString text =
            painter.fontMetrics().elidedText(layout.omission, Qt::ElideRight, layout.note.width());
        painter.drawText(layout.note, Qt::AlignLeft | Qt::AlignBottom | Qt::TextSingleLine, text);
    }
}

constexpr int sampleLength = spacing::three;

/// A piece of a series' line, as long as a pattern needs to be recognised.
void paintSample(QPainter &painter, QPoint left, const ChartSeriesLook &look)
{
    constexpr int thickness = 4;
    const qreal ratio = painter.device()->devicePixelRatioF();
    QImage sample(QSizeF(sampleLength * ratio, thickness * ratio).toSize(),
                  QImage::Format_ARGB32_Premultiplied);
    sample.fill(Qt::transparent);
    LineRaster raster(sample, sample.rect());
    raster.setPen(look.color, smoothedWidth * ratio, look.pattern);
    raster.moveTo(0, sample.height() / 2.0);
    raster.lineTo(sample.width(), sample.height() / 2.0);
    raster.finish();
    sample.setDevicePixelRatio(ratio);
    painter.drawImage(left - QPoint(0, thickness / 2), sample);
}

/// The legend's texts and samples one after the other; `place` gets the horizontal position of each, a text
/// or a series' number, and its width.
template <typename PlaceText, typename PlaceSample>
int layLegend(const ChartContent &content, const QFontMetrics &metrics, PlaceText &&placeText,
              PlaceSample &&placeSample)
{
    int x = 0;
    const auto write = [&](const QString &text, ColorRole role) {
        const int width = metrics.horizontalAdvance(text) + 1;
        placeText(x, width, text, role);
        x += width + spacing::one;
    };
    if (content.series.size() < 2) {
        return x;
    }
    if (!content.legendKey.isEmpty()) {
        write(content.legendKey, ColorRole::Secondary);
    }
    for (int number = 0; number < static_cast<int>(content.series.size()); ++number) {
        placeSample(x, number);
        x += sampleLength + spacing::half + 2;
        write(content.nameOf(number), ColorRole::Text);
        x += spacing::half;
    }
    return x;
}

void paintLegend(QPainter &painter, const ChartContent &content, const ChartLayout &layout,
                 const QPalette &palette)
{
    painter.setFont(layout.fonts.title);
    const QFontMetrics metrics = painter.fontMetrics();
    const QRect &header = layout.header;
    const int left = std::max(layout.plot.left(),
                              header.left() + metrics.horizontalAdvance(content.valueTitle) + spacing::two);
    const int middle = header.center().y() + 1;
    layLegend(
        content, metrics,
        [&](int x, int width, const QString &text, ColorRole role) {
            painter.setPen(color(role, palette));
            painter.drawText(QRect(left + x, header.top(), width, header.height()),
                             Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
        },
        [&](int x, int number) {
            paintSample(painter, {left + x, middle}, chartSeriesLook(number, palette));
        });
}

void paintSeries(LineRaster &raster, const ChartSeries &series, const ChartSeriesLook &look,
                 const ChartProjection &projection, double ratio)
{
    const ChartTrack *smoothed = series.smoothed();
    if (smoothed != nullptr) {
        QColor faint = look.color;
        faint.setAlpha(rawBesideSmoothedAlpha);
        raster.setPen(faint, rawBesideSmoothedWidth * ratio, LinePattern::Solid);
    } else {
        raster.setPen(look.color, lineWidth * ratio, look.pattern);
    }
    traceLine(series.raw(), projection, raster);
    if (smoothed != nullptr) {
        raster.setPen(look.color, smoothedWidth * ratio, look.pattern);
        traceLine(*smoothed, projection, raster);
    }
}

/// A dot where the line has come to, whole also at the edge of the plot.
void paintEnd(QImage &image, const QRect &plot, const ChartSeries &series, const QColor &color,
              const ChartProjection &projection, double ratio)
{
    const ChartTrack &track = series.smoothed() != nullptr ? *series.smoothed() : series.raw();
    if (track.isEmpty() || !track.canDraw(track.endOrdinal() - 1)) {
        return;
    }
    const ChartPoint &last = track.points().back();
    const QPointF at(projection.x(static_cast<double>(last.step)), projection.y(last.value));
    if (!QRectF(QPointF(0, 0), projection.size).adjusted(0, 0, 1, 1).contains(at)) {
        return;
    }
    const int edge = static_cast<int>(std::ceil(spacing::half * ratio));
    LineRaster raster(image, plot.adjusted(-edge, -edge, edge, edge));
    raster.setPen(color, lineWidth * ratio, LinePattern::Solid);
    raster.moveTo(at.x() + edge, at.y() + edge);
    raster.finish();
}

void paintLines(QImage &image, const ChartContent &content, const ChartLayout &layout,
                const QPalette &palette)
{
    const double ratio = image.devicePixelRatioF();
    const QRect plot =
        QRectF(QPointF(layout.plot.topLeft()) * ratio, QSizeF(layout.plot.size()) * ratio).toRect();
    ChartProjection projection = layout.projection;
    projection.size = plot.size();
    LineRaster raster(image, plot);
    for (std::size_t i = 0; i < content.series.size(); ++i) {
        paintSeries(raster, content.series[i], chartSeriesLook(static_cast<int>(i), palette), projection,
                    ratio);
    }
    for (std::size_t i = 0; i < content.series.size(); ++i) {
        paintEnd(image, plot, content.series[i], chartSeriesLook(static_cast<int>(i), palette).color,
                 projection, ratio);
    }
}

} // namespace

void paintChart(QImage &image, const ChartContent &content, const ChartLayout &layout,
                const QPalette &palette)
{
    if (layout.plot.isEmpty()) {
        return;
    }
    {
        QPainter painter(&image);
        paintGrid(painter, layout, palette);
        paintLabels(painter, layout, palette);
        paintTitles(painter, content, layout, palette);
        paintLegend(painter, content, layout, palette);
    }
    paintLines(image, content, layout, palette);
}

int chartHeaderWidth(const ChartContent &content, const ChartFonts &fonts)
{
    const QFontMetrics metrics(fonts.title);
    const int legend = layLegend(
        content, metrics, [](int, int, const QString &, ColorRole) {}, [](int, int) {});
    return std::max(metrics.horizontalAdvance(content.valueTitle) + spacing::two, 6 * gridUnit) + legend;
}

void paintZoomFrame(QPainter &painter, const ChartLayout &layout, const QRect &frame, const QPalette &palette)
{
    QColor inside = color(ColorRole::Accent, palette);
    painter.setPen(QPen(inside, 1));
    inside.setAlpha(40);
    painter.setBrush(inside);
    painter.drawRect((frame & layout.plot).adjusted(0, 0, -1, -1));
}

} // namespace zorel::ui::kit
