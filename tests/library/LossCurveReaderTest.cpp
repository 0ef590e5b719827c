#include "library/LossCurveReader.h"
#include "tests/support/RunFolders.h"

#include <QFile>
#include <QTest>

#include <algorithm>
#include <utility>

namespace zorel::tests {

using backend::protocol::LossPoint;
using library::LossCurveReader;
using library::readLossCurve;

namespace {

using Point = std::pair<std::int64_t, double>;

std::vector<Point> plain(const std::vector<LossPoint> &points)
{
    std::vector<Point> list;
    for (const LossPoint &point : points) {
        list.emplace_back(point.step, point.loss);
    }
    return list;
}

std::vector<Point> readInPieces(const QByteArray &text, qsizetype piece, std::size_t longestLine = 1 << 20)
{
    LossCurveReader reader(longestLine);
    for (qsizetype from = 0; from < text.size();) {
        const std::span<char> room = reader.room();
        const qsizetype count = std::min({piece, qsizetype(room.size()), text.size() - from});
        std::copy_n(text.constData() + from, count, room.data());
        reader.take(std::size_t(count));
        from += count;
    }
    return plain(reader.finish());
}

} // namespace

class LossCurveReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void badLinesAreSkipped_data();
    void badLinesAreSkipped();
    void everyCutGivesTheSamePoints();
    void pointsStayInTheFilesOrder();
    void identitiesAreFresh();
    void theLastLineNeedsNoLineFeed();
    void aFileThatIsNotUtf8HasNoCurve_data();
    void aFileThatIsNotUtf8HasNoCurve();
    void aLineThatIsTooLongIsSkipped_data();
    void aLineThatIsTooLongIsSkipped();
    void aMillionLinesWithBadOnesAmongThem();
    void whatIsNoRegularFileHasNoCurve();
};

void LossCurveReaderTest::badLinesAreSkipped_data()
{
    QTest::addColumn<QByteArray>("line");
    for (const char *line : {"",
                             " ",
                             "\r",
                             R"({"step": 2})",
                             R"({"loss": 2})",
                             "Traceback (most recent call last):",
                             "[]",
                             "{}",
                             "2",
                             "null",
                             R"([{"step": 2, "loss": 2}])",
                             R"({"step": "2", "loss": 2})",
                             R"({"step": 2.5, "loss": 2})",
                             R"({"step": 2, "loss": "2"})",
                             R"({"step": 2, "loss": null})",
                             R"({"step": 2, "loss": NaN})",
                             R"({"step": 2, "loss": 2)",
                             R"({"step": 2, "loss": 2}})",
                             R"({"step": 2, "loss": 2} {"step": 3, "loss": 3})",
                             R"({"step": 2, "loss": 2},)",
                             R"("step": 2, "loss": 2})",
                             R"({"step": 2, "loss": 02})",
                             R"({"step": 2 3, "loss": 2})",
                             R"({"step": 2, "loss": 2 3})",
                             R"({"step": 2; "loss": 2})",
                             R"({"step": 99999999999999999999, "loss": 2})",
                             R"({"step": 2, "loss": 1e999})",
                             "{\"step\": 2, \"loss\": 2",
                             "\"",
                             "{\"step\": 2, \"loss\": \"",
                             "\\",
                             "{\"step\": 2, \"loss\": 2}\x01",
                             "\xef\xbb\xbf{\"step\": 2, \"loss\": 2}",
                             R"({"step": 2, "loss": 2, "step": null})",
                             R"({"Step": 2, "loss": 2})",
                             "{\"step\": 2,\n\"loss\": 2}",
                             "{\"step\": 2, \"loss\"\n: 2}",
                             "{\"step\": 2, \"loss\":\n2}",
                             "{\"step\": 2, \"loss\": 2\n}"}) {
        QTest::newRow(line) << QByteArray(line);
    }
}

void LossCurveReaderTest::badLinesAreSkipped()
{
    QFETCH(QByteArray, line);
    const QByteArray good = "{\"step\": 1, \"loss\": 10.5}\n";
    const QByteArray more = "{\"loss\":3,\"step\":4,\"other\":[{}]}\r\n  {\"step\": 5.0, \"loss\": -2}\n";
    const std::vector<Point> expected{{1, 10.5}, {4, 3}, {5, -2}, {1, 10.5}};
    QCOMPARE(readInPieces(good + line + '\n' + more + good, 1000), expected);
    // Also first and last.
    QCOMPARE(readInPieces(line + '\n' + good, 1000), (std::vector<Point>{{1, 10.5}}));
    QCOMPARE(readInPieces(good + line, 1000), (std::vector<Point>{{1, 10.5}}));
}

void LossCurveReaderTest::everyCutGivesTheSamePoints()
{
    QByteArray text = curveText(30) + "\n\n{\"step\": 1, \"note\": \"ä€🏃\"}\n" + curveText(3) +
                      "{\"step\": 9, \"loss\": 9}";
    const std::vector<Point> whole = readInPieces(text, text.size());
    QCOMPARE(whole.size(), std::size_t(34));
    for (qsizetype piece = 1; piece < 100; ++piece) {
        QCOMPARE(readInPieces(text, piece), whole);
        QCOMPARE(readInPieces(text, piece, 40), whole);
    }
}

void LossCurveReaderTest::pointsStayInTheFilesOrder()
{
    QCOMPARE(
        readInPieces("{\"step\": 3, \"loss\": 1}\n{\"step\": 1, \"loss\": 2}\n{\"step\": 3, \"loss\": 1}\n",
                     1000),
        (std::vector<Point>{{3, 1}, {1, 2}, {3, 1}}));
}

