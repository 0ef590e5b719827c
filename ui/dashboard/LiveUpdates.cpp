#include "ui/dashboard/LiveUpdates.h"

#include "backend/bridge/BackendController.h"

#include <utility>

namespace zorel::ui::dashboard {

using backend::bridge::BackendController;

namespace {

/// A curve that grows 30 times a second flows, and each time all of it is painted anew.
constexpr qint64 curveMilliseconds = 33;
/// Nobody reads lines that scroll by, and each time the view of the log is laid out and painted anew.
constexpr qint64 logMilliseconds = 50;

bool isWithin(const QElapsedTimer &sinceLast, qint64 milliseconds)
{
    return sinceLast.isValid() && sinceLast.elapsed() < milliseconds;
}

} // namespace

LiveUpdates::LiveUpdates(BackendController &backend, QObject *parent)
    : QObject(parent)
    , m_frame(this, [this] { publishFrame(); })
{
    const auto noteStatus = [this] {
        m_statusMoved = true;
        m_frame.request();
    };
    connect(&backend, &BackendController::statusChanged, this, noteStatus);
    connect(&backend, &BackendController::readyChanged, this, noteStatus);
    connect(&backend, &BackendController::lossPointAppended, this, [this] {
        ++m_points;
        m_frame.request();
    });
    connect(&backend, &BackendController::logLineAppended, this, [this] {
        ++m_lines;
        m_frame.request();
    });
}

void LiveUpdates::publish()
{
    publishFigures();
    publishCurve();
    publishLog();
}

void LiveUpdates::publishFrame()
{
    publishFigures();
    if (!isWithin(m_sinceCurve, curveMilliseconds)) {
        publishCurve();
    }
    if (!isWithin(m_sinceLog, logMilliseconds)) {
        publishLog();
    }
    if (m_points > 0 || m_lines > 0) {
        m_frame.request();
    }
}

void LiveUpdates::publishFigures()
{
    if (std::exchange(m_statusMoved, false)) {
        Q_EMIT statusMoved();
    }
}

void LiveUpdates::publishCurve()
{
    if (const std::size_t points = std::exchange(m_points, 0); points > 0) {
        m_sinceCurve.start();
        Q_EMIT lossHistoryGrew(points);
    }
}

void LiveUpdates::publishLog()
{
    if (const std::size_t lines = std::exchange(m_lines, 0); lines > 0) {
        m_sinceLog.start();
        Q_EMIT logGrew(lines);
    }
}

} // namespace zorel::ui::dashboard
