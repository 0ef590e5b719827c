#include "bench/library/SampleLibrary.h"
#include "bench/support/RatioTable.h"
#include "library/ModelLibraryStore.h"

#include <QString>

#include <simdjson.h>

#include <cstdlib>
#include <fstream>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

using zorel::bench::Row;
using zorel::bench::SampleLibrary;
using zorel::library::ArchivedModelRecord;
using zorel::library::ModelLibraryStore;

namespace ondemand = simdjson::ondemand;

constexpr int curvePoints = 1'000'000;

/// Made when first asked for, removed at the end.
const std::filesystem::path &libraryOf(int runs)
{
    static std::map<int, SampleLibrary> libraries;
    return libraries.try_emplace(runs, runs).first->second.path();
}

void scan(benchmark::State &state, int runs)
{
    const QString path = QString::fromStdString(libraryOf(runs).string());
    for (auto _ : state) {
        ModelLibraryStore store;
        store.scan(path);
        if (store.models().size() != runs) {
            std::abort();
        }
    }
}

void scan1000(benchmark::State &state)
{
    scan(state, 1000);
}

void scan10000(benchmark::State &state)
{
    scan(state, 10'000);
}

void scan50000(benchmark::State &state)
{
    scan(state, 50'000);
}

/// What any program must do at least: open, read and close each manifest, and look for the two other files.
void bareLoop(benchmark::State &state, int runs)
{
    const std::string path = libraryOf(runs).string();
    for (auto _ : state) {
        DIR *folder = ::opendir(path.c_str());
        char content[8192];
        char name[512];
        int found = 0;
        while (const dirent *entry = ::readdir(folder)) {
            if (entry->d_name[0] == '.') {
                continue;
            }
            std::snprintf(name, sizeof name, "%s/manifest.json", entry->d_name);
            const int file = ::openat(::dirfd(folder), name, O_RDONLY);
            found += ::read(file, content, sizeof content) > 0 ? 1 : 0;
            ::close(file);
            std::snprintf(name, sizeof name, "%s/neuron_snapshot.json", entry->d_name);
            found += ::faccessat(::dirfd(folder), name, F_OK, 0) == 0 ? 1 : 0;
            std::snprintf(name, sizeof name, "%s/loss_curve.jsonl", entry->d_name);
            found += ::faccessat(::dirfd(folder), name, F_OK, 0) == 0 ? 1 : 0;
        }
        ::closedir(folder);
        if (found != 3 * runs) {
            std::abort();
        }
    }
}

void bareLoop1000(benchmark::State &state)
{
    bareLoop(state, 1000);
}

void bareLoop10000(benchmark::State &state)
{
    bareLoop(state, 10'000);
}

void bareLoop50000(benchmark::State &state)
{
    bareLoop(state, 50'000);
}

/// Times itself, so that starting the interpreter does not count.
void python10000(benchmark::State &state)
{
    const std::string marker = libraryOf(10'000).string() + ".seconds";
    const std::string command =
        "echo | python3 " ZOREL_SCAN_LIBRARY " " + libraryOf(10'000).string() + " > " + marker;
    for (auto _ : state) {
        if (std::system(command.c_str()) != 0) {
            std::abort();
        }
        double seconds = 0;
        std::ifstream(marker) >> seconds;
        state.SetIterationTime(seconds);
    }
    std::filesystem::remove(marker);
}

ModelLibraryStore &storeOf50000()
{
    static ModelLibraryStore store;
    if (store.models().isEmpty()) {
        store.scan(QString::fromStdString(libraryOf(50'000).string()));
    }
    return store;
}

void search(benchmark::State &state, const char *query)
{
    const ModelLibraryStore &store = storeOf50000();
    for (auto _ : state) {
        benchmark::DoNotOptimize(store.filteredGroups(QString::fromLatin1(query)));
    }
    state.SetItemsProcessed(state.iterations());
}

void searchName(benchmark::State &state)
{
    search(state, "Poet-1");
}

void searchEveryFolder(benchmark::State &state)
{
    search(state, "2026-");
}

void searchNothing(benchmark::State &state)
{
    search(state, "nowhere to be found");
}

const std::string &curveFile()
{
    static const std::string folder = [] {
        // Not among the runs that others count.
        const std::string path = libraryOf(0).string() + "/curve";
        std::filesystem::create_directory(path);
        std::ofstream(path + "/loss_curve.jsonl") << zorel::bench::sampleCurve(curvePoints);
        return path;
    }();
    return folder;
}

void loadCurve(benchmark::State &state)
{
    ArchivedModelRecord run;
    run.path = QString::fromStdString(curveFile());
    const ModelLibraryStore store;
    for (auto _ : state) {
        if (store.loadLossCurve(run).size() != curvePoints) {
            std::abort();
        }
    }
}

/// The quickest way through a file of JSON lines that simdjson has.
void loadCurveBare(benchmark::State &state)
{
    const std::string path = curveFile() + "/loss_curve.jsonl";
    for (auto _ : state) {
        std::vector<std::pair<std::int64_t, double>> points;
        const simdjson::padded_string text = simdjson::padded_string::load(path);
        ondemand::parser parser;
        ondemand::document_stream lines = parser.iterate_many(text);
        for (auto line : lines) {
            ondemand::object point = line.get_object();
            const std::int64_t step = point.find_field("step");
            points.emplace_back(step, double(point.find_field("loss")));
        }
        if (points.size() != curvePoints) {
            std::abort();
        }
    }
}

BENCHMARK(scan1000)->UseRealTime();
BENCHMARK(scan10000)->UseRealTime();
BENCHMARK(scan50000)->UseRealTime();
BENCHMARK(bareLoop1000)->UseRealTime();
BENCHMARK(bareLoop10000)->UseRealTime();
BENCHMARK(bareLoop50000)->UseRealTime();
BENCHMARK(python10000)->UseManualTime()->Iterations(1);
BENCHMARK(searchName);
BENCHMARK(searchEveryFolder);
BENCHMARK(searchNothing);
BENCHMARK(loadCurve)->UseRealTime();
BENCHMARK(loadCurveBare)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    using Promise = Row::Promise;
    // A key press has 16 ms.
    constexpr double searchesPerSecond = 1000.0 / 16;
    // The same files take the system longer, each, the more of them there are: ten times as many runs are not
    // ten times the time of the loop either. What the scan adds to that has to stay in proportion.
    constexpr double mostGrowth = 1.3;
    return zorel::bench::RatioTable(
               {
                   {"1,000 runs, against a bare loop", "scan1000", "bareLoop1000", Promise::timeAtMost, 2},
                   {"10,000 runs, against a bare loop", "scan10000", "bareLoop10000", Promise::timeAtMost, 2},
                   {"50,000 runs, against a bare loop", "scan50000", "bareLoop50000", Promise::timeAtMost, 2},
                   {"growth from 1,000 to 10,000, against the loop's",
                    "scan10000",
                    "bareLoop10000",
                    Promise::growthAtMost,
                    mostGrowth,
                    {"scan1000", "bareLoop1000"}},
                   {"growth from 10,000 to 50,000, against the loop's",
                    "scan50000",
                    "bareLoop50000",
                    Promise::growthAtMost,
                    mostGrowth,
                    {"scan10000", "bareLoop10000"}},
                   {"10,000 runs, against Python", "scan10000", "python10000", Promise::fasterAtLeast, 2},
                   {"search 50,000 for a name",
                    "searchName",
                    {},
                    Promise::perSecondAtLeast,
                    searchesPerSecond},
                   {"search 50,000 for what all have",
                    "searchEveryFolder",
                    {},
                    Promise::perSecondAtLeast,
                    searchesPerSecond},
                   {"search 50,000 for what none has",
                    "searchNothing",
                    {},
                    Promise::perSecondAtLeast,
                    searchesPerSecond},
                   {"curve of 1,000,000 lines, against bare simdjson", "loadCurve", "loadCurveBare",
                    Promise::timeAtMost, 2},
               },
               zorel::bench::RatioTable::Estimate::best)
        .run(argc, argv);
}
