#include "updater/VersionComparison.h"

#include <QTest>

using zorel::updater::compareVersions;

class VersionComparisonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void versionsAreOrdered_data();
    void versionsAreOrdered();
    void oneZeroIsTheSameAsOneZeroZero();
};

void VersionComparisonTest::versionsAreOrdered_data()
{
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<int>("expected");
    const auto row = [](const char *left, const char *right, int expected) {
        QTest::addRow("%s against %s", left, right)
            << QString::fromUtf8(left) << QString::fromUtf8(right) << expected;
    };
    row("1.2", "1.2.0", 0);
    row("1.10", "1.9", 1);
    row("2.0", "2.0-beta", 1);
    row("2.0-beta", "2.0-rc", -1);
    row("1.2.3", "1.2.4", -1);
    row("2", "1.9.9", 1);
    row("0.9", "1", -1);
    row("1.0.0.1", "1", 1);
    row("", "", 0);
    row("", "0.0", 0);
    row("unknown", "0.1", -1);
    // The suffix: one separator is dropped, blanks around it and case do not count.
    row("1.0-beta", "1.0beta", 0);
    row("1.0_beta", "1.0+beta", 0);
    row("1.0 beta", "1.0-BETA", 0);
    row("1.0-  Beta  ", "1.0-beta", 0);
    row("1.0--beta", "1.0-beta", -1);
    row("1.0-beta10", "1.0-beta2", -1);
    row("1.0-", "1.0", 0);
    row("1.0-beta", "1.1-alpha", -1);
    row("1.0-beta.2", "1.0-beta.1", 1);
    row("v1.0", "1.0", -1);
    // Components that are no numbers are left out.
    row("1..2", "1.2", 0);
    row(".1", "1", 0);
    row("1.", "1", 0);
    row("1.99999999999999999999.5", "1.5", 0);
    row("1.9223372036854775807", "1.9223372036854775806", 1);
    row("1.007", "1.7", 0);
}

void VersionComparisonTest::versionsAreOrdered()
{
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(int, expected);
    QCOMPARE(compareVersions(left, right), expected);
    QCOMPARE(compareVersions(right, left), -expected);
}

void VersionComparisonTest::oneZeroIsTheSameAsOneZeroZero()
{
    QCOMPARE(compareVersions(QStringLiteral("1.0"), QStringLiteral("1.0.0")), 0);
}

QTEST_GUILESS_MAIN(VersionComparisonTest)
#include "VersionComparisonTest.moc"
