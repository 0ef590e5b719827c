#include "library/ManifestReader.h"

#include "backend/protocol/JsonDocument.h"

namespace zorel::library {

namespace {

using namespace backend::protocol;

/// A text that is mostly the same from one manifest to the next.
class SharedText
{
public:
    explicit SharedText(const QString &otherwise)
        : m_otherwise(otherwise)
    {}

    /// `change` is applied to a text that is not the former one.
    template <class Change>
    QString of(std::optional<std::string_view> utf8, Change change)
    {
        if (!utf8) {
            return m_otherwise;
        }
        if (!m_isKnown || *utf8 != m_utf8) {
            m_utf8.assign(*utf8);
            m_text = change(toQString(*utf8));
            m_isKnown = true;
        }
        return m_text;
    }
    QString of(std::optional<std::string_view> utf8)
    {
        return of(utf8, [](const QString &text) { return text; });
    }

private:
    QString m_otherwise;
    bool m_isKnown = false;
    std::string m_utf8;
    QString m_text;
};

using Utf8 = std::optional<std::string_view>;

/// The value of a key that counts as absent when it is no string.
template <Key key>
auto textField(Utf8 &target)
{
    return field<key>([&target](ondemand::value &value) {
        std::string_view text;
        const Reading reading = readUtf8(value, text);
        target = reading == Reading::taken ? Utf8(text) : std::nullopt;
        return reading;
    });
}

template <Key key>
auto wholeField(std::int64_t &target)
{
    return field<key>([&target](ondemand::value &value) {
        return orDefault(readInteger(value, target), target, std::int64_t{0});
    });
}

template <Key key>
auto figureField(double &target)
{
    return field<key>(
        [&target](ondemand::value &value) { return orDefault(readNumber(value, target), target, 0.0); });
}

struct Identity
{
    Utf8 name;
    Utf8 version;
    Utf8 author;
};

Reading readIdentity(ondemand::value &value, Identity &identity)
{
    identity = Identity();
    ondemand::object object;
    if (value.get_object().get(object) != simdjson::SUCCESS) {
        return skipValue(value);
    }
    FieldsRead fields;
    const bool wellFormed =
        readObject(object, fields, textField<"name">(identity.name), textField<"version">(identity.version),
                   textField<"author">(identity.author));
    return wellFormed ? Reading::taken : Reading::malformed;
}

QString trimmed(const QString &text)
{
    return text.trimmed();
}

} // namespace

class ManifestReader::Implementation
{
public:
    bool read(std::string_view json, std::size_t readable, ArchivedModelRecord &record)
    {
        Texts texts;
        const bool isRead = readFigures(json, readable, texts, record);
        if (isRead) {
            setTexts(texts, record);
        }
        m_document.close();
        return isRead;
    }

private:
    struct Texts
    {
        Identity identity;
        Utf8 archivedAt;
        Utf8 family;
        Utf8 capability;
    };

    bool readFigures(std::string_view json, std::size_t readable, Texts &texts, ArchivedModelRecord &record)
    {
        ondemand::object object;
        if (!m_document.open(json, readable, object)) {
            return false;
        }
        record.step = record.maxSteps = 0;
        record.finalLoss = record.elapsedS = record.tokensPerSec = 0;
        record.valLoss.reset();
        const auto readValidation = [&record](ondemand::value &value) {
            double loss = 0;
            const Reading reading = readNumber(value, loss);
            record.valLoss = reading == Reading::taken ? std::optional(loss) : std::nullopt;
            return reading;
        };
        FieldsRead fields;
        const bool wellFormed = readObject(
            object, fields,
            field<"model_identity">([&](ondemand::value &v) { return readIdentity(v, texts.identity); }),
            textField<"archived_at">(texts.archivedAt), wholeField<"step">(record.step),
            wholeField<"max_steps">(record.maxSteps), figureField<"final_loss">(record.finalLoss),
            field<"val_loss">(readValidation), figureField<"elapsed_seconds">(record.elapsedS),
            figureField<"tokens_per_sec">(record.tokensPerSec), textField<"model_family">(texts.family),
            textField<"training_capability">(texts.capability));
        return wellFormed && m_document.isAtEnd();
    }

    void setTexts(const Texts &texts, ArchivedModelRecord &record)
    {
        record.name = texts.identity.name ? m_name.of(texts.identity.name, &trimmed) : record.folderName;
        record.version = m_version.of(texts.identity.version, &trimmed);
        record.author = m_author.of(texts.identity.author);
        record.archivedAt = texts.archivedAt ? parseArchiveDate(*texts.archivedAt) : std::nullopt;
        record.modelFamily = m_family.of(texts.family);
        record.trainingCapability = m_capability.of(texts.capability);
    }

    JsonDocument m_document;
    SharedText m_name{QString()};
    SharedText m_version{QStringLiteral("0.0.0")};
    SharedText m_author{QString()};
    SharedText m_family{QStringLiteral("text_language")};
    SharedText m_capability{QStringLiteral("pretrain")};
};

ManifestReader::ManifestReader()
    : m_implementation(std::make_unique<Implementation>())
{}
ManifestReader::~ManifestReader() = default;

bool ManifestReader::read(std::string_view json, std::size_t readable, ArchivedModelRecord &record)
{
    return m_implementation->read(json, readable, record);
}

} // namespace zorel::library
