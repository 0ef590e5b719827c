#include "terminal/RunReport.h"

#include <QTest>

namespace zorel::tests {

using terminal::TerminalOptions;

namespace {

backend::protocol::TrainStatusPayload trained(std::int64_t step, std::int64_t maxSteps)
{
    backend::protocol::TrainStatusPayload status;
    status.step = step;
    status.maxSteps = maxSteps;
    return status;
}

TerminalOptions parsed(const QStringList &arguments, const QString &program = QStringLiteral("zorel-train"))
{
    return TerminalOptions::parse(QStringList{program} + arguments, QStringLiteral("/home/ada"));
}

} // namespace

class RunReportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysHowToGoOn();
    void goingOnCallsTheProgramAsItWasCalled();
    void goingOnTakesTheOptionsThatAreNotSaved();
    void savedOptionsNeedNotBeSaidAgain();
    void nothingIsToBeResumedBeforeTheFirstStep();
};

void RunReportTest::saysHowToGoOn()
{
    QCOMPARE(stopReport(trained(1234, 50'000), parsed({QStringLiteral("--log")})),
             QStringLiteral("Stopped at step 1,234 of 50,000. To go on from the latest checkpoint: "
                            "zorel-train --resume --steps 50000"));
}

void RunReportTest::goingOnCallsTheProgramAsItWasCalled()
{
    const auto commandOf = [](const char *program) {
        return stopReport(trained(1, 9), parsed({}, QString::fromLatin1(program)))
            .section(QStringLiteral(": "), 1);
    };
    QCOMPARE(commandOf("/opt/zorel-train"), QStringLiteral("/opt/zorel-train --resume --steps 9"));
    QCOMPARE(commandOf("build/My Trainer.app/zorel-train"),
             QStringLiteral("'/home/ada/build/My Trainer.app/zorel-train' --resume --steps 9"));
    QCOMPARE(commandOf("./zorel-train"), QStringLiteral("/home/ada/zorel-train --resume --steps 9"));
}

void RunReportTest::goingOnTakesTheOptionsThatAreNotSaved()
{
    const QStringList given{QStringLiteral("--family"),          QStringLiteral("text_language"),
                            QStringLiteral("--capability"),      QStringLiteral("pretrain"),
                            QStringLiteral("--training-data"),   QStringLiteral("/home/ada/my texts"),
                            QStringLiteral("--finished-models"), QStringLiteral("/home/ada/models"),
                            QStringLiteral("--model-root"),      QStringLiteral("~/work"),
                            QStringLiteral("--model-name"),      QStringLiteral("it's"),
                            QStringLiteral("--model-version"),   QStringLiteral("2"),
                            QStringLiteral("--author"),          QStringLiteral("Ada"),
                            QStringLiteral("--license"),         QStringLiteral("MIT"),
                            QStringLiteral("--description"),     QString()};
    const QString report = stopReport(trained(1, 9), parsed(given));
    QCOMPARE(report.section(QStringLiteral(": "), 1),
             QStringLiteral("zorel-train --resume --steps 9 --family text_language --capability pretrain "
                            "--training-data '/home/ada/my texts' --finished-models /home/ada/models "
                            "--model-root '~/work' --model-name 'it'\\''s' --model-version 2 --author Ada "
                            "--license MIT --description ''"));
}

void RunReportTest::savedOptionsNeedNotBeSaidAgain()
{
    const QStringList given{QStringLiteral("--training-data"), QStringLiteral("/data"),
                            QStringLiteral("--save")};
    QVERIFY(
        stopReport(trained(1, 9), parsed(given)).endsWith(QStringLiteral("zorel-train --resume --steps 9")));
}

void RunReportTest::nothingIsToBeResumedBeforeTheFirstStep()
{
    QCOMPARE(stopReport(trained(0, 9), TerminalOptions()), QStringLiteral("Stopped before the first step."));
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::RunReportTest)
#include "RunReportTest.moc"
