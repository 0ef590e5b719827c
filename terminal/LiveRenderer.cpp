#include "terminal/LiveRenderer.h"

#include <algorithm>

namespace zorel::terminal {

LiveRenderer::LiveRenderer(OutputStream &terminal, const TerminalStyle &style, MessageWriter &output,
                           MessageWriter &errors)
    : m_terminal(terminal)
    , m_style(style)
    , m_output(output)
    , m_errors(errors)
{
    m_frameTimer.setSingleShot(true);
    m_frameTimer.setInterval(frame);
    connect(&m_frameTimer, &QTimer::timeout, this, [this] {
        if (m_dirty) {
            drawWhenDue();
        }
    });
}

void LiveRenderer::showProgress(const RunProgress &progress)
{
    if (m_progress == progress) {
        return;
    }
    m_progress = progress;
    m_dirty = true;
    if (!m_frameTimer.isActive()) {
        drawWhenDue();
    }
}

void LiveRenderer::drawWhenDue()
{
    draw();
    m_frameTimer.start();
}

void LiveRenderer::draw()
{
    m_dirty = false;
    if (!m_progress) {
        return;
    }
    const int columns = m_terminal.columns();
    const QList<BlockLine> lines = liveBlock(*m_progress, m_style, columns);
    if (lines == m_drawn && columns == m_drawnColumns) {
        return;
    }
    QByteArray bytes = erasure();
    for (qsizetype line = 0; line < lines.size(); ++line) {
        bytes += (line > 0 ? "\r\n" : "") + lines[line].text.toUtf8();
    }
    m_terminal.write(bytes);
    m_drawn = lines;
    m_drawnColumns = columns;
}

/// How many rows the block takes; a terminal that has become narrower has wrapped its lines.
int LiveRenderer::drawnRows(int columns) const
{
    int rows = 0;
    for (const BlockLine &line : m_drawn) {
        rows += std::max(1, (line.width + columns - 1) / columns);
    }
    return rows;
}

QByteArray LiveRenderer::erasure() const
{
    if (m_drawn.isEmpty()) {
        return QByteArray();
    }
    QByteArray bytes("\r");
    if (const int up = drawnRows(m_terminal.columns()) - 1; up > 0) {
        bytes += "\x1b[" + QByteArray::number(up) + 'A';
    }
    return bytes + "\x1b[J";
}

void LiveRenderer::writeAbove(MessageWriter &writer, void (MessageWriter::*write)(const QString &),
                              const QString &text)
{
    m_terminal.write(erasure());
    m_drawn.clear();
    (writer.*write)(text);
    draw();
}

void LiveRenderer::showNotice(const QString &text)
{
    writeAbove(m_output, &MessageWriter::write, text);
}

void LiveRenderer::showError(const QString &text)
{
    writeAbove(m_errors, &MessageWriter::writeError, text);
}

void LiveRenderer::showLogLine(const QString &line)
{
    writeAbove(m_output, &MessageWriter::write, line);
}

void LiveRenderer::redraw()
{
    m_drawnColumns = 0;
    draw();
}

void LiveRenderer::drawAnew()
{
    m_drawn.clear();
    draw();
}

void LiveRenderer::endProgress()
{
    m_terminal.write(erasure());
    m_drawn.clear();
    m_progress.reset();
    m_frameTimer.stop();
}

} // namespace zorel::terminal
