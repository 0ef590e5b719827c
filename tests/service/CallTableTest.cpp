#include "tests/service/CallTable.h"

#include "service/CaldraClient.h"
#include "service/core/CaldraError.h"
#include "tests/service/support/LoopbackServer.h"
#include "tests/service/support/Outcome.h"

#include <QtTest/QtTest>

#include <set>

using namespace Qt::StringLiterals;
using namespace caldra;
using namespace caldra::tests;

/// Every call of every service over a real connection.
class CallTableTest : public QObject
{
    Q_OBJECT

private:
    static void addRows()
    {
        QTest::addColumn<int>("index");
        for (std::size_t index = 0; index < callTable().size(); ++index) {
            QTest::newRow(callTable()[index].name) << int(index);
        }
    }

    static const Call &currentCall()
    {
        QFETCH(int, index);
        return callTable()[std::size_t(index)];
    }

    static CaldraClient clientOf(const LoopbackServer &server)
    {
        return CaldraClient(
            CaldraConfiguration{u"the-key"_s, u"org"_s, ServiceEndpoints::onHost(server.host()), {}, 20});
    }

    static std::optional<CaldraError> errorAfter(const Call &call, const Answer &answer)
    {
        LoopbackServer server([answer](const ReceivedRequest &) { return answer; });
        try {
            call.make(clientOf(server));
        } catch (const CaldraError &error) {
            return error;
        }
        return std::nullopt;
    }

private Q_SLOTS:
    void holdsEveryCall()
    {
        std::set<QByteArray> operations;
        std::set<QByteArray> names;
        for (const Call &call : callTable()) {
            operations.insert(call.method + ' ' + call.target.split('?').first());
            names.insert(call.name);
        }
        // 10 of distribution, 5 of support, 7 of careers, 2 of feature flags, 9 of legal policies, 6 of the
        // newsroom, 5 of sales and 5 of system status; the icon call stands in the table in both of its
        // formats.
        QCOMPARE(operations.size(), 49u);
        QCOMPARE(names.size(), 50u);
        QCOMPARE(callTable().size(), 50u);
    }

    void sendsAndDecodes_data() { addRows(); }

    void sendsAndDecodes()
    {
        const Call &call = currentCall();
        const Answer answer =
            call.isRedirect ? Answer::redirect(call.payload) : Answer::json(enveloped(call.payload), 201);
        LoopbackServer server([answer](const ReceivedRequest &) { return answer; });
        const QByteArray decoded = call.make(clientOf(server));

        QCOMPARE(server.requests().size(), 1u);
        const ReceivedRequest request = server.lastRequest();
        QCOMPARE(request.method, call.method);
        QCOMPARE(request.target, call.target);
        QCOMPARE(request.headers.value("authorization"), "Bearer the-key");
        QCOMPARE(request.headers.value("x-api-key"), "the-key");
        QCOMPARE(request.headers.value("accept"), "application/json");
        QCOMPARE(request.headers.value("content-type"), call.body.isEmpty() ? "" : "application/json");
        if (call.body.isEmpty()) {
            QCOMPARE(request.body, "");
        } else {
            QVERIFY2(JSONValue::fromJSON(request.body) == JSONValue::fromJSON(call.body),
                     request.body.constData());
        }
        if (call.isRedirect) {
            QCOMPARE(decoded, call.payload);
        } else {
            QVERIFY2(JSONValue::fromJSON(decoded) == JSONValue::fromJSON(call.payload), decoded.constData());
        }
    }

    void reportsTheServicesError_data() { addRows(); }

    void reportsTheServicesError()
    {
        const QByteArray refusal = R"({"error":{"code":"not_found","message":"Nothing here","details":[1]}})";
        const auto error = errorAfter(currentCall(), Answer::json(refusal, 404));
        QVERIFY(error && error->api());
        QVERIFY((*error->api() == APIError{404, u"not_found"_s, u"Nothing here"_s, JSONValue::Array{1}}));
    }

    void reportsABrokenAnswer_data() { addRows(); }

    void reportsABrokenAnswer()
    {
        const Call &call = currentCall();
        const auto html = errorAfter(call, Answer::with(200, "text/html", "<html>Sign in</html>"));
        QVERIFY(html);
        QVERIFY(call.isRedirect ? html->unexpectedStatus() != nullptr : html->decoding() != nullptr);
        const auto bare = errorAfter(call, Answer::json(call.payload));
        QVERIFY(bare);
        QVERIFY(call.isRedirect ? bare->unexpectedStatus() != nullptr : bare->decoding() != nullptr);
        if (call.isRedirect || call.payload == "{}") {
            return;
        }
        const auto hollow = errorAfter(call, Answer::json(enveloped("{}")));
        QVERIFY(hollow && hollow->decoding());
        const auto cut = errorAfter(call, Answer::json(enveloped(call.payload).chopped(2)));
        QVERIFY(cut && cut->decoding());
    }
};

QTEST_GUILESS_MAIN(CallTableTest)
#include "CallTableTest.moc"
