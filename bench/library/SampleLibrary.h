#pragma once

#include <filesystem>
#include <string>

namespace zorel::bench {

/// A folder of archived runs as the training scripts write them, in a temporary place; removed at the end.
class SampleLibrary
{
public:
    explicit SampleLibrary(int runs);
    ~SampleLibrary();
    SampleLibrary(const SampleLibrary &) = delete;
    SampleLibrary &operator=(const SampleLibrary &) = delete;

    const std::filesystem::path &path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

/// A loss curve of `points` lines.
std::string sampleCurve(int points);

} // namespace zorel::bench
