#include "ui/dashboard/RunControls.h"

#include "tests/ui/dashboard/Stage.h"
#include "ui/dashboard/LiveUpdates.h"
#include "ui/kit/ActionButton.h"

#include <QSignalSpy>

namespace zorel::tests {

using ui::dashboard::LiveUpdates;
using ui::dashboard::RunControls;

class RunControlsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void labelsTheStartByReadiness();
    void offersWhatTheStateAllows_data();
    void offersWhatTheStateAllows();
    void startsAndResumes();
    void pausesAndStops();
    void namesThePauseByWhatItDoes();
    void startRelaunchesABackendThatDied();
    void startBeforeReadyOnlyLogs();
    void saysWhereTheRunStands();
    void keepsTheControlsOfARunTogether();
    void keepsTheFocusAmongThem();

private:
    QAbstractButton *find(const char *name) const
    {
        return button(m_controls.get(), QString::fromLatin1(name));
    }
    void flush() { m_updates->publish(); }

    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<LiveUpdates> m_updates;
    std::unique_ptr<RunControls> m_controls;
};

void RunControlsTest::init()
{
    m_stage = std::make_unique<Stage>();
    m_updates = std::make_unique<LiveUpdates>(m_stage->backend);
    m_controls = std::make_unique<RunControls>(m_stage->backend, m_stage->settings, *m_updates);
    m_controls->show();
}

void RunControlsTest::cleanup()
{
    m_controls.reset();
    m_updates.reset();
    m_stage.reset();
}

void RunControlsTest::labelsTheStartByReadiness()
{
    const QString waiting = QStringLiteral("Waiting for the Python backend — check Recent activity");
    const QString begin = QStringLiteral("Begin training");
    QVERIFY(shows(m_controls.get(), waiting) && !shows(m_controls.get(), begin));
    QCOMPARE(find("Start")->accessibleDescription(), waiting);
    m_stage->becomeReady();
    flush();
    QVERIFY(!shows(m_controls.get(), waiting) && shows(m_controls.get(), begin));
    QCOMPARE(find("Start")->accessibleDescription(), begin);
}

void RunControlsTest::offersWhatTheStateAllows_data()
{
    QTest::addColumn<QString>("offers");
    QTest::newRow("idle") << QStringLiteral("Start, Resume from latest checkpoint");
    QTest::newRow("starting") << QStringLiteral("Stop");
    QTest::newRow("preparing") << QStringLiteral("Stop");
    QTest::newRow("running") << QStringLiteral("Pause, Stop");
    QTest::newRow("paused") << QStringLiteral("Resume, Stop");
    QTest::newRow("stopping") << QString();
    QTest::newRow("done") << QStringLiteral("Start, Resume from latest checkpoint");
    QTest::newRow("error") << QStringLiteral("Start, Resume from latest checkpoint");
}

void RunControlsTest::offersWhatTheStateAllows()
{
    QFETCH(QString, offers);
    m_stage->becomeReady();
    m_stage->applyStatus(QString::fromLatin1(QTest::currentDataTag()));
    flush();
    QStringList enabled;
    for (const char *name : {"Start", "Resume from latest checkpoint", "Pause", "Resume", "Stop"}) {
        if (find(name) != nullptr && find(name)->isEnabled()) {
            enabled << QString::fromLatin1(name);
        }
    }
    QCOMPARE(enabled.join(QStringLiteral(", ")), offers);
}

void RunControlsTest::keepsTheControlsOfARunTogether()
{
    m_stage->becomeReady();
    flush();
    const auto *checkpoint = find("Resume from latest checkpoint");
    m_controls->resize(m_controls->sizeHint().width() - checkpoint->width() / 2, 200);
    QTRY_VERIFY(checkpoint->y() > find("Start")->geometry().bottom());
    for (const char *name : {"Pause", "Stop"}) {
        QVERIFY(find("Start")->geometry().bottom() > find(name)->geometry().bottom());
        QVERIFY(find("Start")->y() < find(name)->y());
    }
    QVERIFY(find("Start")->x() < find("Pause")->x() && find("Pause")->x() < find("Stop")->x());
}

void RunControlsTest::keepsTheFocusAmongThem()
{
    const auto focused = [this] {
        return m_controls->focusWidget();
    };
    const auto enter = [this](const QString &state) {
        m_stage->applyStatus(state);
        flush();
    };
    QPushButton elsewhere(m_controls.get());
    elsewhere.show();
    m_stage->becomeReady();
    flush();
    find("Start")->setFocus();
    enter(QStringLiteral("starting"));
    QCOMPARE(focused(), find("Stop"));
    enter(QStringLiteral("running"));
    QCOMPARE(focused(), find("Stop"));
    enter(QStringLiteral("stopping"));
    QVERIFY(focused() != nullptr && focused() != &elsewhere && focused()->isEnabled());
    enter(QStringLiteral("idle"));
    QCOMPARE(focused(), find("Start"));
    elsewhere.setFocus();
    enter(QStringLiteral("running"));
    QCOMPARE(focused(), &elsewhere);
}

