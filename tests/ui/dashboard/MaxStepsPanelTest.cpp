#include "ui/dashboard/MaxStepsPanel.h"

#include "tests/ui/dashboard/Stage.h"

#include <QLineEdit>
#include <QSignalSpy>

namespace zorel::tests {

using ui::dashboard::MaxStepsPanel;

class MaxStepsPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void showsItsTexts();
    void appliesANumber_data();
    void appliesANumber();
    void sendsNothingForAnythingElse_data();
    void sendsNothingForAnythingElse();
    void appliesOnReturn();
    void offersQuickCounts_data();
    void offersQuickCounts();
    void movesByAStep_data();
    void movesByAStep();
    void movesAnAbsurdCount();
    void offersNoStepBeyondTheEnds();
    void followsTheController();
    void sendsTheCommand();

private:
    int sends() const { return m_stage->log().filter(QStringLiteral("set_max_steps")).size(); }
    QLineEdit *field() const { return m_panel->findChild<QLineEdit *>(); }
    void press(const char *name) const { button(m_panel.get(), QString::fromLatin1(name))->click(); }

    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<MaxStepsPanel> m_panel;
};

void MaxStepsPanelTest::init()
{
    m_stage = std::make_unique<Stage>();
    m_panel = std::make_unique<MaxStepsPanel>(m_stage->backend);
    m_panel->show();
}

void MaxStepsPanelTest::cleanup()
{
    m_panel.reset();
    m_stage.reset();
}

void MaxStepsPanelTest::showsItsTexts()
{
    for (const char *text : {"Training round", "steps",
                             "How many optimizer steps the trainer should run. Editable live — lower it to "
                             "stop sooner, raise it to "
                             "keep going.",
                             "Apply", "100", "1,000", "10,000", "50,000"}) {
        QVERIFY2(shows(m_panel.get(), QString::fromUtf8(text)), text);
    }
    QCOMPARE(m_panel->stepsText(), QString());
    QCOMPARE(field()->placeholderText(), QString::number(m_stage->backend.desiredMaxSteps()));
    QVERIFY(!shows(m_panel.get(), QStringLiteral("Type a whole number without grouping, such as 5000.")));
}

void MaxStepsPanelTest::appliesANumber_data()
{
    QTest::addColumn<qint64>("expected");
    QTest::newRow("500") << qint64{500};
    QTest::newRow("+500") << qint64{500};
    QTest::newRow("0") << qint64{1};
    QTest::newRow("-7") << qint64{1};
    QTest::newRow("20000000") << qint64{10'000'000};
}

void MaxStepsPanelTest::appliesANumber()
{
    QFETCH(qint64, expected);
    field()->setText(QString::fromLatin1(QTest::currentDataTag()));
    press("Apply");
    QCOMPARE(m_stage->backend.desiredMaxSteps(), expected);
    QCOMPARE(sends(), 1);
    QCOMPARE(m_panel->stepsText(), QString()); // done; the count stands beside the title
    QVERIFY(shows(m_panel.get(), QLocale(QLocale::English).toString(expected)));
}

void MaxStepsPanelTest::sendsNothingForAnythingElse_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"", "5x", "1,000", "1.5", " 5", "1e3", "99999999999999999999", "٥"}) {
        QTest::newRow(text) << QString::fromUtf8(text);
    }
}

void MaxStepsPanelTest::sendsNothingForAnythingElse()
{
    QFETCH(QString, text);
    const std::int64_t before = m_stage->backend.desiredMaxSteps();
    field()->setText(text);
    press("Apply");
    QCOMPARE(m_stage->backend.desiredMaxSteps(), before);
    QCOMPARE(sends(), 0);
    QCOMPARE(m_panel->stepsText(), text); // left to be mended
    const QString complaint = QStringLiteral("Type a whole number without grouping, such as 5000.");
    QCOMPARE(shows(m_panel.get(), complaint), !text.isEmpty());
    field()->setText(QStringLiteral("5"));
    QVERIFY(!shows(m_panel.get(), complaint));
}

void MaxStepsPanelTest::appliesOnReturn()
{
    QTest::keyClicks(field(), QStringLiteral("250"));
    QTest::keyClick(field(), Qt::Key_Return);
    QCOMPARE(m_stage->backend.desiredMaxSteps(), 250);
}

