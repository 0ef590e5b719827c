#pragma once

#include <QString>

#include <filesystem>

namespace zorel::updater {

class Cancellation;

/// Which file stands at a path, and which state of it: another file under the same name, and the same file
/// after a change, have another identity.
struct FileIdentity
{
    quint64 device = 0;
    quint64 node = 0;
    qint64 size = 0;
    std::filesystem::file_time_type changed;

    bool operator==(const FileIdentity &) const = default;

    /// Does not follow a link. Throws UpdateError (`extractionFailed`) when there is no regular file.
    static FileIdentity of(const QString &path);
};

struct FileDigest
{
    QString hexadecimal; ///< SHA-256, lower case
    FileIdentity identity;
};

/// Reads the file at `path` in chunks of 1 MiB. Throws UpdateError: `cancelled`, or `extractionFailed` when
/// there is no regular file, when it cannot be read, or when it changes meanwhile.
FileDigest digestOf(const QString &path, const Cancellation &cancellation);

} // namespace zorel::updater
