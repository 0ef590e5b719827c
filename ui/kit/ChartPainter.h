#pragma once

#include "ui/kit/ChartLayout.h"

#include <QPalette>

class QImage;
class QPainter;

namespace zorel::ui::kit {

/// Paints the chart's axes, lines and legend into the image, which must have the format ARGB32_Premultiplied;
/// its device pixel ratio is respected. Nothing is painted where nothing belongs: the background shows
/// through.
void paintChart(QImage &image, const ChartContent &content, const ChartLayout &layout,
                const QPalette &palette);

/// What the title of the axis of values and the legend take of the header.
int chartHeaderWidth(const ChartContent &content, const ChartFonts &fonts);

/// The part of the plot that the user is about to zoom to.
void paintZoomFrame(QPainter &painter, const ChartLayout &layout, const QRect &frame,
                    const QPalette &palette);

} // namespace zorel::ui::kit
