#pragma once

#include <QHash>
#include <QObject>
#include <QSharedPointer>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>

class QSqlDatabase;

/// The statements that CLocalDB has prepared on a connection, by their text. A text contains no values, so a program
/// has few of them. The connection's driver owns the object.
class CStatements : public QObject
{
public:
    /// Returns the statements of the connection; null if it isn't open.
    static CStatements *Get(const QSqlDatabase &connection);

    /// Returns the name of the connection, which is the path of the file.
    const QString &GetPath() const { return m_strPath; }

    /// Executes the statement with its values bound as text. Returns false if SQLite refuses it.
    bool Exec(const QString &sql, const QVariantList &values);

    /// Executes a selection. If it finds a row, calls \a read with the query at the first row and with the names of
    /// the columns; \a read must not execute a statement. The statement is reset at the end, because a running one
    /// keeps the file locked. \a fixedColumns says that the columns don't depend on the table, as those of * do.
    /// Returns false if SQLite refuses the selection.
    template <typename Read>
    bool Select(const QString &sql, const QVariantList &values, bool fixedColumns, const Read &read)
    {
        if (!fixedColumns && !HoldSchema())
            return false;
        const TQuery query = Begin(sql, values);
        const bool done = query->isActive();
        if (done && query->next())
            read(*query, fixedColumns ? GetNames(*query) : GetKeptNames(sql, *query));
        query->finish();
        if (!fixedColumns)
            Release();
        return done;
    }

    /// Keeps all other connections from changing the file until Release() is called. Returns false if SQLite refuses
    /// it, because another connection has locked the file.
    bool Hold();
    void Release();

    /// Returns a number that is another one whenever the connection has been opened again; -1 if that isn't known
    /// before the next Hold().
    int GetOpening() const;

private:
    using TQuery = QSharedPointer<QSqlQuery>;

    CStatements(QObject *driver, const QString &path);

    bool HoldSchema();
    void Forget();
    TQuery Begin(const QString &sql, const QVariantList &values);
    QSqlQuery Prepare(const QString &sql) const;
    bool Fetch(QSqlQuery &pragma, const QString &sql) const;
    QStringList GetKeptNames(const QString &sql, const QSqlQuery &query);
    static QStringList GetNames(const QSqlQuery &query);

    const QString m_strPath;
    QHash<QString, TQuery> m_queries;
    QHash<QString, QStringList> m_names;
    QSqlQuery m_mainSchema; // is running while the file is held
    QSqlQuery m_temporarySchema;
    int m_iMainSchema = -1; // the versions at which the statements were prepared
    int m_iTemporarySchema = -1;
    int m_iOpening = 0;
};
