#pragma once

// Private to the decoders: brings in the whole of simdjson.

#include "backend/protocol/Utf8Text.h"

#include <simdjson.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

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
Reading skipValue(ondemand::value value, int depth = 1);

/// Integers that are not written as plain digits, and everything that is no integer.
Reading readUnusualInteger(ondemand::value value, std::int64_t &target);

inline Reading readInteger(ondemand::value value, std::int64_t &target)
{
    return value.get_int64().get(target) == simdjson::SUCCESS ? Reading::taken
                                                              : readUnusualInteger(value, target);
}

inline Reading readNumber(ondemand::value value, double &target)
{
    return value.get_double().get(target) == simdjson::SUCCESS ? Reading::taken : skipValue(value);
}

inline Reading readFlag(ondemand::value value, bool &target)
{
    return value.get_bool().get(target) == simdjson::SUCCESS ? Reading::taken : skipValue(value);
}

/// `target` is valid until the document is opened anew.
inline Reading readUtf8(ondemand::value value, std::string_view &target)
{
    return value.get_string().get(target) == simdjson::SUCCESS ? Reading::taken : skipValue(value);
}

inline Reading readString(ondemand::value value, QString &target)
{
    std::string_view utf8;
    const Reading reading = readUtf8(value, utf8);
    if (reading == Reading::taken)
        target = toQString(utf8);
    return reading;
}

/// For keys that may be absent. A key given twice counts as it was given last, so that a value of another
/// type also takes back an earlier good one.
template <class Value>
Reading orDefault(Reading reading, Value &target, const Value &otherwise)
{
    if (reading == Reading::otherType)
        target = otherwise;
    return reading;
}

/// The known keys of one kind of object, in the order in which they are usually sent.
template <std::size_t count>
using Keys = std::array<std::string_view, count>;

/// Which known keys an object held with a value of the right type, one bit each.
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

/// Index of a key that is not where it was expected, or `count`. Nothing when the key is malformed.
template <std::size_t count>
bool findKey(ondemand::field &field, const Keys<count> &keys, std::size_t &index)
{
    std::string_view name;
    if (field.unescaped_key().get(name) != simdjson::SUCCESS)
        return false;
    for (index = 0; index < count && keys[index] != name;)
        ++index;
    return true;
}

/// Reads an object in one pass, its keys in any order: `onField(index, value)` gets the known ones. False
/// when the text is no JSON.
template <std::size_t count, class OnField>
bool readObject(ondemand::object object, const Keys<count> &keys, FieldsRead &fields, OnField onField)
{
    std::size_t expected = 0;
    for (simdjson::simdjson_result<ondemand::field> result : object) {
        ondemand::field field;
        if (std::move(result).get(field) != simdjson::SUCCESS)
            return false;
        std::size_t index = expected;
        if (expected == count || !field.key().unsafe_is_equal(keys[expected])) {
            if (!findKey(field, keys, index))
                return false;
        }
        const Reading reading = index < count ? onField(index, field.value()) : skipValue(field.value());
        if (reading == Reading::malformed)
            return false;
        if (index < count) {
            fields.note(index, reading);
            expected = index + 1;
        }
    }
    return true;
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

    /// To be asked when the object was read: whether nothing follows it.
    bool isAtEnd();

    /// Gives back the memory that an unusually long text has needed.
    void close();

private:
    ondemand::parser m_parser;
    ondemand::document m_document;
    std::string m_copy;
};

} // namespace zorel::backend::protocol
