#include "Tour.h"

#include "WatchedApplication.h"

#include <common/Texts.h>
#include <files/Console.h>
#include <plugin/PluginInterface.h>

#include <QApplication>
#include <QPixmapCache>
#include <QTextStream>
#include <QTimer>
#include <QtTest>

#include <malloc.h>

// A long evening in a short time: events without a pause, and a user who comes and goes.

namespace {

constexpr int BEAT_MS = 10;
constexpr int EVENTS_A_BEAT = 10; // so 1000 a second
constexpr int STAY_MS = 5000;     // logged in, and as long logged out
constexpr int MINUTE_MS = 60000;
// The unrest of caches; what stays behind of each event would be many times that.
constexpr double MAX_GROWTH = 1.01;

// What the process has of the machine's memory, in kB.
double ReadMemory()
{
    QFile status("/proc/self/status"_s);
    status.open(QIODevice::ReadOnly);
    const QByteArray lines = status.readAll();
    return lines.mid(lines.indexOf("VmRSS:") + 6).split('\n').first().simplified().split(' ').first().toDouble();
}

// What there is of a client, to be compared between two moments at which nobody is logged in.
struct SCensus
{
    double memory;
    double heap; // in kB
    int objects;
    int widgets;

    static SCensus Take(const CHost &host)
    {
        CConsole::Clear();     // what was said is kept until then
        QPixmapCache::clear(); // as are the icons of each dialog's buttons
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        SCensus census{ReadMemory(), double(mallinfo2().uordblks) / 1024, 0, QApplication::allWidgets().size()};
        census.Add(host);
        census.Add(*QCoreApplication::instance());
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (const QWidget *window : windows)
            census.Add(*window);
        return census;
    }

    void Add(const QObject &root) { objects += root.findChildren<QObject *>().size(); }

    bool IsLike(const SCensus &first) const
    {
        return memory <= MAX_GROWTH * first.memory && heap <= MAX_GROWTH * first.heap && objects == first.objects &&
               widgets == first.widgets;
    }
};

} // namespace

int CTour::RunSoak()
{
    const auto &plugins = m_host.GetPluginManager().GetPlugins();
    StartWebServer();
    StartGameServer();
    m_bFailed = m_bFailed || plugins.size() < 2 ||
                !QTest::qWaitFor([this] { return !SeeFilledLobby().isEmpty(); }, MINUTE_MS);
    if (m_bFailed)
        return 1;
    CEvent event = CEvent::Create("SOAK"_s, "BEAT"_s);
    event.data = QByteArray(100, 'x');
    plugins.last()->RegisterForEvent("SOAK"_s, QString());
    int passed = 0;
    QTimer beat; // ends before what the lambdas refer to: clazy:excludeall=lambda-in-connect
    QObject::connect(&m_host, &CHost::signal_EventPassed, &beat, [&passed] { ++passed; });
    QObject::connect(&beat, &QTimer::timeout, &beat, [&] {
        for (int number = 0; number < EVENTS_A_BEAT; ++number)
            plugins.first()->SendInternEvent(event, false);
    });
    beat.start(BEAT_MS);

    QElapsedTimer clock;
    clock.start();
    SCensus first{};
    QString lastUser;
    for (int minute = 1; minute <= m_options.iSoakMinutes && !m_bFailed; ++minute) {
        while (clock.elapsed() < qint64(minute) * MINUTE_MS && !m_bFailed) {
            LogIn(FIRST_NICKNAME, FIRST_PASSWORD, lastUser);
            lastUser = FIRST_NICKNAME;
            QTest::qWait(STAY_MS);
            LogOut();
            QTest::qWait(STAY_MS);
        }
        const SCensus now = SCensus::Take(m_host);
        if (minute == 1)
            first = now;
        m_bFailed = m_bFailed || !now.IsLike(first);
        QTextStream(stdout) << (m_bFailed ? "FAILED" : "ok") << " minute " << minute << ": " << qint64(now.memory)
                            << " kB resident, heap " << qint64(now.heap) << " kB, " << now.objects << " objects, "
                            << now.widgets << " widgets, " << passed << " events passed" << Qt::endl;
    }
    return m_bFailed ? 1 : 0;
}
