#include "service/core/HTTPClientRequest.h"
#include "service/core/HealthResponse.h"
#include "tests/service/support/FakeTransport.h"
#include "tests/service/support/Outcome.h"

#include <QtTest/QtTest>

#include <limits>

using namespace Qt::StringLiterals;
using namespace caldra;
using namespace caldra::tests;

namespace {

constexpr auto goodHealth = R"({"data":{"ok":true,"service":"s"}})";
const QString secret = u"sk-\"secret\"/42"_s;

HTTPClient clientOver(std::shared_ptr<FakeTransport> transport)
{
    CaldraConfiguration configuration;
    configuration.apiKey = secret;
    configuration.timeout = 7;
    return {QUrl(u"https://h.example/base%20api"_s), configuration, transport};
}

struct Number
{
    double value = 0;

    static constexpr auto fields = std::tuple{field("value", &Number::value)};
};

} // namespace

class HTTPClientTest : public QObject
{
    Q_OBJECT

private:
    std::optional<CaldraError> answered(int status, const QByteArray &body)
    {
        return errorOf(clientOver(std::make_shared<FakeTransport>(status, body))
                           .request<HealthResponse>(HTTPMethod::GET, u"/health"_s));
    }

private Q_SLOTS:
    void buildsTheRequest()
    {
        const auto transport = std::make_shared<FakeTransport>(200, goodHealth);
        HTTPClient client = clientOver(transport);
        const QueryItems query{{u"a b"_s, u"x+y&z=\u00fc"_s}, {u"absent"_s, {}}, {u"empty"_s, u""_s}};
        resultOf(client.request<HealthResponse>(HTTPMethod::PUT, u"/p"_s, query, Number{1.5}));
        const HTTPRequest request = transport->request();
        QCOMPARE(request.method, "PUT");
        QCOMPARE(request.url.toEncoded(), "https://h.example/base%20api/p?a%20b=x%2By%26z%3D%C3%BC&empty=");
        QCOMPARE(request.body.value(), R"({"value":1.5})");
        QCOMPARE(request.timeout.count(), 7000);
        const HTTPHeaders expected{{"Content-Type", "application/json"},
                                   {"Accept", "application/json"},
                                   {"Authorization", "Bearer " + secret.toUtf8()},
                                   {"X-API-Key", secret.toUtf8()}};
        QVERIFY(request.headers == expected);
    }

    void leavesOutWhatIsNotAskedFor()
    {
        const auto transport = std::make_shared<FakeTransport>(200, goodHealth);
        HTTPClient client = clientOver(transport);
        client.requiresAuth = false;
        resultOf(client.request<HealthResponse>(HTTPMethod::GET, u"/p"_s, {{u"absent"_s, {}}}));
        QCOMPARE(transport->request().url.toEncoded(), "https://h.example/base%20api/p");
        QVERIFY(!transport->request().body);
        const HTTPHeaders expected{{"Accept", "application/json"}};
        QVERIFY(transport->request().headers == expected);
    }

    void letsDefaultHeadersWin()
    {
        const auto transport = std::make_shared<FakeTransport>(200, goodHealth);
        HTTPClient client = clientOver(transport);
        client.configuration.defaultHeaders = {{u"accept"_s, u"text/x"_s}, {u"X-Client"_s, u"t"_s}};
        resultOf(client.request<HealthResponse>(HTTPMethod::GET, u"/p"_s));
        const HTTPHeaders &headers = transport->request().headers;
        QVERIFY(std::count(headers.begin(), headers.end(),
                           std::pair<QByteArray, QByteArray>("Accept", "text/x")) == 1);
        QVERIFY(std::count(headers.begin(), headers.end(),
                           std::pair<QByteArray, QByteArray>("X-Client", "t")) == 1);
    }

    void letsADefaultHeaderReplaceTheAuthorization()
    {
        const auto transport = std::make_shared<FakeTransport>(200, goodHealth);
        HTTPClient client = clientOver(transport);
        client.configuration.defaultHeaders = {{u"authorization"_s, u"Basic mine"_s}};
        resultOf(client.request<HealthResponse>(HTTPMethod::GET, u"/p"_s));
        const HTTPHeaders expected{
            {"Accept", "application/json"}, {"Authorization", "Basic mine"}, {"X-API-Key", secret.toUtf8()}};
        QVERIFY(transport->request().headers == expected);
    }

