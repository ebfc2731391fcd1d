#include "RequestLog.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

using TClock = std::chrono::steady_clock;

struct SRequest
{
    TClock::time_point begin; // never, if its head can't be read
    std::size_t uiBytesIn = 0;
    quint64 uiRowsIn = 0;
    quint64 uiRowsOut = 0;
};
thread_local SRequest current;

// Few names, whatever is asked: each of them is a counter for ever.
std::string GetKnown(const std::string &name, std::initializer_list<const char *> known)
{
    for (const char *candidate : known) {
        const std::string prefix(candidate);
        if (name == prefix || (prefix.back() == '/' && name.compare(0, prefix.size(), prefix) == 0))
            return prefix;
    }
    return "other";
}

void AppendHead(QByteArray &text, const char *name, const char *type, const char *meaning)
{
    text.append("# HELP webserver_").append(name).append(' ').append(meaning).append('\n');
    text.append("# TYPE webserver_").append(name).append(' ').append(type).append('\n');
}

void AppendValue(QByteArray &text, const std::string &name, const QByteArray &value)
{
    text.append("webserver_").append(name.c_str()).append(' ').append(value).append('\n');
}

} // namespace

void CRequestLog::Begin()
{
    current = SRequest();
    current.begin = TClock::now();
}

void CRequestLog::CountBytes(std::size_t in)
{
    current.uiBytesIn += in;
}

void CRequestLog::CountRows(quint64 in, quint64 out)
{
    current.uiRowsIn += in;
    current.uiRowsOut += out;
}

void CRequestLog::End(const std::string &method, const std::string &path, int status, std::size_t bytesIn,
                      std::size_t bytesOut)
{
    const bool hasBegun = current.begin != TClock::time_point();
    const double seconds = hasBegun ? TSeconds(TClock::now() - current.begin).count() : 0;
    const QJsonObject line{{QStringLiteral("time"), QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs)},
                           {QStringLiteral("method"), QString::fromStdString(method)},
                           {QStringLiteral("path"), QString::fromStdString(path)},
                           {QStringLiteral("status"), status},
                           {QStringLiteral("ms"), std::round(seconds * 1e6) / 1000},
                           {QStringLiteral("bytesin"), static_cast<qint64>(bytesIn + current.uiBytesIn)},
                           {QStringLiteral("bytesout"), static_cast<qint64>(bytesOut)},
                           {QStringLiteral("rowsin"), static_cast<qint64>(current.uiRowsIn)},
                           {QStringLiteral("rowsout"), static_cast<qint64>(current.uiRowsOut)}};
    std::fputs((QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n').constData(), stderr); // whole, by its lock
    const std::string route = GetKnown(
        path, {"/sync", "/sessions", "/sessions/", "/pictures/", "/files/", "/healthz", "/readyz", "/metrics"});
    const std::lock_guard lock(m_mutex);
    m_uiRowsIn += current.uiRowsIn;
    m_uiRowsOut += current.uiRowsOut;
    current = SRequest();
    ++m_requests[{GetKnown(method, {"GET", "HEAD", "POST", "PUT", "DELETE", "OPTIONS"}), route, status}];
    STimes &times = m_times[route];
    ++times.counts[std::size_t(std::lower_bound(BOUNDS.begin(), BOUNDS.end(), seconds) - BOUNDS.begin())];
    times.dSum += seconds;
    ++times.uiCount;
}

QByteArray CRequestLog::GetMetrics(quint64 conflicts, quint64 failures) const
{
    const std::lock_guard lock(m_mutex);
    QByteArray text;
    AppendHead(text, "requests_total", "counter", "Answered requests.");
    for (const auto &[request, count] : m_requests) {
        const auto &[method, path, status] = request;
        const QString labels = QStringLiteral("requests_total{method=\"%1\",path=\"%2\",status=\"%3\"}")
                                   .arg(QString::fromStdString(method), QString::fromStdString(path))
                                   .arg(status);
        AppendValue(text, labels.toStdString(), QByteArray::number(count));
    }
    AppendHead(text, "request_seconds", "histogram", "From a request's head to the end of its answer.");
    for (const auto &[path, times] : m_times) {
        const std::string label = "{path=\"" + path + "\"";
        quint64 count = 0;
        for (std::size_t i = 0; i < times.counts.size(); ++i) {
            count += times.counts[i];
            const QByteArray bound = i < BOUNDS.size() ? QByteArray::number(BOUNDS[i]) : QByteArray("+Inf");
            AppendValue(text, "request_seconds_bucket" + label + ",le=\"" + bound.toStdString() + "\"}",
                        QByteArray::number(count));
        }
        AppendValue(text, "request_seconds_sum" + label + "}", QByteArray::number(times.dSum));
        AppendValue(text, "request_seconds_count" + label + "}", QByteArray::number(times.uiCount));
    }
    AppendHead(text, "rows_total", "counter", "Settings and notes that machines have sent and been sent.");
    AppendValue(text, "rows_total{direction=\"in\"}", QByteArray::number(m_uiRowsIn));
    AppendValue(text, "rows_total{direction=\"out\"}", QByteArray::number(m_uiRowsOut));
    AppendHead(text, "conflicts_total", "counter", "Times that a request waited for another of its user, or again.");
    AppendValue(text, "conflicts_total", QByteArray::number(conflicts));
    AppendHead(text, "store_failures_total", "counter", "Operations that the store has failed.");
    AppendValue(text, "store_failures_total", QByteArray::number(failures));
    return text;
}
