#include "library/FolderWalk.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zorel::library {

FolderWalk::FolderWalk(const QString &path, Hidden hidden)
    : m_folder(::opendir(QFile::encodeName(path).constData()))
    , m_hidden(hidden)
{}

FolderWalk::~FolderWalk()
{
    if (m_folder) {
        ::closedir(m_folder);
    }
}

bool FolderWalk::next()
{
    while (const dirent *entry = m_folder ? ::readdir(m_folder) : nullptr) {
        const std::string_view entryName = entry->d_name;
        const bool isItselfOrParent = entryName == "." || entryName == "..";
        const bool isLeftOut = m_hidden == Hidden::skipped && entryName.starts_with('.');
        if (!isItselfOrParent && !isLeftOut && isFolder(*entry)) {
            m_path.assign(entryName).push_back('/');
            m_nameLength = entryName.size();
            return true;
        }
    }
    return false;
}

bool FolderWalk::has(const char *file)
{
    return ::faccessat(descriptor(), pathOf(file), F_OK, 0) == 0;
}

bool FolderWalk::hasRegularFile(const char *file)
{
    return RegularFile::exists(descriptor(), pathOf(file));
}

bool FolderWalk::read(const char *file, std::size_t limit, FileContent &content)
{
    return content.read(descriptor(), pathOf(file), limit);
}

bool FolderWalk::isFolder(const dirent &entry) const
{
    if (entry.d_type != DT_UNKNOWN) {
        return entry.d_type == DT_DIR;
    }
    // Some file systems do not say.
    struct stat status
    {};
    return ::fstatat(descriptor(), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISDIR(status.st_mode);
}

const char *FolderWalk::pathOf(const char *file)
{
    m_path.resize(m_nameLength + 1);
    m_path.append(file);
    return m_path.c_str();
}

} // namespace zorel::library
