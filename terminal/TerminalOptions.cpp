#include "terminal/TerminalOptions.h"

#include "backend/protocol/Commands.h"

#include <QCommandLineParser>
#include <QDir>

#include <algorithm>
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

QString unknownOption(const QString &name)
{
    const QStringList known = flagNames + valueNames;
    const auto closest = std::ranges::min_element(
        known, {}, [&name](const QString &candidate) { return editDistance(name, candidate); });
    QString sentence = QStringLiteral("There is no option %1%2.")
                           .arg(name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--"), name);
    if (name.size() > 2 && editDistance(name, *closest) <= 3) {
        sentence += QStringLiteral(" Did you mean --%1?").arg(*closest);
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

[[noreturn]] void throwParserError(const QCommandLineParser &parser)
{
    const QStringList unknown = parser.unknownOptionNames();
    throw UsageError(unknown.isEmpty() ? parser.errorText() : unknownOption(unknown.first()));
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
    declareOptions(parser);
    const bool parsed = parser.parse(arguments);
    const auto isSet = [&parser](const char *name) {
        return parser.isSet(QLatin1String(name));
    };
    const auto value = [&](const char *name) {
        return isSet(name) ? std::optional(parser.value(QLatin1String(name))) : std::nullopt;
    };

    TerminalOptions options;
    // Whoever asks for help gets it, whatever else is wrong.
    if (isSet("help")) {
        options.task = Task::showHelp;
        return options;
    }
    if (!parsed) {
        throwParserError(parser);
    }
    if (isSet("version")) {
        options.task = Task::showVersion;
        return options;
    }
    if (const QStringList stray = parser.positionalArguments(); !stray.isEmpty()) {
        throw UsageError(QStringLiteral("“%1” is no option; every value stands behind its option's name.")
                             .arg(stray.first()));
    }

    options.output = isSet("json") ? Output::json : Output::display;
    options.log = isSet("log") ? Log::shown : Log::hidden;
    options.start = isSet("resume") ? Start::resume : Start::afresh;
    options.keep = isSet("save") ? Keep::saved : Keep::thisRunOnly;
    if (const auto steps = value("steps")) {
        options.steps = parseSteps(*steps);
    }
    if (const auto family = value("family")) {
        options.family = parseFamily(*family);
    }
    if (const auto capability = value("capability")) {
        options.capability = parseCapability(*capability);
    }
    const auto folderValue = [&](const char *name) {
        const std::optional<QString> text = value(name);
        return text ? std::optional(absoluteFolder(QLatin1String(name), *text, folder)) : std::nullopt;
    };
    options.trainingData = folderValue("training-data");
    options.finishedModels = folderValue("finished-models");
    options.modelRoot = folderValue("model-root");
    options.modelName = value("model-name");
    options.modelVersion = value("model-version");
    options.author = value("author");
    options.description = value("description");
    options.license = value("license");

    if (options.keep == Keep::saved && !options.changesSettings()) {
        throw UsageError(QStringLiteral(
            "--save keeps folders, model type, training mode and identity, but none of them was given."));
    }
    return options;
}

} // namespace zorel::terminal
