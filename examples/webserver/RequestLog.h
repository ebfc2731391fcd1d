#pragma once

#include <QByteArray>

#include <array>
#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <tuple>

/// Of what a server is asked: a line of JSON a request on standard error, and the counters that a monitor fetches.
///
/// A request begins and ends in the same thread; any number of threads have one at a time.
class CRequestLog
{
public:
    /// The thread's request begins.
    static void Begin();
    /// Of a body that the server has read itself, in the thread's request.
    static void CountBytes(std::size_t in);
    /// Of settings and notes, in the thread's request.
    static void CountRows(quint64 in, quint64 out);

    /// The thread's request ends. \a path is without what follows a question mark, which may be a secret. \a bytesIn:
    /// of a body that the library has read.
    void End(const std::string &method, const std::string &path, int status, std::size_t bytesIn,
             std::size_t bytesOut);

    /// The counters in Prometheus' text form. \a conflicts and \a failures: of the store, so far.
    QByteArray GetMetrics(quint64 conflicts, quint64 failures) const;

private:
    using TSeconds = std::chrono::duration<double>;
    static constexpr std::array<double, 12> BOUNDS{0.001, 0.0025, 0.005, 0.01, 0.025, 0.05,
                                                   0.1,   0.25,   0.5,   1,    2.5,   10}; // seconds
    struct STimes
    {
        std::array<quint64, BOUNDS.size() + 1> counts{}; // up to each bound and beyond the one before
        double dSum = 0;
        quint64 uiCount = 0;
    };

    mutable std::mutex m_mutex;
    std::map<std::tuple<std::string, std::string, int>, quint64> m_requests; // by method, path and status
    std::map<std::string, STimes> m_times;                                   // by path
    quint64 m_uiRowsIn = 0;
    quint64 m_uiRowsOut = 0;
};
