#include "Statements_p.h"

#include <database/BoundText_p.h>

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlRecord>

namespace {

// More than the tables of a client need. A host that puts values into the names of columns must not fill the memory.
constexpr int MOST_STATEMENTS = 64;

const QString MAIN_SCHEMA = QStringLiteral("PRAGMA main.schema_version");
const QString TEMPORARY_SCHEMA = QStringLiteral("PRAGMA temp.schema_version");

// Binds every value as text.
bool ExecQuery(QSqlQuery &query, const QVariantList &values)
{
    for (int i = 0; i < values.size(); ++i)
        query.bindValue(i, BoundText::ToBind(values.at(i).toString()));
    return query.exec();
}

// Returns whether the statement is gone because its connection was closed meanwhile. SQLite didn't see it then, and
// gave no reason.
bool IsGone(const QSqlQuery &query)
{
    return query.lastError().nativeErrorCode().isEmpty();
}

} // namespace

CStatements::CStatements(QObject *driver)
    : QObject(driver)
    , m_mainSchema(Prepare(MAIN_SCHEMA))
    , m_temporarySchema(Prepare(TEMPORARY_SCHEMA))
{
}

CStatements &CStatements::Get(const QSqlDatabase &connection)
{
    QSqlDriver *driver = connection.driver();
    for (QObject *child : driver->children()) {
        if (auto *statements = dynamic_cast<CStatements *>(child))
            return *statements;
    }
    return *new CStatements(driver);
}

bool CStatements::Exec(const QString &sql, const QVariantList &values)
{
    QSqlQuery query = Begin(sql, values);
    const bool done = query.isActive();
    query.finish();
    return done;
}

// Keeps the tables as they are until m_mainSchema is finished: while it runs no other connection can change them.
// SQLite itself prepares a statement anew after a change, but Qt takes it to have as many columns as before, and
// would write beyond the end of the row.
bool CStatements::HoldSchema()
{
    int main = 0;
    int temporary = 0;
    if (!Fetch(m_mainSchema, MAIN_SCHEMA, main) || !Fetch(m_temporarySchema, TEMPORARY_SCHEMA, temporary))
        return false;
    m_temporarySchema.finish();
    if (main != m_iMainSchema || temporary != m_iTemporarySchema)
        Forget();
    m_iMainSchema = main;
    m_iTemporarySchema = temporary;
    return true;
}

QSqlQuery CStatements::Begin(const QString &sql, const QVariantList &values)
{
    const auto known = m_queries.constFind(sql);
    if (known != m_queries.constEnd()) {
        QSqlQuery query = *known;
        if (ExecQuery(query, values) || !IsGone(query))
            return query;
    }
    QSqlQuery query = Prepare(sql);
    if (query.lastError().type() != QSqlError::NoError)
        return query;
    if (m_queries.size() >= MOST_STATEMENTS)
        Forget();
    m_queries.insert(sql, query);
    ExecQuery(query, values);
    return query;
}

QSqlQuery CStatements::Prepare(const QString &sql) const
{
    QSqlQuery query(static_cast<const QSqlDriver *>(parent())->createResult());
    query.setForwardOnly(true);
    query.prepare(sql);
    return query;
}

void CStatements::Forget()
{
    m_queries.clear();
    m_names.clear();
}

// The names stay the same as long as the schema does.
QStringList CStatements::GetKeptNames(const QString &sql, const QSqlQuery &query)
{
    QStringList &names = m_names[sql];
    if (names.isEmpty())
        names = GetNames(query);
    return names;
}

QStringList CStatements::GetNames(const QSqlQuery &query)
{
    const QSqlRecord record = query.record();
    QStringList names;
    names.reserve(record.count());
    for (int column = 0; column < record.count(); ++column)
        names.append(record.fieldName(column));
    return names;
}

// Leaves the statement running.
bool CStatements::Fetch(QSqlQuery &pragma, const QString &sql, int &number) const
{
    if (!pragma.exec() && IsGone(pragma)) {
        pragma = Prepare(sql);
        pragma.exec();
    }
    const bool found = pragma.isActive() && pragma.next();
    if (found)
        number = pragma.value(0).toInt();
    return found;
}
