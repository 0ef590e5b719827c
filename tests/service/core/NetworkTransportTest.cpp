#include "service/core/NetworkTransport.h"

#include "tests/service/support/Transport.h"

#include <QtTest/QtTest>

namespace caldra::tests {

using Kind = TransportError::Kind;

/// What is sent, and what is made of the answer.
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

    void sendsNoHeaderThatHoldsAnother_data()
    {
        QTest::addColumn<HTTPHeaders>("headers");
        QTest::addColumn<QByteArray>("method");
        QTest::newRow("line break in a value") << HTTPHeaders{{"X-A", "1\r\nX-Evil: 2"}} << QByteArray("GET");
        QTest::newRow("line feed alone") << HTTPHeaders{{"X-A", "1\nX-Evil: 2"}} << QByteArray("GET");
        QTest::newRow("NUL") << HTTPHeaders{{"X-A", QByteArray("1\0", 2)}} << QByteArray("GET");
        QTest::newRow("line break in a name") << HTTPHeaders{{"X-A: 1\r\nX-Evil", "2"}} << QByteArray("GET");
        QTest::newRow("no name") << HTTPHeaders{{"", "2"}} << QByteArray("GET");
        QTest::newRow("line break in the method")
            << HTTPHeaders{} << QByteArray("GET / HTTP/1.1\r\nX-Evil: 2\r\n");
        QTest::newRow("no method") << HTTPHeaders{} << QByteArray();
    }

    void sendsNoHeaderThatHoldsAnother()
    {
        QFETCH(HTTPHeaders, headers);
        QFETCH(QByteArray, method);
        LoopbackServer server(always(Answer::json(goodHealth)));
        NetworkTransport transport;
        auto sent = transport.send({method, server.url(u"/p"_s), headers, {}});
        QVERIFY_THROWS_EXCEPTION(TransportError, sent.waitForFinished());
        try {
            sent.waitForFinished();
        } catch (const TransportError &error) {
            QVERIFY(error.kind() == Kind::unusableRequest);
        }
        QVERIFY(server.requests().empty());
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

} // namespace caldra::tests

QTEST_GUILESS_MAIN(caldra::tests::NetworkTransportTest)
#include "NetworkTransportTest.moc"
