// What the sidecar says, applied to the controller's state.

#include "backend/bridge/BackendController.h"

#include "app/settings/ZorelSettings.h"
#include "backend/bridge/LineReader.h"
#include "backend/protocol/BadLine.h"
#include "backend/protocol/Overloaded.h"
#include "library/ArchivedRunCount.h"
#include "library/RunLibrary.h"

#include <QMetaMethod>

#include <algorithm>
#include <utility>

namespace zorel::backend::bridge {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds archiveNoticeDuration = 12s;

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

} // namespace

void BackendController::handleOutputLine(const Line &line)
{
    const std::string_view text = trimmed(line.text);
    if (text.empty()) {
        return;
    }
    static const QMetaMethod lineSignal = QMetaMethod::fromSignal(&BackendController::eventLineReceived);
    if (isSignalConnected(lineSignal)) {
        Q_EMIT eventLineReceived(QByteArray(text.data(), qsizetype(text.size())));
    }
    if (!line.truncated) {
        const std::size_t readable = line.readable - static_cast<std::size_t>(text.data() - line.text.data());
        auto decoded = m_decoder.decode(text, readable);
        if (auto *event = std::get_if<protocol::BackendEvent>(&decoded)) {
            apply(std::move(*event));
            return;
        }
    }
    appendLog(QStringLiteral("× bad event from backend: ") + protocol::startOfLine(text));
}

void BackendController::apply(protocol::BackendEvent event)
{
    std::visit(protocol::Overloaded{
                   [this](const protocol::ReadyEvent &ready) { applyReady(ready.defaultMaxSteps); },
                   [this](protocol::TrainStatusPayload &status) { applyStatus(std::move(status)); },
                   [this](protocol::NeuronSnapshotPayload &snapshot) { applySnapshot(std::move(snapshot)); },
                   [this](const protocol::LogEvent &log) { appendLog(log.msg); },
                   [this](const protocol::ErrorEvent &error) {
                       appendLog(QStringLiteral("× ERROR: ") + error.msg);
                       Q_EMIT backendErrorReported(error.msg);
                   },
                   [this](const protocol::ArchivedModel &archive) { applyArchive(archive); },
                   [this](const protocol::BackendPaths &paths) { applyPaths(paths); },
                   [](const protocol::ModelIdentityEvent &) {},
                   [this](const protocol::DoneEvent &) {
                       appendLog(QStringLiteral("backend signalled done"));
                       Q_EMIT backendDone();
                   },
               },
               event);
}

void BackendController::applyReady(std::int64_t defaultMaxSteps)
{
    // Whoever hears of it finds everything in place, the sidecar's three answers sent included.
    const bool wasReady = std::exchange(m_ready, true);
    setFatalError(std::nullopt);
    setDesiredMaxSteps(defaultMaxSteps);
    setStatus(protocol::TrainStatusPayload::idle(defaultMaxSteps));
    appendLog(QStringLiteral("backend ready (default max_steps = %1)").arg(defaultMaxSteps));
    sendPaths();
    sendModelIdentity();
    sendTrainingProfile();
    if (!wasReady) {
        Q_EMIT readyChanged();
    }
}

void BackendController::applyStatus(protocol::TrainStatusPayload status)
{
    if (status.loss > 0 && status.step != (m_lossHistory.empty() ? -1 : m_lossHistory.back().step)) {
        m_lossHistory.emplace_back(status.step, status.loss);
        if (m_lossHistory.size() > maximumLossPoints) {
            m_lossHistory.pop_front();
        }
        Q_EMIT lossPointAppended(m_lossHistory.back());
    }
    setStatus(std::move(status));
    if (m_status.state != QLatin1String("idle")) {
        setDesiredMaxSteps(m_status.maxSteps);
    }
}

void BackendController::applySnapshot(protocol::NeuronSnapshotPayload snapshot)
{
    const bool final = snapshot.final;
    std::optional<protocol::NeuronSnapshotPayload> &destination = final ? m_finalNeurons : m_liveNeurons;
    destination = std::move(snapshot);
    if (final) {
        Q_EMIT finalNeuronsChanged();
    } else {
        Q_EMIT liveNeuronsChanged();
    }
    if (destination) { // a listener may have begun the next run
        followSelection(*destination);
    }
}

void BackendController::followSelection(const protocol::NeuronSnapshotPayload &snapshot)
{
    if (!m_selectedNeuron) {
        return;
    }
    const auto layer =
        std::ranges::find(snapshot.layers, m_selectedNeuron->layer, &protocol::LayerNeurons::layer);
    if (layer == snapshot.layers.end()) {
        return;
    }
    const auto neuron =
        std::ranges::find(layer->neurons, m_selectedNeuron->neuron.index, &protocol::VisualNeuron::index);
    if (neuron != layer->neurons.end()) {
        setSelectedNeuron(protocol::NeuronSelection{layer->layer, *neuron});
    }
}

void BackendController::applyArchive(const protocol::ArchivedModel &archive)
{
    setArchivedCount(m_archivedCount + 1);
    setRecentArchive(archive);
    const QString finishedModels = m_settings.expanded(m_settings.finishedModelsPath());
    if (m_libraryStore) {
        m_libraryStore->scan(finishedModels);
    }
    setArchivedCount(library::countArchivedRuns(finishedModels));
    appendLog(QStringLiteral("✓ archived model → ") + archive.path);
    m_surroundings.runAfter(archiveNoticeDuration, this, [this, archive] {
        if (m_recentArchive == archive) {
            setRecentArchive(std::nullopt);
        }
    });
}

void BackendController::applyPaths(const protocol::BackendPaths &paths)
{
    appendLog(QStringLiteral("library: ") + paths.libraryRoot);
    appendLog(QStringLiteral("  training data → ") + paths.trainingData);
    appendLog(QStringLiteral("  finished models → ") + paths.finishedModels);
    appendLog(QStringLiteral("  model working dir → ") + paths.modelRoot);
}

} // namespace zorel::backend::bridge
