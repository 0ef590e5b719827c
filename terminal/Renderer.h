#pragma once

#include "terminal/RunProgress.h"

#include <QByteArray>
#include <QString>

namespace zorel::terminal {

/// Shows a run in one of several ways.
class Renderer
{
public:
    virtual ~Renderer() = default;

    /// The run has come further, or something about it has changed.
    virtual void showProgress(const RunProgress &progress) = 0;
    /// A line of the sidecar's output, as it came.
    virtual void showEventLine(const QByteArray &line) = 0;
    /// Text for the user that stays: what is being done, where the model lies. May have several lines.
    virtual void showNotice(const QString &text) = 0;
    /// A failure.
    virtual void showError(const QString &text) = 0;
    /// A line of the activity log.
    virtual void showLogLine(const QString &line) = 0;
    /// The terminal has another size.
    virtual void redraw() = 0;
    /// The program was suspended, and others have written to the terminal.
    virtual void drawAnew() = 0;
    /// Nothing more will be shown of the progress.
    virtual void endProgress() = 0;
    /// Whether what is written for the user is read by nobody any more.
    virtual bool isClosed() const = 0;

protected:
    Renderer() = default;
    Renderer(const Renderer &) = default;
    Renderer &operator=(const Renderer &) = default;
};

} // namespace zorel::terminal
