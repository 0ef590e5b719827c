#include "backend/bridge/LineSplitter.h"

#include <QTest>

#include <random>
#include <string>
#include <vector>

using zorel::backend::bridge::LineBatch;
using zorel::backend::bridge::LineSplitter;

namespace {

constexpr std::size_t limit = std::size_t{1} << 20;

struct TakenLine
{
    std::string text;
    bool truncated = false;
    bool operator==(const TakenLine &) const = default;
};

void takeInto(LineSplitter &splitter, std::vector<TakenLine> &lines)
{
    const LineBatch batch = splitter.take();
    for (const LineBatch::Span &line : batch.lines) {
        lines.push_back({batch.bytes.substr(line.offset, line.length), line.truncated});
    }
}

std::vector<TakenLine> linesOf(const std::string &stream, const std::vector<std::size_t> &cuts,
                               std::size_t maximumLineBytes = limit)
{
    LineSplitter splitter(maximumLineBytes);
    std::vector<TakenLine> lines;
    std::size_t from = 0;
    for (const std::size_t cut : cuts) {
        splitter.append(std::string_view(stream).substr(from, cut - from));
        takeInto(splitter, lines);
        from = cut;
    }
    splitter.append(std::string_view(stream).substr(from));
    takeInto(splitter, lines);
    return lines;
}

std::vector<std::size_t> everyPosition(const std::string &stream)
{
    std::vector<std::size_t> cuts;
    for (std::size_t position = 0; position <= stream.size(); ++position) {
        cuts.push_back(position);
    }
    return cuts;
}

/// A little of everything that a training script prints, good and bad.
const std::string session = "{\"event\":\"ready\",\"default_max_steps\":300}\n"
                            "\n"
                            "   \t \n"
                            "{\"event\":\"log\",\"msg\":\"caf\xC3\xA9 \xF0\x9F\x99\x82\"}\r\n"
                            "bad \xFF\xFE bytes\n"
                            "\xEF\xBB\xBF{\"event\":\"done\"}\n"
                            "Traceback (most recent call last):\n"
                            "cut off in a character \xF0\x9F\n"
                            "{\"event\":\"done\"}\n"
                            "never ended";

} // namespace

class LineSplitterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everySplitPointGivesTheSameLines();
    void bytesOneByOneGiveTheSameLines();
    void randomChunksGiveTheSameLines();
    void linesThatAreNotUtf8AreDroppedAlone();
    void nulBytesAndCarriageReturnsAreKept();
    void aPieceWithoutLineFeedIsNeverDelivered();
    void aLineOverTheLimitIsDeliveredCutAndMarked();
    void readingResumesAfterAnEndlessLine();
    void anEndlessLineCostsBoundedMemory();
    void aCutLineEndsAtACharacter();
    void aLineAtTheLimitIsWhole();
    void paddingFollowsTheLastLine();
};

void LineSplitterTest::everySplitPointGivesTheSameLines()
{
    const std::vector<TakenLine> whole = linesOf(session, {});
    QCOMPARE(whole.size(), std::size_t{7});
    for (std::size_t cut = 0; cut <= session.size(); ++cut) {
        QVERIFY2(linesOf(session, {cut}) == whole, qPrintable(QString::number(cut)));
    }
}

void LineSplitterTest::bytesOneByOneGiveTheSameLines()
{
    QVERIFY(linesOf(session, everyPosition(session)) == linesOf(session, {}));
}

void LineSplitterTest::randomChunksGiveTheSameLines()
{
    const std::vector<TakenLine> whole = linesOf(session, {});
    std::mt19937 random(20260921);
    for (int round = 0; round < 500; ++round) {
        std::vector<std::size_t> cuts;
        for (std::size_t position = random() % 40; position < session.size(); position += random() % 40) {
            cuts.push_back(position);
        }
        QVERIFY(linesOf(session, cuts) == whole);
    }
}

