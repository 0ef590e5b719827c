#include "updater/ServiceFailure.h"
#include "service/core/CaldraError.h"

#include <QTest>

using caldra::CaldraError;
using zorel::updater::UpdateError;
using zorel::updater::updateErrorFrom;

class ServiceFailureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFailureHasItsMeaning_data();
    void everyFailureHasItsMeaning();
};

void ServiceFailureTest::everyFailureHasItsMeaning_data()
{
    QTest::addColumn<CaldraError>("failure");
    QTest::addColumn<UpdateError>("meaning");
    const auto row = [](const char *name, const CaldraError::Payload &failure,
                        const UpdateError::Payload &meaning) {
        QTest::newRow(name) << CaldraError(failure) << UpdateError(meaning);
    };
    const auto api = [](int status, const char *code, const char *message) {
        return caldra::APIError{status, QString::fromUtf8(code), QString::fromUtf8(message), {}};
    };
    row("transport",
        caldra::TransportError(caldra::TransportError::Kind::timedOut, QStringLiteral("too late")),
        UpdateError::Http{0, QStringLiteral("too late")});
    row("code not_found", api(400, "not_found", "no"), UpdateError::NoReleaseYet{});
    row("status 404", api(404, "gone", "no"), UpdateError::NoReleaseYet{});
    row("another refusal", api(403, "forbidden", "not yours"),
        UpdateError::Http{403, QStringLiteral("not yours")});
    row("a refusal without a message", api(500, "internal", ""),
        UpdateError::Http{500, QStringLiteral("internal")});
    row("decoding", caldra::DecodingError(QStringLiteral("data"), QStringLiteral("missing")),
        UpdateError::Decode{});
    row("unexpected status", CaldraError::UnexpectedStatus{502, "<html>"},
        UpdateError::Http{502, QStringLiteral("Unexpected HTTP status 502.")});
    row("no HTTP", CaldraError::UnexpectedStatus{-1, {}},
        UpdateError::Http{-1, QStringLiteral("Unexpected HTTP status -1.")});
    row("anything else", CaldraError::InvalidURL{QStringLiteral("/v1")},
        UpdateError::Http{0, QStringLiteral("Could not build a valid URL from /v1")});
}

void ServiceFailureTest::everyFailureHasItsMeaning()
{
    QFETCH(CaldraError, failure);
    QFETCH(UpdateError, meaning);
    QVERIFY(updateErrorFrom(failure) == meaning);
}

QTEST_GUILESS_MAIN(ServiceFailureTest)
#include "ServiceFailureTest.moc"