void LossCurveReaderTest::identitiesAreFresh()
{
    const RunFolders folders;
    folders.write(QStringLiteral("curve"), curveText(100));
    const QByteArray path = QFile::encodeName(folders.pathOf(QStringLiteral("curve")));
    std::vector<std::uint64_t> identities;
    for (int reading = 0; reading < 2; ++reading) {
        for (const LossPoint &point : readLossCurve(path.constData())) {
            identities.push_back(point.id);
        }
    }
    QCOMPARE(identities.size(), std::size_t(200));
    std::ranges::sort(identities);
    QVERIFY(std::ranges::adjacent_find(identities) == identities.end());
}

void LossCurveReaderTest::theLastLineNeedsNoLineFeed()
{
    QCOMPARE(readInPieces("{\"step\": 1, \"loss\": 1}\n{\"step\": 2, \"loss\": 2}", 1000).size(),
             std::size_t(2));
    QCOMPARE(readInPieces("{\"step\": 1, \"loss\": 1}", 1000).size(), std::size_t(1));
    QCOMPARE(readInPieces("", 1000).size(), std::size_t(0));
}

void LossCurveReaderTest::aFileThatIsNotUtf8HasNoCurve_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("Latin-1") << QByteArray("caf\xe9");
    QTest::newRow("cut character") << QByteArray("\xe2\x82");
    QTest::newRow("surrogate") << QByteArray("\xed\xa0\x80");
    QTest::newRow("overlong") << QByteArray("\xc0\xaf");
    QTest::newRow("continuation") << QByteArray("\x80");
    QTest::newRow("binary") << QByteArray("\xff\xfe\0\0", 4);
}

void LossCurveReaderTest::aFileThatIsNotUtf8HasNoCurve()
{
    QFETCH(QByteArray, bytes);
    const QByteArray good = curveText(3);
    for (qsizetype piece : {1, 2, 7, 1000}) {
        QVERIFY(readInPieces(bytes + '\n' + good, piece).empty());
        QVERIFY(readInPieces(good + bytes + '\n' + good, piece).empty());
        QVERIFY(readInPieces(good + bytes, piece).empty());
        // Also within a line that is given up.
        QVERIFY(
            readInPieces(good + QByteArray(101, 'x') + bytes + QByteArray(50, 'x') + '\n' + good, piece, 32)
                .empty());
    }
}

void LossCurveReaderTest::aLineThatIsTooLongIsSkipped_data()
{
    QTest::addColumn<int>("length");
    for (int length : {26, 32, 33, 34, 64, 65, 66, 67, 99, 1000, 200'000}) {
        QTest::addRow("%d", length) << length;
    }
}

void LossCurveReaderTest::aLineThatIsTooLongIsSkipped()
{
    QFETCH(int, length);
    constexpr int longest = 32;
    QByteArray line = "{\"step\": 7, \"loss\": 7}";
    line = line.leftJustified(length, ' ');
    const QByteArray good = "{\"step\": 1, \"loss\": 1}\n";
    std::vector<Point> expected{{1, 1}, {1, 1}};
    std::vector<Point> expectedAtEnd{{1, 1}};
    if (length <= longest) {
        expected.insert(expected.begin() + 1, {7, 7});
        expectedAtEnd.push_back({7, 7});
    }
    for (qsizetype piece : {1, 3, 32, 33, 1000, 1'000'000}) {
        QCOMPARE(readInPieces(good + line + '\n' + good, piece, longest), expected);
        QCOMPARE(readInPieces(good + line, piece, longest), expectedAtEnd);
        // Characters of several bytes may be cut anywhere.
        const QByteArray text = good + QByteArray("🏃€ä").repeated(length) + '\n' + good;
        QCOMPARE(readInPieces(text, piece, longest), (std::vector<Point>{{1, 1}, {1, 1}}));
    }
}

void LossCurveReaderTest::aMillionLinesWithBadOnesAmongThem()
{
    constexpr int points = 1'000'000;
    QByteArray text;
    for (int step = 1; step <= points; ++step) {
        text += "{\"step\": " + QByteArray::number(step) + ", \"loss\": 2.5}\n";
        if (step % 1000 == 0) {
            text += step % 2000 == 0 ? "nonsense\n" : "{\"step\": 1}\n";
        }
    }
    const RunFolders folders;
    folders.write(QStringLiteral("curve"), text);
    const std::vector<LossPoint> curve =
        readLossCurve(QFile::encodeName(folders.pathOf(QStringLiteral("curve"))).constData());
    QCOMPARE(curve.size(), std::size_t(points));
    for (int step = 1; step <= points; ++step) {
        if (curve[std::size_t(step) - 1].step != step) {
            QFAIL("out of order");
        }
    }
}

void LossCurveReaderTest::whatIsNoRegularFileHasNoCurve()
{
    const RunFolders folders;
    for (const char *path : {"/dev/zero", "/", "/nowhere", ""}) {
        QVERIFY(readLossCurve(path).empty());
    }
    folders.link(QStringLiteral("device"), QStringLiteral("/dev/zero"));
    QVERIFY(readLossCurve(QFile::encodeName(folders.pathOf(QStringLiteral("device"))).constData()).empty());
}

} // namespace zorel::tests

QTEST_APPLESS_MAIN(zorel::tests::LossCurveReaderTest)
#include "LossCurveReaderTest.moc"
