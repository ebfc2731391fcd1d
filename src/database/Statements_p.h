#pragma once

#include <QHash>
#include <QObject>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>

class QSqlDatabase;

/// The statements that CLocalDB has prepared on one connection, by their text. A text contains no values, so a
/// program has few of them. The connection's driver owns the object.
class CStatements : public QObject
{
public:
    /// Returns the statements of an open \a connection.
    static CStatements &Get(const QSqlDatabase &connection);

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
        QSqlQuery query = Begin(sql, values);
        const bool done = query.isActive();
        if (done && query.next())
            read(query, fixedColumns ? GetNames(query) : GetKeptNames(sql, query));
        query.finish();
        if (!fixedColumns)
            m_mainSchema.finish();
        return done;
    }

private:
    explicit CStatements(QObject *driver);

    bool HoldSchema();
    void Forget();
    QSqlQuery Begin(const QString &sql, const QVariantList &values);
    QSqlQuery Prepare(const QString &sql) const;
    QStringList GetKeptNames(const QString &sql, const QSqlQuery &query);
    static QStringList GetNames(const QSqlQuery &query);
    bool Fetch(QSqlQuery &pragma, const QString &sql, int &number) const;

    QHash<QString, QSqlQuery> m_queries;
    QHash<QString, QStringList> m_names;
    QSqlQuery m_mainSchema;
    QSqlQuery m_temporarySchema;
    int m_iMainSchema = -1; // the version at which the statements were prepared
    int m_iTemporarySchema = -1;
};
