#pragma once

#include "library/ArchivedModelRecord.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace zorel::library {

/// Reads `manifest.json` files. Keeps the parser's memory, and the texts of the manifest before, which runs
/// of one model share; not thread-safe.
class ManifestReader
{
public:
    ManifestReader();
    ~ManifestReader();
    ManifestReader(const ManifestReader &) = delete;
    ManifestReader &operator=(const ManifestReader &) = delete;

    /// Sets every field that comes from a manifest; `record.folderName` must be set before. False for a text
    /// that is not one JSON object. `readable` counts the bytes that may be read from the start of `json`;
    /// with enough of them nothing is copied.
    bool read(std::string_view json, std::size_t readable, ArchivedModelRecord &record);

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace zorel::library
