#include "terminal/JsonRenderer.h"

#include <string_view>

namespace zorel::terminal {

using namespace backend::protocol;

JsonRenderer::JsonRenderer(OutputStream &output, MessageWriter &messages)
    : m_output(output)
    , m_messages(messages)
{}

void JsonRenderer::showEventLine(const QByteArray &line)
{
    const std::string_view text(line.constData(), static_cast<std::size_t>(line.size()));
    if (std::holds_alternative<BackendEvent>(m_decoder.decode(text))) {
        m_output.write(line + '\n');
    }
}

} // namespace zorel::terminal
