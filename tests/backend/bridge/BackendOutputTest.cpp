#include "tests/backend/bridge/ControllerFixture.h"

#include <QSignalSpy>

namespace zorel::tests {

using backend::bridge::BackendController;

/// What a child writes, and what of it reaches the log.
class BackendOutputTest : public ControllerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { makeController(); }
    void cleanup() { endController(); }

    void badLinesAreLoggedByTheirStart();
    void anUnknownEventIsLoggedByItsLineAndNotByTheDecodersWords();
    void carriageReturnsAreNotTrimmed();
    void blankLinesProduceNothing();
    void linesOfStandardErrorAreLoggedWithAPrefix();
    void oddBytesAffectOnlyTheirLine();
    void whatTheChildWroteLastComesBeforeItsExit();
    void lateLinesOfAGrandchildStillArrive();
};

void BackendOutputTest::badLinesAreLoggedByTheirStart()
{
    const QString longLine = QStringLiteral("bad ") + QString(296, QLatin1Char('x'));
    const QString nested = QString(10'000, QLatin1Char('['));
    play({step(QStringLiteral("raw"), QStringLiteral("  Traceback (most recent call last):\t\n")),
          step(QStringLiteral("raw"), longLine + QLatin1Char('\n')),
          step(QStringLiteral("raw"), nested + QLatin1Char('\n')),
          step(QStringLiteral("raw"), QStringLiteral("{\"event\":\"ready\",\"default_max_steps\":NaN}\n")),
          step(QStringLiteral("raw"), QStringLiteral("{\"event\":\"unheard\"}\n")),
          emitLog(QStringLiteral("alive"))});
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("alive")), patience);
    const QString prefix = QStringLiteral("× bad event from backend: ");
    QCOMPARE(log().mid(2),
             QStringList({prefix + QStringLiteral("Traceback (most recent call last):"),
                          prefix + longLine.left(120), prefix + nested.left(120),
                          prefix + QStringLiteral("{\"event\":\"ready\",\"default_max_steps\":NaN}"),
                          prefix + QStringLiteral("{\"event\":\"unheard\"}"), QStringLiteral("alive")}));
    QVERIFY(!m_controller->ready());
}

void BackendOutputTest::anUnknownEventIsLoggedByItsLineAndNotByTheDecodersWords()
{
    play({step(QStringLiteral("raw"), QStringLiteral("{\"event\": \"telemetry\", \"x\": 1}\n"))});
    QTRY_COMPARE_WITH_TIMEOUT(log().size(), 3, patience);
    QCOMPARE(log().constLast(),
             QStringLiteral("× bad event from backend: {\"event\": \"telemetry\", \"x\": 1}"));
}

void BackendOutputTest::carriageReturnsAreNotTrimmed()
{
    play({step(QStringLiteral("raw"), QStringLiteral(" \rTraceback\r\n\r\n"))});
    QTRY_COMPARE_WITH_TIMEOUT(log().size(), 4, patience);
    QCOMPARE(log().mid(2), QStringList({QStringLiteral("× bad event from backend: \rTraceback\r"),
                                        QStringLiteral("× bad event from backend: \r")}));
}

void BackendOutputTest::blankLinesProduceNothing()
{
    play({step(QStringLiteral("raw"), QStringLiteral("\n   \n\t \t\n")), emitLog(QStringLiteral("alive"))});
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("alive")), patience);
    QCOMPARE(log().size(), 3);
}

void BackendOutputTest::linesOfStandardErrorAreLoggedWithAPrefix()
{
    const QString withMark = QChar(QChar::ByteOrderMark) + QStringLiteral("marked");
    play({step(QStringLiteral("stderr"), QStringLiteral("  a warning \t")),
          step(QStringLiteral("stderr"), withMark)});
    QTRY_COMPARE_WITH_TIMEOUT(log().size(), 4, patience);
    QCOMPARE(log().at(2), QStringLiteral("[py stderr]   a warning \t"));
    QCOMPARE(log().at(3), QStringLiteral("[py stderr] ") + withMark);
}

void BackendOutputTest::oddBytesAffectOnlyTheirLine()
{
    const auto raw = [](const QByteArray &bytes) {
        return step(QStringLiteral("raw_base64"), QString::fromLatin1(bytes.toBase64()));
    };
    play({raw("\xFF\xFE{\"event\":\"done\"}\n"), raw(QByteArray("{\"event\":\0}\n", 12)),
          raw("\xEF\xBB\xBF{\"event\":\"log\",\"msg\":\"mark\"}\n"),
          raw("{\"event\":\"log\",\"msg\":\"windows\"}\r\n"), raw("{\"event\":\"log\",\"msg\":\"caf\xC3"),
          raw("\xA9\"}\n"), emitLog(QStringLiteral("alive"))});
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("alive")), patience);
    const QStringList lines = log().mid(2);
    QCOMPARE(lines.size(), 5);
    QVERIFY(lines.at(0).startsWith(QStringLiteral("× bad event from backend: {\"event\":")));
    QVERIFY(lines.at(1).startsWith(QStringLiteral("× bad event from backend: ")));
    QCOMPARE(lines.at(2), QStringLiteral("windows"));
    QCOMPARE(lines.at(3), QStringLiteral("café"));
}

void BackendOutputTest::whatTheChildWroteLastComesBeforeItsExit()
{
    play({step(QStringLiteral("flood"), QJsonObject{{QStringLiteral("stderr"), 1500}}),
          emitLog(QStringLiteral("last words")), step(QStringLiteral("exit"), 1)});
    QSignalSpy exited(m_controller.get(), &BackendController::backendExited);
    QVERIFY(exited.wait(patience));
    QCOMPARE(log().constLast(), QStringLiteral("backend exited (code 1)"));
    QVERIFY(log().contains(QStringLiteral("last words")));
    QVERIFY(log().contains(QStringLiteral("[py stderr] line 1499")));
}

void BackendOutputTest::lateLinesOfAGrandchildStillArrive()
{
    const QString gate = m_sidecar->pathOf(QStringLiteral("gate"));
    play({step(QStringLiteral("grandchild"),
               QJsonObject{{QStringLiteral("until_file"), gate},
                           {QStringLiteral("steps"), QJsonArray{emitLog(QStringLiteral("late"))}}}),
          step(QStringLiteral("exit"), 0)});
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("backend exited (code 0)")), patience);
    touch(gate);
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("late")), patience);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::BackendOutputTest)
#include "BackendOutputTest.moc"
