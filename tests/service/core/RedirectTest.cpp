#include "tests/service/support/Transport.h"

#include <QtTest/QtTest>

namespace caldra::tests {

using Kind = TransportError::Kind;

/// Where a call may be sent on to, and what it takes along.
class RedirectTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsRedirectsIntoTheTime()
    {
        LoopbackServer server([](const ReceivedRequest &request) {
            return request.target == "/health" ? Answer::redirect("/slow") : Answer::silence();
        });
        QCOMPARE(kindOf(errorOf(health(clientOf(server, 0.3)))), Kind::timedOut);
    }

    void followsRedirectsOnTheSameHost_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("method");
        QTest::addColumn<bool>("keepsBody");
        QTest::newRow("301") << 301 << QByteArray("GET") << false;
        QTest::newRow("302") << 302 << QByteArray("GET") << false;
        QTest::newRow("303") << 303 << QByteArray("GET") << false;
        QTest::newRow("307") << 307 << QByteArray("POST") << true;
        QTest::newRow("308") << 308 << QByteArray("POST") << true;
    }

    void followsRedirectsOnTheSameHost()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, method);
        QFETCH(bool, keepsBody);
        LoopbackServer server([status](const ReceivedRequest &request) {
            return request.target == "/there?x=1" ? Answer::json(goodHealth)
                                                  : Answer::redirect("../there?x=1", status);
        });
        const HTTPClient client = clientOf(server);
        QCOMPARE(resultOf(client.request<HealthResponse>(HTTPMethod::POST, u"/a/b"_s, {}, HealthResponse{}))
                     .service,
                 u"s"_s);
        const ReceivedRequest last = server.lastRequest();
        QCOMPARE(last.method, method);
        QCOMPARE(!last.body.isEmpty(), keepsBody);
        QCOMPARE(last.headers.contains("content-type"), keepsBody);
        QCOMPARE(last.headers.value("authorization"), "Bearer sk-secret");
    }

    void keepsTheMethodUnlessToldToLookElsewhere_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<HTTPMethod>("method");
        QTest::addColumn<QByteArray>("followedWith");
        QTest::addColumn<bool>("keepsBody");
        QTest::newRow("301 PUT") << 301 << HTTPMethod::PUT << QByteArray("PUT") << true;
        QTest::newRow("301 PATCH") << 301 << HTTPMethod::PATCH << QByteArray("PATCH") << true;
        QTest::newRow("301 DELETE") << 301 << HTTPMethod::DELETE << QByteArray("DELETE") << true;
        QTest::newRow("303 PUT") << 303 << HTTPMethod::PUT << QByteArray("GET") << false;
        QTest::newRow("303 PATCH") << 303 << HTTPMethod::PATCH << QByteArray("GET") << false;
        QTest::newRow("303 DELETE") << 303 << HTTPMethod::DELETE << QByteArray("GET") << false;
    }

    void keepsTheMethodUnlessToldToLookElsewhere()
    {
        QFETCH(int, status);
        QFETCH(HTTPMethod, method);
        QFETCH(QByteArray, followedWith);
        QFETCH(bool, keepsBody);
        LoopbackServer server([status](const ReceivedRequest &request) {
            return request.target == "/there" ? Answer::json(goodHealth) : Answer::redirect("/there", status);
        });
        resultOf(clientOf(server).request<HealthResponse>(method, u"/p"_s, {}, HealthResponse{}));
        const ReceivedRequest last = server.lastRequest();
        QCOMPARE(last.method, followedWith);
        QCOMPARE(last.body, keepsBody ? QByteArray(R"({"ok":false,"service":""})") : QByteArray());
        QCOMPARE(last.headers.contains("content-type"), keepsBody);
        QCOMPARE(server.requests().size(), 2u);
    }

    void takesNoSecretToAnotherHost()
    {
        LoopbackServer other(always(Answer::json(goodHealth)));
        LoopbackServer server(always(Answer::redirect(other.url(u"/there"_s).toEncoded())));
        resultOf(health(clientOf(server)));
        const ReceivedRequest request = other.lastRequest();
        QCOMPARE(request.target, "/there");
        QCOMPARE(request.headers.value("accept"), "application/json");
        for (const char *name : {"authorization", "x-api-key", "x-client", "cookie"}) {
            QVERIFY2(!request.headers.contains(name), name);
        }
    }

    void takesNoChangeToAnotherHost()
    {
        LoopbackServer other(always(Answer::json(goodHealth)));
        LoopbackServer server(always(Answer::redirect(other.url(u"/there"_s).toEncoded(), 307)));
        const auto call =
            clientOf(server).request<HealthResponse>(HTTPMethod::POST, u"/p"_s, {}, HealthResponse{});
        QCOMPARE(kindOf(errorOf(call)), Kind::refusedRedirect);
        QVERIFY(other.requests().empty());
    }

    void refusesRedirects_data()
    {
        QTest::addColumn<QByteArray>("location");
        QTest::newRow("file") << QByteArray("file:///etc/passwd");
        QTest::newRow("data") << QByteArray("data:application/json,{}");
        QTest::newRow("plain http elsewhere") << QByteArray("http://services.caldra.example/");
        QTest::newRow("user information") << QByteArray("https://a:b@services.caldra.example/");
        QTest::newRow("no address") << QByteArray("http://[");
    }

    void refusesRedirects()
    {
        QFETCH(QByteArray, location);
        LoopbackServer server(always(Answer::redirect(location)));
        const HTTPClient client = clientOf(server);
        QCOMPARE(kindOf(errorOf(health(client))), Kind::refusedRedirect);
        QCOMPARE(kindOf(errorOf(client.location(u"/where"_s))), Kind::refusedRedirect);
    }

    void leavesACircle()
    {
        LoopbackServer server(always(Answer::redirect("/health")));
        const auto error = errorOf(health(clientOf(server)));
        QCOMPARE(kindOf(error), Kind::refusedRedirect);
        QCOMPARE(error->description(), u"Network error: The service redirected too many times."_s);
        QCOMPARE(server.requests().size(), 11u);
    }

    void refusesToLeaveEncryption()
    {
        LoopbackServer plain(always(Answer::json(goodHealth)));
        LoopbackServer server(always(Answer::redirect(plain.url(u"/there"_s).toEncoded())),
                              Security::encrypted);
        const HTTPClient client = clientOf(server);
        QCOMPARE(kindOf(errorOf(health(client))), Kind::refusedRedirect);
        QCOMPARE(kindOf(errorOf(client.location(u"/where"_s))), Kind::refusedRedirect);
        QVERIFY(plain.requests().empty());
    }

    void reportsARedirectWhenAskedTo()
    {
        LoopbackServer server([](const ReceivedRequest &request) {
            if (request.target == "/absolute") {
                return Answer::redirect("https://files.example/a%20b.zip?token=%2B");
            }
            if (request.target == "/relative") {
                return Answer::redirect("../file.zip", 307);
            }
            if (request.target == "/nowhere") {
                return Answer::redirect("");
            }
            return request.target == "/error" ? Answer::json(R"({"error":{"message":"m"}})", 404)
                                              : Answer::json(goodHealth);
        });
        const HTTPClient client = clientOf(server);
        QCOMPARE(resultOf(client.location(u"/absolute"_s)).toEncoded(),
                 "https://files.example/a%20b.zip?token=%2B");
        QCOMPARE(resultOf(client.location(u"/relative"_s)), server.url(u"/file.zip"_s));
        QVERIFY(errorOf(client.location(u"/error"_s))->api());
        QVERIFY(errorOf(client.location(u"/nowhere"_s))->unexpectedStatus());
        const auto error = errorOf(client.location(u"/plain"_s));
        QVERIFY(error->unexpectedStatus());
        QCOMPARE(error->unexpectedStatus()->status, 200);
        QCOMPARE(error->unexpectedStatus()->body, goodHealth);
        QCOMPARE(server.requests().size(), 5u);
    }
};

} // namespace caldra::tests

QTEST_GUILESS_MAIN(caldra::tests::RedirectTest)
#include "RedirectTest.moc"
