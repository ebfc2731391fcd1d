#pragma once

#include <examples/Postgres.h>
#include <support/Literal.h>
#include <webserver/PostgresDatabase.h>
#include <webserver/SyncStore.h>

#include <QRandomGenerator>

#include <array>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

/// The stores of the town's web servers: one, on a file, or two that share a PostgreSQL, each in a thread of its own.
class CServers
{
public:
    using EOrder = CPostgresDatabase::EOrder;
    using TWork = std::function<bool(CSyncStore &)>;

    /// \a file: where there is no PostgreSQL.
    CServers(const QString &file, bool shared, EOrder order)
    {
        const QString place = shared ? m_postgres.Start() : file;
        if (place.isEmpty())
            qFatal("no PostgreSQL");
        m_pOwn = std::make_unique<CSyncStore>(CStoreDatabase::Make(place));
        if (!m_pOwn->Init())
            qFatal("no store: %s", qPrintable(m_pOwn->GetError()));
        for (const QString &pragma : {"PRAGMA journal_mode = MEMORY"_s, "PRAGMA synchronous = OFF"_s}) {
            if (!shared)
                m_pOwn->GetQuery().exec(pragma); // nobody kills it here
        }
        for (std::size_t i = 0; shared && i < m_threads.size(); ++i)
            m_threads[i] = std::thread([this, place, order, i] { Live(place, order, i); });
    }
    ~CServers()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_bEnd = true;
        }
        m_changed.notify_all();
        for (std::thread &thread : m_threads) {
            if (thread.joinable())
                thread.join();
        }
    }
    Q_DISABLE_COPY_MOVE(CServers)

    /// Whether there are two, which can do two things at once.
    bool AreTwo() const { return m_threads[0].joinable(); }

    /// Done by any of them.
    bool Do(const TWork &work) { return AreTwo() ? Do(work, {}) : work(*m_pOwn); }

    /// Both at once, by one each.
    bool Do(const TWork &work, const TWork &other)
    {
        std::unique_lock lock(m_mutex);
        m_iPauseUs = m_random.bounded(MOST_PAUSE_US);
        m_iLate = m_random.bounded(2);
        m_work = {work, other};
        if (!other && m_random.bounded(2) == 1)
            std::swap(m_work[0], m_work[1]);
        m_iLeft = other ? 2 : 1;
        m_iAtOnce += other ? 1 : 0;
        m_bGood = true;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_iLeft == 0; });
        return m_bGood;
    }

    /// How often two things have been done at once.
    int GetAtOnce() const { return m_iAtOnce; }

    /// In the test's thread.
    QSqlQuery GetQuery() { return m_pOwn->GetQuery(); }

private:
    static constexpr int MOST_PAUSE_US = 1000;

    void Live(const QString &place, EOrder order, std::size_t number)
    {
        CSyncStore store(std::make_unique<CPostgresDatabase>(place, order));
        const bool open = store.Init();
        std::unique_lock lock(m_mutex);
        while (true) {
            m_changed.wait(lock, [this, number] { return m_bEnd || m_work[number]; });
            if (m_bEnd)
                return;
            const TWork work = std::exchange(m_work[number], {});
            const std::chrono::microseconds pause(int(number) == m_iLate ? m_iPauseUs : 0);
            lock.unlock();
            if (pause.count() > 0)
                std::this_thread::sleep_for(pause);
            const bool good = open && work(store);
            lock.lock();
            m_bGood = m_bGood && good;
            --m_iLeft;
            m_changed.notify_all();
        }
    }

    CPostgres m_postgres;
    std::unique_ptr<CSyncStore> m_pOwn;
    QRandomGenerator m_random{1};
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::array<TWork, 2> m_work;
    int m_iLeft = 0;
    int m_iAtOnce = 0;
    int m_iLate = 0; // which begins after the pause
    int m_iPauseUs = 0;
    bool m_bGood = true;
    bool m_bEnd = false;
    std::array<std::thread, 2> m_threads;
};
