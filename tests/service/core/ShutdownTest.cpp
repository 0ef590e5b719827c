#include "service/CaldraClient.h"
#include "service/core/NetworkTransport.h"
#include "tests/service/support/FakeTransport.h"
#include "tests/service/support/Outcome.h"

#include <QtTest/QtTest>

#include <QCoreApplication>
#include <QPromise>
#include <QSemaphore>
#include <QTcpServer>

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;
using namespace caldra;
using namespace caldra::tests;

namespace {

const QByteArray ticket = R"({"data":{"ticket":{"id":"1"}}})";

class Application
{
public:
    Application()
        : m_application(m_count, m_arguments)
    {}

private:
    int m_count = 1;
    char m_name[5] = "test";
    char *m_arguments[2] = {m_name, nullptr};
    QCoreApplication m_application;
};

CaldraClient clientOver(std::shared_ptr<CaldraTransport> transport,
                        const QString &host = u"https://h.example"_s)
{
    CaldraConfiguration configuration{u"key"_s, u"org"_s, ServiceEndpoints::onHost(host), {}, 60};
    return CaldraClient(configuration, std::move(transport));
}

bool isCancelled(QFuture<SupportTicketResponse> call)
{
    call.waitForFinished(); // for ever, when the library forgets the call
    return call.isCanceled() && call.resultCount() == 0;
}

} // namespace

/// The library while its application ends, and without one.
class ShutdownTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cancelsWhatWaitsForTheNetwork()
    {
        auto application = std::make_unique<Application>();
        QTcpServer server; // never answers
        QVERIFY(server.listen(QHostAddress::LocalHost));
        const CaldraClient client = clientOver(std::make_shared<NetworkTransport>(),
                                               u"http://127.0.0.1:%1"_s.arg(server.serverPort()));
        const auto call = client.support.getTicket(u"1"_s);
        QVERIFY(server.waitForNewConnection(20000));
        application.reset();
        QVERIFY(isCancelled(call));
    }

    void cancelsWhatATransportNeverAnswers()
    {
        auto application = std::make_unique<Application>();
        QPromise<TransportAnswer> never;
        never.start();
        QSemaphore sent;
        const CaldraClient client = clientOver(std::make_shared<FakeTransport>([&](const HTTPRequest &) {
            sent.release();
            return never.future();
        }));
        const auto call = client.support.getTicket(u"1"_s);
        QVERIFY(sent.tryAcquire(1, 20000));
        application.reset();
        QVERIFY(isCancelled(call));
        QVERIFY(never.isCanceled());

        // The answer comes when nobody waits for it any more.
        never.addResult(TransportAnswer{ticket, HTTPResponse{200, {}, {}}});
        never.finish();
        QVERIFY(isCancelled(call));
    }

    void cancelsCallsWithoutAnApplication()
    {
        const auto transport = std::make_shared<FakeTransport>(200, ticket);
        QVERIFY(isCancelled(clientOver(transport).support.getTicket(u"1"_s)));
        {
            const Application application;
        }
        QVERIFY(isCancelled(clientOver(transport).support.getTicket(u"1"_s)));
        QVERIFY(NetworkTransport().send({"GET", QUrl(u"https://h.example"_s), {}, {}}).isCanceled());
        QVERIFY(transport->request().method.isEmpty());
    }

    void worksAgainWithTheNextApplication()
    {
        for (int round = 0; round < 3; ++round) {
            auto application = std::make_unique<Application>();
            const CaldraClient client = clientOver(std::make_shared<FakeTransport>(200, ticket));
            const auto call = client.support.getTicket(u"1"_s);
            QCOMPARE(resultOf(call).ticket.id, u"1"_s);
            application.reset();
            QVERIFY(!call.isCanceled()); // what was answered stays answered
        }
    }

    void endsEveryCallThatOtherThreadsMakeMeanwhile()
    {
        const CaldraClient client = clientOver(std::make_shared<FakeTransport>(200, ticket));
        for (int round = 0; round < 20; ++round) {
            auto application = std::make_unique<Application>();
            std::atomic<bool> isOver = false;
            std::atomic<int> answered = 0;
            std::vector<std::thread> threads;
            for (int thread = 0; thread < 4; ++thread) {
                threads.emplace_back([&] {
                    while (!isOver) {
                        QFuture<SupportTicketResponse> call = client.support.getTicket(u"1"_s);
                        call.waitForFinished();
                        answered += call.resultCount();
                    }
                });
            }
            while (answered < 20) {
                std::this_thread::yield();
            }
            application.reset();
            isOver = true;
            for (std::thread &thread : threads) {
                thread.join();
            }
        }
    }
};

QTEST_APPLESS_MAIN(ShutdownTest)
#include "ShutdownTest.moc"
