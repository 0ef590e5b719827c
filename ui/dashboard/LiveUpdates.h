#pragma once

#include "ui/kit/Repaint.h"

#include <QElapsedTimer>
#include <QObject>

namespace zorel::backend::bridge {
class BackendController;
}

namespace zorel::ui::dashboard {

/// Passes the controller's fast changes on to the panels, at most once a frame however often they come, and
/// all together, so that the window is painted once; the log's lines at most 20 times a second. Does nothing
/// while nothing changes.
class LiveUpdates : public QObject
{
    Q_OBJECT

public:
    /// `backend` must outlive this object.
    explicit LiveUpdates(backend::bridge::BackendController &backend, QObject *parent = nullptr);

    /// Passes on now what waits for the next frame.
    void publish();

Q_SIGNALS:
    /// The status or the readiness is another one.
    void statusMoved();
    /// So many points were added since the last time; more than the history holds when it came fast.
    void lossHistoryGrew(std::size_t points);
    /// So many lines were added since the last time; more than the log holds when it came fast.
    void logGrew(std::size_t lines);

private:
    void publishFrame();
    void publishFigures();
    void publishCurve();
    void publishLog();

    kit::FrameCoalescer m_frame;
    QElapsedTimer m_sinceCurve;
    QElapsedTimer m_sinceLog;
    bool m_statusMoved = false;
    std::size_t m_points = 0;
    std::size_t m_lines = 0;
};

} // namespace zorel::ui::dashboard
