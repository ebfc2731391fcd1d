#pragma once

#include <QSqlError>
#include <QSqlQuery>
#include <QString>

#include <memory>

/// Where the store has its tables: how the database is opened, brought to the tables' latest version and shared with
/// other servers, and how its SQL differs. Of the text of SQL there is one, in CSyncStore and CSyncMerge.
///
/// For the thread that calls Init().
class CStoreDatabase
{
public:
    /// What a failed statement means for the transaction or the statement alone.
    enum class EFailure {
        Final,  ///< It would fail again.
        Repeat, ///< Others were in its way, and it succeeds when they have ended.
        Reopen  ///< The connection has been lost.
    };

    static constexpr unsigned int VERSION = 5; ///< Of the tables.

    /// \a place: a file of SQLite's, or else the address of a database of PostgreSQL's, see IsAddress().
    static std::unique_ptr<CStoreDatabase> Make(const QString &place);
    /// Whether it begins with "postgres://" or "postgresql://".
    static bool IsAddress(const QString &place);

    CStoreDatabase() = default;
    virtual ~CStoreDatabase() = default;
    Q_DISABLE_COPY_MOVE(CStoreDatabase)

    /// Opens the database and upgrades its tables, all steps or none; one of a later version is used as it is.
    virtual bool Init() = 0;
    /// Why Init() has failed, in a sentence without a password.
    virtual QString GetError() const = 0;
    virtual bool IsOpen() = 0;
    /// On the open connection.
    virtual QSqlQuery GetQuery() = 0;
    /// Begins a transaction that lets no other begin that has the same user, in any server, until it ends. \a waited
    /// tells whether there was one. On a failure there is no transaction.
    virtual bool Begin(const QString &user, bool &waited, QSqlError &error) = 0;
    /// Ends it; false also if it can't be known whether what it wrote is stored.
    virtual bool End(bool commit, QSqlError &error) = 0;
    virtual EFailure GetFailure(const QSqlError &error) const = 0;
    /// Opens a lost connection again. Queries from before answer nothing any more.
    virtual bool Reopen() = 0;
    /// The SQL in the database's own words. Of the store's, these are others in each: "%digest(COLUMN)" is by what a
    /// unique index holds a long text, "%texts(?)" a table of the texts in a JSON array, and "%rows(?)" of the arrays
    /// in one, with the column "value"; "TEXTS %join TABLE WHERE CONDITION %end" searches the table for each of the
    /// texts.
    virtual QString Adapt(QString sql) const = 0;
};
