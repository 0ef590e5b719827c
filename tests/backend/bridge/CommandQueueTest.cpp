#include "backend/bridge/CommandQueue.h"
#include "platform/BrokenPipe.h"

#include <QSignalSpy>
#include <QTest>

#include <unistd.h>

using zorel::backend::bridge::CommandQueue;
using zorel::platform::Pipe;

namespace {

QByteArray line(const QString &name, int padding = 0)
{
    return name.toUtf8() + QByteArray(padding, ' ') + '\n';
}

} // namespace

class CommandQueueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void aCommandIsWrittenAtOnce();
    void whatDoesNotFitIsWrittenWhenTheChildReads();
    void onlyTheNewestWaitingValueIsSent();
    void aValueSetBeforeAStartStaysBeforeIt();
    void aHalfWrittenCommandIsFinished();
    void aChildThatNeverReadsCostsBoundedMemory();
    void stopAndQuitAreTakenWhenTheQueueIsFull();
    void aBrokenPipeIsReported();
    void aPipeThatBreaksLaterIsReported();

private:
    QByteArray readUntil(const QByteArray &end);
    void fillPipe();

    Pipe m_pipe;
    std::unique_ptr<CommandQueue> m_queue;
    int m_descriptor = -1;
};

void CommandQueueTest::initTestCase()
{
    zorel::platform::ignoreBrokenPipe();
}

void CommandQueueTest::init()
{
    m_pipe = Pipe::open();
    m_pipe.readEnd.setNonBlocking();
    m_descriptor = m_pipe.writeEnd.number();
    m_queue = std::make_unique<CommandQueue>(std::move(m_pipe.writeEnd));
}

QByteArray CommandQueueTest::readUntil(const QByteArray &end)
{
    QByteArray received;
    const auto readSome = [&] {
        char buffer[4096];
        for (ssize_t count = 0; (count = ::read(m_pipe.readEnd.number(), buffer, sizeof buffer)) > 0;) {
            received.append(buffer, count);
        }
        return received.endsWith(end);
    };
    [&] {
        QTRY_VERIFY(readSome());
    }();
    return received;
}

void CommandQueueTest::fillPipe()
{
    // One command that is larger than any pipe is half written and blocks what follows.
    QVERIFY(!m_queue->send(QStringLiteral("toggle_pause"), line(QStringLiteral("front"), 1 << 18)));
}

void CommandQueueTest::aCommandIsWrittenAtOnce()
{
    QVERIFY(!m_queue->send(QStringLiteral("stop"), line(QStringLiteral("stop"))));
    char buffer[16];
    QCOMPARE(::read(m_pipe.readEnd.number(), buffer, sizeof buffer), ssize_t{5});
}

void CommandQueueTest::whatDoesNotFitIsWrittenWhenTheChildReads()
{
    fillPipe();
    for (int number = 0; number < 10; ++number) {
        const QString name = QStringLiteral("toggle_pause");
        QVERIFY(!m_queue->send(name, line(name + QString::number(number))));
    }
    const QByteArray received = readUntil("toggle_pause9\n");
    QCOMPARE(received.count('\n'), 11);
    QVERIFY(received.indexOf("toggle_pause3\n") < received.indexOf("toggle_pause4\n"));
}

void CommandQueueTest::onlyTheNewestWaitingValueIsSent()
{
    fillPipe();
    for (int number = 0; number < 1000; ++number) {
        const QString name = QStringLiteral("set_model_identity");
        QVERIFY(!m_queue->send(name, line(name + QString::number(number))));
    }
    QVERIFY(!m_queue->send(QStringLiteral("set_paths"), line(QStringLiteral("set_paths"))));
    const QByteArray received = readUntil("set_paths\n");
    QCOMPARE(received.count("set_model_identity"), 1);
    QVERIFY(received.contains("set_model_identity999\n"));
}

void CommandQueueTest::aValueSetBeforeAStartStaysBeforeIt()
{
    fillPipe();
    const auto send = [this](const char *name, const char *text) {
        QVERIFY(!m_queue->send(QString::fromLatin1(name), line(QString::fromLatin1(text))));
    };
    send("set_paths", "oldest");
    send("set_paths", "first");
    send("start", "start");
    send("set_paths", "second");
    send("stop", "stop");
    send("set_paths", "last");
    const QByteArray received = readUntil("last\n");
    QCOMPARE(received.mid(received.indexOf('\n') + 1), QByteArray("first\nstart\nstop\nlast\n"));
}

void CommandQueueTest::aHalfWrittenCommandIsFinished()
{
    const QString name = QStringLiteral("set_model_identity");
    QVERIFY(!m_queue->send(name, line(QStringLiteral("first"), 1 << 18)));
    QVERIFY(!m_queue->send(name, line(QStringLiteral("second"))));
    const QByteArray received = readUntil("second\n");
    QVERIFY(received.startsWith("first "));
    QCOMPARE(received.count('\n'), 2);
    QCOMPARE(received.size(), 5 + (1 << 18) + 1 + 7);
}

void CommandQueueTest::aChildThatNeverReadsCostsBoundedMemory()
{
    fillPipe();
    std::size_t taken = 0;
    std::optional<QString> failure;
    while (!failure) {
        failure = m_queue->send(QStringLiteral("toggle_pause"), line(QStringLiteral("toggle_pause")));
        taken += failure ? 0 : 1;
    }
    QCOMPARE(taken, CommandQueue::maximumWaiting - 1);
    QCOMPARE(*failure, QStringLiteral("the backend does not read its input"));
}

void CommandQueueTest::stopAndQuitAreTakenWhenTheQueueIsFull()
{
    fillPipe();
    while (!m_queue->send(QStringLiteral("toggle_pause"), line(QStringLiteral("toggle_pause")))) {
    }
    QVERIFY(!m_queue->send(QStringLiteral("stop"), line(QStringLiteral("stop"))));
    QVERIFY(!m_queue->send(QStringLiteral("quit"), line(QStringLiteral("quit"))));
    QVERIFY(readUntil("quit\n").endsWith("stop\nquit\n"));
}

void CommandQueueTest::aBrokenPipeIsReported()
{
    m_pipe.readEnd.close();
    const std::optional<QString> failure =
        m_queue->send(QStringLiteral("stop"), line(QStringLiteral("stop")));
    QCOMPARE(failure.value_or(QString()), QStringLiteral("Broken pipe"));
}

void CommandQueueTest::aPipeThatBreaksLaterIsReported()
{
    fillPipe();
    QSignalSpy failed(m_queue.get(), &CommandQueue::failed);
    m_pipe.readEnd.close();
    QVERIFY(failed.wait());
    QCOMPARE(failed.at(0).at(0).toString(), QStringLiteral("Broken pipe"));
}

QTEST_GUILESS_MAIN(CommandQueueTest)
#include "CommandQueueTest.moc"
