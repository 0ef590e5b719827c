#pragma once

#include "tests/updater/ArtifactHost.h"
#include "tests/updater/CheckerFixture.h"
#include "tests/updater/InstallStage.h"

namespace zorel::tests {

/// A checker that has been offered an update which really can be installed.
class OfferedUpdate : public CheckerFixture
{
public:
    OfferedUpdate()
        : archive(stage.newArchive(QStringLiteral("gz")))
        , host(QStringLiteral("Trainer 2.0.gz"), archive)
    {
        surroundings.install = stage.surroundings();
        PublishedRelease release;
        release.downloadUrl = host.update.downloadUrl.toString();
        release.fileName = host.update.fileName;
        release.sizeBytes = host.update.sizeBytes;
        release.sha256 = *host.update.sha256;
        publish(release);
        if (!checkManually() || !checker().available()) {
            qFatal("nothing is offered");
        }
    }

    /// An installation under way ends before its stage does.
    ~OfferedUpdate() { destroyChecker(); }
    Q_DISABLE_COPY_MOVE(OfferedUpdate)

    bool waitForFailure()
    {
        return QTest::qWaitFor([this] { return checker().install().is<updater::InstallState::Failed>(); },
                               60'000);
    }
    QString failure()
    {
        const auto *const failed = checker().install().get<updater::InstallState::Failed>();
        return failed != nullptr ? failed->message : QStringLiteral("no failure");
    }
    /// What the host would send for ever.
    static caldra::tests::Answer stalled()
    {
        auto answer = caldra::tests::Answer::cutShort("x", 1'000);
        answer.ending = caldra::tests::Answer::Ending::keepOpen;
        return answer;
    }
    bool isInstalled() const
    {
        return QTest::qWaitFor(
            [this] {
                return !stage.callsOf("open").isEmpty() && namesIn(stage / "Applications").size() == 1 &&
                       InstallStage::versionAt(stage.installed()) == "2";
            },
            60'000);
    }

    InstallStage stage;
    QByteArray archive;
    ArtifactHost host;
};

} // namespace zorel::tests
