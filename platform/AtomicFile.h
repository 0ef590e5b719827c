#pragma once

#include <QByteArray>
#include <QString>

namespace zorel::platform {

/// Makes `contents` the whole content of the file at `path`. Returns false, with the file as it was, when
/// that fails; a full disk counts as failure, and so does a file that is not writable or not regular. Readers
/// and a crash meet the old or the new content, never a part. Follows symbolic links and keeps the file's
/// permissions; a new file is the user's own. The caller sees to it that nobody else replaces the same file
/// at the same time.
bool replaceFile(const QString &path, const QByteArray &contents);

/// Gives the file at `path` a name of its own beside it ("NAME.damaged", "NAME.damaged-2", ...), so that
/// replacing it loses nothing; once is enough for a file that has such a name already. Returns false when
/// that fails.
bool keepAside(const QString &path);

} // namespace zorel::platform
