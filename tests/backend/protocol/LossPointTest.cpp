#include "backend/protocol/LossPointDecoder.h"

#include <QTest>

#include <set>

using zorel::backend::protocol::LossPoint;
using zorel::backend::protocol::LossPointDecoder;

class LossPointTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyPointHasItsOwnId();
    void aCopyKeepsItsId();
    void goodLines_data();
    void goodLines();
    void badLines_data();
    void badLines();
};

void LossPointTest::everyPointHasItsOwnId()
{
    std::set<std::uint64_t> ids;
    int neighbours = 0;
    std::uint64_t previous = 0;
    for (int index = 0; index < 10'000; ++index) {
        const LossPoint point(index, 1.5);
        ids.insert(point.id);
        neighbours += point.id - previous < 1000 || previous - point.id < 1000 ? 1 : 0;
        previous = point.id;
    }
    QCOMPARE(ids.size(), std::size_t(10'000));
    QCOMPARE(neighbours, 0);
}

void LossPointTest::aCopyKeepsItsId()
{
    const LossPoint point(1, 2);
    QCOMPARE(LossPoint(point), point);
    QVERIFY(LossPoint(1, 2) != point);
}

void LossPointTest::goodLines_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<qint64>("step");
    QTest::addColumn<double>("loss");
    QTest::newRow("plain") << QByteArray(R"({"step":5,"loss":1.25})") << qint64(5) << 1.25;
    QTest::newRow("other keys") << QByteArray(R"({"time":[1],"loss":1.25,"lr":null,"step":5})") << qint64(5)
                                << 1.25;
    QTest::newRow("integer loss") << QByteArray(R"({"step":5,"loss":3})") << qint64(5) << 3.0;
    QTest::newRow("whole step") << QByteArray(R"({"step":5.0,"loss":-3e2})") << qint64(5) << -300.0;
    QTest::newRow("white space") << QByteArray("\t{ \"step\" : 5 , \"loss\" : 1 } \r") << qint64(5) << 1.0;
}

void LossPointTest::goodLines()
{
    QFETCH(QByteArray, line);
    const auto point = LossPointDecoder().decode(line.toStdString());
    QVERIFY(point);
    QTEST(qint64(point->step), "step");
    QTEST(point->loss, "loss");
}

void LossPointTest::badLines_data()
{
    QTest::addColumn<QByteArray>("line");
    for (const char *line : {"",
                             " ",
                             "x",
                             "[]",
                             "5",
                             "null",
                             "{}",
                             R"({"step":5})",
                             R"({"loss":5})",
                             R"({"step":"5","loss":5})",
                             R"({"step":5,"loss":"5"})",
                             R"({"step":5,"loss":null})",
                             R"({"step":null,"loss":5})",
                             R"({"step":5.5,"loss":5})",
                             R"({"step":true,"loss":5})",
                             R"({"step":5,"loss":NaN})",
                             R"({"step":5,"loss":1e999})",
                             R"({"step":9223372036854775808,"loss":5})",
                             R"([{"step":5,"loss":5}])",
                             R"({"step":5,"loss":5)",
                             R"({"step":5,"loss":5}})",
                             R"({"step":5,"loss":5} {"step":6,"loss":6})",
                             R"({"step":5,"loss":5,"x":01})"}) {
        QTest::newRow(line) << QByteArray(line);
    }
}

void LossPointTest::badLines()
{
    QFETCH(QByteArray, line);
    LossPointDecoder decoder;
    QVERIFY(!decoder.decode(line.toStdString()));
    QVERIFY(decoder.decode(R"({"step":5,"loss":1.25})"));
}

QTEST_APPLESS_MAIN(LossPointTest)
#include "LossPointTest.moc"
