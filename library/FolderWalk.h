#pragma once

#include "library/RegularFile.h"

#include <QString>

#include <string>
#include <string_view>

#include <dirent.h>

namespace zorel::library {

/// Walks over the folders that lie in a folder, in the system's order, and looks at files in the one that it
/// stands on. A link to a folder is no folder.
class FolderWalk
{
public:
    enum class Hidden { skipped, included };

    /// A folder that cannot be listed has no folders in it. A link at the end of `path` is followed.
    FolderWalk(const QString &path, Hidden hidden);
    ~FolderWalk();
    FolderWalk(const FolderWalk &) = delete;
    FolderWalk &operator=(const FolderWalk &) = delete;

    /// Steps to the next folder; false after the last.
    bool next();
    /// The folder's name: bytes that need not be UTF-8.
    std::string_view name() const { return std::string_view(m_path).substr(0, m_nameLength); }

    /// Whether anything by this name can be reached in the folder.
    bool has(const char *file);
    /// Whether a regular file by this name lies in the folder.
    bool hasRegularFile(const char *file);
    /// FileContent::read.
    bool read(const char *file, std::size_t limit, FileContent &content);

private:
    bool isFolder(const dirent &entry) const;
    const char *pathOf(const char *file);
    int descriptor() const { return ::dirfd(m_folder); }

    DIR *m_folder;
    Hidden m_hidden;
    std::string m_path; ///< of a file, from the walked folder
    std::size_t m_nameLength = 0;
};

} // namespace zorel::library
