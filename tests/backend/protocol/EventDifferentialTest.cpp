#include "backend/protocol/EventDecoder.h"
#include "tests/backend/protocol/ReferenceDecoder.h"

#include <QJsonDocument>
#include <QTest>

#include <simdjson.h>

#include <random>

using zorel::backend::protocol::BackendEvent;
using zorel::backend::protocol::EventDecoder;

namespace {

/// Writes event lines that are right, nearly right and wrong; the same ones in every run.
class LineWriter
{
public:
    QByteArray line()
    {
        QByteArrayList fields{"\"event\":" +
                              oneOf({"\"ready\"", "\"status\"", "\"neurons\"", "\"log\"", "\"error\"",
                                     "\"model_archived\"", "\"paths\"", "\"model_identity\"", "\"done\"",
                                     "\"status\"", "\"neurons\"", "\"other\"", "7"})};
        for (const char *key :
             {"step", "max_steps", "n_layers", "neurons_per_layer", "hidden_dim", "default_max_steps"}) {
            add(fields, key, integer());
        }
        for (const char *key : {"loss", "lr", "grad_norm", "tokens_per_sec", "elapsed_s", "val_loss",
                                "prep_progress", "prep_elapsed_s", "prep_eta_s", "elapsed"}) {
            add(fields, key, number());
        }
        for (const char *key :
             {"state", "error", "prep_detail", "level", "msg", "path", "folder_name", "library_root",
              "training_data", "finished_models", "model_root", "unknown"}) {
            add(fields, key, text());
        }
        add(fields, "final", oneOf({"true", "false"}));
        add(fields, "layers", layers());
        return object(fields);
    }

    /// The line with some bytes changed to others that occur in JSON.
    QByteArray mutated(QByteArray line)
    {
        static const QByteArray alphabet = "{}[]\",:0123456789.eE+-truefalsn \\u";
        for (int count = below(3); count >= 0; --count) {
            const qsizetype position = below(static_cast<int>(line.size()));
            const char byte = alphabet[below(static_cast<int>(alphabet.size()))];
            switch (below(4)) {
            case 0:
                line[position] = byte;
                break;
            case 1:
                line.insert(position, byte);
                break;
            case 2:
                line.remove(position, 1 + below(3));
                break;
            default:
                line.insert(position, line.mid(below(static_cast<int>(line.size())), below(20)));
            }
        }
        return line;
    }

private:
    int below(int bound) { return static_cast<int>(m_random() % static_cast<unsigned>(bound)); }

    QByteArray oneOf(const QByteArrayList &choices)
    {
        return choices[below(static_cast<int>(choices.size()))];
    }

    QByteArray wrong()
    {
        return oneOf({"null", "true", "\"x\"", "[]", "{}", "1.5", "[1,[2,{\"a\":null}]]",
                      "{\"step\":1,\"event\":\"done\"}"});
    }

    QByteArray integer()
    {
        return oneOf({"0", "7", "-12", "5.0", "5e0", "120e-1", "9007199254740993", "1000000"});
    }

    QByteArray number()
    {
        return oneOf({"0.5", "-1.25e-3", "3", "123456.789", "0", "1E5", "9223372036854775807"});
    }

