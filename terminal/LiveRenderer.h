#pragma once

#include "terminal/LiveBlock.h"
#include "terminal/MessageWriter.h"
#include "terminal/OutputStream.h"
#include "terminal/Renderer.h"

#include <QObject>
#include <QTimer>

namespace zorel::terminal {

/// Keeps a block of lines up to date at the bottom of a terminal and everything else above it. Leaves the
/// terminal's modes and its cursor's looks alone, so that there is nothing to restore, however the program
/// ends.
class LiveRenderer : public QObject, public Renderer
{
    Q_OBJECT

public:
    /// Shortest time between two drawings of the block.
    static constexpr std::chrono::milliseconds frame{100};

    /// All must outlive this object; `output` writes to `terminal`.
    LiveRenderer(OutputStream &terminal, const TerminalStyle &style, MessageWriter &output,
                 MessageWriter &errors);

    void showProgress(const RunProgress &progress) override;
    void showEventLine(const QByteArray &) override {}
    void showNotice(const QString &text) override;
    void showError(const QString &text) override;
    void showLogLine(const QString &line) override;
    void redraw() override;
    void drawAnew() override;
    void endProgress() override;
    bool isClosed() const override { return m_terminal.isClosed(); }

private:
    void drawWhenDue();
    void draw();
    QByteArray erasure() const;
    int drawnRows(int columns) const;
    void writeAbove(MessageWriter &writer, void (MessageWriter::*write)(const QString &),
                    const QString &text);

    OutputStream &m_terminal;
    TerminalStyle m_style;
    MessageWriter &m_output;
    MessageWriter &m_errors;
    QTimer m_frameTimer;
    bool m_dirty = false;
    std::optional<RunProgress> m_progress;
    QList<BlockLine> m_drawn;
    int m_drawnColumns = 0;
};

} // namespace zorel::terminal
