#include "ui/kit/ProgressMeter.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"

#include <QPainter>
#include <QStyle>
#include <QTimerEvent>

#include <algorithm>
#include <cmath>

namespace zorel::ui::kit {

namespace {

constexpr int thousandths = 1000;
constexpr int thickness = 6;
constexpr int frameMilliseconds = 33;
/// Of one run from end to end.
constexpr int framesInRun = 45;
constexpr double movingPart = 0.3;

} // namespace

ProgressMeter::ProgressMeter(const QString &accessibleName, QWidget *parent)
    : QProgressBar(parent)
{
    setTextVisible(false);
    setRange(0, 0);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(accessibleName);
}

void ProgressMeter::setFraction(std::optional<double> fraction)
{
    if (fraction && std::isnan(*fraction)) {
        fraction.reset();
    }
    if (fraction) {
        fraction = std::clamp(*fraction, 0.0, 1.0);
    }
    if (m_fraction == fraction) {
        return;
    }
    m_fraction = fraction;
    if (fraction) {
        setRange(0, thousandths);
        setValue(static_cast<int>(std::floor(*fraction * thousandths)));
    } else {
        setRange(0, 0);
    }
    update();
}

QSize ProgressMeter::sizeHint() const
{
    return {20 * gridUnit, thickness};
}

QSize ProgressMeter::minimumSizeHint() const
{
    return {5 * gridUnit, thickness};
}

QRectF ProgressMeter::filledPart(const QRectF &track) const
{
    if (m_fraction) {
        const double width = *m_fraction > 0 ? std::max(track.width() * *m_fraction, track.height()) : 0;
        const bool fromRight = layoutDirection() == Qt::RightToLeft;
        return {fromRight ? track.right() - width : track.left(), track.top(), width, track.height()};
    }
    const double phase = double(m_frame % framesInRun) / framesInRun;
    const double eased = 0.5 - 0.5 * std::cos(2 * M_PI * phase);
    const double width = track.width() * movingPart;
    return {track.left() + (track.width() - width) * eased, track.top(), width, track.height()};
}

void ProgressMeter::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRectF track(0, (height() - thickness) / 2.0, width(), thickness);
    paintPanel(painter, track, thickness / 2.0, color(ColorRole::Track, palette()));
    const QRectF filled = filledPart(track);
    if (!filled.isEmpty()) {
        const ColorRole role = isEnabled() ? ColorRole::AccentFill : ColorRole::ControlBorder;
        paintPanel(painter, filled, thickness / 2.0, color(role, palette()));
    }
    keepMoving();
}

/// Every frame asks for the next one by being painted: what is not seen is not painted and so has no timer.
void ProgressMeter::keepMoving()
{
    const bool isAnimated = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0;
    if (!m_fraction && isAnimated && m_frameTimer == 0 && isVisible()) {
        m_frameTimer = startTimer(frameMilliseconds, Qt::CoarseTimer);
    }
}

void ProgressMeter::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_frameTimer) {
        QProgressBar::timerEvent(event);
        return;
    }
    killTimer(m_frameTimer);
    m_frameTimer = 0;
    if (!m_fraction) {
        ++m_frame;
        update();
    }
}

} // namespace zorel::ui::kit
