#include "terminal/MessageWriter.h"

#include "terminal/TextWidth.h"

#include <QStringList>

namespace zorel::terminal {

namespace {

QString safeLines(const QString &text)
{
    QStringList lines = text.split(u'\n');
    for (QString &line : lines) {
        line = withoutControls(line);
    }
    return lines.join(u'\n');
}

} // namespace

MessageWriter::MessageWriter(OutputStream &stream, const TerminalStyle &style)
    : m_stream(stream)
    , m_style(style)
{}

void MessageWriter::write(const QString &text)
{
    m_stream.write(m_style.shown(safeLines(text) + u'\n').toUtf8());
}

void MessageWriter::writeError(const QString &text)
{
    const QString coloured = m_style.coloured(safeLines(text), TerminalStyle::Colour::red);
    m_stream.write(m_style.shown(coloured + u'\n').toUtf8());
}

} // namespace zorel::terminal
