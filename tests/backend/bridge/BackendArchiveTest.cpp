#include "tests/backend/bridge/ControllerFixture.h"

#include "library/RunLibrary.h"

#include <QDir>

namespace zorel::tests {

namespace protocol = backend::protocol;
using backend::bridge::BackendController;

namespace {

class RecordingLibrary : public library::RunLibrary
{
public:
    void scan(const QString &finishedModelsPath) override { scans.append(finishedModelsPath); }
    QStringList scans;
};

protocol::ArchivedModel archive(const QString &path)
{
    return {path, path, 100, 1.5, 60};
}

void makeRun(const QString &finishedModels, const QString &name)
{
    QDir(finishedModels).mkpath(name);
    QFile manifest(finishedModels + QLatin1Char('/') + name + QStringLiteral("/manifest.json"));
    QVERIFY(manifest.open(QIODevice::WriteOnly));
}

} // namespace

/// What the controller does when a run has been archived.
class BackendArchiveTest : public ControllerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { makeController(); }
    void cleanup() { endController(); }

    void anArchiveIsCountedFromTheFolderAndRescanned();
    void theArchiveNoticeEndsAfter12Seconds();
    void ofTwoArchivesTheSecondsTimerClears();
    void aNoticeTimerAfterTheControllersEndDoesNothing();
    void aVanishedLibraryIsNotAsked();
};

void BackendArchiveTest::anArchiveIsCountedFromTheFolderAndRescanned()
{
    RecordingLibrary store;
    m_controller->setLibraryStore(&store);
    m_settings->setFinishedModelsPath(QStringLiteral("~/Runs"));
    const QString finishedModels = m_sidecar->pathOf(QStringLiteral("Runs"));
    makeRun(finishedModels, QStringLiteral("a"));
    makeRun(finishedModels, QStringLiteral("b"));
    makeRun(finishedModels, QStringLiteral("c"));
    QDir(finishedModels).mkpath(QStringLiteral("not-a-run"));

    m_controller->apply(archive(QStringLiteral("/runs/c")));
    QCOMPARE(m_controller->archivedCount(), 3);
    QVERIFY(m_controller->recentArchive() == archive(QStringLiteral("/runs/c")));
    QCOMPARE(store.scans, QStringList{finishedModels});
    QCOMPARE(log(), QStringList{QStringLiteral("✓ archived model → /runs/c")});
}

void BackendArchiveTest::theArchiveNoticeEndsAfter12Seconds()
{
    m_controller->apply(archive(QStringLiteral("/a")));
    QCOMPARE(m_sidecar->timers.size(), std::size_t{1});
    QVERIFY(m_sidecar->timers[0].delay == std::chrono::seconds(12));
    m_sidecar->timers[0].action();
    QVERIFY(!m_controller->recentArchive());
}

void BackendArchiveTest::ofTwoArchivesTheSecondsTimerClears()
{
    m_controller->apply(archive(QStringLiteral("/a")));
    protocol::ArchivedModel second = archive(QStringLiteral("/a"));
    second.elapsedS += 1;
    m_controller->apply(second);
    m_sidecar->timers[0].action();
    QVERIFY(m_controller->recentArchive() == second);
    m_sidecar->timers[1].action();
    QVERIFY(!m_controller->recentArchive());
}

void BackendArchiveTest::aNoticeTimerAfterTheControllersEndDoesNothing()
{
    auto surroundings = BackendController::Surroundings::system();
    const QObject *guard = nullptr;
    surroundings.runAfter = [&guard](std::chrono::milliseconds, QObject *context, std::function<void()>) {
        guard = context;
    };
    BackendController controller(*m_settings, surroundings);
    controller.apply(archive(QStringLiteral("/a")));
    QCOMPARE(guard, &controller); // timers of a context object end with it
}

void BackendArchiveTest::aVanishedLibraryIsNotAsked()
{
    auto store = std::make_unique<RecordingLibrary>();
    m_controller->setLibraryStore(store.get());
    store.reset();
    m_controller->sendPaths();
    m_controller->apply(archive(QStringLiteral("/a")));
    QCOMPARE(m_controller->archivedCount(), 0);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::BackendArchiveTest)
#include "BackendArchiveTest.moc"
