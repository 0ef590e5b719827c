#include "service/CaldraClient.h"
#include "service/core/NetworkTransport.h"
#include "tests/service/support/FakeTransport.h"
#include "tests/service/support/LoopbackServer.h"
#include "tests/service/support/Outcome.h"

#include <QtTest/QtTest>

#include <QPromise>
#include <QThreadPool>

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;
using namespace caldra;
using namespace caldra::tests;

namespace {

Answer echoTicket(const ReceivedRequest &request)
{
    const QByteArray id = request.target.mid(request.target.lastIndexOf('/') + 1);
    return Answer::json(enveloped(R"({"ticket":{"id":")" + id + R"("}})"));
}

CaldraClient clientOf(const LoopbackServer &server, double timeout = 60)
{
    CaldraConfiguration configuration{
        u"key"_s, u"org"_s, ServiceEndpoints::onHost(server.host()), {}, timeout};
    return CaldraClient(configuration);
}

/// Waits for a future to end, however it ends.
template <class T>
void await(QFuture<T> future)
{
    QFutureWatcher<T> watcher;
    QSignalSpy finished(&watcher, &QFutureWatcherBase::finished);
    watcher.setFuture(future);
    QVERIFY(finished.count() == 1 || finished.wait(20000));
}

} // namespace

class ConcurrencyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersEightThreadsAtOnce()
    {
        constexpr int callsPerThread = 100;
        LoopbackServer server(echoTicket);
        const CaldraClient client = clientOf(server);
        std::atomic<int> good = 0;
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 8; ++thread) {
            threads.emplace_back([&, thread] {
                std::vector<QFuture<SupportTicketResponse>> calls;
                const auto idOf = [thread](int call) {
                    return u"t%1-%2"_s.arg(thread).arg(call);
                };
                for (int call = 0; call < callsPerThread; ++call) {
                    calls.push_back(client.support.getTicket(idOf(call)));
                }
                for (int call = 0; call < callsPerThread; ++call) {
                    good += resultOf(calls[std::size_t(call)]).ticket.id == idOf(call);
                }
            });
        }
        for (std::thread &thread : threads) {
            thread.join();
        }
        QCOMPARE(good.load(), 8 * callsPerThread);
    }

    void returnsBeforeTheAnswer()
    {
        // The server's answer waits for the call to have returned: a call that blocks would never end.
        QSemaphore returned;
        LoopbackServer server([&](const ReceivedRequest &request) {
            returned.acquire();
            return echoTicket(request);
        });
        const CaldraClient client = clientOf(server);
        const auto call = client.support.getTicket(u"1"_s);
        QVERIFY(!call.isFinished());
        returned.release();
        QCOMPARE(resultOf(call).ticket.id, u"1"_s);
    }

    void decodesWhileTheApplicationsThreadPoolWaits()
    {
        QByteArray large = R"({"ticket":{"id":"1","body":"x"}})";
        large.replace("\"x\"", '"' + QByteArray(1 << 20, 'x') + '"');
        LoopbackServer server([&](const ReceivedRequest &) { return Answer::json(enveloped(large)); });
        const CaldraClient client = clientOf(server);
        QThreadPool &pool = *QThreadPool::globalInstance();
        std::atomic<int> good = 0;
        for (int task = 0; task < 2 * pool.maxThreadCount(); ++task) {
            pool.start(
                [&] { good += resultOf(client.support.getTicket(u"1"_s)).ticket.body->size() == 1 << 20; });
        }
        pool.waitForDone();
        QCOMPARE(good.load(), 2 * pool.maxThreadCount());
    }

    void cancelsTheRequest()
    {
        LoopbackServer server([](const ReceivedRequest &) { return Answer::silence(); });
        const CaldraClient client = clientOf(server);
        auto call = client.support.getTicket(u"1"_s);
        QVERIFY(server.received.tryAcquire(1, 20000));
        call.cancel();
        QVERIFY(server.disconnected.tryAcquire(1, 20000));
        await(call);
        QVERIFY(call.isCanceled());
        QCOMPARE(call.resultCount(), 0);
    }

    void sendsNothingForACallCancelledAtOnce()
    {
        LoopbackServer server(echoTicket);
        const CaldraClient client = clientOf(server);
        for (int attempt = 0; attempt < 100; ++attempt) {
            auto call = client.support.getTicket(u"cancelled"_s);
            call.cancel();
            await(call);
            QVERIFY(call.isCanceled());
        }
        QCOMPARE(resultOf(client.support.getTicket(u"2"_s)).ticket.id, u"2"_s);
    }

    void cancelsAnInjectedTransport()
    {
        QPromise<TransportAnswer> promise;
        promise.start();
        QSemaphore sent;
        const auto transport = std::make_shared<FakeTransport>([&](const HTTPRequest &) {
            sent.release();
            return promise.future();
        });
        CaldraConfiguration configuration;
        configuration.apiKey = u"key"_s;
        configuration.organizationId = u"org"_s;
        const CaldraClient client(configuration, transport);
        auto call = client.support.getTicket(u"1"_s);
        QVERIFY(sent.tryAcquire(1, 20000));
        QFutureWatcher<TransportAnswer> watcher;
        QSignalSpy cancelled(&watcher, &QFutureWatcherBase::canceled);
        watcher.setFuture(promise.future());
        call.cancel();
        QVERIFY(cancelled.count() == 1 || cancelled.wait(20000));
        promise.finish();
        await(call);
        QVERIFY(call.isCanceled());
    }

    void outlivesItsClient()
    {
        QSemaphore clientGone;
        LoopbackServer server([&](const ReceivedRequest &request) {
            clientGone.acquire();
            return echoTicket(request);
        });
        const auto call = clientOf(server).support.getTicket(u"1"_s);
        clientGone.release();
        QCOMPARE(resultOf(call).ticket.id, u"1"_s);
    }

    void cancelsWhatItsTransportLeavesBehind()
    {
        LoopbackServer server([](const ReceivedRequest &) { return Answer::silence(); });
        auto transport = std::make_unique<NetworkTransport>();
        const QFuture<TransportAnswer> answered = transport->send({"GET", server.url(u"/"_s), {}, {}});
        std::vector<QFuture<TransportAnswer>> waiting;
        for (int request = 0; request < 20; ++request) {
            waiting.push_back(transport->send({"GET", server.url(u"/"_s), {}, {}}));
        }
        QVERIFY(server.received.tryAcquire(6, 20000));
        transport.reset();
        await(answered);
        QVERIFY(answered.isCanceled());
        for (const auto &request : waiting) {
            await(request);
            QVERIFY(request.isCanceled());
        }
        QCOMPARE(server.requests().size(), 6u);
    }

    void continuesOnTheCallersContext()
    {
        LoopbackServer server(echoTicket);
        const CaldraClient client = clientOf(server);
        const QThread *thread = nullptr;
        const auto told =
            client.support.getTicket(u"1"_s).then(this, [&](const SupportTicketResponse &answer) {
                thread = QThread::currentThread();
                return answer.ticket.id;
            });
        await(told);
        QCOMPARE(told.result(), u"1"_s);
        QCOMPARE(thread, QThread::currentThread());
    }

    void keepsOtherCallsGoingWhileOneStalls()
    {
        LoopbackServer server([](const ReceivedRequest &request) {
            return request.target.endsWith("/stalled") ? Answer::silence() : echoTicket(request);
        });
        const CaldraClient client = clientOf(server);
        auto stalled = client.support.getTicket(u"stalled"_s);
        for (int call = 0; call < 20; ++call) {
            QCOMPARE(resultOf(client.support.getTicket(u"x"_s)).ticket.id, u"x"_s);
        }
        QVERIFY(!stalled.isFinished());
        stalled.cancel();
        await(stalled);
    }
};

QTEST_GUILESS_MAIN(ConcurrencyTest)
#include "ConcurrencyTest.moc"
