#include "backend/protocol/CommandEncoder.h"
#include "backend/protocol/Commands.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <limits>

using zorel::backend::protocol::encodeCommand;
using zorel::backend::protocol::setMaxStepsCommand;
using zorel::backend::protocol::setModelIdentityCommand;
using zorel::backend::protocol::setPathsCommand;
using zorel::backend::protocol::setTrainingProfileCommand;
using zorel::backend::protocol::simpleCommand;
using zorel::backend::protocol::startCommand;

namespace {

const QMap<QString, QString> wholeIdentity{{QStringLiteral("name"), QStringLiteral("tiny-lm")},
                                           {QStringLiteral("version"), QStringLiteral("1.0.0")},
                                           {QStringLiteral("author"), QStringLiteral("Ada")},
                                           {QStringLiteral("description"), QStringLiteral("a \"test\"")},
                                           {QStringLiteral("license"), QStringLiteral("MIT")}};

} // namespace

class CommandEncoderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandsWithoutKeys_data();
    void commandsWithoutKeys();
    void setPaths();
    void setModelIdentity();
    void anIdentityLeavesOutWhatIsEmpty();
    void anEmptyIdentityIsAnEmptyObject();
    void setTrainingProfile();
    void startHasItsKeysSorted();
    void startDoesNotClampItsSteps();
    void stepCountsAreClamped_data();
    void stepCountsAreClamped();
    void keysAreSortedByTheirCharacters();
    void everyCommandReadsBackAsItWas_data();
    void everyCommandReadsBackAsItWas();
};

void CommandEncoderTest::commandsWithoutKeys_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"toggle_pause", "stop", "quit"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void CommandEncoderTest::commandsWithoutKeys()
{
    QFETCH(QString, name);
    QCOMPARE(encodeCommand(simpleCommand(name)), "{\"cmd\":\"" + name.toUtf8() + "\"}\n");
}

void CommandEncoderTest::setPaths()
{
    QCOMPARE(encodeCommand(
                 setPathsCommand(QStringLiteral("/t"), QStringLiteral("/f \"x\""), QStringLiteral("/m/ü"))),
             QByteArray(
                 "{\"cmd\":\"set_paths\",\"finished_models\":\"/f \\\"x\\\"\",\"model_root\":\"/m/\xC3\xBC\","
                 "\"training_data\":\"/t\"}\n"));
}

void CommandEncoderTest::setModelIdentity()
{
    QCOMPARE(
        encodeCommand(setModelIdentityCommand(wholeIdentity)),
        QByteArray(R"({"cmd":"set_model_identity","identity":{"author":"Ada","description":"a \"test\"",)"
                   R"("license":"MIT","name":"tiny-lm","version":"1.0.0"}})"
                   "\n"));
}

void CommandEncoderTest::anIdentityLeavesOutWhatIsEmpty()
{
    const QMap<QString, QString> identity{{QStringLiteral("name"), QStringLiteral(" ")},
                                          {QStringLiteral("version"), QString()},
                                          {QStringLiteral("author"), QStringLiteral("")}};
    QCOMPARE(encodeCommand(setModelIdentityCommand(identity)),
             QByteArray("{\"cmd\":\"set_model_identity\",\"identity\":{\"name\":\" \"}}\n"));
}

void CommandEncoderTest::anEmptyIdentityIsAnEmptyObject()
{
    QCOMPARE(encodeCommand(setModelIdentityCommand({})),
             QByteArray("{\"cmd\":\"set_model_identity\",\"identity\":{}}\n"));
}

void CommandEncoderTest::setTrainingProfile()
{
    QCOMPARE(encodeCommand(setTrainingProfileCommand(
                 {{QStringLiteral("training_capability"), QStringLiteral("lora")},
                  {QStringLiteral("model_family"), QStringLiteral("text_language")}})),
             QByteArray("{\"cmd\":\"set_training_profile\",\"profile\":{\"model_family\":\"text_language\","
                        "\"training_capability\":\"lora\"}}\n"));
}

