#include "updater/FileTree.h"

#include "updater/Cancellation.h"
#include "updater/InstallSurroundings.h"
#include "updater/UpdateError.h"

#include <QFile>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <map>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace zorel::updater {

namespace {

namespace fs = std::filesystem;

using Walk = fs::recursive_directory_iterator;

fs::path nativePath(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

QString shown(const fs::path &path)
{
    return QFile::decodeName(QByteArray::fromStdString(path.native()));
}

[[noreturn]] void refuse(const QString &reason)
{
    throw UpdateError(UpdateError::ExtractionFailed{reason});
}

struct stat entryAt(const fs::path &path)
{
    struct stat entry = {};
    if (::lstat(path.c_str(), &entry) != 0) {
        refuse(shown(path.filename()) + QStringLiteral(": ") + qt_error_string(errno));
    }
    return entry;
}

/// Whether a link `depth` folders below the root can lead out of it. Judged by its own text: ".." is taken at
/// its beginning alone, where the folders above are known to be real; from there the way leads down, through
/// other links perhaps, which are judged themselves.
bool leavesRoot(const fs::path &target, int depth)
{
    if (target.empty() || target.is_absolute()) {
        return true;
    }
    int up = 0;
    bool leadsDown = false;
    for (const fs::path &component : target) {
        if (component == "..") {
            if (leadsDown) {
                return true;
            }
            ++up;
        } else if (component != "." && !component.empty()) {
            leadsDown = true;
        }
    }
    return up > depth;
}

/// Counts the names of files that have several.
class HardLinks
{
public:
    void add(const struct stat &entry)
    {
        if (entry.st_nlink > 1) {
            Names &names = m_names[{entry.st_dev, entry.st_ino}];
            ++names.found;
            names.existing = entry.st_nlink;
        }
    }

    bool haveNamesElsewhere() const
    {
        return std::any_of(m_names.begin(), m_names.end(),
                           [](const auto &file) { return file.second.found < file.second.existing; });
    }

private:
    struct Names
    {
        nlink_t found = 0;
        nlink_t existing = 0;
    };
    std::map<std::pair<dev_t, ino_t>, Names> m_names;
};

void requireWithin(const TreeSize &size, const InstallLimits &limits)
{
    if (size.bytes > limits.unpackedBytes || size.items > limits.unpackedItems) {
        refuse(QStringLiteral("it unpacks to more than %1 bytes or %2 files")
                   .arg(limits.unpackedBytes)
                   .arg(limits.unpackedItems));
    }
}

void inspect(const fs::path &path, const struct stat &entry, int depth)
{
    if (S_ISLNK(entry.st_mode)) {
        std::error_code error;
        const fs::path target = fs::read_symlink(path, error);
        if (error || leavesRoot(target, depth)) {
            refuse(QStringLiteral("%1 is a link that leads out of the update").arg(shown(path.filename())));
        }
    } else if (!S_ISREG(entry.st_mode) && !S_ISDIR(entry.st_mode)) {
        refuse(QStringLiteral("%1 is neither a file nor a folder").arg(shown(path.filename())));
    }
}

/// Fewer when the folder cannot be read to its end.
std::vector<fs::directory_entry> sortedEntries(const fs::path &folder)
{
    std::error_code error;
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        entries.push_back(*at);
    }
    std::ranges::sort(entries, {}, [](const fs::directory_entry &entry) { return entry.path().native(); });
    return entries;
}

} // namespace

TreeSize requireSelfContained(const QString &root, const InstallLimits &limits,
                              const Cancellation &cancellation)
{
    TreeSize size;
    HardLinks hardLinks;
    try {
        for (Walk at(nativePath(root)), end; at != end; ++at) {
            cancellation.throwIfCancelled();
            const struct stat entry = entryAt(at->path());
            inspect(at->path(), entry, at.depth());
            if (S_ISREG(entry.st_mode)) {
                hardLinks.add(entry);
                size.bytes += entry.st_size;
            }
            ++size.items;
            requireWithin(size, limits);
        }
    } catch (const fs::filesystem_error &error) {
        refuse(QString::fromStdString(error.code().message()));
    }
    if (hardLinks.haveNamesElsewhere()) {
        refuse(QStringLiteral("a file of it is also linked from elsewhere"));
    }
    return size;
}

void requireWithinLimits(const QString &root, const InstallLimits &limits)
{
    TreeSize size;
    std::error_code error;
    for (Walk at(nativePath(root), fs::directory_options::skip_permission_denied, error), end;
         !error && at != end; at.increment(error)) {
        struct stat entry = {};
        if (::lstat(at->path().c_str(), &entry) == 0 && S_ISREG(entry.st_mode)) {
            size.bytes += entry.st_size;
        }
        ++size.items;
        requireWithin(size, limits);
    }
}

std::optional<QString> findBundle(const QString &root)
{
    std::deque<fs::path> level{nativePath(root)};
    while (!level.empty()) {
        std::deque<fs::path> nextLevel;
        for (const fs::path &folder : level) {
            for (const fs::directory_entry &entry : sortedEntries(folder)) {
                std::error_code error;
                if (entry.symlink_status(error).type() != fs::file_type::directory) {
                    continue;
                }
                if (entry.path().extension() == ".app" && nativePath(shown(entry.path())) == entry.path()) {
                    return shown(entry.path());
                }
                nextLevel.push_back(entry.path());
            }
        }
        level = std::move(nextLevel);
    }
    return std::nullopt;
}

void removeTree(const QString &root)
{
    const fs::path top = nativePath(root);
    struct stat topEntry = {};
    if (::lstat(top.c_str(), &topEntry) != 0) {
        return;
    }
    const auto remove = [&topEntry](const auto &self, const fs::path &path) -> void {
        struct stat entry = {};
        if (::lstat(path.c_str(), &entry) != 0 || entry.st_dev != topEntry.st_dev) {
            return;
        }
        if (S_ISDIR(entry.st_mode)) {
            ::chmod(path.c_str(), S_IRWXU);
            for (const fs::directory_entry &inner : sortedEntries(path)) {
                self(self, inner.path());
            }
        }
        std::error_code ignored;
        fs::remove(path, ignored);
    };
    remove(remove, top);
}

} // namespace zorel::updater
