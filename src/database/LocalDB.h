#pragma once

#include <Export.h>

#include <QHash>
#include <QList>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

class CTransaction;

/// One SQLite file: opens it, brings it to the schema version that the code knows, and builds the everyday statements
/// from a table name and hashes of column names and values.
///
/// A failure is a plain `false`, without a reason. Every operation answers `false` while the file isn't open; until
/// Init() has opened it that is always so. Values of any kind are written as text, to the character but for halves of
/// surrogate pairs and the two characters that Unicode reserves, which become U+FFFD; the column's affinity turns
/// them into numbers. Table and column names come from the program and are not escaped.
///
/// The Qt connection bears the file's path as name and stays open until the process ends; the object doesn't close
/// it, and a later object for the same path finds it open. Qt binds it to the thread that opened it, which for the
/// library's databases is the main thread.
class PLUGININTERFACE_EXPORT CLocalDB
{
public:
    /// Opens nothing. With \a fileRequired the file is never created. With \a fileRequired or \a unversioned it is
    /// used as it is: its version is neither read nor written.
    CLocalDB(const QString &path, bool fileRequired, bool unversioned);
    virtual ~CLocalDB();
    Q_DISABLE_COPY_MOVE(CLocalDB)

    /// Opens the file and climbs from its version to GetMaxVersion() in one transaction: if a step fails, nothing of
    /// the climb is left, and the file stays open at its old version. A file of a newer version is used unchanged.
    /// Called again on an open file it does nothing and answers true, also where a step has failed before. A file
    /// that another program has locked is waited for, up to 5 s; if it is still locked then, the answer is false and
    /// the file isn't open, so that nothing else waits for it, and another Init() begins anew.
    bool Init();
    /// Whether Init() has opened the file. A connection that somebody has closed since is opened again, here and by
    /// each operation below.
    bool IsOpen();

    /// Creates the table \a name by the whole CREATE statement \a sql. A table whose stored statement equals it to
    /// the character stays; any other table of that name is dropped first, with its rows.
    bool CreateTable(const QString &sql, const QString &name);

    /// The first row that fits; \a row is left alone if there is none.
    bool SelectOne(QHash<QString, QVariant> &row, QString table, QList<QString> fields,
                   QHash<QString, QVariant> where);
    /// Appends all rows that fit, at most \a limit, or all with 0. No \a fields means all columns; an expression such
    /// as "MAX(x)" may stand for one and is its key in the row. True if \a rows holds anything afterwards.
    bool SelectAll(QList<QHash<QString, QVariant>> &rows, QString table, QList<QString> fields,
                   QHash<QString, QVariant> where, unsigned int limit);

    /// False also for a row whose key is there already.
    bool Insert(QString table, QHash<QString, QVariant> values);
    /// A row that is there is replaced as a whole: columns that \a values lacks get their defaults.
    bool InsertOrReplace(QString table, QHash<QString, QVariant> values);
    /// Updates what fits \a where, or inserts \a values, to which the columns of \a where are not added.
    bool InsertOrUpdate(QString table, QHash<QString, QVariant> values, QHash<QString, QVariant> where);
    /// An empty \a where means every row.
    bool Update(QString table, QHash<QString, QVariant> values, QHash<QString, QVariant> where);
    /// An empty \a where means every row.
    bool Delete(QString table, QHash<QString, QVariant> where);

    /// Runs one statement of the caller's own, whose values are escaped, see Escape().
    bool Exec(const QString &sql);
    /// A forward-only query on the connection, open or not, for what the operations above don't cover. Let it end
    /// before EndTransaction(): a running selection keeps the file locked.
    QSqlQuery GetQuery();
    /// The id of the last row inserted through this connection, 0 if none was; -1 and false if it can't be asked for.
    bool GetLastInsertID(int &id);

    /// Begins a transaction that may write: a file that another program has locked is waited for, up to 5 s, and the
    /// writes of the transaction aren't refused for a lock then. Where the file stays locked or can't be written, it
    /// is one that can read. True unless the file isn't open. Transactions don't nest: the first EndTransaction()
    /// ends it.
    bool StartTransaction();
    /// Commits, or rolls back if told so or if the commit is refused. True if a transaction was under way, however it
    /// ended.
    bool EndTransaction(bool commit);

    /// The value's text with each single quote doubled, fit to stand between single quotes in a statement for Exec().
    static QString Escape(const QVariant &value);

protected:
    /// For a constructor: the file is kept with a write-ahead log, where the file system allows it, so that a write
    /// needn't wait for the disk. What a finished operation or a committed transaction has written is read by any
    /// other connection from then on and survives a kill of the process. A loss of power may take back what was
    /// written last, whole transactions at a time; the file itself stays sound. While it is open the log lies beside
    /// it, as `-wal` and `-shm`, and is a part of it.
    void UseWriteAheadLog();

    /// The highest schema version that the code knows.
    virtual unsigned int GetMaxVersion();
    /// Lifts the file from \a version - 1 to \a version. A released step is never changed.
    virtual bool CreateDBVersion(unsigned int version);

private:
    friend class CTransaction;

    enum class EOutcome {
        Done,
        Failed,
        Locked, // by another program, for longer than SQLite waits
    };

    bool Open();
    void Close() const;
    bool IsReadOnlyLog() const;
    EOutcome BringToMaxVersion();
    EOutcome ClimbToMaxVersion();
    EOutcome CreateDBInfoTable();
    EOutcome GetDBVersion(unsigned int &version);
    bool SetDBVersion(unsigned int version);
    bool InsertRow(QLatin1String verb, const QString &table, const QHash<QString, QVariant> &values);
    bool ExecBound(const QString &sql, const QVariantList &values);
    static EOutcome GetOutcome(const QSqlError &error);
    QSqlDatabase GetConnection() const;

    bool m_bTransaction = false;
    bool m_bFileRequired;
    bool m_bUnversioned;
    bool m_bWriteAheadLog = false;
    QString m_strDatabase;
};
