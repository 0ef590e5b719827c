#pragma once

#include <QColor>
#include <QImage>
#include <QRect>

#include <vector>

namespace zorel::ui::kit {

/// How a line is interrupted. The gaps are faint and not empty, so that no spike can hide in one.
enum class LinePattern { Solid, Dashed, Dotted, DashDotted };

/// Paints lines with round joins, smoothed at their edges, that run to the right or to the left for long
/// stretches, however many points lie in a pixel: what it costs goes with the columns of pixels and not with
/// the points. For each column it keeps how far up and down the line reaches, which is all of a line that
/// crosses the column once.
class LineRaster
{
public:
    /// Each pixel column is painted as so many columns of its own.
    static constexpr int partsPerPixel = 8;

    /// `image` must have the format ARGB32_Premultiplied and outlive this. Only `area`, in pixels, is
    /// painted; its top left corner is the origin of all positions.
    LineRaster(QImage &image, QRect area);

    /// For what follows; `width` in pixels.
    void setPen(const QColor &color, double width, LinePattern pattern);

    /// Starts a line. One without a second point is painted as a dot.
    void moveTo(double x, double y);
    void lineTo(double x, double y);
    /// To be called after the last line.
    void finish();

private:
    struct Span
    {
        float top;
        float bottom;
    };

    void include(int column, double top, double bottom);
    void addSegment(double x0, double y0, double x1, double y1);
    void flush();
    void spread(const std::vector<float> &reach);
    void paintPixelColumn(int x);
    void cover(float top, float bottom);
    void blendColumn(int x, int firstRow, int lastRow);
    double opacityAt(int x) const;

    QImage &m_image;
    QRect m_area;
    QRgb m_color = 0;
    LinePattern m_pattern = LinePattern::Solid;
    double m_unit = 1; ///< what the pattern's lengths are multiplied with
    /// How far a point reaches up and down in its own column and in the ones beside it.
    std::vector<float> m_lineReach;
    std::vector<float> m_dotReach;

    int m_margin = 0; ///< columns beyond each edge whose line reaches into the area
    int m_columnCount = 0;
    std::vector<float> m_tops; ///< of the stretch being collected, by column
    std::vector<float> m_bottoms;
    std::vector<float> m_wideTops; ///< the same, the pen's width added
    std::vector<float> m_wideBottoms;
    int m_firstColumn = 0;
    int m_lastColumn = -1;

    std::vector<float> m_coverage; ///< of the rows of one pixel column
    std::vector<float> m_whole;    ///< where parts that cover whole rows begin and end

    bool m_isDrawing = false;
    bool m_isDot = false;
    int m_direction = 0;
    double m_x = 0;
    double m_y = 0;
};

} // namespace zorel::ui::kit
