#pragma once

#include <benchmark/benchmark.h>

#include <QElapsedTimer>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <time.h>

/// Measures different ways to the same result with Google Benchmark, each under the name "row/side/n". The side
/// "library" is judged against the side "floor"; other sides are only shown. rows.py contains the bounds.
namespace Bench {

inline void Require(bool done, const char *what)
{
    if (!done)
        qFatal("%s failed", what);
}

/// Sets a counter of the current work; the largest value of a run is reported.
inline std::map<std::string, double> counters;
inline void Count(const char *name, double value)
{
    double &most = counters.emplace(name, value).first->second;
    most = std::max(most, value);
}

/// Seconds of the current iteration that don't count, in a row with Prepare.
inline double idleSeconds = 0;

/// Returns the processor time of the thread in nanoseconds.
inline double ProcessorNanoseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e9 + double(time.tv_nsec);
}

/// One row of the table, whose sides do the same work for each n. A side whose result differs from the others ends
/// the program.
template <typename Result>
struct SRow
{
    std::string strName;
    std::vector<int> sizes;
    /// Called with n before each run of the sides that are added after it was set; a run may be many iterations.
    std::function<void(int)> Setup = nullptr;
    /// Called with n before each iteration; neither it nor the destruction of the work's result is timed. The time is
    /// then wall time; the counter "cpu_ns" is the processor time, and "longest_ms" the longest iteration.
    std::function<void(int)> Prepare = nullptr;
    int iIterations = 0; ///< The number of iterations of a run; 0 for as many as fill its time.
    std::shared_ptr<std::map<int, Result>> results = std::make_shared<std::map<int, Result>>(); // of the first side

    /// Adds a side. \a work takes n, and has to be repeatable unless Prepare is set; \a tell makes the result from
    /// what \a work returns.
    template <typename Work, typename Tell>
    void Side(const std::string &side, Work work, Tell tell)
    {
        for (const int n : sizes) {
            const std::string name = strName + '/' + side + '/' + std::to_string(n);
            auto *registered =
                benchmark::RegisterBenchmark(name.c_str(), [row = *this, n, work, tell](benchmark::State &state) {
                    row.Run(state, n, work, tell);
                });
            if (Prepare)
                registered->UseManualTime();
            if (iIterations > 0)
                registered->Iterations(iIterations);
        }
    }
    template <typename Work>
    void Side(const std::string &side, Work work)
    {
        Side(side, work, [](const auto &result) { return result; });
    }

private:
    template <typename Work, typename Tell>
    void Run(benchmark::State &state, int n, const Work &work, const Tell &tell) const
    {
        if (Setup)
            Setup(n);
        counters.clear();
        std::unique_ptr<decltype(work(n))> done;
        double processor = 0;
        for (auto _ : state) {
            if (!Prepare) {
                benchmark::DoNotOptimize(work(n));
                continue;
            }
            done.reset();
            Prepare(n);
            idleSeconds = 0;
            QElapsedTimer clock;
            clock.start();
            const double begin = ProcessorNanoseconds();
            done = std::make_unique<decltype(work(n))>(work(n));
            processor += ProcessorNanoseconds() - begin;
            const double seconds = double(clock.nsecsElapsed()) / 1e9 - idleSeconds;
            state.SetIterationTime(seconds);
            Count("longest_ms", seconds * 1e3);
        }
        if (!done)
            done = std::make_unique<decltype(work(n))>(work(n));
        state.counters["cpu_ns"] = benchmark::Counter(processor, benchmark::Counter::kAvgIterations);
        const Result result = tell(*done);
        if (!(results->emplace(n, result).first->second == result))
            qFatal("%s: the sides differ at %d", strName.c_str(), n);
        for (const auto &[name, value] : counters)
            state.counters[name] = value;
    }
};

/// Runs the rows that have been added; called by main().
inline int RunRows(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

} // namespace Bench
