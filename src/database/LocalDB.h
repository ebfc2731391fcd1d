#pragma once

#include <Export.h>

#include <QHash>
#include <QList>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

class CStoredTexts;
class CTransaction;

/// An SQLite file. The class opens it, upgrades it to the schema version that the code knows, and builds common
/// statements from a table name and hashes of column names and values.
///
/// On failure a function returns false, without a reason. All functions return false while the file isn't open, and
/// so always before Init() has opened it. Values of any type are written as text. The text is kept exactly, except
/// that single halves of surrogate pairs and the two reserved Unicode characters become U+FFFD. The affinity of a
/// column turns texts into numbers. Table and column names come from the program and are not escaped.
///
/// The Qt connection is named after the file's path and stays open until the process ends. The object doesn't close
/// it, and a later object for the same path uses it again. The connection belongs to the thread that opened it, which
/// is the main thread for the databases of the library.
class PLUGININTERFACE_EXPORT CLocalDB
{
public:
    /// Creates the object without opening the file. If \a fileRequired is true, the file is never created. If it or
    /// \a unversioned is true, the file is used as it is: its version is neither read nor written.
    CLocalDB(const QString &path, bool fileRequired, bool unversioned);
    virtual ~CLocalDB();
    Q_DISABLE_COPY_MOVE(CLocalDB)

    /// Opens the file and upgrades it from its version to GetMaxVersion() in one transaction. If a step fails,
    /// nothing of the upgrade is kept, and the file stays open at its old version. A file with a newer version is
    /// used unchanged. If the file is already open, the function does nothing and returns true, even after a failed
    /// step. If another program has locked the file, the function waits up to 5 s. If the file is still locked then,
    /// it returns false and the file isn't open, so that nothing else waits for it; Init() can be called again.
    bool Init();
    /// Returns whether Init() has opened the file. If the connection has been closed since, this function and each
    /// one below opens it again.
    bool IsOpen();

    /// Creates the table \a name with the complete CREATE statement \a sql. A table whose stored statement is exactly
    /// equal is kept. Any other table of that name is dropped first, with its rows.
    bool CreateTable(const QString &sql, const QString &name);

    /// Selects the first row that matches \a where. Leaves \a row unchanged if there is none.
    bool SelectOne(QHash<QString, QVariant> &row, QString table, QList<QString> fields,
                   QHash<QString, QVariant> where);
    /// Appends all rows that match \a where to \a rows, but at most \a limit; 0 means no limit. If \a fields is
    /// empty, all columns are selected. A field may be an expression such as "MAX(x)", which is then its key in the
    /// row. Returns true if \a rows isn't empty afterwards.
    bool SelectAll(QList<QHash<QString, QVariant>> &rows, QString table, QList<QString> fields,
                   QHash<QString, QVariant> where, unsigned int limit);

    /// Inserts a row. Returns false also if there is already a row with its key.
    bool Insert(QString table, QHash<QString, QVariant> values);
    /// Inserts a row, or replaces the whole row with its key: columns that \a values lacks get their defaults.
    bool InsertOrReplace(QString table, QHash<QString, QVariant> values);
    /// Updates the rows that match \a where. If there are none, inserts \a values, without the columns of \a where.
    bool InsertOrUpdate(QString table, QHash<QString, QVariant> values, QHash<QString, QVariant> where);
    /// Updates the rows that match \a where; all rows if it is empty.
    bool Update(QString table, QHash<QString, QVariant> values, QHash<QString, QVariant> where);
    /// Deletes the rows that match \a where; all rows if it is empty.
    bool Delete(QString table, QHash<QString, QVariant> where);

    /// Executes a statement of the caller, whose values are escaped, see Escape().
    bool Exec(const QString &sql);
    /// Returns a forward-only query on the connection, open or not, for what the functions above can't do. Finish the
    /// query before EndTransaction(): an active SELECT keeps the file locked.
    QSqlQuery GetQuery();
    /// Gets the id of the last row that was inserted through this connection, or 0 if there is none. If the id can't
    /// be determined, \a id becomes -1 and the function returns false.
    bool GetLastInsertID(int &id);

    /// Begins a transaction for writing. Waits up to 5 s if another program has locked the file; afterwards no write
    /// of the transaction is refused because of a lock. If the file stays locked or isn't writable, the transaction
    /// can only read. Returns true unless the file isn't open. Transactions don't nest: the first EndTransaction()
    /// ends the transaction.
    bool StartTransaction();
    /// Commits the transaction. Rolls it back if \a commit is false or the commit is refused. Returns true if there
    /// was a transaction, however it ended.
    bool EndTransaction(bool commit);

    /// Returns the text of \a value with each single quote doubled, for use between single quotes in a statement for
    /// Exec().
    static QString Escape(const QVariant &value);

protected:
    /// Enables a write-ahead log, where the file system supports it, so that a write needn't wait for the disk.
    /// Called in a constructor. What a finished function or a committed transaction has written is visible to all
    /// other connections and survives the killing of the process. A power failure may undo the latest writes, always
    /// whole transactions; the file itself stays intact. While the file is open, the log is next to it, as `-wal` and
    /// `-shm`, and belongs to it.
    void UseWriteAheadLog();

    /// Returns the highest schema version that the code knows.
    virtual unsigned int GetMaxVersion();
    /// Upgrades the file from \a version - 1 to \a version. A released step never changes.
    virtual bool CreateDBVersion(unsigned int version);

private:
    friend class CStoredTexts;
    friend class CTransaction;

    enum class EOutcome {
        Done,
        Failed,
        Locked, // by another program, longer than SQLite waits
    };

    bool Open();
    bool OpenFile(QSqlDatabase &connection) const;
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
