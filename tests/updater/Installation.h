#pragma once

#include "tests/updater/ArtifactHost.h"
#include "tests/updater/InstallStage.h"
#include "tests/updater/Outcome.h"
#include "updater/Cancellation.h"
#include "updater/InstallTask.h"

#include <functional>
#include <optional>
#include <vector>

namespace zorel::tests {

/// One installation on a stage of its own, from a host of its own.
class Installation
{
public:
    explicit Installation(
        const QString &extension = QStringLiteral("gz"),
        const QString &installedName = QStringLiteral("Applications/Talvex LLM Trainer.app"))
        : stage(installedName)
        , archive(stage.newArchive(extension))
        , host(QStringLiteral("Trainer 2.0.") + extension, archive)
        , surroundings(stage.surroundings())
    {}

    std::optional<updater::UpdateError> run()
    {
        states.clear();
        return errorOf([this] {
            handoff = updater::InstallTask(host.update, surroundings, cancellation,
                                           [this](const updater::InstallState &state) {
                                               states.push_back(state);
                                               if (onState) {
                                                   onState(state);
                                               }
                                           })
                          .run();
        });
    }

    /// Whether the script does its work: starts the new version and removes the old one.
    bool isRelaunched() const
    {
        const QString folder = QFileInfo(stage.installed()).path();
        return QTest::qWaitFor(
            [&] { return !stage.callsOf("open").isEmpty() && namesIn(folder).size() == 1; }, 60'000);
    }
    /// Nothing but the lock is left, and the installed bundle is the old one.
    bool leftNothing() const
    {
        return stage.workingFolders().isEmpty() && InstallStage::versionAt(stage.installed()) == "1" &&
               !stage.hasAttachedImage();
    }
    std::vector<std::size_t> stateKinds() const
    {
        std::vector<std::size_t> kinds;
        for (const updater::InstallState &state : states) {
            if (kinds.empty() || kinds.back() != state.value().index()) {
                kinds.push_back(state.value().index());
            }
        }
        return kinds;
    }

    InstallStage stage;
    QByteArray archive;
    ArtifactHost host;
    updater::InstallSurroundings surroundings;
    updater::Cancellation cancellation;
    updater::RelaunchHandoff handoff;
    std::vector<updater::InstallState> states;
    std::function<void(const updater::InstallState &)> onState;
};

/// Without an error a case that no error has.
inline updater::UpdateError::Case caseOf(const std::optional<updater::UpdateError> &error)
{
    return error ? error->errorCase() : updater::UpdateError::Case{255};
}

} // namespace zorel::tests