    QByteArray text()
    {
        return oneOf({"\"\"", "\"running\"", "\"idle\"", "\"/a/b\"", "\"gr\xC3\xBC\xC3\x9F\"",
                      R"("\u00fc\n\"\\\/")", R"("\ud83d\ude00")", R"("a\u0000b")"});
    }

    QByteArray layers()
    {
        QByteArrayList list;
        for (int count = below(3); count > 0; --count) {
            QByteArrayList fields;
            add(fields, "layer", integer());
            add(fields, "neurons", neurons());
            list << object(fields);
        }
        return '[' + list.join(separator(',')) + ']';
    }

    QByteArray neurons()
    {
        QByteArrayList list;
        for (int count = below(4); count > 0; --count) {
            QByteArrayList fields;
            add(fields, "index", integer());
            add(fields, "activation", number());
            add(fields, "dim_start", integer());
            add(fields, "dim_end", integer());
            add(fields, "tier", oneOf({"\"inactive\"", "\"moderate\"", "\"high\"", R"("h\u0069gh")"}));
            list << object(fields);
        }
        return '[' + list.join(separator(',')) + ']';
    }

    /// Mostly the right value, now and then another, two or none.
    void add(QByteArrayList &fields, const char *key, const QByteArray &value)
    {
        const int chance = below(200);
        if (chance > 0) {
            fields << '"' + QByteArray(key) + '"' + separator(':') + (chance == 1 ? wrong() : value);
        }
        if (chance == 2) {
            fields << '"' + QByteArray(key) + "\":" + wrong();
        }
    }

    QByteArray object(QByteArrayList fields)
    {
        if (below(4) == 0) {
            std::shuffle(fields.begin(), fields.end(), m_random);
        }
        return '{' + fields.join(separator(',')) + '}';
    }

    QByteArray separator(char sign)
    {
        return oneOf({QByteArray(1, sign), QByteArray(1, sign) + ' ', ' ' + QByteArray(1, sign) + "\t "});
    }

    std::mt19937 m_random{20240229};
};

enum class Validity { valid, invalid, numberOutOfRange };

/// By the parser that builds a whole tree, independent of the one that decodes. A number that is too small
/// for Qt is as good as one too large.
Validity validity(const QByteArray &line)
{
    QJsonParseError error;
    QJsonDocument::fromJson(line, &error);
    if (error.error == QJsonParseError::IllegalNumber) {
        return Validity::numberOutOfRange;
    }
    static simdjson::dom::parser parser;
    switch (parser.parse(line.constData(), static_cast<std::size_t>(line.size())).error()) {
    case simdjson::SUCCESS:
        return Validity::valid;
    case simdjson::NUMBER_ERROR:
        return Validity::numberOutOfRange; // or malformed: it does not tell
    default:
        return Validity::invalid;
    }
}

std::optional<BackendEvent> decoded(EventDecoder &decoder, const QByteArray &line)
{
    const QByteArray buffer = line + QByteArray(EventDecoder::padding, ' ');
    auto result = decoder.decode({buffer.constData(), static_cast<std::size_t>(line.size())},
                                 static_cast<std::size_t>(buffer.size()));
    BackendEvent *event = std::get_if<BackendEvent>(&result);
    return event ? std::optional(std::move(*event)) : std::nullopt;
}

} // namespace

class EventDifferentialTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void generatedLinesDecodeAsByTheReference();
    void mutatedLinesDecodeAsByTheReference();
};

void EventDifferentialTest::generatedLinesDecodeAsByTheReference()
{
    LineWriter writer;
    EventDecoder decoder;
    std::array<int, std::variant_size_v<BackendEvent>> seen{};
    int bad = 0;
    for (int round = 0; round < 10'000; ++round) {
        const QByteArray line = writer.line();
        const auto expected = zorel::tests::decodeByReference(line);
        QVERIFY2(decoded(decoder, line) == expected, line.constData());
        ++(expected ? seen[expected->index()] : bad);
    }
    QVERIFY(bad > 500);
    for (const int count : seen) {
        QVERIFY(count > 250);
    }
}

void EventDifferentialTest::mutatedLinesDecodeAsByTheReference()
{
    LineWriter writer;
    EventDecoder decoder;
    int valid = 0;
    int invalid = 0;
    for (int round = 0; round < 20'000; ++round) {
        const QByteArray line = writer.mutated(writer.line());
        switch (validity(line)) {
        case Validity::valid:
            ++valid;
            QVERIFY2(decoded(decoder, line) == zorel::tests::decodeByReference(line), line.constData());
            break;
        case Validity::invalid:
            ++invalid;
            QVERIFY2(!decoded(decoder, line), line.constData());
            break;
        case Validity::numberOutOfRange:
            break;
        }
    }
    QVERIFY(valid > 2500 && invalid > 2500);
}

QTEST_APPLESS_MAIN(EventDifferentialTest)
#include "EventDifferentialTest.moc"
