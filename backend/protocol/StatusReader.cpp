#include "backend/protocol/StatusReader.h"

namespace zorel::backend::protocol {

namespace {

/// The states that come with nearly every line share their text with every status, instead of allocating it
/// each time.
Reading readState(ondemand::value &value, QString &state)
{
    struct KnownState
    {
        std::string_view name;
        QString text;
    };
    static const KnownState knownStates[]{
        {"running", QStringLiteral("running")},   {"preparing", QStringLiteral("preparing")},
        {"paused", QStringLiteral("paused")},     {"idle", QStringLiteral("idle")},
        {"starting", QStringLiteral("starting")}, {"stopping", QStringLiteral("stopping")},
        {"done", QStringLiteral("done")},         {"error", QStringLiteral("error")},
    };
    std::string_view name;
    const Reading reading = readUtf8(value, name);
    if (reading != Reading::taken) {
        return reading;
    }
    for (const KnownState &known : knownStates) {
        if (known.name == name) {
            state = known.text;
            return reading;
        }
    }
    state = toQString(name);
    return reading;
}

/// None for any other type.
template <class Value>
Reading readOptional(ondemand::value &value, std::optional<Value> &target,
                     Reading (*read)(ondemand::value &, Value &))
{
    bool isNull = false;
    if (value.is_null().get(isNull) == simdjson::SUCCESS && isNull) {
        target.reset();
        return Reading::otherType;
    }
    const Reading reading = read(value, target.emplace());
    if (reading != Reading::taken) {
        target.reset();
    }
    return reading;
}

template <Key key>
auto requiredNumber(double &target)
{
    return field<key>([&target](ondemand::value &value) { return readNumber(value, target); });
}

template <Key key>
auto requiredInteger(std::int64_t &target)
{
    return field<key>([&target](ondemand::value &value) { return readInteger(value, target); });
}

template <Key key>
auto numberOrZero(double &target)
{
    return field<key>(
        [&target](ondemand::value &value) { return orDefault(readNumber(value, target), target, 0.0); });
}

/// The required keys, which stand behind "event" in the order below.
constexpr std::string_view requiredKeys[]{"state", "step",      "max_steps",      "loss",
                                          "lr",    "grad_norm", "tokens_per_sec", "elapsed_s"};
constexpr std::size_t firstRequired = 1;

} // namespace

Reading readStatus(const char *firstKey, ondemand::object object, EventName &name, TrainStatusPayload &status,
                   std::string_view &missing)
{
    FieldsRead fields;
    const bool wellFormed = readTopLevel(
        firstKey, object, fields, eventField(name),
        field<"state">([&](ondemand::value &value) { return readState(value, status.state); }),
        requiredInteger<"step">(status.step), requiredInteger<"max_steps">(status.maxSteps),
        requiredNumber<"loss">(status.loss), requiredNumber<"lr">(status.lr),
        requiredNumber<"grad_norm">(status.gradNorm), requiredNumber<"tokens_per_sec">(status.tokensPerSec),
        requiredNumber<"elapsed_s">(status.elapsedS), field<"val_loss">([&](ondemand::value &value) {
            return readOptional(value, status.valLoss, readNumber);
        }),
        field<"error">([&](ondemand::value &value) { return readOptional(value, status.error, readString); }),
        numberOrZero<"prep_progress">(status.prepProgress), field<"prep_detail">([&](ondemand::value &value) {
            return orDefault(readString(value, status.prepDetail), status.prepDetail, QString());
        }),
        numberOrZero<"prep_elapsed_s">(status.prepElapsedS), numberOrZero<"prep_eta_s">(status.prepEtaS));
    if (!wellFormed) {
        return Reading::malformed;
    }
    if (fields.hasAll(firstRequired, std::size(requiredKeys))) {
        return Reading::taken;
    }
    std::size_t index = 0;
    while (fields.has(firstRequired + index)) {
        ++index;
    }
    missing = requiredKeys[index];
    return Reading::otherType;
}

} // namespace zorel::backend::protocol
