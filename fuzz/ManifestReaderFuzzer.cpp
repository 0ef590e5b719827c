#include "fuzz/DomReference.h"
#include "library/ManifestReader.h"

#include <algorithm>

using zorel::library::ArchivedModelRecord;
using zorel::library::ManifestReader;
using zorel::library::parseArchiveDate;
using zorel::library::toIsoText;

namespace {

using namespace zorel::fuzz;

const QString folderName = QStringLiteral("folder");

struct Result
{
    bool isRead = false;
    ArchivedModelRecord record;
};

Result readManifest(std::string_view text, std::size_t readable)
{
    static ManifestReader reader;
    Result result;
    result.record.folderName = folderName;
    // What was there before must not shine through.
    result.record.step = 77;
    result.record.valLoss = 77;
    result.record.name = QStringLiteral("before");
    result.isRead = reader.read(text, readable, result.record);
    return result;
}

bool isFlat(std::string_view text)
{
    return std::ranges::count(text, '{') + std::ranges::count(text, '[') < 900;
}

QString textOf(std::optional<simdjson::dom::element> value, const QString &otherwise)
{
    std::string_view text;
    if (!value || value->get_string().get(text) != simdjson::SUCCESS) {
        return otherwise;
    }
    const QString result = QString::fromUtf8(text.data(), qsizetype(text.size()));
    // Qt drops a byte order mark.
    return text.starts_with("\xef\xbb\xbf") ? QChar(QChar::ByteOrderMark) + result : result;
}

double numberOf(std::optional<simdjson::dom::element> value)
{
    double number = 0;
    return value && value->is_number() && value->get_double().get(number) == simdjson::SUCCESS ? number : 0;
}

void checkIdentity(const std::optional<simdjson::dom::element> &value, const ArchivedModelRecord &record)
{
    simdjson::dom::object identity;
    const bool isObject = value && value->get_object().get(identity) == simdjson::SUCCESS;
    const auto text = [&](std::string_view key, const QString &otherwise) {
        return isObject ? textOf(lastValue(identity, key), otherwise) : otherwise;
    };
    const bool hasName = isObject && lastValue(identity, "name") && lastValue(identity, "name")->is_string();
    require(record.name == (hasName ? text("name", {}).trimmed() : folderName));
    require(record.version == text("version", QStringLiteral("0.0.0")).trimmed());
    require(record.author == text("author", QString()));
}

void checkRecord(simdjson::dom::object manifest, const ArchivedModelRecord &record)
{
    const auto value = [manifest](std::string_view key) {
        return lastValue(manifest, key);
    };
    checkIdentity(value("model_identity"), record);
    require(record.modelFamily == textOf(value("model_family"), QStringLiteral("text_language")));
    require(record.trainingCapability == textOf(value("training_capability"), QStringLiteral("pretrain")));
    require(record.finalLoss == numberOf(value("final_loss")));
    require(record.elapsedS == numberOf(value("elapsed_seconds")));
    require(record.tokensPerSec == numberOf(value("tokens_per_sec")));
    const auto validation = value("val_loss");
    require(record.valLoss.has_value() == (validation && validation->is_number()));
    require(!record.valLoss || *record.valLoss == numberOf(validation));
    const auto checkWhole = [&](std::string_view key, std::int64_t number) {
        const auto element = value(key);
        require(!element || isUnclear(*element) || number == wholeValue(*element).value_or(0));
        require(element || number == 0);
    };
    checkWhole("step", record.step);
    checkWhole("max_steps", record.maxSteps);
    const std::string date = textOf(value("archived_at"), QString()).toStdString();
    require(record.archivedAt == parseArchiveDate(date));
}

void checkDate(std::string_view text)
{
    if (const auto date = parseArchiveDate(text)) {
        const auto again = parseArchiveDate(toIsoText(*date).toStdString());
        // A zone may carry a date out of the four-digit years.
        require(!again || again == date);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text =
        size > 0 ? std::string_view(reinterpret_cast<const char *>(data), size) : "";
    checkDate(text);

    const Result result = readManifest(text, 0);
    for (const char after : {'\n', '}', ',', '"'}) {
        const PaddedText padded(text, after);
        const Result again = readManifest(padded.text(), padded.readable());
        require(again.isRead == result.isRead && (!result.isRead || again.record == result.record));
    }

    simdjson::dom::object object;
    const Verdict verdict = parseObject(text, object);
    require(verdict != Verdict::isNone || !result.isRead);
    require(verdict != Verdict::isObject || result.isRead || !isFlat(text));
    if (verdict == Verdict::isObject && result.isRead) {
        checkRecord(object, result.record);
    }
    return 0;
}