    void takesAnyTimeout()
    {
        const auto transport = std::make_shared<FakeTransport>(200, goodHealth);
        HTTPClient client = clientOver(transport);
        const auto timeoutFor = [&](double seconds) {
            client.configuration.timeout = seconds;
            return client.makeRequest(HTTPMethod::GET, u"/p"_s, {}, {}).timeout.count();
        };
        QCOMPARE(timeoutFor(0.25), 250);
        QCOMPARE(timeoutFor(0), 60000);
        QCOMPARE(timeoutFor(-1), 60000);
        QCOMPARE(timeoutFor(std::numeric_limits<double>::quiet_NaN()), 60000);
        QVERIFY(timeoutFor(std::numeric_limits<double>::infinity()) > 0);
        QCOMPARE(timeoutFor(1e-9), 1);
    }

    void refusesAddressesThatAreNone_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("path");
        const QString base = u"https://h.example/api"_s;
        QTest::newRow("plain http elsewhere") << u"http://h.example"_s << u"/p"_s;
        QTest::newRow("file") << u"file:///etc"_s << u"/p"_s;
        QTest::newRow("data") << u"data:text/plain,"_s << u"/p"_s;
        QTest::newRow("no base") << u""_s << u"/p"_s;
        QTest::newRow("relative") << base << u"p"_s;
        QTest::newRow("empty segment") << base << u"/a//b"_s;
        QTest::newRow("dot") << base << u"/a/./b"_s;
        QTest::newRow("two dots") << base << u"/a/.."_s;
        QTest::newRow("encoded dots") << base << u"/a/%2E%2e/b"_s;
        QTest::newRow("no encoding") << base << u"/a/%zz"_s;
    }

    void refusesAddressesThatAreNone()
    {
        QFETCH(QString, base);
        QFETCH(QString, path);
        HTTPClient client = clientOver(std::make_shared<FakeTransport>(200, goodHealth));
        client.baseURL = QUrl(base);
        const auto error = errorOf(client.request<HealthResponse>(HTTPMethod::GET, path));
        QVERIFY(error && error->invalidURL());
        QCOMPARE(error->invalidURL()->path, path);
        QCOMPARE(error->description(), u"Could not build a valid URL from "_s + path);
    }

    void refusesWhatNoRequestCanCarry()
    {
        HTTPClient client = clientOver(std::make_shared<FakeTransport>(200, goodHealth));
        const Number notANumber{std::numeric_limits<double>::quiet_NaN()};
        auto error = errorOf(client.request<HealthResponse>(HTTPMethod::POST, u"/p"_s, {}, notANumber));
        QVERIFY(error && error->transport());
        QCOMPARE(error->description(), u"Network error: JSON has no number that is not finite."_s);

        client.configuration.apiKey = u"key\r\nX-Evil: 1"_s;
        error = errorOf(client.request<HealthResponse>(HTTPMethod::GET, u"/p"_s));
        QVERIFY(error && error->transport());
        QCOMPARE(error->description(),
                 u"Network error: The header \"Authorization\" holds a character that no header may hold."_s);
    }

    void returnsThePayload()
    {
        const auto answer = resultOf(clientOver(std::make_shared<FakeTransport>(299, goodHealth))
                                         .request<HealthResponse>(HTTPMethod::GET, u"/health"_s));
        QVERIFY((answer == HealthResponse{true, u"s"_s}));
    }

    void reportsTheServicesError()
    {
        const auto error =
            answered(404, R"({"error":{"code":"not_found","message":"No such thing","details":{"id":[1]}}})");
        QVERIFY(error && error->api());
        const APIError expected{404, u"not_found"_s, u"No such thing"_s,
                                JSONValue::Object{{u"id"_s, JSONValue::Array{1}}}};
        QVERIFY(*error->api() == expected);
        QCOMPARE(error->description(), u"No such thing"_s);

        const auto withoutCode = answered(500, R"({"error":{"message":"m"}})");
        QVERIFY(withoutCode && withoutCode->api());
        QVERIFY((*withoutCode->api() == APIError{500, u"unknown_error"_s, u"m"_s, {}}));
    }

    void reportsOtherStatuses()
    {
        for (const auto &[status, body] : {std::pair<int, QByteArray>{500, "<html>"},
                                           {404, "{}"},
                                           {199, ""},
                                           {300, "[]"},
                                           {503, R"({"error":{"code":"c"}})"},
                                           {304, ""},
                                           {400, R"({"error":"x"})"}}) {
            const auto error = answered(status, body);
            QVERIFY(error && error->unexpectedStatus());
            QCOMPARE(error->unexpectedStatus()->status, status);
            QCOMPARE(error->unexpectedStatus()->body, body);
            QCOMPARE(error->description(), u"Unexpected HTTP status "_s + QString::number(status));
        }
    }

    void reportsWhatCannotBeDecoded()
    {
        const auto error = answered(200, R"({"data":{"ok":true}})");
        QVERIFY(error && error->decoding());
        QCOMPARE(error->description(),
                 u"Failed to decode Caldra response: data.service: the value is missing"_s);
        QVERIFY(answered(200, "<html>")->decoding());
        QVERIFY(answered(204, "")->decoding());
        QVERIFY(answered(200, R"({"ok":true,"service":"s"})")->decoding());
    }

    void reportsAnAnswerThatIsNoHTTP()
    {
        const auto transport = std::make_shared<FakeTransport>([](const HTTPRequest &) {
            return QtFuture::makeReadyFuture(TransportAnswer{"raw", {}});
        });
        const auto error =
            errorOf(clientOver(transport).request<HealthResponse>(HTTPMethod::GET, u"/health"_s));
        QVERIFY(error && error->unexpectedStatus());
        QCOMPARE(error->unexpectedStatus()->status, -1);
        QCOMPARE(error->unexpectedStatus()->body, "raw");
        QCOMPARE(error->description(), u"Unexpected HTTP status -1"_s);
    }

    void reportsWhatTheTransportThrows()
    {
        const auto failed = [](const HTTPRequest &) {
            return QtFuture::makeExceptionalFuture<TransportAnswer>(
                std::make_exception_ptr(std::runtime_error("cable " + secret.toStdString() + " cut")));
        };
        auto error = errorOf(clientOver(std::make_shared<FakeTransport>(failed))
                                 .request<HealthResponse>(HTTPMethod::GET, u"/h"_s));
        QVERIFY(error && error->transport());
        QCOMPARE(error->description(), u"Network error: cable [redacted] cut"_s);

        const auto throws = [](const HTTPRequest &) -> QFuture<TransportAnswer> {
            throw std::runtime_error("no cable");
        };
        error = errorOf(clientOver(std::make_shared<FakeTransport>(throws))
                            .request<HealthResponse>(HTTPMethod::GET, u"/h"_s));
        QCOMPARE(error->description(), u"Network error: no cable"_s);
    }

    void decodesLargeAnswersBesideTheLibrarysThread()
    {
        const QByteArray large =
            QByteArray(goodHealth).replace("\"s\"", '"' + QByteArray(1 << 20, 's') + '"');
        const auto answer = resultOf(clientOver(std::make_shared<FakeTransport>(200, large))
                                         .request<HealthResponse>(HTTPMethod::GET, u"/health"_s));
        QCOMPARE(answer.service.size(), 1 << 20);
        QVERIFY(answered(200, large.chopped(1))->decoding());
    }

    void keepsTheKeyOutOfEveryError()
    {
        const QByteArray key = secret.toUtf8();
        const QByteArray escaped = JSONValue(secret).toJSON();
        const QByteArray inText = escaped.mid(1, escaped.size() - 2);
        const std::optional<CaldraError> errors[] = {
            answered(401, R"({"error":{"code":"bad )" + inText + R"(","message":"Key )" + inText +
                              R"( is unknown","details":{")" + inText + R"(":[")" + inText + R"("]}}})"),
            answered(200, R"({"data":{"ok":true,"service":{"x":")" + inText + R"("}}})"),
            answered(200, key),
            answered(500, key),
            errorOf(clientOver(std::make_shared<FakeTransport>(200, goodHealth))
                        .request<HealthResponse>(HTTPMethod::GET, u"/../"_s + pathSegment(secret))),
        };
        for (const auto &error : errors) {
            QVERIFY(error);
            QString printed;
            QDebug(&printed) << *error;
            for (const QString &text : {error->description(), QString::fromUtf8(error->what()), printed}) {
                QVERIFY2(!text.contains(u"secret"_s), qPrintable(text));
                QVERIFY(!text.isEmpty());
            }
        }
        const APIError &api = *errors[0]->api();
        QCOMPARE(api.code, u"bad [redacted]"_s);
        QCOMPARE(api.message, u"Key [redacted] is unknown"_s);
        QCOMPARE(api.details->toJSON(), R"({"[redacted]":["[redacted]"]})");
    }
};

QTEST_GUILESS_MAIN(HTTPClientTest)
#include "HTTPClientTest.moc"
