#include "library/ArchivedRunCount.h"

#include <QFile>

#include <filesystem>

namespace zorel::library {

std::int64_t countArchivedRuns(const QString &finishedModelsPath)
{
    std::error_code error;
    std::int64_t count = 0;
    std::filesystem::directory_iterator entry(QFile::encodeName(finishedModelsPath).toStdString(), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_directory(ignored) &&
            std::filesystem::is_regular_file(entry->path() / "manifest.json", ignored)) {
            ++count;
        }
    }
    return count;
}

} // namespace zorel::library
