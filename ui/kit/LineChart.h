#pragma once

#include "ui/kit/ChartCrosshair.h"
#include "ui/kit/ChartLayout.h"

#include <QImage>
#include <QPointer>
#include <QWidget>

#include <span>

namespace zorel::ui::kit {

class ChartActions;
class ChartExport;
class ChartToolRow;
class FrameCoalescer;
class TextLabel;

/// Lines over steps. Points are drawn in the order they were given, also where the steps go back; what cannot
/// be drawn is left out and counted. Appending costs O(1), painting what the pixels cost and not the points;
/// it is painted at most 60 times a second and only after a change. Main thread.
///
/// Pointer: the crosshair follows it; dragging zooms (a flat frame to its steps only), a double click resets,
/// the wheel with Control held zooms at the pointer. Keys: Left and Right move the crosshair from point to
/// point, Page Up and Page Down by tenths, Home and End to the ends, Up and Down to the other series; plus
/// and minus zoom, L switches the scale, Escape takes back the crosshair and then the zoom.
class LineChart : public QWidget
{
    Q_OBJECT

public:
    /// The title is the chart's accessible name and the heading of its image; it is not painted in the
    /// window.
    explicit LineChart(const QString &title, QWidget *parent = nullptr);
    ~LineChart() override;

    void setTitle(const QString &title);
    void setAxisTitles(const QString &step, const QString &value);
    /// Stands before the names of the series, which are shown when there are two or more.
    void setLegendKey(const QString &key);
    /// Shown, and read, in the middle while there is no point. May have several lines.
    void setPlaceholder(const QString &text);

    /// Returns the number by which the series is called from then on.
    int addSeries(const QString &name);
    void append(int series, std::int64_t step, double value);
    void setPoints(int series, std::span<const ChartPoint> points);
    /// Keeps the newest points only; 0 keeps all.
    void setCapacity(int series, std::size_t capacity);
    void dropOldest(int series, std::size_t count);
    void clear(int series);
    /// Oldest first; valid until the series changes.
    std::span<const ChartPoint> points(int series) const;

    ChartScaleKind scale() const { return m_content.scale; }
    void setScale(ChartScaleKind scale);
    /// The weight of ChartSmoothing; 0 is off.
    double smoothing() const { return m_content.smoothing; }
    void setSmoothing(double weight);

    bool isZoomed() const { return m_content.view.isZoomed(); }
    void zoomToSteps(double first, double last);
    void resetZoom();

    /// The buttons, which lie in the chart's upper right corner until they are put elsewhere, as in a card's
    /// heading.
    QWidget *toolRow();

    /// The chart with its title and background, at twice the screen's resolution where that is a simple one.
    QImage image();
    void copyImage();
    /// Writes every point, also those that cannot be drawn or are not shown; see chartCsv.
    void exportPoints(const QString &path);
    /// Lets the user choose the file.
    void chooseExport();

    /// What assistive technology reads: the point at the crosshair if it was put there by keyboard, else a
    /// summary.
    QString spokenDescription() const;
    const ChartContent &content() const { return m_content; }
    std::optional<ChartMark> crosshair();
    /// Where everything lies, in the widget; valid until something changes.
    const ChartLayout &layoutNow();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void pointsExported(const QString &path);
    /// The user has been told already.
    void exportFailed(const QString &path, const QString &message);

protected:
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    ChartSeries &series(int number);
    void connectActions();
    /// The picture is no longer right.
    void contentChanged();
    /// Points came or went.
    void pointsChanged();
    void viewChanged();
    void refreshPicture();
    int headerHeight() const;
    void placeTools();
    void placePlaceholder();

    bool takeKey(int key);
    bool moveCrosshair(int key);
    void chooseByKey(ChartMark mark);
    void zoomByKey(double factor);
    bool escape();
    void zoomAround(double factor, double step);
    void zoomToFrame();
    void frameTo(QPoint position);
    QPointF inPlot(QPointF position);
    void exportHasFailed(const QString &path, const QString &message);

    ChartContent m_content;
    ChartCrosshair m_crosshair;
    std::optional<QPoint> m_dragStart;
    QRect m_zoomFrame;

    ChartFonts m_fonts = ChartFonts::current();
    ChartLayout m_layout;
    bool m_isLayoutStale = true;
    QImage m_picture; ///< everything but the crosshair
    bool m_isPictureStale = true;

    FrameCoalescer *m_repaint;
    ChartActions *m_actions;
    QPointer<ChartToolRow> m_tools;
    ChartExport *m_export;
    TextLabel *m_placeholder;
    bool m_wasEmpty = true;
};

} // namespace zorel::ui::kit