void RunControlsTest::startsAndResumes()
{
    m_stage->launchRecorder();
    flush();
    find("Start")->click();
    find("Resume from latest checkpoint")->click();
    QTRY_COMPARE(m_stage->commands(QStringLiteral("start")).size(), std::size_t{2});
    const auto sent = m_stage->commands(QStringLiteral("start"));
    QCOMPARE(sent[0].value(QLatin1String("resume")), QJsonValue(false));
    QCOMPARE(sent[0].value(QLatin1String("max_steps")), QJsonValue(1000));
    QCOMPARE(sent[1].value(QLatin1String("resume")), QJsonValue(true));
}

void RunControlsTest::pausesAndStops()
{
    m_stage->launchRecorder();
    m_stage->applyStatus(QStringLiteral("running"), 5);
    flush();
    find("Pause")->click();
    find("Stop")->click();
    QTRY_COMPARE(m_stage->commands(QStringLiteral("stop")).size(), std::size_t{1});
    QCOMPARE(m_stage->commands(QStringLiteral("toggle_pause")).size(), std::size_t{1});
}

void RunControlsTest::namesThePauseByWhatItDoes()
{
    m_stage->becomeReady();
    m_stage->applyStatus(QStringLiteral("running"));
    flush();
    QVERIFY(find("Pause") != nullptr && find("Resume") == nullptr);
    QVERIFY(symbols(m_controls.get()).contains(QStringLiteral("pause.fill")));
    m_stage->applyStatus(QStringLiteral("paused"));
    flush();
    QVERIFY(find("Pause") == nullptr && find("Resume") != nullptr);
    QVERIFY(!symbols(m_controls.get()).contains(QStringLiteral("pause.fill")));
    QCOMPARE(qobject_cast<ui::kit::ActionButton *>(find("Resume"))->symbol(), QStringLiteral("play.fill"));
    m_stage->applyStatus(QStringLiteral("running"));
    flush();
    QVERIFY(find("Pause") != nullptr && find("Resume") == nullptr);
    QVERIFY(symbols(m_controls.get()).contains(QStringLiteral("pause.fill")));
}

void RunControlsTest::startRelaunchesABackendThatDied()
{
    m_stage->sidecar.play(
        {step(QStringLiteral("emit"), QJsonObject{{QStringLiteral("event"), QStringLiteral("ready")}}),
         step(QStringLiteral("emit"), QJsonObject{{QStringLiteral("event"), QStringLiteral("status")},
                                                  {QStringLiteral("state"), QStringLiteral("running")},
                                                  {QStringLiteral("step"), 5},
                                                  {QStringLiteral("max_steps"), 10},
                                                  {QStringLiteral("loss"), 1},
                                                  {QStringLiteral("lr"), 1},
                                                  {QStringLiteral("grad_norm"), 1},
                                                  {QStringLiteral("tokens_per_sec"), 1},
                                                  {QStringLiteral("elapsed_s"), 1}}),
         step(QStringLiteral("exit"), 1)});
    QSignalSpy exited(&m_stage->backend, &backend::bridge::BackendController::backendExited);
    m_stage->backend.launch();
    QTRY_COMPARE(exited.count(), 1);
    QCOMPARE(m_stage->backend.status().state, QStringLiteral("running"));
    flush();
    QVERIFY(find("Start")->isEnabled());
    QVERIFY(!find("Pause")->isEnabled() && !find("Stop")->isEnabled());
    find("Start")->click();
    QVERIFY(m_stage->backend.isRunning());
    QCOMPARE(m_stage->log().last(),
             QStringLiteral("× wait for “backend ready” in Recent activity, then press Start again"));
}

void RunControlsTest::startBeforeReadyOnlyLogs()
{
    m_stage->sidecar.play({step(QStringLiteral("wait_for_eof"), true)});
    m_stage->backend.launch();
    find("Start")->click();
    QCOMPARE(m_stage->log().last(),
             QStringLiteral("× Python backend is still starting — wait for “backend ready” in the log"));
}

void RunControlsTest::saysWhereTheRunStands()
{
    m_stage->becomeReady();
    m_stage->applyStatus(QStringLiteral("running"), 1234, 50'000);
    flush();
    QVERIFY(shows(m_controls.get(), QStringLiteral("Running — step 1,234 of 50,000")));
    m_stage->settings.selectFamily(app::settings::ModelFamily::imageGeneration);
    m_stage->applyStatus(QStringLiteral("preparing"));
    flush();
    QVERIFY(shows(m_controls.get(),
                  QStringLiteral("Preparing data — indexing images in your Training Data folder. "
                                 "This runs once per image corpus.")));
    m_stage->settings.selectFamily(app::settings::ModelFamily::textLanguage);
    QVERIFY(shows(m_controls.get(),
                  QStringLiteral("Preparing data — training tokenizer and tokenizing your corpus. "
                                 "This runs once per Training Data folder.")));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::RunControlsTest)
#include "RunControlsTest.moc"
