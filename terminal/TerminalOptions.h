#pragma once

#include "app/settings/ModelFamily.h"
#include "app/settings/TrainingCapability.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <stdexcept>

namespace zorel::terminal {

/// What the user typed cannot be carried out; `what()` is one sentence for the user, in UTF-8.
class UsageError : public std::runtime_error
{
public:
    explicit UsageError(const QString &sentence);
};

/// The command line of zorel-train. A setting that was not given is empty and stays as it is stored.
struct TerminalOptions
{
    enum class Task { train, listRuns, showRun, compareRuns, showHelp, showVersion };
    enum class Output { display, json };
    enum class Log { hidden, shown };
    enum class Start { afresh, resume };
    enum class Keep { thisRunOnly, saved };

    QString program; ///< what a shell calls it by, from any folder; empty unless parsed
    Task task = Task::train;
    Output output = Output::display;
    Log log = Log::hidden;
    Start start = Start::afresh;
    Keep keep = Keep::thisRunOnly;
    QString searchText; ///< for listRuns
    QStringList runs;   ///< one for showRun; baseline and candidate for compareRuns
    std::optional<std::int64_t> steps;
    std::optional<app::settings::ModelFamily> family;
    std::optional<app::settings::TrainingCapability> capability;
    std::optional<QString> trainingData; ///< absolute, or beginning with "~"
    std::optional<QString> finishedModels;
    std::optional<QString> modelRoot;
    std::optional<QString> modelName;
    std::optional<QString> modelVersion;
    std::optional<QString> author;
    std::optional<QString> description;
    std::optional<QString> license;

    bool operator==(const TerminalOptions &) const = default;

    /// Whether any setting was given that could be saved.
    bool changesSettings() const;

    /// `arguments` begins with the program's name; `folder` is what relative folders are taken from. Throws
    /// UsageError.
    static TerminalOptions parse(const QStringList &arguments, const QString &folder);
};

} // namespace zorel::terminal
