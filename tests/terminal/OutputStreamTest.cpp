#include "terminal/OutputStream.h"

#include "platform/BrokenPipe.h"
#include "platform/Descriptor.h"

#include <QFile>
#include <QTest>

namespace zorel::tests {

using terminal::OutputStream;

class OutputStreamTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { platform::ignoreBrokenPipe(); }
    void writesAll();
    void aReaderThatHadEnoughIsNoFailure();
    void saysWhyAWriteFailed();
};

void OutputStreamTest::writesAll()
{
    platform::Pipe pipe = platform::Pipe::open();
    OutputStream stream(pipe.writeEnd.number());
    stream.write("one ");
    stream.write("two");
    pipe.writeEnd.close();
    QFile reader;
    QVERIFY(reader.open(pipe.readEnd.number(), QIODevice::ReadOnly));
    QCOMPARE(reader.readAll(), QByteArray("one two"));
    QVERIFY(!stream.isClosed());
    QVERIFY(!stream.failure());
}

void OutputStreamTest::aReaderThatHadEnoughIsNoFailure()
{
    platform::Pipe pipe = platform::Pipe::open();
    pipe.readEnd.close();
    OutputStream stream(pipe.writeEnd.number());
    stream.write("line");
    QVERIFY(stream.isClosed());
    QVERIFY(!stream.failure());
}

void OutputStreamTest::saysWhyAWriteFailed()
{
    platform::Pipe pipe = platform::Pipe::open();
    OutputStream stream(pipe.readEnd.number());
    stream.write("line");
    QVERIFY(stream.isClosed());
    QCOMPARE(stream.failure(), std::optional(QStringLiteral("Bad file descriptor")));
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::OutputStreamTest)
#include "OutputStreamTest.moc"
