#include "terminal/TerminalOptions.h"

#include "backend/protocol/Commands.h"

#include <QCommandLineParser>
#include <QDir>

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

namespace zorel::terminal {

namespace {

using app::settings::ModelFamily;
using app::settings::TrainingCapability;

const QStringList flagNames{QStringLiteral("help"), QStringLiteral("version"), QStringLiteral("resume"),
                            QStringLiteral("save"), QStringLiteral("log"),     QStringLiteral("json")};
const QStringList valueNames{
    QStringLiteral("steps"),      QStringLiteral("family"),         QStringLiteral("capability"),
    QStringLiteral("model-name"), QStringLiteral("model-version"),  QStringLiteral("author"),
    QStringLiteral("license"),    QStringLiteral("description"),    QStringLiteral("training-data"),
    QStringLiteral("model-root"), QStringLiteral("finished-models")};

/// How many letters must be inserted, removed or replaced to turn one text into the other.
qsizetype editDistance(const QString &from, const QString &to)
{
    std::vector<qsizetype> row(static_cast<std::size_t>(to.size()) + 1);
    for (std::size_t column = 0; column < row.size(); ++column) {
        row[column] = qsizetype(column);
    }
    for (qsizetype i = 0; i < from.size(); ++i) {
        qsizetype diagonal = row[0]++;
        for (std::size_t column = 1; column < row.size(); ++column) {
            const qsizetype replaced = diagonal + (from[i] != to[qsizetype(column) - 1]);
            diagonal = row[column];
            row[column] = std::min({replaced, row[column] + 1, row[column - 1] + 1});
        }
    }
    return row.back();
}

/// The options for which `name` may have been meant: those that have it as a word of theirs, otherwise the
/// one that is spelt nearly so.
QStringList similarOptions(const QString &name)
{
    const QStringList known = flagNames + valueNames;
    QStringList similar;
    std::ranges::copy_if(known, std::back_inserter(similar),
                         [&name](const QString &candidate) { return candidate.split(u'-').contains(name); });
    if (similar.isEmpty()) {
        const auto closest = std::ranges::min_element(
            known, {}, [&name](const QString &candidate) { return editDistance(name, candidate); });
        // With more than half of its letters changed it is another word.
        if (editDistance(name, *closest) <= std::min<qsizetype>(3, name.size() / 2)) {
            similar << *closest;
        }
    }
    return similar;
}

QString unknownOption(const QString &name)
{
    QString sentence = QStringLiteral("There is no option %1%2.")
                           .arg(name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--"), name);
    if (const QStringList similar = similarOptions(name); !similar.isEmpty()) {
        sentence += QStringLiteral(" Did you mean --%1?").arg(similar.join(QStringLiteral(" or --")));
    }
    return sentence;
}

std::int64_t parseSteps(const QString &text)
{
    bool isNumber = false;
    const qlonglong steps = text.toLongLong(&isNumber);
    if (!isNumber || steps < backend::protocol::minimumMaxSteps ||
        steps > backend::protocol::maximumMaxSteps) {
        throw UsageError(
            QStringLiteral("--steps takes a whole number from 1 to 10000000, not “%1”.").arg(text));
    }
    return steps;
}

ModelFamily parseFamily(const QString &text)
{
    if (text == QLatin1String("text")) {
        return ModelFamily::textLanguage;
    }
    if (text == QLatin1String("image")) {
        return ModelFamily::imageGeneration;
    }
    const auto family = std::ranges::find(app::settings::allModelFamilies, text, [](ModelFamily candidate) {
        return app::settings::rawValue(candidate);
    });
    if (family == app::settings::allModelFamilies.end()) {
        throw UsageError(QStringLiteral("--family takes text, image or multimodal, not “%1”.").arg(text));
    }
    return *family;
}

TrainingCapability parseCapability(const QString &text)
{
    const auto capability =
        std::ranges::find(app::settings::allTrainingCapabilities, text,
                          [](TrainingCapability candidate) { return app::settings::rawValue(candidate); });
    if (capability == app::settings::allTrainingCapabilities.end()) {
        throw UsageError(
            QStringLiteral("--capability takes pretrain, finetune or lora, not “%1”.").arg(text));
    }
    return *capability;
}

/// A name without a slash is found by the shell.
QString callableProgram(const QString &typed, const QString &folder)
{
    return typed.contains(u'/') ? QDir::cleanPath(QDir(folder).absoluteFilePath(typed)) : typed;
}

QString absoluteFolder(const QString &name, const QString &text, const QString &folder)
{
    if (text.isEmpty()) {
        throw UsageError(QStringLiteral("--%1 needs the path of a folder.").arg(name));
    }
    // The shell leaves a quoted tilde alone; the settings expand it.
    return text.startsWith(u'~') ? text : QDir::cleanPath(QDir(folder).absoluteFilePath(text));
}

void declareOptions(QCommandLineParser &parser)
{
    for (const QString &name : flagNames) {
        parser.addOption(QCommandLineOption(
            name == QLatin1String("help") ? QStringList{name, QStringLiteral("h")} : QStringList{name}));
    }
    for (const QString &name : valueNames) {
        parser.addOption(QCommandLineOption(name, QString(), name));
    }
}

/// What the first word on the command line asks for, when it is no option.
struct Command
{
    QString name;
    TerminalOptions::Task task;
    qsizetype fewestWords; ///< that follow it
    qsizetype mostWords;
    QString wordsNeeded; ///< said when there are more or fewer
};

const std::array commands{
    Command{QStringLiteral("list"), TerminalOptions::Task::listRuns, 0, 1,
            QStringLiteral("“list” takes one text to search for; put it into quotes.")},
    Command{QStringLiteral("show"), TerminalOptions::Task::showRun, 1, 1,
            QStringLiteral("“show” needs one run: its folder's name, as “list” shows it.")},
    Command{QStringLiteral("compare"), TerminalOptions::Task::compareRuns, 2, 2,
            QStringLiteral("“compare” needs two runs: their folders' names, as “list” shows them.")},
};

void requireOptionsOfLibrary(const QCommandLineParser &parser, const Command &command)
{
    const QStringList fitting{QStringLiteral("json"), QStringLiteral("finished-models")};
    for (const QString &name : flagNames + valueNames) {
        if (parser.isSet(name) && !fitting.contains(name)) {
            throw UsageError(QStringLiteral("--%1 does not go with “%2”.").arg(name, command.name));
        }
    }
}

/// Leaves `options` alone when there is no word that is no option.
void readCommand(const QCommandLineParser &parser, TerminalOptions &options)
{
    QStringList words = parser.positionalArguments();
    if (words.isEmpty()) {
        return;
    }
    const QString name = words.takeFirst();
    const auto command = std::ranges::find(commands, name, &Command::name);
    if (command == commands.end()) {
        throw UsageError(
            QStringLiteral("“%1” is no option; every value stands behind its option's name.").arg(name));
    }
    if (words.size() < command->fewestWords || words.size() > command->mostWords) {
        throw UsageError(command->wordsNeeded);
    }
    requireOptionsOfLibrary(parser, *command);
    options.task = command->task;
    if (options.task == TerminalOptions::Task::listRuns) {
        options.searchText = words.value(0);
    } else {
        options.runs = words;
    }
}

[[noreturn]] void throwParserError(const QCommandLineParser &parser)
{
    const QStringList unknown = parser.unknownOptionNames();
    throw UsageError(unknown.isEmpty() ? parser.errorText() : unknownOption(unknown.first()));
}

/// What stands on the command line, by the options' names.
class GivenOptions
{
public:
    /// Paths of folders are meant from `folder` on. The parser must outlive this.
    GivenOptions(const QCommandLineParser &parser, const QString &folder)
        : m_parser(parser)
        , m_folder(folder)
    {}

    bool has(const char *name) const { return m_parser.isSet(QLatin1String(name)); }

    std::optional<QString> text(const char *name) const
    {
        return has(name) ? std::optional(m_parser.value(QLatin1String(name))) : std::nullopt;
    }

    std::optional<QString> folder(const char *name) const
    {
        const std::optional<QString> path = text(name);
        return path ? std::optional(absoluteFolder(QLatin1String(name), *path, m_folder)) : std::nullopt;
    }

private:
    const QCommandLineParser &m_parser;
    QString m_folder;
};

void readRun(const GivenOptions &given, TerminalOptions &options)
{
    options.output = given.has("json") ? TerminalOptions::Output::json : TerminalOptions::Output::display;
    options.log = given.has("log") ? TerminalOptions::Log::shown : TerminalOptions::Log::hidden;
    options.start = given.has("resume") ? TerminalOptions::Start::resume : TerminalOptions::Start::afresh;
    if (const auto steps = given.text("steps")) {
        options.steps = parseSteps(*steps);
    }
}

void readSettings(const GivenOptions &given, TerminalOptions &options)
{
    if (const auto family = given.text("family")) {
        options.family = parseFamily(*family);
    }
    if (const auto capability = given.text("capability")) {
        options.capability = parseCapability(*capability);
    }
    options.trainingData = given.folder("training-data");
    options.finishedModels = given.folder("finished-models");
    options.modelRoot = given.folder("model-root");
    options.modelName = given.text("model-name");
    options.modelVersion = given.text("model-version");
    options.author = given.text("author");
    options.description = given.text("description");
    options.license = given.text("license");
    options.keep = given.has("save") ? TerminalOptions::Keep::saved : TerminalOptions::Keep::thisRunOnly;
    if (options.keep == TerminalOptions::Keep::saved && !options.changesSettings()) {
        throw UsageError(QStringLiteral(
            "--save keeps folders, model type, training mode and identity, but none of them was given."));
    }
}

} // namespace

UsageError::UsageError(const QString &sentence)
    : std::runtime_error(sentence.toStdString())
{}

bool TerminalOptions::changesSettings() const
{
    return family || capability || trainingData || finishedModels || modelRoot || modelName || modelVersion ||
           author || description || license;
}

TerminalOptions TerminalOptions::parse(const QStringList &arguments, const QString &folder)
{
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    declareOptions(parser);
    const bool parsed = parser.parse(arguments);
    const GivenOptions given(parser, folder);

    TerminalOptions options;
    options.program = callableProgram(arguments.first(), folder);
    // Whoever asks for help gets it, whatever else is wrong.
    if (given.has("help")) {
        options.task = Task::showHelp;
        return options;
    }
    if (!parsed) {
        throwParserError(parser);
    }
    if (given.has("version")) {
        options.task = Task::showVersion;
        return options;
    }
    readCommand(parser, options);
    readRun(given, options);
    readSettings(given, options);
    return options;
}

} // namespace zorel::terminal
