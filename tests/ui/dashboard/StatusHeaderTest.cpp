#include "ui/dashboard/StatusHeader.h"

#include "tests/ui/dashboard/Stage.h"
#include "ui/dashboard/LiveUpdates.h"
#include "ui/kit/ProgressMeter.h"
#include "ui/kit/TextLabel.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>

namespace zorel::tests {

using ui::dashboard::LiveUpdates;
using ui::dashboard::StatusHeader;

class StatusHeaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void saysThatTheBackendStarts();
    void showsTheFatalErrorInstead();
    void wrapsALongError();
    void boundsAVeryLongError_data();
    void boundsAVeryLongError();
    void showsTheStateOnceReady();
    void saysThatTheBackendStartsAfterItDied();
    void movesItsMeterWhileAChildLives();
    void offersTheLog();

private:
    const QString starting = QStringLiteral("Starting Python backend…");

    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<LiveUpdates> m_updates;
    std::unique_ptr<StatusHeader> m_header;
};

void StatusHeaderTest::init()
{
    m_stage = std::make_unique<Stage>();
    m_updates = std::make_unique<LiveUpdates>(m_stage->backend);
    m_header = std::make_unique<StatusHeader>(m_stage->backend, *m_updates);
    m_header->show();
}

void StatusHeaderTest::cleanup()
{
    m_header.reset();
    m_updates.reset();
    m_stage.reset();
}

void StatusHeaderTest::saysThatTheBackendStarts()
{
    QVERIFY(shows(m_header.get(), starting));
    QVERIFY(!shows(m_header.get(), QStringLiteral("Idle")));
    m_stage->becomeReady();
    m_updates->publish();
    QVERIFY(!shows(m_header.get(), starting));
}

void StatusHeaderTest::showsTheFatalErrorInstead()
{
    m_stage->sidecar.scriptsExist = false;
    m_stage->backend.launch();
    QVERIFY(m_stage->backend.fatalError());
    QVERIFY(shows(m_header.get(), *m_stage->backend.fatalError()));
    QVERIFY(!shows(m_header.get(), starting));
    m_stage->becomeReady();
    m_updates->publish();
    QVERIFY(!visibleTexts(m_header.get()).join(QLatin1Char('\n')).contains(QStringLiteral("failed to")));
}

void StatusHeaderTest::wrapsALongError()
{
    m_stage->sidecar.scriptsExist = false;
    m_stage->backend.launch();
    QVERIFY(m_header->minimumSizeHint().width() < 640);
    m_header->resize(640, m_header->heightForWidth(640));
    QVERIFY(m_header->height() > m_header->fontMetrics().height());
}

void StatusHeaderTest::boundsAVeryLongError_data()
{
    QTest::addColumn<QString>("root");
    QTest::newRow("10,000 characters") << QString(10'000, QLatin1Char('x'));
    QTest::newRow("500 lines") << QStringLiteral("line\n").repeated(500);
}

void StatusHeaderTest::boundsAVeryLongError()
{
    QFETCH(QString, root);
    m_stage->sidecar.scriptsExist = false;
    m_stage->sidecar.scriptsRoot = root;
    m_stage->backend.launch();
    QVERIFY(shows(m_header.get(), *m_stage->backend.fatalError()));
    QVERIFY(m_header->heightForWidth(900) < 160);
    m_header->resize(900, m_header->heightForWidth(900));
    auto *area = m_header->findChild<QScrollArea *>();
    QTRY_VERIFY(area->verticalScrollBar()->maximum() > 300);
    // The end can be reached with the keyboard.
    auto *text = qobject_cast<ui::kit::TextLabel *>(area->widget());
    m_header->activateWindow();
    text->setFocus();
    for (int page = 0; page < 500; ++page) {
        QTest::keyClick(text, Qt::Key_PageDown);
    }
    QCOMPARE(area->verticalScrollBar()->value(), area->verticalScrollBar()->maximum());
}

void StatusHeaderTest::showsTheStateOnceReady()
{
    m_stage->becomeReady();
    m_updates->publish();
    QVERIFY(shows(m_header.get(), QStringLiteral("Idle")));
    m_stage->applyStatus(QStringLiteral("paused"));
    m_updates->publish();
    QVERIFY(shows(m_header.get(), QStringLiteral("Paused")));
}

void StatusHeaderTest::saysThatTheBackendStartsAfterItDied()
{
    m_stage->sidecar.play(
        {step(QStringLiteral("emit"), QJsonObject{{QStringLiteral("event"), QStringLiteral("ready")}}),
         step(QStringLiteral("exit"), 3)});
    QSignalSpy ready(&m_stage->backend, &backend::bridge::BackendController::readyChanged);
    m_stage->backend.launch();
    QTRY_COMPARE(ready.count(), 2); // true, then false
    m_updates->publish();
    QVERIFY(shows(m_header.get(), starting));
}

void StatusHeaderTest::movesItsMeterWhileAChildLives()
{
    const auto *meter = m_header->findChild<ui::kit::ProgressMeter *>();
    const auto moves = [meter] {
        return meter->maximum() == meter->minimum();
    };
    QVERIFY(!moves());
    m_stage->sidecar.play({step(QStringLiteral("await"), QStringLiteral("quit"))});
    m_stage->backend.launch();
    QTRY_VERIFY(moves());
    m_stage->backend.killSidecar();
    QTRY_VERIFY(!moves());
    QVERIFY(shows(m_header.get(), starting));
    m_stage->backend.launch();
    QTRY_VERIFY(moves());
}

void StatusHeaderTest::offersTheLog()
{
    QSignalSpy toggled(m_header.get(), &StatusHeader::logToggleRequested);
    button(m_header.get(), QStringLiteral("Show log panel"))->click();
    QCOMPARE(toggled.count(), 1);
    m_header->setLogExpanded(true);
    QVERIFY(button(m_header.get(), QStringLiteral("Show log panel")) == nullptr);
    button(m_header.get(), QStringLiteral("Hide log panel"))->click();
    QCOMPARE(toggled.count(), 2);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::StatusHeaderTest)
#include "StatusHeaderTest.moc"
