#include "service/core/JSONNode.h"

#include "service/core/DecodingError.h"

#include <simdjson.h>

#include <bit>
#include <cmath>

using namespace Qt::StringLiterals;

namespace caldra {

namespace {

using Element = simdjson::dom::element;
using Storage = std::array<std::byte, 2 * sizeof(void *)>;
static_assert(sizeof(Element) == sizeof(Storage) && std::is_trivially_copyable_v<Element>);

Element elementIn(const Storage &storage)
{
    return std::bit_cast<Element>(storage);
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

// The parser refuses integers beyond 64 bits; written with an exponent, it takes them as floating point.
QByteArray withWideIntegersAsFloatingPoint(const QByteArray &text)
{
    constexpr qsizetype widestSafe = 18;
    QByteArray result;
    result.reserve(text.size() + 64);
    bool inText = false;
    for (qsizetype at = 0; at < text.size();) {
        const char character = text[at];
        if (inText || (!isDigit(character) && character != '-')) {
            if (inText && character == '\\' && at + 1 < text.size()) {
                result += text[at++];
            } else if (character == '"') {
                inText = !inText;
            }
            result += text[at++];
            continue;
        }
        const qsizetype begin = at++;
        while (at < text.size() && isDigit(text[at])) {
            ++at;
        }
        const bool isWide = at - begin > widestSafe;
        const bool isInteger = at == text.size() || (text[at] != '.' && text[at] != 'e' && text[at] != 'E');
        result.append(text.constData() + begin, at - begin);
        if (isInteger && isWide) {
            result += "e0";
        } else {
            // The rest of the number must not be taken for another one.
            while (at < text.size() && (isDigit(text[at]) ||
                                        std::string_view(".eE+-").find(text[at]) != std::string_view::npos)) {
                result += text[at++];
            }
        }
    }
    return result;
}

QString reasonFor(simdjson::error_code error)
{
    switch (error) {
    case simdjson::EMPTY:
        return u"the answer is empty"_s;
    case simdjson::UTF8_ERROR:
        return u"the text is not UTF-8"_s;
    case simdjson::DEPTH_ERROR:
        return u"the JSON is nested too deeply"_s;
    case simdjson::NUMBER_ERROR:
        return u"Unsupported JSON value"_s;
    default:
        return u"the text is not JSON"_s;
    }
}

} // namespace

struct JSONDocument::Parsed
{
    simdjson::dom::parser parser;
    Element root;
};

JSONDocument::JSONDocument(const QByteArray &text)
    : m_parsed(std::make_unique<Parsed>())
{
    const auto parse = [this](const QByteArray &bytes) {
        const qsizetype mark = bytes.startsWith("\xEF\xBB\xBF") ? 3 : 0;
        return m_parsed->parser.parse(bytes.constData() + mark, std::size_t(bytes.size() - mark))
            .get(m_parsed->root);
    };
    simdjson::error_code error = parse(text);
    // Versions of the parser name the refusal of a wide integer differently.
    if (error && error != simdjson::UTF8_ERROR && error != simdjson::DEPTH_ERROR) {
        const QByteArray widened = withWideIntegersAsFloatingPoint(text);
        if (widened.size() != text.size()) {
            error = parse(widened);
        }
    }
    if (error) {
        throw DecodingError({}, reasonFor(error));
    }
}

JSONDocument::~JSONDocument() = default;

JSONNode JSONDocument::root() const
{
    JSONNode node;
    node.m_element = std::bit_cast<Storage>(m_parsed->root);
    return node;
}

JSONNode::Kind JSONNode::kind() const
{
    switch (elementIn(m_element).type()) {
    case simdjson::dom::element_type::ARRAY:
        return Kind::array;
    case simdjson::dom::element_type::OBJECT:
        return Kind::object;
    case simdjson::dom::element_type::INT64:
        return Kind::integer;
    case simdjson::dom::element_type::UINT64:
    case simdjson::dom::element_type::DOUBLE:
        return Kind::number;
    case simdjson::dom::element_type::STRING:
        return Kind::text;
    case simdjson::dom::element_type::BOOL:
        return Kind::boolean;
    case simdjson::dom::element_type::NULL_VALUE:
        return Kind::null;
    }
    return Kind::null;
}

bool JSONNode::boolean() const
{
    return elementIn(m_element).get_bool().value();
}

std::optional<qint64> JSONNode::integer() const
{
    const Element element = elementIn(m_element);
    if (element.is_int64()) {
        return element.get_int64().value();
    }
    if (element.is_uint64()) {
        return std::nullopt;
    }
    const double value = number();
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (std::trunc(value) != value || value < -limit || value >= limit) {
        return std::nullopt;
    }
    return qint64(value);
}

double JSONNode::number() const
{
    return elementIn(m_element).get_double().value();
}

std::string_view JSONNode::text() const
{
    return elementIn(m_element).get_string().value();
}

std::size_t JSONNode::elementCount() const
{
    return elementIn(m_element).get_array().value().size();
}

void JSONNode::visitElements(void *visitor, void (*visit)(void *, const JSONNode &)) const
{
    JSONNode node;
    const simdjson::dom::array array = elementIn(m_element).get_array();
    for (const Element element : array) {
        node.m_element = std::bit_cast<Storage>(element);
        visit(visitor, node);
    }
}

void JSONNode::visitMembers(void *visitor, void (*visit)(void *, std::string_view, const JSONNode &)) const
{
    JSONNode node;
    const simdjson::dom::object object = elementIn(m_element).get_object();
    for (const auto member : object) {
        node.m_element = std::bit_cast<Storage>(member.value);
        visit(visitor, member.key, node);
    }
}

bool isTruncatedJSON(const QByteArray &text)
{
    const QByteArray trimmed = text.trimmed();
    if (trimmed.isEmpty()) {
        return true;
    }
    if (trimmed.front() != '{' && trimmed.front() != '[') {
        return false;
    }
    qsizetype depth = 0;
    bool inText = false;
    for (qsizetype at = 0; at < trimmed.size(); ++at) {
        const char character = trimmed[at];
        if (inText && character == '\\') {
            ++at;
        } else if (character == '"') {
            inText = !inText;
        } else if (!inText && (character == '{' || character == '[')) {
            ++depth;
        } else if (!inText && (character == '}' || character == ']') && --depth == 0) {
            return false;
        }
    }
    return true;
}

} // namespace caldra
