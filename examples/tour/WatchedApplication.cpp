#include "WatchedApplication.h"

#include <QEvent>
#include <QMetaEnum>
#include <QThread>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>

namespace {

constexpr double NANOSECONDS = 1e6; // in a millisecond

// For how long this thread has waited for a processor, by the kernel's count; 0 where it keeps none.
double ReadWaitingMs()
{
    static thread_local const int file = open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC);
    char text[128] = "";
    if (pread(file, text, sizeof text - 1, 0) <= 0)
        return 0;
    char *rest = nullptr;
    std::strtoll(text, &rest, 10); // how long it has run
    return double(std::strtoll(rest, nullptr, 10)) / NANOSECONDS;
}

double ReadClock(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return double(now.tv_sec) * 1000 + double(now.tv_nsec) / NANOSECONDS;
}

// What is painted waits for the display server.
bool IsPainting(QEvent::Type type)
{
    return type == QEvent::UpdateRequest || type == QEvent::Expose || type == QEvent::Paint;
}

double NowMs(QEvent::Type type)
{
    return IsPainting(type) ? ReadClock(CLOCK_THREAD_CPUTIME_ID) : ReadClock(CLOCK_MONOTONIC) - ReadWaitingMs();
}

} // namespace

bool CWatchedApplication::notify(QObject *receiver, QEvent *event)
{
    if (QThread::currentThread() != thread() || m_iDepth > 0)
        return QApplication::notify(receiver, event);
    const QEvent::Type type = event->type(); // neither may be there afterwards
    const QString name =
        QString::fromLatin1(receiver->metaObject()->className()) + QLatin1Char(' ') + receiver->objectName();
    ++m_iDepth;
    const double start = NowMs(type);
    const double busy = ReadClock(CLOCK_THREAD_CPUTIME_ID);
    const bool result = QApplication::notify(receiver, event);
    const double taken = NowMs(type) - start;
    --m_iDepth;
    const double taking = ReadClock(CLOCK_THREAD_CPUTIME_ID) - busy;
    if (taken <= m_longest.ms && taking <= m_busiest.busyMs)
        return result;
    const QLatin1String typeName(QMetaEnum::fromType<QEvent::Type>().valueToKey(type));
    const SEvent seen{taken, taking, typeName + QLatin1String(" to ") + name};
    if (taken > m_longest.ms)
        m_longest = seen;
    if (taking > m_busiest.busyMs)
        m_busiest = seen;
    return result;
}
