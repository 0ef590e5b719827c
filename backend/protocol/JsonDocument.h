#pragma once

// Private to the decoders: brings in the whole of simdjson.

#include "backend/protocol/Utf8Text.h"

#include <simdjson.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace zorel::backend::protocol {

namespace ondemand = simdjson::ondemand;

/// What became of one value.
enum class Reading : std::uint8_t {
    taken,
    otherType, ///< well-formed, and not what was asked for
    malformed  ///< the text is no JSON
};

/// The deepest nesting of a line that is looked at.
inline constexpr int deepestNesting = 1000;

/// Goes through a value of no interest. simdjson does not look into what it skips, and a line that is not
/// JSON throughout is no event. Never Reading::taken.
Reading skipValue(ondemand::value &value, int depth = 1);

/// Integers that are not written as plain digits, and everything that is no integer.
Reading readUnusualInteger(ondemand::value &value, std::int64_t &target);

inline Reading readInteger(ondemand::value &value, std::int64_t &target)
{
    return value.get_int64().get(target) == simdjson::SUCCESS ? Reading::taken
                                                              : readUnusualInteger(value, target);
}

inline Reading readNumber(ondemand::value &value, double &target)
{
    return value.get_double().get(target) == simdjson::SUCCESS ? Reading::taken : skipValue(value);
}

inline Reading readFlag(ondemand::value &value, bool &target)
{
    return value.get_bool().get(target) == simdjson::SUCCESS ? Reading::taken : skipValue(value);
}

/// `target` is valid until the document is opened anew.
inline Reading readUtf8(ondemand::value &value, std::string_view &target)
{
    return value.get_string().get(target) == simdjson::SUCCESS ? Reading::taken : skipValue(value);
}

inline Reading readString(ondemand::value &value, QString &target)
{
    std::string_view utf8;
    const Reading reading = readUtf8(value, utf8);
    if (reading == Reading::taken) {
        target = toQString(utf8);
    }
    return reading;
}

/// For keys that may be absent. A key given twice counts as it was given last, so that a value of another
/// type also takes back an earlier good one.
template <class Value>
Reading orDefault(Reading reading, Value &target, const Value &otherwise)
{
    if (reading == Reading::otherType) {
        target = otherwise;
    }
    return reading;
}

/// A key as a template argument, so that comparing with it costs no loop.
template <std::size_t size>
struct Key
{
    consteval Key(const char (&literal)[size])
    {
        quoted[0] = '"';
        std::copy_n(literal, size - 1, quoted + 1);
        quoted[size] = '"';
    }
    constexpr std::string_view text() const { return {quoted + 1, size - 1}; }
    char quoted[size + 1] = {};
};

/// A known key of an object and what to do with its value: a callable from ondemand::value to Reading.
template <Key key, class Read>
struct Field
{
    static constexpr Key literal = key;
    static constexpr std::string_view name = literal.text();
    Read read;
};

template <Key key, class Read>
Field<key, Read> field(Read read)
{
    return {std::move(read)};
}

template <Key key>
auto integerField(std::int64_t &target)
{
    return field<key>([&target](ondemand::value &value) { return readInteger(value, target); });
}

template <Key key>
auto numberField(double &target)
{
    return field<key>([&target](ondemand::value &value) { return readNumber(value, target); });
}

/// Which known keys an object held with a value of the right type; they count from 0 in the order given to
/// readObject.
class FieldsRead
{
public:
    void note(std::size_t index, Reading reading)
    {
        const std::uint32_t bit = std::uint32_t{1} << index;
        m_taken = reading == Reading::taken ? m_taken | bit : m_taken & ~bit;
    }
    bool has(std::size_t index) const { return (m_taken >> index & 1) != 0; }
    bool hasAll(std::size_t first, std::size_t count) const
    {
        const std::uint32_t wanted = ((std::uint32_t{1} << count) - 1) << first;
        return (m_taken & wanted) == wanted;
    }

private:
    std::uint32_t m_taken = 0;
};

/// The fields of an object one after the other.
class FieldCursor
{
public:
    explicit FieldCursor(ondemand::object &object)
        : m_next(object.begin().value_unsafe())
    {}

    /// Whether there is a current field; reads the next one when the last was taken.
    simdjson_inline bool hasField()
    {
        if (m_isHeld) {
            return true;
        }
        if (m_isMalformed || !(m_next != m_next)) {
            return false;
        }
        simdjson::simdjson_result<ondemand::field> next = *m_next;
        m_isMalformed = next.error() != simdjson::SUCCESS;
        m_isHeld = !m_isMalformed;
        m_field = next.value_unsafe();
        return m_isHeld;
    }

    bool isMalformed() const { return m_isMalformed; }

    /// Whether the current key is written exactly so, without escapes.
    simdjson_inline bool isPlainly(std::string_view name) const
    {
        return m_field.key().unsafe_is_equal(name);
    }

    /// The current key whatever its spelling; to be asked once.
    bool name(std::string_view &text) { return m_field.unescaped_key().get(text) == simdjson::SUCCESS; }

    template <class Read>
    Reading take(const Read &read)
    {
        const Reading reading = read(m_field.value());
        m_isHeld = false;
        m_isMalformed = reading == Reading::malformed;
        if (!m_isMalformed) {
            ++m_next;
        }
        return reading;
    }

private:
    ondemand::object_iterator m_next;
    ondemand::field m_field;
    bool m_isHeld = false;
    bool m_isMalformed = false;
};

