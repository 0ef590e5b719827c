#include "backend/bridge/LineReader.h"

#include <QDir>
#include <QTest>

#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

using zorel::backend::bridge::Line;
using zorel::backend::bridge::LineReader;
using zorel::platform::Pipe;

namespace {

void writeAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count <= 0) {
            return;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

/// Repeats `block` until the pipe takes no more, or `enough` bytes are written. Returns their number.
std::size_t writeUntilFull(const Pipe &pipe, const std::string &block, std::size_t enough)
{
    pipe.writeEnd.setNonBlocking();
    std::size_t written = 0;
    for (int refusals = 0; refusals < 100'000 && written < enough;) {
        const ssize_t count = ::write(pipe.writeEnd.number(), block.data(), block.size());
        if (count > 0) {
            written += static_cast<std::size_t>(count);
            refusals = 0;
        } else {
            ++refusals;
            std::this_thread::yield();
        }
    }
    return written;
}

struct Collector
{
    std::vector<std::string> lines;
    LineReader::Handler handler()
    {
        return [this](const Line &line) {
            lines.emplace_back(line.text);
        };
    }
};

} // namespace

class LineReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesArriveInOrderOnTheCreatingThread();
    void aLineOf16MiBIsDecodable();
    void aLineOver64MiBIsCutAndReadingResumes();
    void readingPausesWhileTheOwnerIsBehind();
    void blankLinesCountByTheMemoryTheyTake();
    void nothingIsDeliveredAfterStop();
    void aHandlerMayStopTheReader();
    void aHandlerMayRunAnEventLoop();
    void whenDrainedComesAfterWhatThePipeHeld();
    void whenDrainedComesEvenAfterTheEndOfThePipe();
    void manyReadersLeaveNoDescriptorsBehind();
};

