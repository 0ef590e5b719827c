#include "terminal/TerminalOptions.h"

#include <QTest>

namespace zorel::tests {

using app::settings::ModelFamily;
using app::settings::TrainingCapability;
using terminal::TerminalOptions;
using terminal::UsageError;

class TerminalOptionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasQuietDefaults();
    void readsEveryOption();
    void oneDashDoesAsWell();
    void takesFamiliesByBothNames_data();
    void takesFamiliesByBothNames();
    void makesFoldersAbsolute_data();
    void makesFoldersAbsolute();
    void readsTheCommandsOfTheLibrary();
    void explainsWrongUsage_data();
    void explainsWrongUsage();
    void helpsWhateverElseIsWrong();

private:
    static TerminalOptions parse(QStringList arguments)
    {
        arguments.prepend(QStringLiteral("zorel-train"));
        return TerminalOptions::parse(arguments, QStringLiteral("/home/ada"));
    }

    static TerminalOptions defaults()
    {
        TerminalOptions options;
        options.program = QStringLiteral("zorel-train");
        return options;
    }
};

void TerminalOptionsTest::hasQuietDefaults()
{
    QVERIFY(parse({}) == defaults());
    QVERIFY(!parse({}).changesSettings());
    QVERIFY(!parse({QStringLiteral("--steps=5"), QStringLiteral("--resume")}).changesSettings());
}

void TerminalOptionsTest::readsEveryOption()
{
    TerminalOptions expected = defaults();
    expected.output = TerminalOptions::Output::json;
    expected.log = TerminalOptions::Log::shown;
    expected.start = TerminalOptions::Start::resume;
    expected.keep = TerminalOptions::Keep::saved;
    expected.steps = 10'000'000;
    expected.family = ModelFamily::textLanguage;
    expected.capability = TrainingCapability::lora;
    expected.trainingData = QStringLiteral("/t");
    expected.finishedModels = QStringLiteral("/f");
    expected.modelRoot = QStringLiteral("/m");
    expected.modelName = QStringLiteral("N");
    expected.modelVersion = QStringLiteral("V");
    expected.author = QString();
    expected.description = QStringLiteral("--json");
    expected.license = QStringLiteral("L");
    const QString line = QStringLiteral(
        "--json|--log|--resume|--save|--steps|10000000|--family|text|--capability|lora|"
        "--training-data|/t|--finished-models|/f|--model-root|/m|--model-name|N|--model-version|V|"
        "--author||--description|--json|--license|L");
    const TerminalOptions options = parse(line.split(u'|'));
    QVERIFY(options == expected);
    QVERIFY(options.changesSettings());
}

void TerminalOptionsTest::oneDashDoesAsWell()
{
    QVERIFY(parse({QStringLiteral("-steps"), QStringLiteral("5"), QStringLiteral("-json")}) ==
            parse({QStringLiteral("--steps"), QStringLiteral("5"), QStringLiteral("--json")}));
}

void TerminalOptionsTest::takesFamiliesByBothNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<ModelFamily>("family");
    QTest::newRow("text") << QStringLiteral("text") << ModelFamily::textLanguage;
    QTest::newRow("text_language") << QStringLiteral("text_language") << ModelFamily::textLanguage;
    QTest::newRow("image") << QStringLiteral("image") << ModelFamily::imageGeneration;
    QTest::newRow("image_generation") << QStringLiteral("image_generation") << ModelFamily::imageGeneration;
    QTest::newRow("multimodal") << QStringLiteral("multimodal") << ModelFamily::multimodal;
}

void TerminalOptionsTest::takesFamiliesByBothNames()
{
    QFETCH(QString, name);
    QFETCH(ModelFamily, family);
    QVERIFY(parse({QStringLiteral("--family"), name}).family == family);
}

void TerminalOptionsTest::makesFoldersAbsolute_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("expected");
    QTest::newRow("absolute") << QStringLiteral("/a/b") << QStringLiteral("/a/b");
    QTest::newRow("trailing slash") << QStringLiteral("/a/b/") << QStringLiteral("/a/b");
    QTest::newRow("relative") << QStringLiteral("texts") << QStringLiteral("/home/ada/texts");
    QTest::newRow("this one") << QStringLiteral(".") << QStringLiteral("/home/ada");
    QTest::newRow("upwards") << QStringLiteral("../x") << QStringLiteral("/home/x");
    QTest::newRow("tilde") << QStringLiteral("~/texts") << QStringLiteral("~/texts");
}

