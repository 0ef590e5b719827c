#include "library/ArchivedModelRecord.h"

namespace zorel::library {

bool comesBefore(const ArchivedModelRecord &run, const ArchivedModelRecord &other)
{
    // No date counts as earlier than any.
    return run.archivedAt != other.archivedAt ? run.archivedAt > other.archivedAt
                                              : run.folderName > other.folderName;
}

} // namespace zorel::library
