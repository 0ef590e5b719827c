#include "library/ArchiveDate.h"

#include <QRandomGenerator>
#include <QTest>
#include <QTimeZone>

using zorel::library::ArchiveDate;
using zorel::library::parseArchiveDate;
using zorel::library::toDateTime;
using zorel::library::toIsoText;

class ArchiveDateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsInternetDateTimes_data();
    void readsInternetDateTimes();
    void refusesEverythingElse_data();
    void refusesEverythingElse();
    void agreesWithQtOnRandomDates();
    void writesWhatItReads();
};

void ArchiveDateTest::readsInternetDateTimes_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qint64>("microseconds");
    const auto row = [](const char *text, qint64 microseconds) {
        QTest::newRow(text) << QByteArray(text) << microseconds;
    };
    constexpr qint64 second = 1'000'000;
    constexpr qint64 moment = 1'741'944'413 * second;
    row("1970-01-01T00:00:00Z", 0);
    row("2025-03-14T09:26:53Z", moment);
    row("2025-03-14T09:26:53.5Z", moment + 500'000);
    row("2025-03-14T09:26:53.589Z", moment + 589'000);
    row("2025-03-14T09:26:53.589793Z", moment + 589'793);
    row("2025-03-14T09:26:53.58979323846264338327950288Z", moment + 589'793);
    row("2025-03-14T09:26:53.000000999Z", moment);
    row("2025-03-14T09:26:53+00:00", moment);
    row("2025-03-14T09:26:53-00:00", moment);
    row("2025-03-14T10:26:53+01:00", moment);
    row("2025-03-14T03:56:53.25-05:30", moment + 250'000);
    row("2025-03-15T09:25:53+23:59", moment);
    row("1969-12-31T23:59:59.75Z", -250'000);
    row("2024-02-29T00:00:00Z", 1'709'164'800 * second);
    row("1990-12-31T23:59:60Z", 662'688'000 * second);
    row("0001-01-01T00:00:00Z", -62'135'596'800 * second);
    row("9999-12-31T23:59:59Z", 253'402'300'799 * second);
}

void ArchiveDateTest::readsInternetDateTimes()
{
    QFETCH(QByteArray, text);
    QFETCH(qint64, microseconds);
    const std::optional<ArchiveDate> date = parseArchiveDate(text.toStdString());
    QVERIFY(date);
    QCOMPARE(qint64(date->time_since_epoch().count()), microseconds);
}

void ArchiveDateTest::refusesEverythingElse_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char *text : {"",
                             "2025-03-14",
                             "2025-03-14 09:26",
                             "2025-03-14 09:26:53Z",
                             "2025-03-14T09:26Z",
                             "2025-03-14T09:26:53",
                             "2025-03-14t09:26:53Z",
                             "2025-03-14T09:26:53z",
                             "2025-03-14T09:26:53.Z",
                             "2025-03-14T09:26:53,5Z",
                             "2025-03-14T09:26:53.5",
                             "2025-03-14T09:26:53+0100",
                             "2025-03-14T09:26:53+01",
                             "2025-03-14T09:26:53+01:0",
                             "2025-03-14T09:26:53+01:60",
                             "2025-03-14T09:26:53+24:00",
                             "2025-03-14T09:26:53 Z",
                             " 2025-03-14T09:26:53Z",
                             "2025-03-14T09:26:53Z ",
                             "2025-03-14T09:26:53Z\n",
                             "2025-03-14T09:26:53ZZ",
                             "25-03-14T09:26:53Z",
                             "12025-03-14T09:26:53Z",
                             "+2025-03-14T09:26:53Z",
                             "2025-3-14T09:26:53Z",
                             "2025-03-4T09:26:53Z",
                             "2025-00-14T09:26:53Z",
                             "2025-13-14T09:26:53Z",
                             "2025-03-00T09:26:53Z",
                             "2025-03-32T09:26:53Z",
                             "2025-02-29T09:26:53Z",
                             "2025-03-14T24:00:00Z",
                             "2025-03-14T09:60:53Z",
                             "2025-03-14T09:26:61Z",
                             "2025-03-14T9:26:53Z",
                             "20250314T092653Z",
                             "2025-W11-5T09:26:53Z",
                             "2025-073T09:26:53Z",
                             "2025-03-14T09:26:53.5.5Z",
                             "yesterday",
                             "Fri, 14 Mar 2025 09:26:53 GMT",
                             "1741944413"}) {
        QTest::newRow(text) << QByteArray(text);
    }
}

void ArchiveDateTest::refusesEverythingElse()
{
    QFETCH(QByteArray, text);
    QVERIFY(!parseArchiveDate(text.toStdString()));
}

void ArchiveDateTest::agreesWithQtOnRandomDates()
{
    QRandomGenerator random(42);
    for (int round = 0; round < 2000; ++round) {
        const qint64 milliseconds = random.bounded(qint64(250'000'000'000'000)) - 50'000'000'000'000;
        const int offset = random.bounded(-14 * 60, 14 * 60) * 60;
        const QString text = QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::OffsetFromUTC, offset)
                                 .toString(Qt::ISODateWithMs);
        const std::optional<ArchiveDate> date = parseArchiveDate(text.toStdString());
        QVERIFY2(date, qPrintable(text));
        QCOMPARE(toDateTime(*date).toMSecsSinceEpoch(), milliseconds);
    }
}

void ArchiveDateTest::writesWhatItReads()
{
    QCOMPARE(toIsoText(*parseArchiveDate("2025-03-14T10:26:53+01:00")),
             QStringLiteral("2025-03-14T09:26:53.000Z"));
    for (const char *text : {"2025-03-14T09:26:53.589Z", "2025-03-14T09:26:53.000001Z",
                             "1969-12-31T23:59:59.999Z", "0001-01-01T00:00:00.000Z"}) {
        QCOMPARE(toIsoText(*parseArchiveDate(text)), QString::fromLatin1(text));
    }
    const QDateTime local = toDateTime(*parseArchiveDate("2025-03-14T09:26:53.589793Z"));
    QCOMPARE(local.timeSpec(), Qt::UTC);
    QCOMPARE(local.time(), QTime(9, 26, 53, 589));
}

QTEST_APPLESS_MAIN(ArchiveDateTest)
#include "ArchiveDateTest.moc"
