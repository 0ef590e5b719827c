#include "tests/service/support/LoopbackServer.h"
#include "tests/service/support/SampleService.h"

#include <QtTest/QtTest>

#include <QProcess>

using namespace Qt::StringLiterals;
using namespace caldra::tests;

/// Runs the command line example as a user would.
class ExampleTest : public QObject
{
    Q_OBJECT

private:
    struct Run
    {
        int exitCode = -1;
        QByteArray output;
        QByteArray errors;
    };

    static Run run(const QString &host, const QStringList &arguments, const QString &key = u"the-key"_s)
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"CALDRA_API_KEY"_s, key);
        environment.insert(u"CALDRA_SERVICE_HOST"_s, host);
        process.setProcessEnvironment(environment);
        process.start(qEnvironmentVariable("CALDRA_EXAMPLE"), arguments);
        process.waitForFinished(60000);
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                process.readAllStandardOutput(), process.readAllStandardError()};
    }

private Q_SLOTS:
    void listsApplications()
    {
        LoopbackServer server(sampleService);
        const Run result = run(server.host(), {u"applications"_s});
        QCOMPARE(result.output, "talvex-llm-trainer\tTalvex LLM Trainer\tmacos\n");
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(server.lastRequest().headers.value("x-api-key"), "the-key");
    }

    void showsTheLatestRelease()
    {
        LoopbackServer server(sampleService);
        const Run result = run(server.host(), {u"latest"_s, u"talvex-llm-trainer"_s});
        QCOMPARE(result.output,
                 "1.4.0\tTrainer-1.4.0.zip\t12345678 bytes\nhttps://files.example/Trainer-1.4.0.zip\n");
        QCOMPARE(result.exitCode, 0);
    }

    void showsTheSystemStatus()
    {
        LoopbackServer server(sampleService);
        const Run result = run(server.host(), {u"status"_s});
        QCOMPARE(result.output, "degraded\nDownloads\toperational\nSign-in\tpartialOutage\n");
        QCOMPARE(result.exitCode, 0);
    }

    void saysWhatFailed()
    {
        LoopbackServer server(sampleService);
        Run result = run(server.host(), {u"latest"_s, u"nothing"_s});
        QCOMPARE(result.errors, "No such application\n");
        QCOMPARE(result.exitCode, 1);

        result = run(u"http://elsewhere.example"_s, {u"status"_s});
        QVERIFY(result.errors.startsWith("Could not build a valid URL from "));
        QCOMPARE(result.exitCode, 1);

        result = run(server.host(), {u"status"_s}, {});
        QVERIFY(result.errors.startsWith("Caldra: missing API key."));
        QCOMPARE(result.exitCode, 1);

        result = run(server.host(), {u"dance"_s});
        QVERIFY(result.errors.startsWith("Usage: "));
        QCOMPARE(result.exitCode, 2);
    }
};

QTEST_GUILESS_MAIN(ExampleTest)
#include "ExampleTest.moc"