void LineSplitterTest::linesThatAreNotUtf8AreDroppedAlone()
{
    const std::vector<TakenLine> lines = linesOf("one\n\xC0\xAF\ntwo\n\xED\xA0\x80\nthree\n", {});
    QVERIFY((lines == std::vector<TakenLine>{{"one"}, {"two"}, {"three"}}));
}

void LineSplitterTest::nulBytesAndCarriageReturnsAreKept()
{
    const std::vector<TakenLine> lines = linesOf(std::string("a\0b\r\n\r\n", 7), {});
    QVERIFY((lines == std::vector<TakenLine>{{std::string("a\0b\r", 4)}, {"\r"}}));
}

void LineSplitterTest::aPieceWithoutLineFeedIsNeverDelivered()
{
    LineSplitter splitter(limit);
    splitter.append("one\ntwo");
    std::vector<TakenLine> lines;
    takeInto(splitter, lines);
    QVERIFY((lines == std::vector<TakenLine>{{"one"}}));
    QVERIFY(!splitter.hasLines());
    QCOMPARE(splitter.pendingBytes(), std::size_t{3});
}

void LineSplitterTest::aLineOverTheLimitIsDeliveredCutAndMarked()
{
    const std::string stream = std::string(50'000, 'x') + "\nnext\n";
    for (const std::vector<std::size_t> &cuts :
         {std::vector<std::size_t>{}, everyPosition(std::string(60, ' '))}) {
        const std::vector<TakenLine> lines = linesOf(stream, cuts, 40'000);
        QCOMPARE(lines.size(), std::size_t{2});
        QVERIFY(lines[0].truncated);
        QCOMPARE(lines[0].text, std::string(LineSplitter::keptOfTruncatedLine, 'x'));
        QVERIFY((lines[1] == TakenLine{"next", false}));
    }
}

void LineSplitterTest::readingResumesAfterAnEndlessLine()
{
    LineSplitter splitter(40'000);
    const std::string block(10'000, 'x');
    for (int count = 0; count < 100; ++count) {
        splitter.append(block);
    }
    QVERIFY(!splitter.hasLines());
    splitter.append("\n{}\n");
    std::vector<TakenLine> lines;
    takeInto(splitter, lines);
    QCOMPARE(lines.size(), std::size_t{2});
    QVERIFY(lines[0].truncated);
    QVERIFY((lines[1] == TakenLine{"{}", false}));
}

void LineSplitterTest::anEndlessLineCostsBoundedMemory()
{
    LineSplitter splitter(limit);
    const std::string block(64 * 1024, 'x');
    for (int count = 0; count < 256 * 16; ++count) { // 256 MiB
        splitter.append(block);
        QVERIFY(splitter.pendingBytes() <= limit + block.size());
    }
}

void LineSplitterTest::aCutLineEndsAtACharacter()
{
    std::string line(LineSplitter::keptOfTruncatedLine - 1, 'x');
    while (line.size() < 50'000) {
        line += "\xF0\x9F\x99\x82";
    }
    const std::vector<TakenLine> lines = linesOf(line + "\n", {}, 40'000);
    QCOMPARE(lines.size(), std::size_t{1});
    QCOMPARE(lines[0].text, std::string(LineSplitter::keptOfTruncatedLine - 1, 'x'));
}

void LineSplitterTest::aLineAtTheLimitIsWhole()
{
    const std::vector<TakenLine> lines = linesOf(std::string(40'000, 'x') + "\n", {}, 40'000);
    QCOMPARE(lines.size(), std::size_t{1});
    QVERIFY((lines[0] == TakenLine{std::string(40'000, 'x'), false}));
}

void LineSplitterTest::paddingFollowsTheLastLine()
{
    LineSplitter splitter(limit);
    splitter.append("{}\n");
    const LineBatch batch = splitter.take();
    QVERIFY(batch.bytes.size() - batch.lines.back().offset - batch.lines.back().length >=
            LineSplitter::padding);
}

QTEST_GUILESS_MAIN(LineSplitterTest)
#include "LineSplitterTest.moc"
