#include "ui/kit/ChartCsv.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace zorel::ui::kit;

class ChartCsvTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void headingAlone();
    void everyPointInListOrder();
    void valuesKeepEveryDigit_data();
    void valuesKeepEveryDigit();
    void valuesThatAreNotFinite();
    void namesAreQuotedWhereNeeded_data();
    void namesAreQuotedWhereNeeded();
};

void ChartCsvTest::headingAlone()
{
    QCOMPARE(chartCsv({}), QByteArray("series,step,value\n"));
    QCOMPARE(chartCsv({{QStringLiteral("Loss"), {}}}), QByteArray("series,step,value\n"));
}

void ChartCsvTest::everyPointInListOrder()
{
    const QByteArray csv = chartCsv({{QStringLiteral("Baseline"), {{10, 2.5}, {5, 2}, {5, 2}}},
                                     {QStringLiteral("Candidate"), {{-3, -0.25}}}});
    QCOMPARE(csv, QByteArray("series,step,value\n"
                             "Baseline,10,2.5\n"
                             "Baseline,5,2\n"
                             "Baseline,5,2\n"
                             "Candidate,-3,-0.25\n"));
}

void ChartCsvTest::valuesKeepEveryDigit_data()
{
    QTest::addColumn<double>("value");
    QTest::newRow("a third") << 1.0 / 3;
    QTest::newRow("a tenth") << 0.1;
    QTest::newRow("largest") << std::numeric_limits<double>::max();
    QTest::newRow("smallest") << 5e-324;
    QTest::newRow("next to two") << std::nextafter(2.0, 3.0);
    QTest::newRow("negative") << -1e-7;
}

void ChartCsvTest::valuesKeepEveryDigit()
{
    QFETCH(double, value);
    const QByteArray csv =
        chartCsv({{QStringLiteral("a"), {{std::numeric_limits<std::int64_t>::max(), value}}}});
    const QByteArray line = csv.split('\n').at(1);
    QCOMPARE(line.split(',').at(1), QByteArray("9223372036854775807"));
    bool isNumber = false;
    const double read = line.split(',').at(2).toDouble(&isNumber);
    QVERIFY(isNumber);
    // Exactly, not nearly.
    QVERIFY(read == value);
}

void ChartCsvTest::valuesThatAreNotFinite()
{
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const QByteArray csv =
        chartCsv({{QStringLiteral("a"),
                   {{1, std::numeric_limits<double>::quiet_NaN()}, {2, infinite}, {3, -infinite}}}});
    QCOMPARE(csv, QByteArray("series,step,value\na,1,nan\na,2,inf\na,3,-inf\n"));
}

void ChartCsvTest::namesAreQuotedWhereNeeded_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("field");
    QTest::newRow("plain") << QStringLiteral("My run 2") << QByteArray("My run 2");
    QTest::newRow("comma") << QStringLiteral("a,b") << QByteArray("\"a,b\"");
    QTest::newRow("quotes") << QStringLiteral("the \"best\"") << QByteArray("\"the \"\"best\"\"\"");
    QTest::newRow("line break") << QStringLiteral("a\nb") << QByteArray("\"a\nb\"");
    QTest::newRow("other letters") << QStringLiteral("Größe 损失") << QStringLiteral("Größe 损失").toUtf8();
}

void ChartCsvTest::namesAreQuotedWhereNeeded()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, field);
    QCOMPARE(chartCsv({{name, {{1, 2}}}}), "series,step,value\n" + field + ",1,2\n");
}

QTEST_APPLESS_MAIN(ChartCsvTest)
#include "ChartCsvTest.moc"
