#include "library/ArchivedRunCount.h"

#include "library/FolderWalk.h"
#include "library/RunFiles.h"

namespace zorel::library {

std::int64_t countArchivedRuns(const QString &finishedModelsPath)
{
    std::int64_t count = 0;
    FolderWalk walk(finishedModelsPath, FolderWalk::Hidden::included);
    while (walk.next()) {
        count += walk.hasRegularFile(manifestFile) ? 1 : 0;
    }
    return count;
}

} // namespace zorel::library
