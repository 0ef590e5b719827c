#include "service/core/HTTPAnswerParser.h"

#include <QtTest/QtTest>

using caldra::HTTPAnswerParser;
using State = HTTPAnswerParser::State;

namespace {

constexpr qint64 largestBody = 1000;

QByteArray answer(const QByteArray &headers, const QByteArray &body = {})
{
    return "HTTP/1.1 200 OK\r\n" + headers + "\r\n" + body;
}

/// An answer that is passed on as it arrives.
struct Reading
{
    QByteArray passedOn;
    QList<int> heads; ///< the status of each, told before anything was passed on
    HTTPAnswerParser parser{largestBody, caldra::AnswerReader{[this](HTTPAnswerParser &head) {
                                                                  heads +=
                                                                      passedOn.isEmpty() ? head.status() : -1;
                                                              },
                                                              [this](QByteArrayView bytes) {
                                                                  passedOn += bytes;
                                                              }}};
};

} // namespace

class HTTPAnswerParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsEveryFraming_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("keepsConnection");
        QTest::newRow("length") << answer("Content-Length: 3\r\n", "abc") << QByteArray("abc") << 200 << true;
        QTest::newRow("no body") << answer("content-length: 0\r\n") << QByteArray() << 200 << true;
        QTest::newRow("asks to close")
            << answer("Content-Length: 1\r\nConnection: Close\r\n", "a") << QByteArray("a") << 200 << false;
        QTest::newRow("chunked") << answer("Transfer-Encoding: chunked\r\n",
                                           "3\r\nabc\r\nA;name=x\r\n0123456789\r\n0\r\nTrailer: x\r\n\r\n")
                                 << QByteArray("abc0123456789") << 200 << true;
        QTest::newRow("interim") << "HTTP/1.1 100 Continue\r\n\r\n" + answer("Content-Length: 1\r\n", "a")
                                 << QByteArray("a") << 200 << true;
        QTest::newRow("nothing to come")
            << QByteArray("HTTP/1.1 204 No Content\r\n\r\n") << QByteArray() << 204 << true;
        QTest::newRow("not modified, with the length that it would have had")
            << QByteArray("HTTP/1.1 304 Not Modified\r\nContent-Length: 5\r\n\r\n") << QByteArray() << 304
            << true;
        QTest::newRow("older") << QByteArray("HTTP/1.0 404 X\r\nContent-Length: 1\r\n\r\na")
                               << QByteArray("a") << 404 << false;
    }

    void readsEveryFraming()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, body);
        QFETCH(int, status);
        QFETCH(bool, keepsConnection);
        for (qsizetype piece = 1; piece <= bytes.size(); ++piece) {
            HTTPAnswerParser parser(largestBody);
            for (qsizetype at = 0; at < bytes.size(); at += piece) {
                QVERIFY(parser.state() == State::head || parser.state() == State::body);
                parser.feed(bytes.mid(at, piece));
            }
            QVERIFY(parser.state() == State::complete);
            QCOMPARE(parser.status(), status);
            QCOMPARE(parser.keepsConnection(), keepsConnection);
            QCOMPARE(parser.takeBody(), body);
        }
    }

    void passesTheBodyOn_data() { readsEveryFraming_data(); }

    void passesTheBodyOn()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, body);
        QFETCH(int, status);
        QFETCH(bool, keepsConnection);
        for (qsizetype piece = 1; piece <= bytes.size(); ++piece) {
            Reading reading;
            for (qsizetype at = 0; at < bytes.size(); at += piece) {
                reading.parser.feed(bytes.mid(at, piece));
            }
            QVERIFY(reading.parser.state() == State::complete);
            QCOMPARE(reading.heads, QList<int>{status});
            QCOMPARE(reading.passedOn, body);
            QCOMPARE(reading.parser.takeBody(), QByteArray());
            QCOMPARE(reading.parser.keepsConnection(), keepsConnection);
        }
    }

    void passesOnUntilTheEnd()
    {
        Reading reading;
        reading.parser.feed(answer("Server: x\r\n", "abc"));
        QVERIFY(reading.parser.feed("def") == State::body);
        QVERIFY(reading.parser.end() == State::complete);
        QCOMPARE(reading.passedOn, "abcdef");
        QVERIFY(!reading.parser.announcedLength());
    }

    void tellsTheLengthWithTheHead()
    {
        Reading reading;
        QVERIFY(reading.parser.feed(answer("Content-Length: 12\r\n")) == State::body);
        QCOMPARE(reading.heads.size(), 1);
        QCOMPARE(reading.parser.announcedLength(), std::optional<qint64>(12));
    }

    void readsUntilTheEnd()
    {
        HTTPAnswerParser parser(largestBody);
        QVERIFY(parser.feed(answer("Server: x\r\n", "abc")) == State::body);
        QVERIFY(parser.feed("def") == State::body);
        QVERIFY(parser.end() == State::complete);
        QVERIFY(!parser.keepsConnection());
        QCOMPARE(parser.takeBody(), "abcdef");
        QVERIFY(parser.takeHeaders() == (caldra::HTTPHeaders{{"Server", "x"}}));
    }

    void noticesAnEarlyEnd()
    {
        const QByteArray whole = answer("Transfer-Encoding: chunked\r\n", "3\r\nabc\r\n0\r\n\r\n");
        for (qsizetype length = 0; length < whole.size(); ++length) {
            HTTPAnswerParser parser(largestBody);
            parser.feed(whole.left(length));
            QVERIFY(parser.end() == State::closedEarly);
        }
    }

    void refusesWhatCannotBeReadSafely_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("another protocol") << QByteArray("SSH-2.0");
        QTest::newRow("newer") << QByteArray("HTTP/2 200 OK\r\n\r\n");
        QTest::newRow("no status") << QByteArray("HTTP/1.1 OK\r\n\r\n");
        QTest::newRow("upgrade") << QByteArray("HTTP/1.1 101 Switching\r\n\r\n");
        QTest::newRow("two lengths") << answer("Content-Length: 1\r\nContent-Length: 2\r\n");
        QTest::newRow("negative length") << answer("Content-Length: -1\r\n");
        QTest::newRow("signed length") << answer("Content-Length: +1\r\n");
        QTest::newRow("length over 64 bits") << answer("Content-Length: 99999999999999999999\r\n");
        QTest::newRow("other encoding") << answer("Transfer-Encoding: gzip, chunked\r\n");
        QTest::newRow("no header") << answer("what is this\r\n");
        QTest::newRow("folded header") << answer("A: b\r\n c: d\r\n");
        QTest::newRow("bad chunk") << answer("Transfer-Encoding: chunked\r\n", "xyz\r\n");
        QTest::newRow("chunk too long") << answer("Transfer-Encoding: chunked\r\n", "1\r\nabc\r\n");
        QTest::newRow("head without end") << answer(QByteArray("A: b\r\n").repeated(100'000)).chopped(2);
    }

    void refusesWhatCannotBeReadSafely()
    {
        QFETCH(QByteArray, bytes);
        HTTPAnswerParser parser(largestBody);
        QVERIFY(parser.feed(bytes) == State::malformed);
    }

    void stopsAtTheLargestBody()
    {
        const QByteArray tooMuch(largestBody + 1, 'x');
        for (const QByteArray &bytes :
             {answer("Content-Length: 1001\r\n"), answer("Server: x\r\n", tooMuch),
              answer("Transfer-Encoding: chunked\r\n", "3e9\r\n"),
              answer("Transfer-Encoding: chunked\r\n", QByteArray("1\r\nx\r\n").repeated(1001))}) {
            HTTPAnswerParser parser(largestBody);
            QVERIFY(parser.feed(bytes) == State::tooLarge);

            Reading reading;
            const qsizetype headEnd = bytes.indexOf("\r\n\r\n") + 4;
            reading.parser.feed(bytes.left(headEnd));
            QVERIFY(reading.parser.feed(bytes.mid(headEnd)) == State::tooLarge);
            QCOMPARE(reading.heads, QList<int>{200});
            QVERIFY(reading.passedOn.size() <= largestBody);
        }
    }

    void doesNotReuseAConnectionWithMoreOnIt()
    {
        HTTPAnswerParser parser(largestBody);
        QVERIFY(parser.feed(answer("Content-Length: 1\r\n", "ab")) == State::complete);
        QVERIFY(!parser.keepsConnection());
    }
};

QTEST_GUILESS_MAIN(HTTPAnswerParserTest)
#include "HTTPAnswerParserTest.moc"
