#include "backend/protocol/StatusReader.h"

namespace zorel::backend::protocol {

namespace {

/// The states that come with nearly every line share their text with every status, instead of allocating it
/// each time.
Reading readState(ondemand::value value, QString &state)
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
    if (reading != Reading::taken)
        return reading;
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
Reading readOptional(ondemand::value value, std::optional<Value> &target,
                     Reading (*read)(ondemand::value, Value &))
{
    const Reading reading = read(value, target.emplace());
    if (reading != Reading::taken)
        target.reset();
    return reading;
}

constexpr Keys<15> statusKeys{eventKey, "state",         "step",           "max_steps",      "loss",
                              "lr",     "grad_norm",     "tokens_per_sec", "elapsed_s",      "val_loss",
                              "error",  "prep_progress", "prep_detail",    "prep_elapsed_s", "prep_eta_s"};
constexpr std::size_t firstRequired = 1;
constexpr std::size_t requiredCount = 8;

Reading readRequired(std::size_t index, ondemand::value value, TrainStatusPayload &status)
{
    switch (index) {
    case 1:
        return readState(value, status.state);
    case 2:
        return readInteger(value, status.step);
    case 3:
        return readInteger(value, status.maxSteps);
    case 4:
        return readNumber(value, status.loss);
    case 5:
        return readNumber(value, status.lr);
    case 6:
        return readNumber(value, status.gradNorm);
    case 7:
        return readNumber(value, status.tokensPerSec);
    default:
        return readNumber(value, status.elapsedS);
    }
}

Reading readTolerated(std::size_t index, ondemand::value value, TrainStatusPayload &status)
{
    switch (index) {
    case 9:
        return readOptional(value, status.valLoss, readNumber);
    case 10:
        return readOptional(value, status.error, readString);
    case 11:
        return orDefault(readNumber(value, status.prepProgress), status.prepProgress, 0.0);
    case 12:
        return orDefault(readString(value, status.prepDetail), status.prepDetail, QString());
    case 13:
        return orDefault(readNumber(value, status.prepElapsedS), status.prepElapsedS, 0.0);
    default:
        return orDefault(readNumber(value, status.prepEtaS), status.prepEtaS, 0.0);
    }
}

} // namespace

Reading readStatus(ondemand::object object, EventName &name, TrainStatusPayload &status,
                   std::string_view &missing)
{
    FieldsRead fields;
    const auto onField = [&](std::size_t index, ondemand::value value) {
        if (index == 0)
            return name.read(value);
        return index < firstRequired + requiredCount ? readRequired(index, value, status)
                                                     : readTolerated(index, value, status);
    };
    if (!readObject(object, statusKeys, fields, onField))
        return Reading::malformed;
    if (fields.hasAll(firstRequired, requiredCount))
        return Reading::taken;
    std::size_t index = firstRequired;
    while (fields.has(index))
        ++index;
    missing = statusKeys[index];
    return Reading::otherType;
}

} // namespace zorel::backend::protocol
