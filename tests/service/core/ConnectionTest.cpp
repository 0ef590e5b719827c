#include "tests/service/support/Transport.h"

#include <QtTest/QtTest>

#include <QSemaphore>
#include <QTcpServer>
#include <QTcpSocket>

#include <set>

namespace caldra::tests {

using Kind = TransportError::Kind;

/// Whom a call connects to, and what it does with a connection that ends.
class ConnectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sendsAChangeOnceOnly()
    {
        for (const Answer &answer : {Answer::dropped(), Answer{{}, Answer::Ending::close}}) {
            LoopbackServer server(always(answer));
            const HTTPClient client = clientOf(server);
            const auto error =
                errorOf(client.request<HealthResponse>(HTTPMethod::POST, u"/p"_s, {}, HealthResponse{}));
            QVERIFY(error && error->transport());
            QCOMPARE(server.requests().size(), 1u);
        }
    }

    void connectsAgainAfterTheServerHasClosed()
    {
        LoopbackServer server(always({Answer::json(goodHealth).bytes, Answer::Ending::close}));
        const HTTPClient client = clientOf(server);
        for (int call = 1; call <= 20; ++call) {
            resultOf(health(client));
            QCOMPARE(server.lastRequest().connection, call);
        }
    }

    void sendsAgainOnlyWhatMayBeRepeated()
    {
        // The second request on a connection finds it closed.
        LoopbackServer server([connections = std::set<int>()](const ReceivedRequest &request) mutable {
            const bool isFirst = connections.insert(request.connection).second;
            return isFirst ? Answer::json(goodHealth) : Answer::dropped();
        });
        const HTTPClient client = clientOf(server);
        resultOf(health(client));
        QCOMPARE(resultOf(health(client)).service, u"s"_s);
        QCOMPARE(server.requests().size(), 3u);
        const auto change =
            errorOf(client.request<HealthResponse>(HTTPMethod::PATCH, u"/p"_s, {}, HealthResponse{}));
        QCOMPARE(kindOf(change), Kind::closedEarly);
        QCOMPARE(server.requests().size(), 4u);
    }

    void leavesAllClosedConnectionsAtOnce()
    {
        // As after a sleep: every connection that rests is dead, and none has noticed.
        LoopbackServer server([connections = std::set<int>()](const ReceivedRequest &request) mutable {
            const bool isFirst = connections.insert(request.connection).second;
            return isFirst ? Answer::json(goodHealth) : Answer::dropped();
        });
        const HTTPClient client = clientOf(server);
        const QList<QFuture<HealthResponse>> together{health(client), health(client), health(client)};
        for (const QFuture<HealthResponse> &call : together) {
            resultOf(call);
        }
        QCOMPARE(resultOf(health(client)).service, u"s"_s);
    }

    void givesUpWhenTheTimeIsOver_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("dripped");
        const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n";
        QTest::newRow("silence") << QByteArray() << QByteArray();
        QTest::newRow("stall in the head") << head.left(20) << QByteArray();
        QTest::newRow("stall in the body") << head + goodHealth << QByteArray();
        QTest::newRow("dripping head")
            << QByteArray() << "HTTP/1.1 200 OK\r\nX-Long: " + QByteArray(10000, 'x');
        QTest::newRow("dripping body") << head << QByteArray(10000, ' ');
    }

    void givesUpWhenTheTimeIsOver()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, dripped);
        LoopbackServer server(always({bytes, Answer::Ending::drip, dripped}));
        const auto error = errorOf(health(clientOf(server, 0.3)));
        QCOMPARE(kindOf(error), Kind::timedOut);
        QCOMPARE(error->description(), u"Network error: The request timed out."_s);
        // The connection is given up as well.
        QVERIFY(server.disconnected.tryAcquire(1, 20000));
    }

    void reportsAServerThatIsNotThere()
    {
        std::optional<HTTPClient> client;
        {
            const LoopbackServer server(always(Answer::silence()));
            client = clientOf(server);
        }
        QCOMPARE(kindOf(errorOf(health(*client))), Kind::connection);
    }

    void trustsNobodyUntold()
    {
        LoopbackServer server(always(Answer::json(goodHealth)), Security::encrypted);
        HTTPClient client = clientOf(server);
        QCOMPARE(resultOf(health(client)).service, u"s"_s);
        client.transport = std::make_shared<NetworkTransport>();
        QCOMPARE(kindOf(errorOf(health(client))), Kind::security);
        QCOMPARE(server.requests().size(), 1u);
    }

    void trustsNobodyUnderAnotherName()
    {
        LoopbackServer server(always(Answer::json(goodHealth)), Security::encryptedForAnotherName);
        QCOMPARE(kindOf(errorOf(health(clientOf(server)))), Kind::security);
        QVERIFY(server.requests().empty());
    }

    void goesOnAfterAnAnswerWithoutItsBody()
    {
        // 304 names the length of a body that does not come.
        LoopbackServer server([](const ReceivedRequest &request) {
            return request.target == "/same"
                       ? Answer{"HTTP/1.1 304 Not Modified\r\nContent-Length: 40\r\n\r\n"}
                       : Answer::json(goodHealth);
        });
        const HTTPClient client = clientOf(server);
        const auto error = errorOf(client.request<HealthResponse>(HTTPMethod::GET, u"/same"_s));
        QVERIFY(error && error->unexpectedStatus());
        QCOMPARE(error->unexpectedStatus()->status, 304);
        QCOMPARE(resultOf(health(client)).service, u"s"_s);
        QCOMPARE(server.lastRequest().connection, 1);
    }

    void takesNoAnswerThatWasThereBeforeTheRequest();
};

void ConnectionTest::takesNoAnswerThatWasThereBeforeTheRequest()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const auto answerNext = [&server](const QByteArray &service) {
        if (!server.waitForNewConnection(20000)) {
            return static_cast<QTcpSocket *>(nullptr);
        }
        QTcpSocket *socket = server.nextPendingConnection();
        socket->waitForReadyRead(20000);
        socket->write(Answer::json(QByteArray(goodHealth).replace("\"s\"", '"' + service + '"')).bytes);
        socket->waitForBytesWritten(20000);
        return socket;
    };
    CaldraConfiguration configuration;
    configuration.timeout = 20;
    const HTTPClient client{QUrl(u"http://127.0.0.1:%1"_s.arg(server.serverPort())), configuration,
                            std::make_shared<NetworkTransport>()};

    // The library's thread is kept busy, so that it sees what has come only with the second request.
    QSemaphore isBusy;
    QSemaphore mayGoOn;
    const auto second = std::make_shared<QPromise<HealthResponse>>();
    second->start();
    health(client).then(QtFuture::Launch::Sync, [&, second](const HealthResponse &) {
        isBusy.release();
        mayGoOn.acquire();
        health(client).then(QtFuture::Launch::Sync, [second](const HealthResponse &answer) {
            second->addResult(answer);
            second->finish();
        });
    });
    QTcpSocket *socket = answerNext("asked");
    QVERIFY(socket);
    QVERIFY(isBusy.tryAcquire(1, 20000));
    socket->write(Answer::json(QByteArray(goodHealth).replace("\"s\"", "\"unasked\"")).bytes);
    QVERIFY(socket->waitForBytesWritten(20000));
    mayGoOn.release();
    answerNext("asked");
    QCOMPARE(resultOf(second->future()).service, u"asked"_s);
}

} // namespace caldra::tests

QTEST_GUILESS_MAIN(caldra::tests::ConnectionTest)
#include "ConnectionTest.moc"
