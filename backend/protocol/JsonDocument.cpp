#include "backend/protocol/JsonDocument.h"

#include "backend/protocol/JsonNumber.h"

#include <bit>

namespace zorel::backend::protocol {

namespace {

constexpr std::string_view jsonSpace = " \t\r\n";
constexpr std::size_t usualLength = 1024 * 1024;

/// The text of a scalar that is no string.
std::string_view scalarText(ondemand::value &value)
{
    const std::string_view token = value.raw_json_token();
    return token.substr(0, token.find_last_not_of(jsonSpace) + 1);
}

bool skipObject(ondemand::value &value, int depth)
{
    ondemand::object object;
    if (value.get_object().get(object) != simdjson::SUCCESS) {
        return false;
    }
    for (simdjson::simdjson_result<ondemand::field> result : object) {
        ondemand::field field;
        if (std::move(result).get(field) != simdjson::SUCCESS) {
            return false;
        }
        if (field.unescaped_key().error() != simdjson::SUCCESS) {
            return false;
        }
        if (skipValue(field.value(), depth + 1) == Reading::malformed) {
            return false;
        }
    }
    return true;
}

bool skipArray(ondemand::value &value, int depth)
{
    ondemand::array array;
    if (value.get_array().get(array) != simdjson::SUCCESS) {
        return false;
    }
    for (simdjson::simdjson_result<ondemand::value> result : array) {
        ondemand::value element;
        if (result.get(element) != simdjson::SUCCESS) {
            return false;
        }
        if (skipValue(element, depth + 1) == Reading::malformed) {
            return false;
        }
    }
    return true;
}

/// simdjson looks at the byte after an incomplete text; a comma or a bracket there would lead it on.
bool isHarmlessAfterText(char byte)
{
    return byte == '\0' || jsonSpace.find(byte) != std::string_view::npos;
}

bool isScalar(std::string_view text)
{
    return text == "null" || text == "true" || text == "false" || isJsonNumber(text);
}

} // namespace

Reading skipValue(ondemand::value &value, int depth)
{
    if (depth >= deepestNesting) {
        return Reading::malformed;
    }
    bool wellFormed = false;
    switch (value.raw_json_token().front()) {
    case '{':
        wellFormed = skipObject(value, depth);
        break;
    case '[':
        wellFormed = skipArray(value, depth);
        break;
    case '"':
        wellFormed = value.get_string().error() == simdjson::SUCCESS;
        break;
    default:
        wellFormed = isScalar(scalarText(value));
    }
    return wellFormed ? Reading::otherType : Reading::malformed;
}

Reading readUnusualInteger(ondemand::value &value, std::int64_t &target)
{
    const std::optional<std::int64_t> number = wholeNumber(scalarText(value));
    if (!number) {
        return skipValue(value);
    }
    target = *number;
    return Reading::taken;
}

bool JsonDocument::open(std::string_view text, std::size_t readable, ondemand::object &object)
{
    // Some releases of simdjson skip a byte order mark, some do not.
    const std::size_t start = text.find_first_not_of(jsonSpace);
    if (start == std::string_view::npos || text[start] != '{') {
        return false;
    }
    if (readable < text.size() + padding || !isHarmlessAfterText(text.data()[text.size()])) {
        m_copy.assign(text).append(padding, ' ');
        text = std::string_view(m_copy.data(), text.size());
    }
    // Room for the strings of a text that is read once in part and once again as a whole.
    const bool isUsual = text.size() <= usualLength;
    const std::size_t capacity = isUsual ? std::bit_ceil(2 * text.size()) : text.size();
    m_firstKey = isUsual ? text.data() + start + 1 : nullptr;
    if (m_parser.capacity() < capacity && m_parser.allocate(capacity) != simdjson::SUCCESS) {
        return false;
    }
    const simdjson::padded_string_view padded(text.data(), text.size(), text.size() + padding);
    return m_parser.iterate(padded).get(m_document) == simdjson::SUCCESS &&
           m_document.get_object().get(object) == simdjson::SUCCESS;
}

bool JsonDocument::reopen(ondemand::object &object)
{
    if (!m_document.is_alive()) { // given up at an error
        return false;
    }
    m_document.rewind();
    return m_document.get_object().get(object) == simdjson::SUCCESS;
}

bool JsonDocument::isAtEnd()
{
    return m_document.current_location().error() == simdjson::OUT_OF_BOUNDS;
}

void JsonDocument::close()
{
    if (m_parser.capacity() > 2 * usualLength) {
        m_parser = ondemand::parser();
    }
    if (m_copy.capacity() > usualLength + padding) {
        m_copy = std::string();
    }
}

} // namespace zorel::backend::protocol
