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

/// Ways to the same result, each measured by Google Benchmark under the name "row/side/n". The side "library" is
/// judged beside the side "floor"; others are shown. What is expected of the rows stands in rows.py.
namespace Bench {

inline void Require(bool done, const char *what)
{
    if (!done)
        qFatal("%s failed", what);
}

/// What the work under measurement tells besides its time; the largest value of a run counts.
inline std::map<std::string, double> counters;
inline void Count(const char *name, double value)
{
    double &most = counters.emplace(name, value).first->second;
    most = std::max(most, value);
}

/// Seconds of the iteration under way that don't count, in a row with Prepare.
inline double idleSeconds = 0;

/// What the thread has had of the processor.
inline double ProcessorNanoseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e9 + double(time.tv_nsec);
}

/// One row: its sides do the same work for each n. A side whose result isn't the others' ends the program.
template <typename Result>
struct SRow
{
    std::string strName;
    std::vector<int> sizes;
    /// Called with n before each run of the sides that are added behind it; a run may be many iterations.
    std::function<void(int)> Setup = nullptr;
    /// The same before each iteration. Neither it nor the end of the work's result is timed. The time is that of the
    /// clock then, the processor's is the counter "cpu_ns", and the longest iteration "longest_ms".
    std::function<void(int)> Prepare = nullptr;
    int iIterations = 0; ///< Instead of as many as fill the time of a run.
    std::shared_ptr<std::map<int, Result>> results = std::make_shared<std::map<int, Result>>(); // of the first side

    /// \a work takes n, and can be repeated unless there is Prepare; \a tell makes the result of what it answers.
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

/// For main(), behind the making of the rows.
inline int RunRows(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

} // namespace Bench
