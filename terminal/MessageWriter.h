#pragma once

#include "terminal/OutputStream.h"
#include "terminal/TerminalStyle.h"

#include <QString>

namespace zorel::terminal {

/// Writes whole lines of text to a stream.
class MessageWriter
{
public:
    /// `stream` must outlive this object.
    MessageWriter(OutputStream &stream, const TerminalStyle &style);

    void write(const QString &text);
    void writeError(const QString &text);
    bool isClosed() const { return m_stream.isClosed(); }

private:
    OutputStream &m_stream;
    TerminalStyle m_style;
};

} // namespace zorel::terminal
