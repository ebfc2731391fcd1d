#pragma once

#include <benchmark/benchmark.h>

#include <QElapsedTimer>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <time.h>

/// Pairs of ways to the same result, each measured by Google Benchmark under the name "row/side/n". The side
/// "library" is judged beside the side "floor"; others are shown. What is expected of the rows stands in bench/run.
namespace Bench {

inline void Require(bool done, const char *what)
{
    if (!done)
        qFatal("%s failed", what);
}

/// What the work under measurement tells besides its time; the largest value of a run counts.
inline std::map<std::string, double> &Counters()
{
    static std::map<std::string, double> counters;
    return counters;
}
inline void Count(const char *name, double value)
{
    const auto [place, first] = Counters().emplace(name, value);
    place->second = std::max(place->second, value);
}

/// What the thread has had of the processor.
inline double ProcessorNanoseconds()
{
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e9 + double(time.tv_nsec);
}

/// Seconds of the iteration under way that don't count, in a row with Prepare().
inline double &IdleSeconds()
{
    static double seconds = 0;
    return seconds;
}

/// One row: its sides do the same work for each n. A side whose result isn't the others' ends the program.
template <typename Result>
class CRow
{
public:
    CRow(const char *name, std::vector<int> sizes)
        : m_pShared(std::make_shared<SShared>())
        , m_sizes(std::move(sizes))
    {
        m_pShared->strName = name;
    }

    /// Called before each run of the sides that follow; a run may be many iterations.
    CRow &Setup(std::function<void(int)> setup)
    {
        m_Setup = std::move(setup);
        return *this;
    }
    /// Called before each iteration of the sides that follow. Neither this nor the end of the work's result is timed,
    /// and the longest iteration becomes the counter "longest_ms". The time is that of the clock then; without it,
    /// the processor's.
    CRow &Prepare(std::function<void(int)> prepare)
    {
        m_Prepare = std::move(prepare);
        return *this;
    }
    /// Instead of as many as fill the time of a run.
    CRow &Iterations(int iterations)
    {
        m_iIterations = iterations;
        return *this;
    }

    /// \a work takes n; \a tell makes the result of what it answers. A work without Prepare() can be repeated.
    template <typename Work, typename Tell>
    CRow &Side(const char *side, Work work, Tell tell)
    {
        for (const int n : m_sizes) {
            const std::string name = m_pShared->strName + '/' + side + '/' + std::to_string(n);
            auto *registered = benchmark::RegisterBenchmark(
                name.c_str(),
                [row = *this, n, work, tell](benchmark::State &state) mutable { row.Run(state, n, work, tell); });
            if (m_Prepare)
                registered->UseManualTime();
            if (m_iIterations > 0)
                registered->Iterations(m_iIterations);
        }
        return *this;
    }
    template <typename Work>
    CRow &Side(const char *side, Work work)
    {
        return Side(side, work, [](Result &result) { return result; });
    }

private:
    struct SShared
    {
        std::string strName;
        std::map<int, Result> results; // of the side that came first, by n
    };

    template <typename Work, typename Tell>
    void Run(benchmark::State &state, int n, Work &work, Tell &tell)
    {
        if (m_Setup)
            m_Setup(n);
        Counters().clear();
        std::optional<decltype(work(n))> done;
        double processor = 0;
        if (m_Prepare) {
            for (auto _ : state) {
                done.reset();
                m_Prepare(n);
                IdleSeconds() = 0;
                QElapsedTimer clock;
                clock.start();
                const double begin = ProcessorNanoseconds();
                done.emplace(work(n));
                processor += ProcessorNanoseconds() - begin;
                const double seconds = double(clock.nsecsElapsed()) / 1e9 - IdleSeconds();
                state.SetIterationTime(seconds);
                Count("longest_ms", seconds * 1e3);
            }
        } else {
            for (auto _ : state)
                benchmark::DoNotOptimize(work(n));
            done.emplace(work(n));
        }
        state.counters["cpu_ns"] = benchmark::Counter(processor, benchmark::Counter::kAvgIterations);
        const Result result = tell(*done);
        const auto [place, first] = m_pShared->results.emplace(n, result);
        if (!first && !(place->second == result))
            qFatal("%s: the sides differ at %d", m_pShared->strName.c_str(), n);
        for (const auto &[name, value] : Counters())
            state.counters[name] = value;
    }

    std::shared_ptr<SShared> m_pShared;
    std::vector<int> m_sizes;
    std::function<void(int)> m_Setup;
    std::function<void(int)> m_Prepare;
    int m_iIterations = 0;
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
