#include "service/core/NetworkTransport.h"

#include "service/core/HTTPClientRequest.h"
#include "service/core/HealthResponse.h"
#include "tests/service/support/LoopbackCertificate.h"
#include "tests/service/support/LoopbackServer.h"
#include "tests/service/support/Outcome.h"

#include <QtTest/QtTest>

#include <set>

using namespace Qt::StringLiterals;
using namespace caldra;
using namespace caldra::tests;

namespace {

const QByteArray goodHealth = R"({"data":{"ok":true,"service":"s"}})";
constexpr qint64 largestBody = 4 * 1024 * 1024;

NetworkOptions options()
{
    return {largestBody, 10, {QSslCertificate(loopbackCertificate())}};
}

HTTPClient clientOf(const LoopbackServer &server, double timeout = 20)
{
    CaldraConfiguration configuration;
    configuration.apiKey = u"sk-secret"_s;
    configuration.defaultHeaders = {{u"X-Client"_s, u"private"_s}};
    configuration.timeout = timeout;
    return {server.url(), configuration, std::make_shared<NetworkTransport>(options())};
}

QFuture<HealthResponse> health(const HTTPClient &client)
{
    return client.request<HealthResponse>(HTTPMethod::GET, u"/health"_s);
}

LoopbackServer::Handler always(const Answer &answer)
{
    return [answer](const ReceivedRequest &) {
        return answer;
    };
}

TransportError::Kind kindOf(const std::optional<CaldraError> &error)
{
    return error && error->transport() ? error->transport()->kind() : TransportError::Kind::other;
}

using Kind = TransportError::Kind;

} // namespace

class NetworkTransportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sendsAndReceives()
    {
        LoopbackServer server(always(Answer::json(goodHealth)));
        const HTTPClient client = clientOf(server);
        QVERIFY((resultOf(health(client)) == HealthResponse{true, u"s"_s}));
        resultOf(client.request<HealthResponse>(HTTPMethod::PATCH, u"/p"_s, {{u"q"_s, u"a b"_s}},
                                                HealthResponse{}));

        const auto requests = server.requests();
        QCOMPARE(requests.size(), 2u);
        QCOMPARE(requests[0].headers.value("authorization"), "Bearer sk-secret");
        QCOMPARE(requests[0].headers.value("x-api-key"), "sk-secret");
        QCOMPARE(requests[0].headers.value("accept"), "application/json");
        QCOMPARE(requests[1].method, "PATCH");
        QCOMPARE(requests[1].target, "/p?q=a%20b");
        QCOMPARE(requests[1].headers.value("content-type"), "application/json");
        QCOMPARE(requests[1].body, R"({"ok":false,"service":""})");
        QCOMPARE(requests[1].connection, requests[0].connection);
    }

    void decodesEveryFraming_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("closes");
        QTest::newRow("length") << Answer::json(goodHealth).bytes << false;
        QTest::newRow("chunked") << Answer::chunked(goodHealth, true).bytes << false;
        QTest::newRow("until the end") << Answer::withoutLength(goodHealth).bytes << true;
        QTest::newRow("byte order mark") << Answer::json("\xEF\xBB\xBF" + goodHealth).bytes << false;
    }

    void decodesEveryFraming()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, closes);
        LoopbackServer server(always({bytes, closes ? Answer::Ending::close : Answer::Ending::keepOpen}));
        QCOMPARE(resultOf(health(clientOf(server))).service, u"s"_s);
    }

    void reportsServicesErrors()
    {
        for (const int status : {400, 401, 403, 404, 405, 407, 409, 410, 418, 429, 500, 501, 503, 599}) {
            const QByteArray refusal = R"({"error":{"code":"c","message":"m"}})";
            LoopbackServer server(
                always(Answer::with(status, "application/json", refusal, "WWW-Authenticate: Bearer\r\n")));
            const auto error = errorOf(health(clientOf(server)));
            QVERIFY2(error && error->api(), qPrintable(QString::number(status)));
            QCOMPARE(error->api()->status, status);
            QCOMPARE(server.requests().size(), 1u);
        }
    }

    void reportsBrokenAnswers()
    {
        const auto errorFor = [](const Answer &answer) {
            LoopbackServer server(always(answer));
            return errorOf(health(clientOf(server)));
        };
        QVERIFY(errorFor(Answer::with(200, "text/html", "<html>Sign in</html>"))->decoding());
        QVERIFY(errorFor({"HTTP/1.1 204 No Content\r\n\r\n"})->decoding());
        QVERIFY(errorFor(Answer::json(QByteArray(10000, '[') + QByteArray(10000, ']')))->decoding());
        QVERIFY(errorFor(Answer::json(R"({"data":{"ok":"yes","service":"s"}})"))->decoding());
        QVERIFY(errorFor(Answer::json(R"({"data":{}})"))->decoding());
        QVERIFY(errorFor(Answer::json(""))->decoding());
        QVERIFY(errorFor(Answer::with(502, "text/html", "<html>"))->unexpectedStatus());
        QVERIFY(errorFor({"SSH-2.0-OpenSSH_9\r\n\r\n", Answer::Ending::close})->transport());
    }

    void refusesAnswersWithoutMeasure()
    {
        const QByteArray large =
            QByteArray(goodHealth).replace("\"s\"", '"' + QByteArray(50'000'000, 's') + '"');
        LoopbackServer announced(always(Answer::json(large)));
        QCOMPARE(kindOf(errorOf(health(clientOf(announced)))), Kind::tooLarge);
        LoopbackServer unannounced(always(Answer::withoutLength(large)));
        QCOMPARE(kindOf(errorOf(health(clientOf(unannounced)))), Kind::tooLarge);
        LoopbackServer chunked(always(Answer::chunked(large, true)));
        QCOMPARE(kindOf(errorOf(health(clientOf(chunked)))), Kind::tooLarge);
    }

    void noticesAnEarlyEnd()
    {
        const QByteArray half = goodHealth.chopped(10);
        for (const Answer &answer :
             {Answer::cutShort(half, goodHealth.size()), Answer::cutShort(goodHealth, 1000),
              Answer::chunked(half, false), Answer::withoutLength(half), Answer::withoutLength(""),
              Answer::dropped(), Answer{"HTTP/1.1 200 OK\r\nContent-Le", Answer::Ending::close}}) {
            LoopbackServer server(always(answer));
            const auto error = errorOf(health(clientOf(server)));
            QVERIFY2(error && error->transport(), answer.bytes.constData());
        }
    }

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
        for (const QFuture<HealthResponse> &call : together)
            resultOf(call);
        QCOMPARE(resultOf(health(client)).service, u"s"_s);
    }

    void keepsTheFramingToItself()
    {
        LoopbackServer server(always(Answer::json(goodHealth)));
        HTTPClient client = clientOf(server);
        client.configuration.defaultHeaders = {{u"content-length"_s, u"0"_s},
                                               {u"Transfer-Encoding"_s, u"chunked"_s},
                                               {u"Host"_s, u"x"_s},
                                               {u"User-Agent"_s, u"me"_s}};
        resultOf(client.request<HealthResponse>(HTTPMethod::PATCH, u"/p"_s, {}, HealthResponse{}));
        const ReceivedRequest request = server.lastRequest();
        QCOMPARE(request.body, R"({"ok":false,"service":""})");
        QCOMPARE(request.headers.value("host"), server.host().mid(7).toLatin1());
        QCOMPARE(request.headers.value("user-agent"), "me");
        QVERIFY(!request.headers.contains("transfer-encoding"));
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

    void countsRedirectsIntoTheTime()
    {
        LoopbackServer server([](const ReceivedRequest &request) {
            return request.target == "/health" ? Answer::redirect("/slow") : Answer::silence();
        });
        QCOMPARE(kindOf(errorOf(health(clientOf(server, 0.3)))), Kind::timedOut);
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

    void takesNoSecretToAnotherHost()
    {
        LoopbackServer other(always(Answer::json(goodHealth)));
        LoopbackServer server(always(Answer::redirect(other.url(u"/there"_s).toEncoded())));
        resultOf(health(clientOf(server)));
        const ReceivedRequest request = other.lastRequest();
        QCOMPARE(request.target, "/there");
        QCOMPARE(request.headers.value("accept"), "application/json");
        for (const char *name : {"authorization", "x-api-key", "x-client", "cookie"})
            QVERIFY2(!request.headers.contains(name), name);
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

    void trustsNobodyUntold()
    {
        LoopbackServer server(always(Answer::json(goodHealth)), Security::encrypted);
        HTTPClient client = clientOf(server);
        QCOMPARE(resultOf(health(client)).service, u"s"_s);
        client.transport = std::make_shared<NetworkTransport>();
        QCOMPARE(kindOf(errorOf(health(client))), Kind::security);
        QCOMPARE(server.requests().size(), 1u);
    }

    void reportsARedirectWhenAskedTo()
    {
        LoopbackServer server([](const ReceivedRequest &request) {
            if (request.target == "/absolute")
                return Answer::redirect("https://files.example/a%20b.zip?token=%2B");
            if (request.target == "/relative")
                return Answer::redirect("../file.zip", 307);
            if (request.target == "/nowhere")
                return Answer::redirect("");
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

    void keepsNoCookies()
    {
        LoopbackServer server(
            always(Answer::with(200, "application/json", goodHealth, "Set-Cookie: a=b\r\n")));
        const HTTPClient client = clientOf(server);
        resultOf(health(client));
        resultOf(health(client));
        QVERIFY(!server.lastRequest().headers.contains("cookie"));
    }

    void keepsIdentifiersInTheirSegment_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<QByteArray>("segment");
        QTest::newRow("slash") << u"a/b"_s << QByteArray("a%2Fb");
        QTest::newRow("query") << u"a?b=c&d"_s << QByteArray("a%3Fb%3Dc%26d");
        QTest::newRow("fragment") << u"a#b"_s << QByteArray("a%23b");
        QTest::newRow("percent") << u"100%"_s << QByteArray("100%25");
        QTest::newRow("encoded already") << u"%2F%2e"_s << QByteArray("%252F%252e");
        QTest::newRow("encoded dots") << u"%2e%2e"_s << QByteArray("%252e%252e");
        QTest::newRow("climbing") << u"../../x"_s << QByteArray("..%2F..%2Fx");
        QTest::newRow("three dots") << u"..."_s << QByteArray("...");
        QTest::newRow("backslash") << u"..\\x"_s << QByteArray("..%5Cx");
        QTest::newRow("spaces") << u" a b "_s << QByteArray("%20a%20b%20");
        QTest::newRow("non-Latin") << u"\u00e4\u65e5\u672c\U0001f600"_s
                                   << QByteArray("%C3%A4%E6%97%A5%E6%9C%AC%F0%9F%98%80");
        QTest::newRow("line break") << u"a\r\nX: y"_s << QByteArray("a%0D%0AX%3A%20y");
        QTest::newRow("NUL") << QString(QChar(0)) << QByteArray("%00");
        QTest::newRow("others") << u"a;b:c@d+e,f\"g<h>i[j]"_s
                                << QByteArray("a%3Bb%3Ac%40d%2Be%2Cf%22g%3Ch%3Ei%5Bj%5D");
    }

    void keepsIdentifiersInTheirSegment()
    {
        QFETCH(QString, identifier);
        QFETCH(QByteArray, segment);
        LoopbackServer server(always(Answer::json(goodHealth)));
        const QString path = organizationPath(identifier) + u"/x/"_s + pathSegment(identifier) + u"/y"_s;
        resultOf(clientOf(server).request<HealthResponse>(HTTPMethod::GET, path));
        QCOMPARE(server.lastRequest().target, "/v1/organizations/" + segment + "/x/" + segment + "/y");
    }
};

QTEST_GUILESS_MAIN(NetworkTransportTest)
#include "NetworkTransportTest.moc"
