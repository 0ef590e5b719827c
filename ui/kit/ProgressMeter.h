#pragma once

#include <QProgressBar>

#include <optional>

namespace zorel::ui::kit {

/// A thin bar that fills. While the fraction is unknown a part of it moves, but only as long as it can be
/// seen.
class ProgressMeter : public QProgressBar
{
    Q_OBJECT

public:
    explicit ProgressMeter(const QString &accessibleName = {}, QWidget *parent = nullptr);

    std::optional<double> fraction() const { return m_fraction; }
    /// From 0 to 1, what lies outside is cut; none (or not a number) when unknown.
    void setFraction(std::optional<double> fraction);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    QRectF filledPart(const QRectF &track) const;
    void keepMoving();

    std::optional<double> m_fraction;
    int m_frameTimer = 0;
    int m_frame = 0;
};

} // namespace zorel::ui::kit
