#include "ui/kit/ChartReadout.h"

#include "ui/kit/ChartColors.h"
#include "ui/kit/ChartSearch.h"
#include "ui/kit/ChartText.h"
#include "ui/kit/Colors.h"
#include "ui/kit/Metrics.h"

#include <QPainter>

#include <algorithm>

namespace zorel::ui::kit {

namespace {

constexpr int swatchSize = 8;
constexpr double dotRadius = 4;

struct Row
{
    QColor color;
    QString name;
    QString value;
    QPointF at; ///< in the plot
};

QPointF positionOf(const ChartProjection &projection, const ChartPoint &point)
{
    return {projection.x(static_cast<double>(point.step)), projection.y(point.value)};
}

QString valueWithSmoothed(const ChartSeries &series, std::uint64_t ordinal)
{
    QString text = chartValueText(series.raw().at(ordinal).value);
    if (const ChartTrack *smoothed = series.smoothed()) {
        text += QStringLiteral(" (smoothed %1)").arg(chartValueText(smoothed->at(ordinal).value));
    }
    return text;
}

/// The point of another series that is shown together with the marked one.
std::optional<std::uint64_t> companion(const ChartTrack &track, const ChartPoint &marked)
{
    const auto extent = track.extent();
    const auto step = static_cast<double>(marked.step);
    if (!extent || step < extent->steps.low || step > extent->steps.high) {
        return std::nullopt;
    }
    return nearestStep(track, step);
}

std::vector<Row> rowsFor(const ChartContent &content, const ChartLayout &layout, ChartMark mark,
                         const QPalette &palette, const QLocale &locale)
{
    std::vector<Row> rows;
    const ChartPoint &marked = content.at(mark);
    for (int number = 0; number < static_cast<int>(content.series.size()); ++number) {
        const ChartSeries &series = content.series[static_cast<std::size_t>(number)];
        const auto ordinal = number == mark.series ? mark.ordinal : companion(series.raw(), marked);
        if (!ordinal) {
            continue;
        }
        const ChartPoint &point = series.raw().at(*ordinal);
        QString value = valueWithSmoothed(series, *ordinal);
        if (point.step != marked.step) {
            value += QStringLiteral(" at %1").arg(chartStepText(point.step, locale));
        }
        const QString name = content.series.size() < 2 ? content.valueTitle : content.nameOf(number);
        rows.push_back(
            {chartSeriesLook(number, palette).color, name, value, positionOf(layout.projection, point)});
    }
    return rows;
}

void paintLinesTo(QPainter &painter, const QRect &plot, QPointF at, const QPalette &palette)
{
    QColor line = color(ColorRole::Secondary, palette);
    line.setAlpha(150);
    painter.setPen(QPen(line, 1, Qt::DashLine));
    const QPoint point = (at + QPointF(plot.topLeft())).toPoint();
    if (point.x() >= plot.left() && point.x() <= plot.right() + 1) {
        painter.drawLine(point.x(), plot.top(), point.x(), plot.bottom());
    }
    if (point.y() >= plot.top() && point.y() <= plot.bottom() + 1) {
        painter.drawLine(plot.left(), point.y(), plot.right(), point.y());
    }
}

void paintDots(QPainter &painter, const QRect &plot, const std::vector<Row> &rows, const QPalette &palette)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color(ColorRole::CardBackground, palette), 2));
    for (const Row &row : rows) {
        const QPointF at = row.at + QPointF(plot.topLeft());
        if (QRectF(plot).adjusted(-1, -1, 1, 1).contains(at)) {
            painter.setBrush(row.color);
            painter.drawEllipse(at, dotRadius, dotRadius);
        }
    }
}

/// Beside the point, on the side where there is room.
QRect placeOf(QSize box, const QRect &plot, QPointF at)
{
    constexpr int away = 12;
    const QPoint point = (at + QPointF(plot.topLeft())).toPoint();
    int left = point.x() + away;
    if (left + box.width() > plot.right()) {
        left = point.x() - away - box.width();
    }
    int top = point.y() - away - box.height();
    if (top < plot.top()) {
        top = point.y() + away;
    }
    left = std::clamp(left, plot.left(), std::max(plot.left(), plot.right() - box.width()));
    top = std::clamp(top, plot.top(), std::max(plot.top(), plot.bottom() - box.height()));
    return {QPoint(left, top), box};
}

void paintBox(QPainter &painter, const ChartLayout &layout, QPointF at, const QString &heading,
              const std::vector<Row> &rows, const QPalette &palette)
{
    const QFontMetrics headingMetrics(layout.fonts.heading);
    const QFontMetrics metrics(layout.fonts.label);
    int nameWidth = 0;
    int valueWidth = 0;
    for (const Row &row : rows) {
        nameWidth = std::max(nameWidth, metrics.horizontalAdvance(row.name));
        valueWidth = std::max(valueWidth, metrics.horizontalAdvance(row.value));
    }
    const int indent = swatchSize + spacing::half + 2;
    const int content =
        std::max(headingMetrics.horizontalAdvance(heading), indent + nameWidth + spacing::one + valueWidth);
    const int rowHeight = metrics.height() + 2;
    const QSize size(content + spacing::two,
                     headingMetrics.height() + static_cast<int>(rows.size()) * rowHeight + spacing::one + 2);
    const QRect box = placeOf(size, layout.plot, at);

    QColor background = color(ColorRole::CardBackground, palette);
    background.setAlpha(240);
    painter.setPen(QPen(color(ColorRole::ControlBorder, palette), 1));
    painter.setBrush(background);
    painter.drawRoundedRect(QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5), controlCornerRadius,
                            controlCornerRadius);

    QRect line(box.left() + spacing::one, box.top() + spacing::half, content, headingMetrics.height());
    painter.setFont(layout.fonts.heading);
    painter.setPen(color(ColorRole::Text, palette));
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, heading);
    line.translate(0, headingMetrics.height() + 2);
    line.setHeight(rowHeight);
    painter.setFont(layout.fonts.label);
    for (const Row &row : rows) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(row.color);
        painter.drawEllipse(
            QRectF(line.left(), line.center().y() - swatchSize / 2.0 + 0.5, swatchSize, swatchSize));
        painter.setPen(color(ColorRole::Secondary, palette));
        const QRect texts = line.adjusted(indent, 0, 0, 0);
        painter.drawText(texts, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, row.name);
        painter.setPen(color(ColorRole::Text, palette));
        painter.drawText(texts.adjusted(nameWidth + spacing::one, 0, 0, 0),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, row.value);
        line.translate(0, rowHeight);
    }
}

} // namespace

void paintCrosshair(QPainter &painter, const ChartContent &content, const ChartLayout &layout, ChartMark mark,
                    const QPalette &palette, const QLocale &locale)
{
    if (layout.plot.isEmpty() || !content.holds(mark)) {
        return;
    }
    const std::vector<Row> rows = rowsFor(content, layout, mark, palette, locale);
    const ChartPoint &marked = content.at(mark);
    const QPointF at = positionOf(layout.projection, marked);
    painter.save();
    paintLinesTo(painter, layout.plot, at, palette);
    paintDots(painter, layout.plot, rows, palette);
    const QString heading =
        QStringLiteral("%1 %2").arg(content.stepTitle, chartStepText(marked.step, locale));
    paintBox(painter, layout, at, heading, rows, palette);
    painter.restore();
}

} // namespace zorel::ui::kit