void TerminalOptionsTest::makesFoldersAbsolute()
{
    QFETCH(QString, given);
    QFETCH(QString, expected);
    QCOMPARE(*parse({QStringLiteral("--training-data"), given}).trainingData, expected);
    QCOMPARE(*parse({QStringLiteral("--finished-models"), given}).finishedModels, expected);
    QCOMPARE(*parse({QStringLiteral("--model-root"), given}).modelRoot, expected);
}

void TerminalOptionsTest::readsTheCommandsOfTheLibrary()
{
    const auto parseLine = [](const char *line) {
        return parse(QString::fromLatin1(line).split(u' '));
    };
    TerminalOptions expected = defaults();
    expected.task = TerminalOptions::Task::listRuns;
    QVERIFY(parseLine("list") == expected);
    expected.searchText = QStringLiteral("tiny");
    expected.output = TerminalOptions::Output::json;
    expected.finishedModels = QStringLiteral("/home/ada/runs");
    QVERIFY(parseLine("list tiny --json --finished-models runs") == expected);
    QVERIFY(parseLine("--json list --finished-models=runs tiny") == expected);

    expected = defaults();
    expected.task = TerminalOptions::Task::showRun;
    expected.runs = QStringList{QStringLiteral("a")};
    QVERIFY(parseLine("show a") == expected);
    expected.task = TerminalOptions::Task::compareRuns;
    expected.runs << QStringLiteral("list");
    QVERIFY(parseLine("compare a list") == expected);
}

void TerminalOptionsTest::explainsWrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *arguments, const char *sentence) {
        QTest::newRow(arguments) << QString::fromUtf8(arguments).split(u' ') << QString::fromUtf8(sentence);
    };
    row("--stepz 3", "There is no option --stepz. Did you mean --steps?");
    row("--completely-different", "There is no option --completely-different.");
    row("--bogus", "There is no option --bogus.");
    row("--jsno", "There is no option --jsno. Did you mean --json?");
    row("--name Poet", "There is no option --name. Did you mean --model-name?");
    row("--model Poet",
        "There is no option --model. Did you mean --model-name or --model-version or --model-root?");
    row("-x", "There is no option -x.");
    row("-stepz 3", "There is no option --stepz. Did you mean --steps?");
    for (const char *steps : {"--steps=0", "--steps=-5", "--steps=10000001", "--steps=1,000", "--steps=ten",
                              "--steps=1.5", "--steps=", "--steps=99999999999999999999"}) {
        row(steps, qPrintable(QStringLiteral("--steps takes a whole number from 1 to 10000000, not “%1”.")
                                  .arg(QString::fromUtf8(steps).mid(8))));
    }
    row("--family texts", "--family takes text, image or multimodal, not “texts”.");
    row("--family Text_Language", "--family takes text, image or multimodal, not “Text_Language”.");
    row("--capability LoRA", "--capability takes pretrain, finetune or lora, not “LoRA”.");
    row("books", "“books” is no option; every value stands behind its option's name.");
    row("List", "“List” is no option; every value stands behind its option's name.");
    row("list tiny lm", "“list” takes one text to search for; put it into quotes.");
    row("show", "“show” needs one run: its folder's name, as “list” shows it.");
    row("show a b", "“show” needs one run: its folder's name, as “list” shows it.");
    row("compare a", "“compare” needs two runs: their folders' names, as “list” shows them.");
    row("compare a b c", "“compare” needs two runs: their folders' names, as “list” shows them.");
    row("list --steps 5", "--steps does not go with “list”.");
    row("show a --log", "--log does not go with “show”.");
    row("compare a b --save --model-name N", "--save does not go with “compare”.");
    row("list --finished-models=", "--finished-models needs the path of a folder.");
    row("--training-data=", "--training-data needs the path of a folder.");
    row("--save --steps 5",
        "--save keeps folders, model type, training mode and identity, but none of them was given.");
}

void TerminalOptionsTest::explainsWrongUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, sentence);
    try {
        parse(arguments);
        QFAIL("accepted");
    } catch (const UsageError &error) {
        QCOMPARE(QString::fromUtf8(error.what()), sentence);
    }
    QVERIFY_THROWS_EXCEPTION(UsageError, parse({QStringLiteral("--author")}));
    QVERIFY_THROWS_EXCEPTION(UsageError, parse({QStringLiteral("--resume=3")}));
}

void TerminalOptionsTest::helpsWhateverElseIsWrong()
{
    QVERIFY(parse({QStringLiteral("--help")}).task == TerminalOptions::Task::showHelp);
    QVERIFY(parse({QStringLiteral("--nonsense"), QStringLiteral("-h")}).task ==
            TerminalOptions::Task::showHelp);
    QVERIFY(parse({QStringLiteral("--version")}).task == TerminalOptions::Task::showVersion);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::TerminalOptionsTest)
#include "TerminalOptionsTest.moc"