/// Takes the current field if it is the one with this key.
template <class Field>
simdjson_inline void takeInOrder(FieldCursor &cursor, FieldsRead &fields, std::size_t index,
                                 const Field &known)
{
    if (cursor.hasField() && cursor.isPlainly(Field::name)) {
        fields.note(index, cursor.take(known.read));
    }
}

/// Takes the current field, whichever it is.
template <class... Fields>
[[gnu::noinline]] void takeAnyOrder(FieldCursor &cursor, FieldsRead &fields, const Fields &...known)
{
    std::string_view name;
    if (!cursor.name(name)) {
        cursor.take([](ondemand::value &) { return Reading::malformed; });
        return;
    }
    std::size_t index = 0;
    const auto takeIfNamed = [&](const auto &candidate) {
        if (name != candidate.name) {
            ++index;
            return false;
        }
        fields.note(index, cursor.take(candidate.read));
        return true;
    };
    if (!(takeIfNamed(known) || ...)) {
        cursor.take([](ondemand::value &value) { return skipValue(value); });
    }
}

/// Reads an object in one pass. The keys may come in any order; the order given here is the fastest, also
/// with some left out. False when the text is no JSON.
template <class... Fields>
bool readObject(ondemand::object object, FieldsRead &fields, const Fields &...known)
{
    FieldCursor cursor(object);
    std::size_t index = 0;
    (takeInOrder(cursor, fields, index++, known), ...);
    if (!cursor.hasField()) {
        return !cursor.isMalformed();
    }
    FieldCursor rest = cursor;
    while (rest.hasField()) {
        takeAnyOrder(rest, fields, known...);
    }
    return !rest.isMalformed();
}

/// Finds keys that follow each other. ondemand's find_field is the fastest way to a key, but skips what
/// stands before it without a look at it; therefore each key must be seen to come next.
class KeysInOrder
{
public:
    /// `next` points to what follows the object's bracket. Every value found must be a scalar, or stop() be
    /// called.
    simdjson_inline KeysInOrder(const char *next, ondemand::object &object)
        : m_next(next)
        , m_object(object)
    {}

    template <Key key>
    simdjson_inline bool find(ondemand::value &value)
    {
        static constexpr Key literal = key;
        const char *name = m_next;
        name += *name == ',' ? 1 : 0;
        name += *name == ' ' ? 1 : 0;
        if (std::memcmp(name, literal.quoted, sizeof literal.quoted) != 0) {
            return false;
        }
        m_isMalformed = m_object.find_field(literal.text()).get(value) != simdjson::SUCCESS;
        if (m_isMalformed) {
            return false;
        }
        const std::string_view token = value.raw_json_token();
        m_next = token.data() + token.size();
        return true;
    }

    /// Finds nothing any more.
    void stop()
    {
        static constexpr char nothing[64] = {};
        m_next = nothing;
    }

    bool isAtEnd() const { return *m_next == '}'; }
    bool isMalformed() const { return m_isMalformed; }
    const char *next() const { return m_next; }

private:
    const char *m_next; ///< the token after the last value
    ondemand::object &m_object;
    bool m_isMalformed = false;
};

/// Takes the field if it comes next. False when the text is no JSON.
template <class Field>
bool takeIfNext(KeysInOrder &keys, FieldsRead &fields, std::size_t index, const Field &known)
{
    ondemand::value value;
    if (!keys.find<Field::literal>(value)) {
        return !keys.isMalformed();
    }
    const char first = value.raw_json_token().front();
    if (first == '{' || first == '[') {
        keys.stop();
    }
    const Reading reading = known.read(value);
    fields.note(index, reading);
    return reading != Reading::malformed;
}

/// readObject for the top level of a document, for which nothing needs to be found out twice as long as only
/// the known keys occur, in their order, some left out.
template <class... Fields>
bool readTopLevel(const char *firstKey, ondemand::object object, FieldsRead &fields, const Fields &...known)
{
    if (!firstKey) {
        return readObject(object, fields, known...);
    }
    KeysInOrder keys(firstKey, object);
    std::size_t index = 0;
    if (!(takeIfNext(keys, fields, index++, known) && ...)) {
        return false;
    }
    if (keys.isAtEnd()) {
        return object.find_field("").error() == simdjson::NO_SUCH_FIELD; // passes the closing bracket
    }
    fields = FieldsRead();
    return object.reset().error() == simdjson::SUCCESS && readObject(object, fields, known...);
}

/// One JSON text whose top level is an object. Keeps the parser's memory for the next text.
class JsonDocument
{
public:
    /// Readable bytes that simdjson wants beyond the end of a text.
    static constexpr std::size_t padding = simdjson::SIMDJSON_PADDING;

    /// `readable` counts the bytes that may be read from the start of `text`; when they do not suffice, the
    /// text is copied, as it is when something else than white space follows it.
    bool open(std::string_view text, std::size_t readable, ondemand::object &object);

    /// Back to the start of the same text.
    bool reopen(ondemand::object &object);

    /// What follows the object's bracket; null for a text that is too long to be read twice in part.
    const char *firstKey() const { return m_firstKey; }

    /// To be asked when the object was read: whether nothing follows it.
    bool isAtEnd();

    /// Gives back the memory that an unusually long text has needed.
    void close();

private:
    ondemand::parser m_parser;
    ondemand::document m_document;
    std::string m_copy;
    const char *m_firstKey = nullptr;
};

} // namespace zorel::backend::protocol
