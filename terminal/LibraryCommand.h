#pragma once

#include "app/settings/ZorelSettings.h"
#include "library/ModelLibraryStore.h"
#include "terminal/MessageWriter.h"
#include "terminal/OutputStream.h"
#include "terminal/TerminalOptions.h"

#include <QJsonObject>
#include <QString>

namespace zorel::terminal {

/// zorel-train list, show and compare: looks into the library and trains nothing.
class LibraryCommand
{
public:
    /// The streams must outlive this object. Throws UsageError for a folder that was named and is not there.
    LibraryCommand(const TerminalOptions &options, const app::settings::ZorelSettings &settings,
                   OutputStream &output, MessageWriter &messages, MessageWriter &errors);

    /// The process's exit status.
    int execute();

private:
    int carryOut();
    int list();
    int show();
    int compare();

    std::optional<library::ArchivedModelRecord> findRun(const QString &text);
    std::optional<library::ArchivedModelRecord> findRunByBeginning(const QString &text);
    std::optional<library::ArchivedModelRecord> findRunByPath(const QString &path);
    void complain(const QString &sentence);
    void write(const QJsonObject &object);
    bool wantsJson() const { return m_options.output == TerminalOptions::Output::json; }

    TerminalOptions m_options;
    QString m_finishedModels;
    OutputStream &m_output;
    MessageWriter &m_messages;
    MessageWriter &m_errors;
    library::ModelLibraryStore m_store;
};

} // namespace zorel::terminal
