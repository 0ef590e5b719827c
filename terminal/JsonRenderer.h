#pragma once

#include "backend/protocol/EventDecoder.h"
#include "terminal/MessageWriter.h"
#include "terminal/OutputStream.h"
#include "terminal/Renderer.h"

namespace zorel::terminal {

/// Passes the sidecar's events on, one a line, for another program to read. Lines that are no events are left
/// out, and everything meant for people goes to standard error.
class JsonRenderer : public Renderer
{
public:
    /// Both must outlive this object.
    JsonRenderer(OutputStream &output, MessageWriter &messages);

    void showProgress(const RunProgress &) override {}
    void showEventLine(const QByteArray &line) override;
    void showNotice(const QString &text) override { m_messages.write(text); }
    void showError(const QString &text) override { m_messages.writeError(text); }
    void showLogLine(const QString &line) override { m_messages.write(line); }
    void redraw() override {}
    void drawAnew() override {}
    void endProgress() override {}
    bool isClosed() const override { return m_output.isClosed(); }

private:
    OutputStream &m_output;
    MessageWriter &m_messages;
    backend::protocol::EventDecoder m_decoder;
};

} // namespace zorel::terminal
