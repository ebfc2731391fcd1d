#pragma once

#include <QSemaphore>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QThread>

#include <future>

/// Another connection's lock on a SQLite file, in a thread of its own: it is there when the constructor returns, and
/// gone after a while.
class CShortLock
{
public:
    explicit CShortLock(const QString &file, const QString &begin = QStringLiteral("BEGIN IMMEDIATE"),
                        unsigned long ms = 200)
        : m_thread(std::async(std::launch::async, [this, file, begin, ms] {
            const QString name = QStringLiteral("short lock of ") + file;
            {
                QSqlDatabase connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
                connection.setDatabaseName(file);
                if (!connection.open() || !QSqlQuery(connection).exec(begin))
                    qFatal("can't lock a file");
                m_locked.release();
                QThread::msleep(ms);
                QSqlQuery(connection).exec(QStringLiteral("COMMIT"));
            }
            QSqlDatabase::removeDatabase(name);
        }))
    {
        m_locked.acquire();
    }

private:
    QSemaphore m_locked;
    std::future<void> m_thread; // whose destructor waits
};
