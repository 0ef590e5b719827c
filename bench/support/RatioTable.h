#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace zorel::bench {

/// What a row of the table promises about the benchmark `ours`. Ratios are of what was taken in the same run,
/// so that they hold on a machine of any speed.
struct Row
{
    enum class Promise {
        timeAtMost,       ///< time of ours / time of the reference <= goal
        fasterAtLeast,    ///< time of the reference / time of ours >= goal
        perSecondAtLeast, ///< items a second of ours >= goal; there is no reference
        growthAtMost,     ///< growth of ours since `before` / growth of the reference since then <= goal
    };

    std::string measure;
    std::string ours;      ///< name of a registered benchmark
    std::string reference; ///< name of another
    Promise promise = Promise::timeAtMost;
    double goal = 0;

    /// The same two over less work.
    struct Before
    {
        std::string ours;
        std::string reference;
    };
    Before before = {};
};

/// Runs the registered benchmarks in interleaved repetitions and prints one line a row. Processor time
/// counts, except for a benchmark declared with UseRealTime.
class RatioTable : public benchmark::BenchmarkReporter
{
public:
    /// What stands for the rounds of a benchmark.
    enum class Estimate {
        median,
        best, ///< what the work itself takes: others on the machine can only add to it
    };

    explicit RatioTable(std::vector<Row> rows, Estimate estimate = Estimate::median)
        : m_rows(std::move(rows))
        , m_estimate(estimate)
    {}

    /// To be returned from main: 0 when every promise is kept. Takes the options of Google Benchmark.
    int run(int argc, char **argv)
    {
        std::vector<std::string> options{argv[0], "--benchmark_repetitions=15", "--benchmark_min_time=0.05",
                                         "--benchmark_enable_random_interleaving=true"};
        options.insert(options.end(), argv + 1, argv + argc);
        std::vector<char *> arguments;
        for (std::string &option : options) {
            arguments.push_back(option.data());
        }
        int count = static_cast<int>(arguments.size());
        benchmark::Initialize(&count, arguments.data());
        if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
            return 2;
        }
        benchmark::RunSpecifiedBenchmarks(this);
        return print() ? 0 : 1;
    }

    bool ReportContext(const Context &) override { return true; }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) {
                continue;
            }
            Measured &measured = m_measured[run.run_name.function_name];
            const bool realTime = !run.run_name.time_type.empty();
            measured.nanoseconds.push_back(realTime ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime());
            if (const auto rate = run.counters.find("items_per_second"); rate != run.counters.end()) {
                measured.rates.push_back(rate->second.value);
            }
        }
    }

private:
    struct Measured
    {
        std::vector<double> nanoseconds;
        std::vector<double> rates;
    };

    double time(std::vector<double> nanoseconds) const
    {
        const bool isBest = m_estimate == Estimate::best && !nanoseconds.empty();
        return isBest ? *std::ranges::min_element(nanoseconds) : median(std::move(nanoseconds));
    }

    double rate(std::vector<double> perSecond) const
    {
        const bool isBest = m_estimate == Estimate::best && !perSecond.empty();
        return isBest ? *std::ranges::max_element(perSecond) : median(std::move(perSecond));
    }

    static double median(std::vector<double> values)
    {
        if (values.empty()) {
            return 0;
        }
        const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
        std::nth_element(values.begin(), middle, values.end());
        return *middle;
    }

    bool print()
    {
        bool allKept = true;
        std::printf("%-52s %14s %14s %10s %14s  %s\n", "measure", "ours", "reference", "ratio", "goal",
                    "ok?");
        for (const Row &row : m_rows) {
            allKept = printRow(row) && allKept;
        }
        return allKept;
    }

    bool printRow(const Row &row)
    {
        if (row.promise == Row::Promise::growthAtMost) {
            return printGrowth(row);
        }
        const double ours = time(m_measured[row.ours].nanoseconds);
        if (row.promise == Row::Promise::perSecondAtLeast) {
            const double perSecond = rate(m_measured[row.ours].rates);
            const bool kept = perSecond >= row.goal;
            std::printf("%-52s %12.0f/s %14s %10s %3s %8.0f/s  %s\n", row.measure.c_str(), perSecond, "", "",
                        ">=", row.goal, kept ? "yes" : "NO");
            return kept;
        }
        const double reference = time(m_measured[row.reference].nanoseconds);
        const bool atMost = row.promise == Row::Promise::timeAtMost;
        const double ratio = atMost ? ours / reference : reference / ours;
        const bool kept = atMost ? ratio <= row.goal : ratio >= row.goal;
        std::printf("%-52s %11.3f us %11.3f us %9.2fx %3s %9.2fx  %s\n", row.measure.c_str(), ours / 1000,
                    reference / 1000, ratio, atMost ? "<=" : ">=", row.goal, kept ? "yes" : "NO");
        return kept;
    }

    bool printGrowth(const Row &row)
    {
        const auto growth = [this](const std::string &after, const std::string &before) {
            return time(m_measured[after].nanoseconds) / time(m_measured[before].nanoseconds);
        };
        const double ours = growth(row.ours, row.before.ours);
        const double reference = growth(row.reference, row.before.reference);
        const bool kept = ours / reference <= row.goal;
        std::printf("%-52s %13.2fx %13.2fx %9.2fx %3s %9.2fx  %s\n", row.measure.c_str(), ours, reference,
                    ours / reference, "<=", row.goal, kept ? "yes" : "NO");
        return kept;
    }

    std::vector<Row> m_rows;
    Estimate m_estimate;
    std::map<std::string, Measured> m_measured;
};

} // namespace zorel::bench
