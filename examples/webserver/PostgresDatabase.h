#pragma once

#include "StoreDatabase.h"

#include <QDeadlineTimer>
#include <QSqlDatabase>

class QUrl;

/// A database of PostgreSQL's that any number of servers share, over a connection of its own.
///
/// A transaction first takes a lock on its user, and has a snapshot for each statement, the first of which comes with
/// the lock. All that a transaction reads and writes belongs to its user, so it is as if the user's transactions came
/// one after another. None waits for more than one lock, and so none for each other.
class CPostgresDatabase : public CStoreDatabase
{
public:
    enum class EOrder {
        OneByOne,  ///< The transactions of a user.
        AsTheyCome ///< Without the lock, for tests: they have to notice.
    };

    explicit CPostgresDatabase(const QString &address, EOrder order = EOrder::OneByOne);
    ~CPostgresDatabase() override;

    bool Init() override;
    QString GetError() const override { return m_strError; }
    bool IsOpen() override { return GetConnection().isOpen(); }
    QSqlQuery GetQuery() override { return QSqlQuery(GetConnection()); }
    bool Begin(const QString &user, bool &waited, QSqlError &error) override;
    bool End(bool commit, QSqlError &error) override;
    EFailure GetFailure(const QSqlError &error) const override;
    bool Reopen() override;
    QString Adapt(QString sql) const override;

private:
    QSqlDatabase GetConnection() const { return QSqlDatabase::database(m_strConnection, false); }
    bool Open();
    bool Configure(QSqlDatabase &connection, const QUrl &address);
    bool IsUtf8();
    bool BringToVersion();
    bool ReadVersion(unsigned int &version);
    bool CreateVersion(unsigned int version);
    bool Exec(const QString &sql);
    bool Lock(const QString &function, const QString &user, bool &taken, QSqlError &error);

    const QString m_strAddress;
    const QString m_strConnection; // its name
    const EOrder m_eOrder;
    QString m_strError;
    QDeadlineTimer m_again; // when a lost connection may be tried
};
