#include "tests/backend/bridge/ControllerFixture.h"

namespace zorel::tests {

namespace protocol = backend::protocol;
using backend::bridge::BackendController;

/// What the controller writes to its child, and what it says when that cannot be read.
class BackendCommandsTest : public ControllerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { makeController(); }
    void cleanup() { endController(); }

    void readyIsAnsweredWithPathsIdentityAndProfile();
    void readyIsAnnouncedWithEverythingInPlace();
    void startSendsEverythingInSortedOrder_data();
    void startSendsEverythingInSortedOrder();
    void startForgetsSnapshotsAndSelectionAndKeepsTheHistory();
    void aListenerOfASnapshotMayStartTheNextRun();
    void startBeforeReadyIsRefusedInTheLog();
    void startAfterTheExitRelaunchesAndDoesNotTrain();
    void aSendAfterTheExitIsSkipped();
    void aChildThatClosedItsInputIsReported();
    void stopAndQuitReachAChildThatReadsLate();
};

void BackendCommandsTest::readyIsAnsweredWithPathsIdentityAndProfile()
{
    const QString echo = m_sidecar->pathOf(QStringLiteral("commands"));
    m_settings->setModelAuthor(QStringLiteral("  ada "));
    m_settings->setTrainingDataPath(QStringLiteral("~/data"));
    m_settings->setFinishedModelsPath(QStringLiteral("~/models"));
    m_settings->setModelRootPath(QStringLiteral("~/work"));
    play({step(QStringLiteral("echo_commands_to"), echo), emitReady(),
          await(QStringLiteral("set_training_profile"))});
    QTRY_COMPARE_WITH_TIMEOUT(contentOf(echo).count('\n'), 3, patience);
    const QList<QByteArray> lines = contentOf(echo).split('\n');
    QCOMPARE(
        lines.at(0),
        QStringLiteral(R"({"cmd":"set_paths","finished_models":"%1","model_root":"%2","training_data":"%3"})")
            .arg(m_sidecar->pathOf(QStringLiteral("models")), m_sidecar->pathOf(QStringLiteral("work")),
                 m_sidecar->pathOf(QStringLiteral("data")))
            .toUtf8());
    QCOMPARE(lines.at(1),
             QByteArray(R"({"cmd":"set_model_identity","identity":{"author":"ada","license":"MIT",)"
                        R"("name":"MyModel","version":"1.0.0"}})"));
    QCOMPARE(lines.at(2),
             QByteArray(R"({"cmd":"set_training_profile","profile":{"model_family":"text_language",)"
                        R"("training_capability":"pretrain"}})"));
}

void BackendCommandsTest::readyIsAnnouncedWithEverythingInPlace()
{
    const QString echo = m_sidecar->pathOf(QStringLiteral("commands"));
    std::int64_t steps = 0;
    QObject untilTheTestEnds; // the exit, which may come later, changes readiness as well
    connect(m_controller.get(), &BackendController::readyChanged, &untilTheTestEnds, [this, &steps] {
        steps = m_controller->desiredMaxSteps();
        m_controller->sendCommand(QStringLiteral("quit"));
    });
    play({step(QStringLiteral("echo_commands_to"), echo), emitReady(), await(QStringLiteral("quit")),
          step(QStringLiteral("exit"), 0)});
    QTRY_COMPARE_WITH_TIMEOUT(contentOf(echo).count('\n'), 4, patience);
    QVERIFY(contentOf(echo).endsWith("{\"cmd\":\"quit\"}\n"));
    QCOMPARE(steps, 300);
}

void BackendCommandsTest::startSendsEverythingInSortedOrder_data()
{
    QTest::addColumn<bool>("resume");
    QTest::newRow("afresh") << false;
    QTest::newRow("resumed") << true;
}

void BackendCommandsTest::startSendsEverythingInSortedOrder()
{
    QFETCH(bool, resume);
    const QString echo = m_sidecar->pathOf(QStringLiteral("commands"));
    play({emitReady(), await(QStringLiteral("set_training_profile")),
          step(QStringLiteral("echo_commands_to"), echo), await(QStringLiteral("start"))});
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready(), patience);
    m_controller->startTraining(resume);
    QTRY_COMPARE_WITH_TIMEOUT(
        contentOf(echo),
        QByteArray(R"({"cmd":"start","max_steps":300,"model_family":"text_language",)"
                   R"("model_identity":{"license":"MIT","name":"MyModel","version":"1.0.0"},"resume":)") +
            (resume ? "true" : "false") + ",\"training_capability\":\"pretrain\"}\n",
        patience);
}

void BackendCommandsTest::startForgetsSnapshotsAndSelectionAndKeepsTheHistory()
{
    play({emitReady()});
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready(), patience);
    protocol::NeuronSnapshotPayload neurons;
    m_controller->apply(neurons);
    neurons.final = true;
    m_controller->apply(neurons);
    m_controller->setSelectedNeuron(protocol::NeuronSelection{});
    protocol::TrainStatusPayload status;
    status.loss = 1;
    m_controller->apply(status);
    const auto lines = m_controller->logLines().size();

    m_controller->startTraining(false);
    QVERIFY(!m_controller->liveNeurons());
    QVERIFY(!m_controller->finalNeurons());
    QVERIFY(!m_controller->selectedNeuron());
    QCOMPARE(m_controller->lossHistory().size(), std::size_t{1});
    QCOMPARE(m_controller->logLines().size(), lines);
}