void CommandEncoderTest::startHasItsKeysSorted()
{
    QCOMPARE(
        encodeCommand(startCommand(2000, true, {{QStringLiteral("name"), QStringLiteral("n")}},
                                   QStringLiteral("multimodal"), QStringLiteral("pretrain"))),
        QByteArray(
            "{\"cmd\":\"start\",\"max_steps\":2000,\"model_family\":\"multimodal\","
            "\"model_identity\":{\"name\":\"n\"},\"resume\":true,\"training_capability\":\"pretrain\"}\n"));
}

void CommandEncoderTest::startDoesNotClampItsSteps()
{
    const std::int64_t steps = std::numeric_limits<std::int64_t>::max();
    const QByteArray line = encodeCommand(startCommand(steps, false, {}, QString(), QString()));
    QVERIFY(line.contains("\"max_steps\":9223372036854775807,"));
    QVERIFY(line.contains("\"resume\":false,"));
}

void CommandEncoderTest::stepCountsAreClamped_data()
{
    QTest::addColumn<qint64>("asked");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("zero") << qint64(0) << QByteArray("1");
    QTest::newRow("negative") << qint64(-5) << QByteArray("1");
    QTest::newRow("lowest") << std::numeric_limits<qint64>::min() << QByteArray("1");
    QTest::newRow("one") << qint64(1) << QByteArray("1");
    QTest::newRow("two") << qint64(2) << QByteArray("2");
    QTest::newRow("ten million") << qint64(10'000'000) << QByteArray("10000000");
    QTest::newRow("one more") << qint64(10'000'001) << QByteArray("10000000");
    QTest::newRow("twenty million") << qint64(20'000'000) << QByteArray("10000000");
    QTest::newRow("highest") << std::numeric_limits<qint64>::max() << QByteArray("10000000");
}

void CommandEncoderTest::stepCountsAreClamped()
{
    QFETCH(qint64, asked);
    QFETCH(QByteArray, sent);
    QCOMPARE(encodeCommand(setMaxStepsCommand(asked)), "{\"cmd\":\"set_max_steps\",\"n\":" + sent + "}\n");
}

void CommandEncoderTest::keysAreSortedByTheirCharacters()
{
    QJsonObject object;
    for (const char *key : {"b", "a_b", "ab", "a", "c", "B"}) {
        object.insert(QString::fromLatin1(key), 1);
    }
    QCOMPARE(encodeCommand(object), QByteArray("{\"B\":1,\"a\":1,\"a_b\":1,\"ab\":1,\"b\":1,\"c\":1}\n"));
}

void CommandEncoderTest::everyCommandReadsBackAsItWas_data()
{
    QTest::addColumn<QJsonObject>("command");
    const QString odd = QStringLiteral("\"\\/\b\f\n\r\t\u0001\u007F\u2028 ü😀") + QChar(0);
    QTest::newRow("paths") << setPathsCommand(odd, QString(), QStringLiteral("~"));
    QTest::newRow("identity") << setModelIdentityCommand({{odd, odd}});
    QTest::newRow("steps") << setMaxStepsCommand(123456);
    QTest::newRow("start") << startCommand(-1, true, wholeIdentity, odd, odd);
    QTest::newRow("integers") << QJsonObject{{QStringLiteral("low"), std::numeric_limits<qint64>::min()},
                                             {QStringLiteral("odd"), Q_INT64_C(9007199254740993)}};
}

void CommandEncoderTest::everyCommandReadsBackAsItWas()
{
    QFETCH(QJsonObject, command);
    const QByteArray line = encodeCommand(command);
    QCOMPARE(line.count('\n'), 1);
    QVERIFY(line.endsWith('\n'));
    QVERIFY(!line.contains('\r'));
    QCOMPARE(QJsonDocument::fromJson(line).object(), command);
}

QTEST_APPLESS_MAIN(CommandEncoderTest)
#include "CommandEncoderTest.moc"
