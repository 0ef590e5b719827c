#include "terminal/LibraryCommand.h"

#include "library/RunJson.h"
#include "terminal/LibraryReport.h"
#include "terminal/RunReport.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>

#include <algorithm>
#include <iterator>

namespace zorel::terminal {

using library::ArchivedModelRecord;
using library::ComparisonData;
using library::ModelRunComparison;

namespace {

constexpr qsizetype mostNamesShown = 5;

/// In the library's order.
std::vector<const ArchivedModelRecord *> runsOf(const QList<library::LibraryGroup> &groups)
{
    std::vector<const ArchivedModelRecord *> runs;
    for (const library::LibraryGroup &group : groups) {
        for (const ArchivedModelRecord &run : group.runs) {
            runs.push_back(&run);
        }
    }
    std::ranges::sort(runs, [](const ArchivedModelRecord *run, const ArchivedModelRecord *other) {
        return comesBefore(*run, *other);
    });
    return runs;
}

} // namespace

LibraryCommand::LibraryCommand(const TerminalOptions &options, const app::settings::ZorelSettings &settings,
                               OutputStream &output, MessageWriter &messages, MessageWriter &errors)
    : m_options(options)
    , m_finishedModels(settings.expanded(settings.finishedModelsPath()))
    , m_output(output)
    , m_messages(messages)
    , m_errors(errors)
{
    if (options.finishedModels && !QFileInfo(m_finishedModels).isDir()) {
        throw UsageError(QStringLiteral("--finished-models: there is no folder %1.").arg(m_finishedModels));
    }
    for (QString &run : m_options.runs) {
        run = settings.expanded(run);
    }
}

int LibraryCommand::execute()
{
    m_store.scan(m_finishedModels);
    const int status = carryOut();
    if (const std::optional<QString> failure = m_output.failure()) {
        m_errors.writeError(QStringLiteral("zorel-train: The output cannot be written: %1.").arg(*failure));
        return failureExitStatus;
    }
    return status;
}

int LibraryCommand::carryOut()
{
    switch (m_options.task) {
    case TerminalOptions::Task::listRuns:
        return list();
    case TerminalOptions::Task::showRun:
        return show();
    case TerminalOptions::Task::compareRuns:
        return compare();
    case TerminalOptions::Task::train:
    case TerminalOptions::Task::showHelp:
    case TerminalOptions::Task::showVersion:
        break;
    }
    return usageExitStatus;
}

int LibraryCommand::list()
{
    const QList<library::LibraryGroup> groups = m_store.filteredGroups(m_options.searchText);
    const std::vector<const ArchivedModelRecord *> runs = runsOf(groups);
    if (wantsJson()) {
        for (const ArchivedModelRecord *run : runs) {
            write(library::toJson(*run));
        }
    } else if (runs.empty()) {
        m_errors.write(nothingFound(m_options.searchText));
    } else {
        m_messages.write(runTable(runs));
    }
    return 0;
}

int LibraryCommand::show()
{
    const std::optional<ArchivedModelRecord> run = findRun(m_options.runs.value(0));
    if (!run) {
        return failureExitStatus;
    }
    const auto curve = library::summary(m_store.loadLossCurve(*run));
    const auto snapshot = m_store.loadNeuronSnapshot(*run);
    if (wantsJson()) {
        QJsonObject object = library::toJson(*run);
        object.insert(QStringLiteral("loss_curve"), library::toJson(curve));
        object.insert(QStringLiteral("neuron_snapshot"), library::toJson(snapshot));
        write(object);
    } else {
        m_messages.write(runReport(*run, curve, snapshot));
    }
    return 0;
}

int LibraryCommand::compare()
{
    const std::optional<ArchivedModelRecord> baseline = findRun(m_options.runs.value(0));
    const std::optional<ArchivedModelRecord> candidate = findRun(m_options.runs.value(1));
    if (!baseline || !candidate) {
        return failureExitStatus;
    }
    const ModelRunComparison comparison{*baseline, *candidate};
    const ComparisonData data = ComparisonData::load(m_store, comparison);
    if (wantsJson()) {
        write(library::toJson(comparison, data));
    } else {
        m_messages.write(comparisonReport(comparison, data));
    }
    return 0;
}

std::optional<ArchivedModelRecord> LibraryCommand::findRun(const QString &text)
{
    const QList<ArchivedModelRecord> &runs = m_store.models();
    const auto exact = std::ranges::find(runs, text, &ArchivedModelRecord::folderName);
    if (exact != runs.end()) {
        return *exact;
    }
    if (text.contains(u'/') || text == QLatin1String(".")) {
        return findRunByPath(text);
    }
    if (text == QLatin1String("latest") && !runs.isEmpty()) {
        return runs.first();
    }
    return findRunByBeginning(text);
}

std::optional<ArchivedModelRecord> LibraryCommand::findRunByBeginning(const QString &text)
{
    QList<ArchivedModelRecord> found;
    std::ranges::copy_if(m_store.models(), std::back_inserter(found),
                         [&text](const ArchivedModelRecord &run) {
                             return !text.isEmpty() && run.folderName.startsWith(text);
                         });
    if (found.size() == 1) {
        return found.first();
    }
    if (found.isEmpty()) {
        complain(QStringLiteral("There is no run “%1” in %2.").arg(text, m_finishedModels));
        return std::nullopt;
    }
    QStringList names;
    for (const ArchivedModelRecord &run : found.mid(0, mostNamesShown)) {
        names << run.folderName;
    }
    if (found.size() > names.size()) {
        names << QStringLiteral("…");
    }
    complain(QStringLiteral("“%1” may be any of %2 runs: %3.")
                 .arg(text, QString::number(found.size()), names.join(QStringLiteral(", "))));
    return std::nullopt;
}

std::optional<ArchivedModelRecord> LibraryCommand::findRunByPath(const QString &path)
{
    const QFileInfo folder(QDir::cleanPath(QDir::current().absoluteFilePath(path)));
    library::ModelLibraryStore neighbours;
    neighbours.scan(folder.path());
    if (const ArchivedModelRecord *run = neighbours.modelWithId(folder.filePath())) {
        return *run;
    }
    complain(QStringLiteral("There is no run in the folder %1.").arg(folder.filePath()));
    return std::nullopt;
}

void LibraryCommand::complain(const QString &sentence)
{
    m_errors.writeError(QStringLiteral("zorel-train: %1 See zorel-train list.").arg(sentence));
}

void LibraryCommand::write(const QJsonObject &object)
{
    m_output.write(QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
}

} // namespace zorel::terminal
