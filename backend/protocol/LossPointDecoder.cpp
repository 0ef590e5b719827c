#include "backend/protocol/LossPointDecoder.h"

#include "backend/protocol/JsonDocument.h"

#include <cstring>

namespace zorel::backend::protocol {

class LossPointDecoder::Implementation
{
public:
    std::optional<LossPoint> decode(std::string_view line, std::size_t readable)
    {
        std::int64_t step = 0;
        double loss = 0;
        const bool isPoint = read(line, readable, step, loss);
        m_document.close();
        return isPoint ? std::optional<LossPoint>(std::in_place, step, loss) : std::nullopt;
    }

    void decodeLines(std::string_view lines, std::vector<LossPoint> &points)
    {
        const char *const end = lines.data() + lines.size();
        const char *line = lines.empty() ? end : decodeUsualLines(lines, points);
        while (line != end) {
            const std::string_view rest(line, static_cast<std::size_t>(end - line));
            const std::string_view text = rest.substr(0, rest.find('\n'));
            std::int64_t step = 0;
            double loss = 0;
            if (!text.empty() && read(text, rest.size() + JsonDocument::padding, step, loss)) {
                points.emplace_back(step, loss);
            }
            line += text.size() + 1;
        }
        m_document.close();
    }

private:
    /// Has the parser look at all lines at once. Returns the first line that is not as usual, and with it
    /// gives up: what follows it may be cut in other places than at line feeds.
    const char *decodeUsualLines(std::string_view lines, std::vector<LossPoint> &points)
    {
        const char *line = lines.data();
        ondemand::document_stream documents;
        if (m_lineParser.iterate_many(lines.data(), lines.size(), lines.size()).get(documents) !=
            simdjson::SUCCESS) {
            return line;
        }
        for (simdjson::simdjson_result<ondemand::document_reference> document : documents) {
            std::int64_t step = 0;
            double loss = 0;
            const char *end = usualLine(line, document, step, loss);
            if (!end) {
                break;
            }
            points.emplace_back(step, loss);
            line = end;
        }
        return line;
    }

    /// The end of a line that holds "step" and "loss" and nothing else; null for any other. The document
    /// before it must have ended where its line ended.
    static const char *usualLine(const char *line,
                                 simdjson::simdjson_result<ondemand::document_reference> &document,
                                 std::int64_t &step, double &loss)
    {
        ondemand::object object;
        if (*line != '{' || document.get_object().get(object) != simdjson::SUCCESS) {
            return nullptr;
        }
        KeysInOrder keys(line + 1, object);
        ondemand::value value;
        if (!keys.find<"step">(value) || value.get_int64().get(step) != simdjson::SUCCESS ||
            !keys.find<"loss">(value) || value.get_double().get(loss) != simdjson::SUCCESS) {
            return nullptr;
        }
        const char *end = keys.next() + 1;
        // A line feed between two tokens is white space to the parser.
        const auto length = static_cast<std::size_t>(end - line);
        return keys.isAtEnd() && *end == '\n' && !std::memchr(line, '\n', length) ? end + 1 : nullptr;
    }

    bool read(std::string_view line, std::size_t readable, std::int64_t &step, double &loss)
    {
        ondemand::object object;
        if (!m_document.open(line, readable, object)) {
            return false;
        }
        FieldsRead fields;
        const bool wellFormed = readObject(
            object, fields, field<"step">([&](ondemand::value &value) { return readInteger(value, step); }),
            field<"loss">([&](ondemand::value &value) { return readNumber(value, loss); }));
        return wellFormed && fields.hasAll(0, 2) && m_document.isAtEnd();
    }

    JsonDocument m_document;
    ondemand::parser m_lineParser;
};

LossPointDecoder::LossPointDecoder()
    : m_implementation(std::make_unique<Implementation>())
{}
LossPointDecoder::~LossPointDecoder() = default;
LossPointDecoder::LossPointDecoder(LossPointDecoder &&) noexcept = default;
LossPointDecoder &LossPointDecoder::operator=(LossPointDecoder &&) noexcept = default;

std::optional<LossPoint> LossPointDecoder::decode(std::string_view line, std::size_t readable)
{
    return m_implementation->decode(line, readable);
}

void LossPointDecoder::decodeLines(std::string_view lines, std::vector<LossPoint> &points)
{
    m_implementation->decodeLines(lines, points);
}

} // namespace zorel::backend::protocol
