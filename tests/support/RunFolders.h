#pragma once

#include "library/ArchivedModelRecord.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <optional>
#include <string>
#include <vector>

namespace zorel::tests {

/// One entry of a Finished models folder and what the library makes of it.
struct RunKind
{
    QString entry;                       ///< its name; of an entry whose name is no text, a description
    bool isRun;                          ///< whether the library shows it
    library::ArchivedModelRecord record; ///< as the library is to read it, when it is a run
};

/// A Finished models folder in a temporary place, for run folders written by hand.
class RunFolders
{
public:
    RunFolders();

    /// Without a slash at its end.
    QString path() const { return m_folder.path(); }
    QString pathOf(const QString &entry) const { return m_folder.filePath(entry); }

    /// Writes a file; `name` may hold folders, which are created.
    void write(const QString &name, const QByteArray &content) const;
    /// Writes a run; without a curve or a snapshot, when the text is empty.
    void addRun(const QString &folderName, const QByteArray &manifest, const QByteArray &curve = {},
                const QByteArray &snapshot = {}) const;
    /// Removes a folder and what is in it.
    void remove(const QString &folderName) const;
    /// Sets what counts as the date of a run whose manifest has none.
    void setModified(const QString &entry, library::ArchiveDate date) const;
    /// A symbolic link at `entry` to `target`, which need not exist.
    void link(const QString &entry, const QString &target) const;

    /// Adds entries of every kind, good ones and bad ones, and returns them in no order.
    std::vector<RunKind> addEveryKind() const;

private:
    QTemporaryDir m_folder;
};

/// A manifest with every key that the library reads.
QByteArray completeManifest();
/// What the library makes of it, in a run folder of this path with a curve and a snapshot.
library::ArchivedModelRecord completeRecord(const QString &path);
/// A snapshot of `layers` blocks with `neuronsPerLayer` channel groups of 16 channels, as a JSON text; the
/// activation of group i in block b is `base` + b + i / 100.
QByteArray snapshotText(int layers, int neuronsPerLayer, double base = 0);
/// A loss curve with the steps 1 to `points` and falling losses.
QByteArray curveText(int points);
/// A moment in UTC, such as 2026-06-01T21:44:12Z.
library::ArchiveDate dateOf(const char *text);

} // namespace zorel::tests