void BackendCommandsTest::aListenerOfASnapshotMayStartTheNextRun()
{
    play({emitReady()});
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready(), patience);
    const protocol::VisualNeuron neuron{0, 0.5, 0, 3, protocol::NeuronActivityTier::high};
    const protocol::NeuronSelection selection{0, neuron};
    QObject untilTheTestEnds;
    connect(m_controller.get(), &BackendController::liveNeuronsChanged, &untilTheTestEnds, [&] {
        if (m_controller->liveNeurons()) {
            m_controller->startTraining(false);
            m_controller->setSelectedNeuron(selection);
        }
    });
    protocol::NeuronSnapshotPayload snapshot;
    snapshot.layers.push_back({0, {neuron}});
    m_controller->apply(snapshot);
    QVERIFY(!m_controller->liveNeurons());
    QCOMPARE(*m_controller->selectedNeuron(), selection);
}

void BackendCommandsTest::startBeforeReadyIsRefusedInTheLog()
{
    const QString echo = m_sidecar->pathOf(QStringLiteral("commands"));
    play({step(QStringLiteral("echo_commands_to"), echo), await(QStringLiteral("quit")),
          step(QStringLiteral("exit"), 0)});
    m_controller->apply(protocol::NeuronSnapshotPayload());
    m_controller->setSelectedNeuron(protocol::NeuronSelection{});
    m_controller->startTraining(false);
    QCOMPARE(log().constLast(),
             QStringLiteral("× Python backend is still starting — wait for “backend ready” in the log"));
    QVERIFY(m_controller->liveNeurons());
    QVERIFY(m_controller->selectedNeuron());
    m_controller->sendCommand(QStringLiteral("quit"));
    QTRY_VERIFY_WITH_TIMEOUT(!m_controller->isRunning(), patience);
    QCOMPARE(contentOf(echo), QByteArray("{\"cmd\":\"quit\"}\n"));
}

void BackendCommandsTest::startAfterTheExitRelaunchesAndDoesNotTrain()
{
    const QString echo = m_sidecar->pathOf(QStringLiteral("commands"));
    play({emitReady(), await(QStringLiteral("set_training_profile")), step(QStringLiteral("exit"), 3)});
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("backend exited (code 3)")), patience);
    QVERIFY(!m_controller->ready());

    m_sidecar->play({step(QStringLiteral("echo_commands_to"), echo), emitReady(),
                     await(QStringLiteral("set_training_profile"))});
    const auto before = m_controller->logLines().size();
    m_controller->startTraining(false);
    QVERIFY(m_controller->isRunning());
    const QStringList added = log().mid(qsizetype(before));
    QCOMPARE(added.constFirst(), QStringLiteral("× Python backend is not running — relaunching…"));
    QCOMPARE(added.at(1), QStringLiteral("sidecar root → ") + m_sidecar->root());
    QCOMPARE(added.constLast(),
             QStringLiteral("× wait for “backend ready” in Recent activity, then press Start again"));
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready(), patience);
    QTRY_COMPARE_WITH_TIMEOUT(contentOf(echo).count('\n'), 3, patience);
    QVERIFY(!contentOf(echo).contains("\"start\""));
}

void BackendCommandsTest::aSendAfterTheExitIsSkipped()
{
    play({step(QStringLiteral("exit"), 0)});
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("backend exited (code 0)")), patience);
    m_controller->sendCommand(QStringLiteral("stop"));
    QCOMPARE(log().constLast(), QStringLiteral("× send(stop) skipped — Python backend is not running"));
}

void BackendCommandsTest::aChildThatClosedItsInputIsReported()
{
    play({step(QStringLiteral("close_input"), true), emitLog(QStringLiteral("closed")),
          step(QStringLiteral("stop_reading"), true)});
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("closed")), patience);
    m_controller->sendCommand(QStringLiteral("stop"));
    QCOMPARE(log().constLast(), QStringLiteral("× send failed: Broken pipe"));
    QVERIFY(m_controller->isRunning()); // the process is left alone
    m_controller->sendCommand(QStringLiteral("stop"));
    QCOMPARE(log().constLast(), QStringLiteral("× send(stop) skipped — Python backend is not running"));
}

void BackendCommandsTest::stopAndQuitReachAChildThatReadsLate()
{
    const QString gate = m_sidecar->pathOf(QStringLiteral("gate"));
    const QString echo = m_sidecar->pathOf(QStringLiteral("commands"));
    play({emitReady(), step(QStringLiteral("wait_for_file"), gate),
          step(QStringLiteral("echo_commands_to"), echo), await(QStringLiteral("quit")),
          step(QStringLiteral("exit"), 0)});
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready(), patience);
    // Far more than a pipe holds, while the child reads nothing.
    for (int edit = 0; edit < 500; ++edit) {
        m_settings->setModelDescription(QString(10'000, QLatin1Char('d')) + QString::number(edit));
        m_controller->sendModelIdentity();
    }
    m_controller->shutdown();
    QVERIFY(!log().join(QLatin1Char('\n')).contains(QStringLiteral("send failed")));
    touch(gate);
    QTRY_VERIFY_WITH_TIMEOUT(!m_controller->isRunning(), patience);
    const QByteArray commands = contentOf(echo);
    QVERIFY(commands.endsWith("{\"cmd\":\"stop\"}\n{\"cmd\":\"quit\"}\n"));
    QVERIFY(commands.contains("d499\""));
    QVERIFY(commands.count('\n') < 50);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::BackendCommandsTest)
#include "BackendCommandsTest.moc"