void LineReaderTest::linesArriveInOrderOnTheCreatingThread()
{
    Pipe pipe = Pipe::open();
    std::vector<std::string> lines;
    QThread *const creator = QThread::currentThread();
    LineReader reader(std::move(pipe.readEnd), [&lines, creator](const Line &line) {
        QCOMPARE(QThread::currentThread(), creator);
        lines.emplace_back(line.text);
    });
    constexpr int count = 20'000;
    std::thread writer([&pipe] {
        for (int number = 0; number < count; ++number) {
            writeAll(pipe.writeEnd.number(), std::to_string(number) + "\n");
        }
    });
    QTRY_COMPARE_WITH_TIMEOUT(lines.size(), std::size_t{count}, 30'000);
    writer.join();
    for (int number = 0; number < count; ++number) {
        QCOMPARE(lines[std::size_t(number)], std::to_string(number));
    }
}

void LineReaderTest::aLineOf16MiBIsDecodable()
{
    Pipe pipe = Pipe::open();
    Collector collector;
    LineReader reader(std::move(pipe.readEnd), collector.handler());
    const std::string line(16 * 1024 * 1024, 'x');
    std::thread writer([&] { writeAll(pipe.writeEnd.number(), line + "\n"); });
    QTRY_COMPARE_WITH_TIMEOUT(collector.lines.size(), std::size_t{1}, 30'000);
    writer.join();
    QVERIFY(collector.lines[0] == line);
}

void LineReaderTest::aLineOver64MiBIsCutAndReadingResumes()
{
    Pipe pipe = Pipe::open();
    std::vector<bool> truncated;
    LineReader reader(std::move(pipe.readEnd),
                      [&](const Line &line) { truncated.push_back(line.truncated); });
    std::thread writer([&] {
        const std::string block(1024 * 1024, 'x');
        for (int count = 0; count < 80; ++count) {
            writeAll(pipe.writeEnd.number(), block);
        }
        writeAll(pipe.writeEnd.number(), "\nnext\n");
    });
    QTRY_COMPARE_WITH_TIMEOUT(truncated.size(), std::size_t{2}, 60'000);
    writer.join();
    QVERIFY(truncated[0]);
    QVERIFY(!truncated[1]);
}

void LineReaderTest::readingPausesWhileTheOwnerIsBehind()
{
    Pipe pipe = Pipe::open();
    Collector collector;
    LineReader reader(std::move(pipe.readEnd), collector.handler());
    // This thread does not return to its event loop, so nothing is handled: the pipe must fill up and stay
    // full.
    const std::string line = std::string(1023, 'x') + "\n";
    const std::size_t bound = LineReader::maximumBytesInFlight + std::size_t{1024} * 1024;
    const std::size_t written = writeUntilFull(pipe, line, 2 * bound);
    QVERIFY2(written < bound, qPrintable(QString::number(written)));
    // Once the owner is back, all of it arrives.
    QTRY_COMPARE_WITH_TIMEOUT(collector.lines.size(), written / line.size(), 30'000);
}

void LineReaderTest::blankLinesCountByTheMemoryTheyTake()
{
    Pipe pipe = Pipe::open();
    Collector collector;
    LineReader reader(std::move(pipe.readEnd), collector.handler());
    const std::size_t bound = LineReader::maximumBytesInFlight / 4;
    const std::size_t written = writeUntilFull(pipe, std::string(1024, '\n'), 2 * bound);
    QVERIFY2(written < bound, qPrintable(QString::number(written)));
    QTRY_COMPARE_WITH_TIMEOUT(collector.lines.size(), written, 30'000);
}

void LineReaderTest::nothingIsDeliveredAfterStop()
{
    Pipe pipe = Pipe::open();
    Collector collector;
    LineReader reader(std::move(pipe.readEnd), collector.handler());
    bool drained = false;
    writeAll(pipe.writeEnd.number(), "one\n");
    reader.whenDrained([&drained] { drained = true; });
    reader.stop();
    QCoreApplication::processEvents();
    QVERIFY(collector.lines.empty());
    QVERIFY(!drained);
}

void LineReaderTest::aHandlerMayStopTheReader()
{
    Pipe pipe = Pipe::open();
    std::vector<std::string> lines;
    std::unique_ptr<LineReader> reader;
    reader = std::make_unique<LineReader>(std::move(pipe.readEnd), [&](const Line &line) {
        lines.emplace_back(line.text);
        reader->stop();
    });
    writeAll(pipe.writeEnd.number(), "one\ntwo\n");
    QTRY_COMPARE(lines.size(), std::size_t{1});
    QCoreApplication::processEvents();
    QCOMPARE(lines.size(), std::size_t{1});
}

void LineReaderTest::aHandlerMayRunAnEventLoop()
{
    Pipe pipe = Pipe::open();
    std::vector<std::string> lines;
    LineReader reader(std::move(pipe.readEnd), [&](const Line &line) {
        lines.emplace_back(line.text);
        if (lines.size() == 1) { // as a listener does that shows a dialog
            writeAll(pipe.writeEnd.number(), "three\n");
            QTRY_COMPARE(lines.size(), std::size_t{3});
            QCOMPARE(std::string(line.text), std::string("one"));
        }
    });
    writeAll(pipe.writeEnd.number(), "one\ntwo\n");
    QTRY_VERIFY(lines.size() >= 3);
    writeAll(pipe.writeEnd.number(), "four\n");
    QTRY_COMPARE(lines.size(), std::size_t{4});
    QVERIFY((lines == std::vector<std::string>{"one", "two", "three", "four"}));
}

void LineReaderTest::whenDrainedComesAfterWhatThePipeHeld()
{
    Pipe pipe = Pipe::open();
    Collector collector;
    LineReader reader(std::move(pipe.readEnd), collector.handler());
    std::string text;
    for (int number = 0; number < 5'000; ++number) {
        text += "line\n";
    }
    writeAll(pipe.writeEnd.number(), text);
    std::size_t seen = 0;
    bool drained = false;
    reader.whenDrained([&] {
        drained = true;
        seen = collector.lines.size();
    });
    QTRY_VERIFY(drained);
    QCOMPARE(seen, std::size_t{5'000});
}

void LineReaderTest::whenDrainedComesEvenAfterTheEndOfThePipe()
{
    Pipe pipe = Pipe::open();
    Collector collector;
    LineReader reader(std::move(pipe.readEnd), collector.handler());
    writeAll(pipe.writeEnd.number(), "last\n");
    pipe.writeEnd.close();
    for (int round = 0; round < 2; ++round) {
        bool drained = false;
        reader.whenDrained([&drained] { drained = true; });
        QTRY_VERIFY(drained);
        QCOMPARE(collector.lines.size(), std::size_t{1});
    }
}

void LineReaderTest::manyReadersLeaveNoDescriptorsBehind()
{
    const auto readOnce = [] {
        Pipe pipe = Pipe::open();
        const LineReader reader(std::move(pipe.readEnd), [](const Line &) {});
    };
    readOnce(); // what Qt opens once and keeps
    const auto descriptors = [] {
        return QDir(QStringLiteral("/dev/fd")).entryList(QDir::AllEntries | QDir::System).size();
    };
    const qsizetype before = descriptors();
    for (int round = 0; round < 200; ++round) {
        readOnce();
    }
    QCOMPARE(descriptors(), before);
}

QTEST_GUILESS_MAIN(LineReaderTest)
#include "LineReaderTest.moc"