void MaxStepsPanelTest::offersQuickCounts_data()
{
    QTest::addColumn<qint64>("expected");
    QTest::newRow("100") << qint64{100};
    QTest::newRow("1,000") << qint64{1000};
    QTest::newRow("10,000") << qint64{10'000};
    QTest::newRow("50,000") << qint64{50'000};
}

void MaxStepsPanelTest::offersQuickCounts()
{
    QFETCH(qint64, expected);
    m_stage->backend.setMaxSteps(7);
    press(QTest::currentDataTag());
    QCOMPARE(m_stage->backend.desiredMaxSteps(), expected);
    QCOMPARE(sends(), 2);
}

void MaxStepsPanelTest::movesByAStep_data()
{
    QTest::addColumn<qint64>("current");
    QTest::addColumn<qint64>("more");
    QTest::addColumn<qint64>("fewer");
    const auto row = [](qint64 current, qint64 more, qint64 fewer) {
        QTest::addRow("%lld", static_cast<long long>(current)) << current << more << fewer;
    };
    row(50, 60, 40);
    row(99, 109, 89);
    row(100, 200, 1); // 0 is no step count
    row(999, 1099, 899);
    row(1000, 2000, 1);
    row(99'999, 100'999, 98'999);
    row(100'000, 110'000, 90'000);
}

void MaxStepsPanelTest::movesByAStep()
{
    QFETCH(qint64, current);
    QFETCH(qint64, more);
    QFETCH(qint64, fewer);
    m_stage->backend.setMaxSteps(current);
    press("More steps");
    QCOMPARE(m_stage->backend.desiredMaxSteps(), more);
    m_stage->backend.setMaxSteps(current);
    press("Fewer steps");
    QCOMPARE(m_stage->backend.desiredMaxSteps(), fewer);
    QCOMPARE(sends(), 4);
}

void MaxStepsPanelTest::movesAnAbsurdCount()
{
    m_stage->applyStatus(QStringLiteral("running"), 1, std::numeric_limits<std::int64_t>::max());
    press("Fewer steps");
    QCOMPARE(m_stage->backend.desiredMaxSteps(), 10'000'000);
    m_stage->applyStatus(QStringLiteral("running"), 1, std::numeric_limits<std::int64_t>::min());
    press("More steps");
    QCOMPARE(m_stage->backend.desiredMaxSteps(), 1);
    m_stage->applyStatus(QStringLiteral("running"), 1, 0);
    press("More steps");
    QCOMPARE(m_stage->backend.desiredMaxSteps(), 10);
}

void MaxStepsPanelTest::offersNoStepBeyondTheEnds()
{
    m_stage->backend.setMaxSteps(1);
    QVERIFY(!button(m_panel.get(), QStringLiteral("Fewer steps"))->isEnabled());
    QVERIFY(button(m_panel.get(), QStringLiteral("More steps"))->isEnabled());
    m_stage->backend.setMaxSteps(10'000'000);
    QVERIFY(button(m_panel.get(), QStringLiteral("Fewer steps"))->isEnabled());
    QVERIFY(!button(m_panel.get(), QStringLiteral("More steps"))->isEnabled());
}

void MaxStepsPanelTest::followsTheController()
{
    m_stage->becomeReady(12'345);
    QVERIFY(shows(m_panel.get(), QStringLiteral("12,345")));
    QCOMPARE(field()->placeholderText(), QStringLiteral("12345"));
    QTest::keyClicks(field(), QStringLiteral("77"));
    m_stage->backend.setMaxSteps(500);
    QCOMPARE(m_panel->stepsText(), QStringLiteral("77")); // what is being typed is not touched
}

void MaxStepsPanelTest::sendsTheCommand()
{
    m_stage->launchRecorder();
    field()->setText(QStringLiteral("+500"));
    press("Apply");
    QTRY_COMPARE(m_stage->commands(QStringLiteral("set_max_steps")).size(), std::size_t{1});
    QCOMPARE(
        m_stage->commands(QStringLiteral("set_max_steps")).front(),
        (QJsonObject{{QStringLiteral("cmd"), QStringLiteral("set_max_steps")}, {QStringLiteral("n"), 500}}));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::MaxStepsPanelTest)
#include "MaxStepsPanelTest.moc"
