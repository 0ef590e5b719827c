#include "ui/dashboard/SessionPanel.h"

#include "tests/ui/dashboard/Stage.h"
#include "ui/dashboard/LiveUpdates.h"
#include "ui/kit/Figure.h"

namespace zorel::tests {

using ui::dashboard::LiveUpdates;
using ui::dashboard::SessionPanel;

class SessionPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void showsTheFigures();
    void cutsDurations_data();
    void cutsDurations();
    void showsTheValidationLossWhenThereIsOne();
    void showsTheErrorWhenThereIsOne();
    void boundsAVeryLongError();
    void showsAStateThatNobodyKnows();

private:
    QString figure(const char *label) const;
    void apply(const backend::protocol::TrainStatusPayload &status);

    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<LiveUpdates> m_updates;
    std::unique_ptr<SessionPanel> m_panel;
};

void SessionPanelTest::init()
{
    m_stage = std::make_unique<Stage>();
    m_updates = std::make_unique<LiveUpdates>(m_stage->backend);
    m_panel = std::make_unique<SessionPanel>(m_stage->backend, *m_updates);
    m_panel->show();
}

void SessionPanelTest::cleanup()
{
    m_panel.reset();
    m_updates.reset();
    m_stage.reset();
}

QString SessionPanelTest::figure(const char *label) const
{
    for (const ui::kit::Figure *candidate : m_panel->findChildren<ui::kit::Figure *>()) {
        if (candidate->isVisible() && candidate->label() == QLatin1String(label)) {
            return candidate->value();
        }
    }
    return QStringLiteral("no such figure");
}

void SessionPanelTest::apply(const backend::protocol::TrainStatusPayload &status)
{
    m_stage->backend.apply(status);
    m_updates->publish();
}

void SessionPanelTest::showsTheFigures()
{
    QVERIFY(shows(m_panel.get(), QStringLiteral("Session")));
    QCOMPARE(figure("State"), QStringLiteral("Idle"));
    QVERIFY(!shows(m_panel.get(), QStringLiteral("Error")));
    apply(Stage::runningStatus());
    QCOMPARE(figure("State"), QStringLiteral("Running"));
    QCOMPARE(figure("Elapsed"), QStringLiteral("1h02m"));
    QCOMPARE(figure("Step"), QStringLiteral("1,234"));
    QCOMPARE(figure("Loss"), QStringLiteral("2.3457"));
    QCOMPARE(figure("Tok/sec"), QStringLiteral("12346"));
    for (const char *text : {"State", "Elapsed", "Step", "Loss", "Tok/sec"}) {
        QVERIFY2(shows(m_panel.get(), QString::fromLatin1(text)), text);
    }
}

void SessionPanelTest::cutsDurations_data()
{
    QTest::addColumn<double>("seconds");
    QTest::newRow("42s") << 42.9;
    QTest::newRow("1m00s") << 60.0;
    QTest::newRow("59m59s") << 3599.9;
    QTest::newRow("1h00m") << 3600.0;
    QTest::newRow("-5s") << -5.9;
}

void SessionPanelTest::cutsDurations()
{
    QFETCH(double, seconds);
    auto status = Stage::runningStatus();
    status.elapsedS = seconds;
    apply(status);
    QCOMPARE(figure("Elapsed"), QString::fromLatin1(QTest::currentDataTag()));
}

void SessionPanelTest::showsTheValidationLossWhenThereIsOne()
{
    auto status = Stage::runningStatus();
    apply(status);
    QVERIFY(!shows(m_panel.get(), QStringLiteral("Val loss")));
    status.valLoss = 2.5;
    apply(status);
    QCOMPARE(figure("Val loss"), QStringLiteral("2.5000"));
    QVERIFY(shows(m_panel.get(), QStringLiteral("Val loss")));
    status.valLoss.reset();
    apply(status);
    QVERIFY(!shows(m_panel.get(), QStringLiteral("Val loss")));
}

void SessionPanelTest::showsTheErrorWhenThereIsOne()
{
    auto status = Stage::runningStatus();
    apply(status);
    QVERIFY(!shows(m_panel.get(), QStringLiteral("Error")));
    for (const QString &error :
         {QStringLiteral("the disk is <b>full</b> &amp; %1"), QString(10'000, QLatin1Char('x'))}) {
        status.error = error;
        apply(status);
        QVERIFY(shows(m_panel.get(), QStringLiteral("Error")));
        QVERIFY(shows(m_panel.get(), error));
        QVERIFY(m_panel->minimumSizeHint().width() < 640);
    }
    status.error.reset();
    apply(status);
    QVERIFY(!shows(m_panel.get(), QStringLiteral("Error")));
}

void SessionPanelTest::showsAStateThatNobodyKnows()
{
    m_stage->applyStatus(QStringLiteral("evaluating"));
    m_updates->publish();
    QCOMPARE(figure("State"), QStringLiteral("evaluating"));
}

void SessionPanelTest::boundsAVeryLongError()
{
    auto status = Stage::runningStatus();
    status.error = QStringLiteral("one line of many\n").repeated(500);
    apply(status);
    QVERIFY(shows(m_panel.get(), *status.error));
    QVERIFY(m_panel->heightForWidth(600) < 400);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::SessionPanelTest)
#include "SessionPanelTest.moc"
