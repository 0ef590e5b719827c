#include "service/CaldraClient.h"
#include "service/core/CaldraError.h"
#include "tests/service/support/LoopbackServer.h"
#include "tests/service/support/SampleService.h"

#include <QtTest/QtTest>

#include <QFile>
#include <QFutureWatcher>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;
using namespace caldra::tests;

namespace {

std::function<void(const QString &)> whenOffered;
std::function<void(const QString &)> whenShown;

void offer(const QString &version)
{
    whenOffered(version);
}

void show(const QString &text)
{
    whenShown(text);
}

/// These lines stand in the README as well.
class LatestRelease : public QObject
{
public:
    explicit LatestRelease(const caldra::CaldraClient &client)
    {
        connect(&m_answer, &QFutureWatcherBase::finished, this, [this] { take(); });
        m_answer.setFuture(client.distribution.latest(u"talvex-llm-trainer"_s,
                                                      {caldra::DistributionPlatform::macos,
                                                       caldra::DistributionChannel::stable,
                                                       caldra::DistributionArtifactPurpose::update}));
    }
    ~LatestRelease() override { m_answer.cancel(); }

private:
    void take()
    {
        try {
            offer(m_answer.result().release.version);
        } catch (const caldra::CaldraError &error) {
            show(error.description());
        }
    }

    QFutureWatcher<caldra::DistributionLatestResponse> m_answer;
};

caldra::CaldraClient clientOf(const LoopbackServer &server)
{
    return caldra::CaldraClient::fromInfoDictionary(
        {{u"CaldraAPIKey"_s, u"key"_s}, {u"CaldraServiceHost"_s, server.host()}});
}

QStringList linesOf(const char *fileVariable)
{
    QFile file(qEnvironmentVariable(fileVariable));
    if (!file.open(QFile::ReadOnly)) {
        qFatal("%s cannot be read", fileVariable);
    }
    return QString::fromUtf8(file.readAll()).split(u'\n');
}

} // namespace

/// The worked example of the library's README.
class ReadmeExampleTest : public QObject
{
    Q_OBJECT

private:
    QStringList m_told;

private Q_SLOTS:
    void init()
    {
        m_told.clear();
        whenOffered = [this](const QString &version) {
            m_told << u"offered "_s + version;
        };
        whenShown = [this](const QString &text) {
            m_told << u"shown "_s + text;
        };
    }

    void theAnswerIsTold()
    {
        LoopbackServer server(sampleService);
        const LatestRelease latest(clientOf(server));
        QTRY_COMPARE(m_told, QStringList{u"offered 1.4.0"_s});
    }

    void aFailureIsTold()
    {
        LoopbackServer server([](const ReceivedRequest &) {
            return Answer::json(R"({"error":{"code":"not_found","message":"Nothing yet"}})", 404);
        });
        const LatestRelease latest(clientOf(server));
        QTRY_COMPARE(m_told, QStringList{u"shown Nothing yet"_s});
    }

    void anObjectThatGoesGivesTheRequestUp()
    {
        LoopbackServer server([](const ReceivedRequest &) { return Answer::silence(); });
        auto latest = std::make_unique<LatestRelease>(clientOf(server));
        QVERIFY(server.received.tryAcquire(1, 30'000));
        latest.reset();
        QVERIFY(server.disconnected.tryAcquire(1, 30'000));
        QCoreApplication::processEvents();
        QCOMPARE(m_told, QStringList());
    }

    void anObjectThatIsGoneHearsOfNoAnswer()
    {
        LoopbackServer server(sampleService);
        const caldra::CaldraClient client = clientOf(server);
        auto latest = std::make_unique<LatestRelease>(client);
        QVERIFY(server.received.tryAcquire(1, 30'000));
        // By the end of this one, the first answer waits for the event loop.
        client.systemStatus.overallStatus().waitForFinished();
        latest.reset();
        QCoreApplication::processEvents();
        QCOMPARE(m_told, QStringList());
    }

    void theReadmeShowsTheseLines()
    {
        const QStringList readme = linesOf("CALDRA_README");
        const QStringList test = linesOf("CALDRA_README_TEST");
        const qsizetype begin = readme.indexOf(u"class LatestRelease : public QObject"_s);
        const qsizetype end = readme.indexOf(u"};"_s, begin);
        QVERIFY(begin >= 0 && end > begin);
        const qsizetype same = test.indexOf(readme.at(begin));
        for (qsizetype line = begin; line <= end; ++line) {
            QCOMPARE(test.at(same + line - begin), readme.at(line));
        }
    }
};

QTEST_GUILESS_MAIN(ReadmeExampleTest)
#include "ReadmeExampleTest.moc"
