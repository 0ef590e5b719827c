#include "service/core/RecordDecoder.h"

using namespace Qt::StringLiterals;

namespace caldra::detail {

namespace {

QString nameOf(JSONNode::Kind kind)
{
    switch (kind) {
    case JSONNode::Kind::null:
        return u"null"_s;
    case JSONNode::Kind::boolean:
        return u"a boolean"_s;
    case JSONNode::Kind::integer:
    case JSONNode::Kind::number:
        return u"a number"_s;
    case JSONNode::Kind::text:
        return u"a text"_s;
    case JSONNode::Kind::array:
        return u"a list"_s;
    case JSONNode::Kind::object:
        return u"an object"_s;
    }
    return {};
}

[[noreturn]] void failKind(const JSONNode &node, const QString &expected, const DecodingPath &path)
{
    failDecoding(path, u"expected %1, found %2"_s.arg(expected, nameOf(node.kind())));
}

bool isNumber(const JSONNode &node)
{
    return node.kind() == JSONNode::Kind::integer || node.kind() == JSONNode::Kind::number;
}

} // namespace

void requireKind(const JSONNode &node, JSONNode::Kind kind, const DecodingPath &path)
{
    if (node.kind() != kind) {
        failKind(node, nameOf(kind), path);
    }
}

bool decodeBoolean(const JSONNode &node, const DecodingPath &path)
{
    requireKind(node, JSONNode::Kind::boolean, path);
    return node.boolean();
}

qint64 decodeInteger(const JSONNode &node, const DecodingPath &path)
{
    if (!isNumber(node)) {
        failKind(node, u"an integer"_s, path);
    }
    const auto integer = node.integer();
    if (!integer) {
        failDecoding(path, u"expected an integer of 64 bits, found %1"_s.arg(node.number()));
    }
    return *integer;
}

double decodeNumber(const JSONNode &node, const DecodingPath &path)
{
    if (!isNumber(node)) {
        failKind(node, u"a number"_s, path);
    }
    return node.number();
}

QString decodeText(const JSONNode &node, const DecodingPath &path)
{
    requireKind(node, JSONNode::Kind::text, path);
    const std::string_view text = node.text();
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

void failUnknownText(const JSONNode &node, const DecodingPath &path)
{
    constexpr qsizetype longestShown = 80;
    const std::string_view text = node.text();
    const QString value = QString::fromUtf8(text.data(), qsizetype(text.size()));
    // A part of a text could be a part of a secret, which nobody would find in it afterwards.
    failDecoding(path, value.size() <= longestShown ? u"unknown value \"%1\""_s.arg(value)
                                                    : u"unknown value of %1 characters"_s.arg(value.size()));
}

void failMissing(std::string_view name, const DecodingPath &path)
{
    failDecoding({&path, name}, u"the value is missing"_s);
}

} // namespace caldra::detail
