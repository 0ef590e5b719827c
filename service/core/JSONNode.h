#pragma once

#include <QByteArray>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

namespace caldra {

/// A value inside a JSONDocument. Valid as long as its document; cheap to copy.
///
/// It keeps the parser's headers out of every file that decodes a record.
class JSONNode
{
public:
    enum class Kind { null, boolean, integer, number, text, array, object };

    Kind kind() const;
    bool boolean() const;
    /// The number as an integer when it is whole and fits into 64 bits, however it is written (5, 5.0, 5e0).
    std::optional<qint64> integer() const;
    double number() const;
    /// UTF-8.
    std::string_view text() const;

    /// Calls `visit(JSONNode)` for each element of an array.
    template <class Visitor>
    void forEachElement(Visitor visit) const
    {
        visitElements(&visit,
                      [](void *visitor, const JSONNode &node) { (*static_cast<Visitor *>(visitor))(node); });
    }

    /// Calls `visit(key, JSONNode)` for each member of an object, in the order of the text.
    template <class Visitor>
    void forEachMember(Visitor visit) const
    {
        visitMembers(&visit, [](void *visitor, std::string_view key, const JSONNode &node) {
            (*static_cast<Visitor *>(visitor))(key, node);
        });
    }

    std::size_t elementCount() const;

private:
    friend class JSONDocument;
    void visitElements(void *visitor, void (*visit)(void *, const JSONNode &)) const;
    void visitMembers(void *visitor, void (*visit)(void *, std::string_view, const JSONNode &)) const;

    alignas(void *) std::array<std::byte, 2 * sizeof(void *)> m_element{};
};

/// A parsed JSON text.
class JSONDocument
{
public:
    /// Throws DecodingError when `text` is no JSON or nests deeper than 1024 levels.
    explicit JSONDocument(const QByteArray &text);
    ~JSONDocument();
    JSONDocument(const JSONDocument &) = delete;
    JSONDocument &operator=(const JSONDocument &) = delete;

    JSONNode root() const;

private:
    struct Parsed;
    std::unique_ptr<Parsed> m_parsed;
};

/// Whether `text` begins like a JSON document and ends in the middle of it (or is empty).
bool isTruncatedJSON(const QByteArray &text);

} // namespace caldra
