#include "backend/protocol/EventDecoder.h"

#include "backend/protocol/EventName.h"
#include "backend/protocol/SnapshotReader.h"
#include "backend/protocol/StatusReader.h"

#include <utility>

namespace zorel::backend::protocol {

namespace {

static_assert(EventDecoder::padding >= JsonDocument::padding);

using Result = std::variant<BackendEvent, DecodingError>;

constexpr std::int64_t defaultStepCount = 50000;

DecodingError notJson()
{
    return {"not a JSON object"};
}

template <class Event>
Result accept(Event &&event)
{
    return Result(std::in_place_index<0>, std::in_place_type<std::decay_t<Event>>,
                  std::forward<Event>(event));
}

QString lastPathComponent(const QString &path)
{
    qsizetype end = path.size();
    while (end > 0 && path[end - 1] == u'/') {
        --end;
    }
    if (end == 0) {
        return path.left(1);
    }
    const qsizetype slash = path.lastIndexOf(u'/', end - 1);
    return path.sliced(slash + 1, end - slash - 1);
}

/// A string that is `otherwise` unless it is given.
template <Key key>
auto stringOr(QString &target, const QString &otherwise)
{
    return field<key>([&target, &otherwise](ondemand::value &value) {
        return orDefault(readString(value, target), target, otherwise);
    });
}

const QString noText;

Result readReady(ondemand::object object, EventName &name)
{
    ReadyEvent event{defaultStepCount};
    FieldsRead fields;
    const auto readStepCount = [&](ondemand::value &value) {
        return orDefault(readInteger(value, event.defaultMaxSteps), event.defaultMaxSteps, defaultStepCount);
    };
    if (!readObject(object, fields, eventField(name), field<"default_max_steps">(readStepCount))) {
        return notJson();
    }
    return accept(event);
}

Result readStatusEvent(const char *firstKey, ondemand::object object, EventName &name)
{
    Result result(std::in_place_index<0>, std::in_place_type<TrainStatusPayload>);
    std::string_view missing;
    switch (readStatus(firstKey, object, name, *std::get_if<TrainStatusPayload>(std::get_if<0>(&result)),
                       missing)) {
    case Reading::taken:
        return result;
    case Reading::otherType:
        return DecodingError{"missing or ill-typed key: " + std::string(missing)};
    case Reading::malformed:
        break;
    }
    return notJson();
}

Result readNeurons(ondemand::object object, EventName &name)
{
    NeuronSnapshotPayload snapshot;
    switch (readSnapshot(object, name, snapshot)) {
    case Reading::taken:
        return accept(std::move(snapshot));
    case Reading::otherType:
        return DecodingError{"incomplete or ill-typed neuron snapshot"};
    case Reading::malformed:
        break;
    }
    return notJson();
}

Result readLog(ondemand::object object, EventName &name)
{
    static const QString defaultLevel = QStringLiteral("INFO");
    LogEvent event{defaultLevel, {}};
    FieldsRead fields;
    if (!readObject(object, fields, eventField(name), stringOr<"level">(event.level, defaultLevel),
                    stringOr<"msg">(event.msg, noText))) {
        return notJson();
    }
    return accept(std::move(event));
}

Result readError(ondemand::object object, EventName &name)
{
    static const QString defaultMessage = QStringLiteral("unknown error");
    ErrorEvent event{defaultMessage};
    FieldsRead fields;
    if (!readObject(object, fields, eventField(name), stringOr<"msg">(event.msg, defaultMessage))) {
        return notJson();
    }
    return accept(std::move(event));
}

Result readArchivedModel(ondemand::object object, EventName &name)
{
    ArchivedModel model;
    FieldsRead fields;
    const auto readStep = [&](ondemand::value &value) {
        return orDefault(readInteger(value, model.step), model.step, std::int64_t{0});
    };
    const auto readLoss = [&](ondemand::value &value) {
        return orDefault(readNumber(value, model.loss), model.loss, 0.0);
    };
    const auto readElapsed = [&](ondemand::value &value) {
        return orDefault(readNumber(value, model.elapsedS), model.elapsedS, 0.0);
    };
    const auto readFolderName = [&](ondemand::value &value) {
        return readString(value, model.folderName);
    };
    if (!readObject(object, fields, field<"folder_name">(readFolderName), eventField(name),
                    stringOr<"path">(model.path, noText), field<"step">(readStep), field<"loss">(readLoss),
                    field<"elapsed">(readElapsed))) {
        return notJson();
    }
    if (!fields.has(0)) {
        model.folderName = lastPathComponent(model.path);
    }
    return accept(std::move(model));
}

Result readPaths(ondemand::object object, EventName &name)
{
    BackendPaths paths;
    FieldsRead fields;
    if (!readObject(object, fields, eventField(name), stringOr<"library_root">(paths.libraryRoot, noText),
                    stringOr<"training_data">(paths.trainingData, noText),
                    stringOr<"finished_models">(paths.finishedModels, noText),
                    stringOr<"model_root">(paths.modelRoot, noText))) {
        return notJson();
    }
    return accept(std::move(paths));
}

bool readName(ondemand::object object, EventName &name)
{
    FieldsRead fields;
    return readObject(object, fields, eventField(name));
}

template <class Event>
Result readBareEvent(ondemand::object object, EventName &name)
{
    return readName(object, name) ? accept(Event()) : Result(notJson());
}

Result readEvent(EventKind kind, const char *firstKey, ondemand::object object, EventName &name)
{
    switch (kind) {
    case EventKind::ready:
        return readReady(object, name);
    case EventKind::status:
        return readStatusEvent(firstKey, object, name);
    case EventKind::neurons:
        return readNeurons(object, name);
    case EventKind::log:
        return readLog(object, name);
    case EventKind::error:
        return readError(object, name);
    case EventKind::modelArchived:
        return readArchivedModel(object, name);
    case EventKind::paths:
        return readPaths(object, name);
    case EventKind::modelIdentity:
        return readBareEvent<ModelIdentityEvent>(object, name);
    case EventKind::done:
        break;
    }
    return readBareEvent<DoneEvent>(object, name);
}

std::optional<EventKind> kindOf(std::string_view name)
{
    for (std::size_t index = 0; index < eventNames.size(); ++index) {
        if (eventNames[index] == name) {
            return static_cast<EventKind>(index);
        }
    }
    return std::nullopt;
}

/// The kind of a line that starts with its event name, as every line of a reasonable sender does. Only a
/// guess: what counts is the name that is read in passing.
std::optional<EventKind> guessKind(std::string_view line)
{
    for (std::string_view start : {"{\"event\": \"", "{\"event\":\""}) {
        if (line.starts_with(start)) {
            line.remove_prefix(start.size());
            return kindOf(line.substr(0, line.substr(0, 32).find('"')));
        }
    }
    return std::nullopt;
}

} // namespace

class EventDecoder::Implementation
{
public:
    Result decode(std::string_view line, std::size_t readable)
    {
        Result result = decodeOpen(line, readable);
        m_document.close();
        return result;
    }

private:
    Result decodeOpen(std::string_view line, std::size_t readable)
    {
        ondemand::object object;
        if (!m_document.open(line, readable, object)) {
            return notJson();
        }
        if (const std::optional<EventKind> guess = guessKind(line)) {
            EventName name;
            Result result = readEvent(*guess, m_document.firstKey(), object, name);
            if (name.is(*guess)) {
                if (!m_document.isAtEnd()) {
                    result = notJson();
                }
                return result;
            }
            if (!m_document.reopen(object)) {
                return notJson();
            }
        }
        return decodeByName(object);
    }

    /// Finds out the name first, wherever it stands.
    Result decodeByName(ondemand::object object)
    {
        EventName name;
        if (!readName(object, name) || !m_document.isAtEnd()) {
            return notJson();
        }
        if (!name.text()) {
            return DecodingError{"no event name"};
        }
        const std::optional<EventKind> kind = kindOf(*name.text());
        if (!kind) {
            return DecodingError{"unknown event kind: " + std::string(*name.text())};
        }
        if (!m_document.reopen(object)) {
            return notJson();
        }
        return readEvent(*kind, nullptr, object, name);
    }

    JsonDocument m_document;
};

EventDecoder::EventDecoder()
    : m_implementation(std::make_unique<Implementation>())
{}
EventDecoder::~EventDecoder() = default;
EventDecoder::EventDecoder(EventDecoder &&) noexcept = default;
EventDecoder &EventDecoder::operator=(EventDecoder &&) noexcept = default;

std::variant<BackendEvent, DecodingError> EventDecoder::decode(std::string_view line, std::size_t readable)
{
    return m_implementation->decode(line, readable);
}

} // namespace zorel::backend::protocol
