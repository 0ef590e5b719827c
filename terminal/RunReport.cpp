#include "terminal/RunReport.h"

#include "app/presentation/Figures.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace zorel::terminal {

using namespace app::presentation;
using app::settings::ModelFamily;

namespace {

/// `text` as a shell takes it for one word.
QString shellWord(QString text)
{
    static const QRegularExpression harmless(QStringLiteral("^[A-Za-z0-9_./,:=@%+-]+$"));
    if (harmless.match(text).hasMatch()) {
        return text;
    }
    return u'\'' + text.replace(u'\'', QStringLiteral("'\\''")) + u'\'';
}

/// What must be typed to go on with a run that was given `options`; those that were saved need not be said
/// again.
QString resumeCommand(const TerminalOptions &options, std::int64_t steps)
{
    QStringList words{shellWord(options.program), QStringLiteral("--resume"), QStringLiteral("--steps"),
                      QString::number(steps)};
    const auto add = [&](const char *option, const std::optional<QString> &value) {
        if (value && options.keep == TerminalOptions::Keep::thisRunOnly) {
            words << QLatin1String(option) << shellWord(*value);
        }
    };
    const auto rawValueOf = [](const auto &choice) {
        return choice ? std::optional(rawValue(*choice)) : std::nullopt;
    };
    add("--family", rawValueOf(options.family));
    add("--capability", rawValueOf(options.capability));
    add("--training-data", options.trainingData);
    add("--finished-models", options.finishedModels);
    add("--model-root", options.modelRoot);
    add("--model-name", options.modelName);
    add("--model-version", options.modelVersion);
    add("--author", options.author);
    add("--license", options.license);
    add("--description", options.description);
    return words.join(u' ');
}

} // namespace

QString introduction(const app::settings::ZorelSettings &settings)
{
    return QStringLiteral("%1: %2\n  training data    %3\n  finished models  %4\n"
                          "Ctrl-C stops and saves a checkpoint.")
        .arg(title(settings.modelFamily()), title(settings.trainingCapability()),
             settings.expanded(settings.trainingDataPath()),
             settings.expanded(settings.finishedModelsPath()));
}

QString archiveReport(const backend::protocol::ArchivedModel &archive, const QString &scriptsRoot,
                      ModelFamily family)
{
    QString report = QStringLiteral("✓ Model archived after %1 %2 in %3, final loss %4")
                         .arg(groupedText(archive.step),
                              archive.step == 1 ? QStringLiteral("step") : QStringLiteral("steps"),
                              durationText(archive.elapsedS), lossText(archive.loss));
    report += QStringLiteral("\n  ") + archive.path;
    const QString generate = scriptsRoot + QStringLiteral("/generate");
    if (family == ModelFamily::textLanguage && QFileInfo(generate).isExecutable()) {
        report += QStringLiteral("\n\nTo print text from it:\n  %1 %2 --prompt \"Once upon a time\"")
                      .arg(shellWord(generate), shellWord(archive.path));
    }
    return report;
}

QString stopReport(const backend::protocol::TrainStatusPayload &lastTrained, const TerminalOptions &options)
{
    if (lastTrained.step <= 0) {
        return QStringLiteral("Stopped before the first step.");
    }
    return QStringLiteral("Stopped at step %1 of %2. To go on from the latest checkpoint: %3")
        .arg(groupedText(lastTrained.step), groupedText(lastTrained.maxSteps),
             resumeCommand(options, lastTrained.maxSteps));
}

QString setUpHint()
{
    return QStringLiteral("To set everything up, type ./run in the program's source folder. Or install MLX "
                          "yourself, and name the\n"
                          "folder of the training scripts in ZOREL_SCRIPTS_ROOT. See zorel-train --help.");
}

QStringList lastErrorOutput(const std::deque<QString> &logLines, qsizetype most)
{
    const QLatin1String prefix("[py stderr] ");
    QStringList lines;
    for (auto line = logLines.rbegin(); line != logLines.rend() && lines.size() < most; ++line) {
        if (line->startsWith(prefix)) {
            lines.prepend(line->mid(prefix.size()));
        }
    }
    return lines;
}

int exitStatus(TerminalRun::Outcome outcome)
{
    switch (outcome) {
    case TerminalRun::Outcome::archived:
    case TerminalRun::Outcome::stopped:
        return 0;
    case TerminalRun::Outcome::failed:
        return failureExitStatus;
    case TerminalRun::Outcome::notStartable:
        return 3;
    }
    return failureExitStatus;
}

} // namespace zorel::terminal
