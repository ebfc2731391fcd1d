#include "Statements_p.h"

#include <database/BoundText_p.h>

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlRecord>
#include <QSqlResult>

namespace {

// More than the tables of a client need. A host that puts values into the names of columns must not fill the memory.
constexpr int MOST_STATEMENTS = 64;

const QString MAIN_SCHEMA = QStringLiteral("PRAGMA main.schema_version");
const QString TEMPORARY_SCHEMA = QStringLiteral("PRAGMA temp.schema_version");

// Binds every value as text.
void ExecQuery(QSqlQuery &query, const QVariantList &values)
{
    for (int i = 0; i < values.size(); ++i)
        query.bindValue(i, BoundText::ToBind(values.at(i).toString()));
    query.exec();
}

// Returns whether SQLite doesn't know the statement: it couldn't be prepared, or its connection was closed since.
bool IsGone(const QSqlQuery &query)
{
    const QVariant handle = query.result()->handle();
    return handle.isNull() || !*static_cast<void *const *>(handle.constData());
}

} // namespace

CStatements::CStatements(QObject *driver, const QString &path)
    : QObject(driver)
    , m_strPath(path)
    , m_mainSchema(Prepare(MAIN_SCHEMA))
    , m_temporarySchema(Prepare(TEMPORARY_SCHEMA))
{
}

CStatements *CStatements::Get(const QSqlDatabase &connection)
{
    if (!connection.isOpen())
        return nullptr;
    QSqlDriver *driver = connection.driver();
    for (QObject *child : driver->children()) {
        if (auto *statements = dynamic_cast<CStatements *>(child))
            return statements;
    }
    return new CStatements(driver, connection.connectionName());
}

bool CStatements::Exec(const QString &sql, const QVariantList &values)
{
    const TQuery query = Begin(sql, values);
    const bool done = query->isActive();
    query->finish();
    return done;
}

bool CStatements::Hold()
{
    if (IsGone(m_mainSchema))
        ++m_iOpening;
    return Fetch(m_mainSchema, MAIN_SCHEMA);
}

void CStatements::Release()
{
    m_mainSchema.finish();
}

int CStatements::GetOpening() const
{
    return IsGone(m_mainSchema) ? -1 : m_iOpening;
}

// Holds the file, and drops the statements if its tables have changed. SQLite itself would prepare them anew, but Qt
// takes a statement to have as many columns as before, and would write beyond the end of the row.
bool CStatements::HoldSchema()
{
    if (!Hold())
        return false;
    if (!Fetch(m_temporarySchema, TEMPORARY_SCHEMA)) {
        Release();
        return false;
    }
    const int main = m_mainSchema.value(0).toInt();
    const int temporary = m_temporarySchema.value(0).toInt();
    m_temporarySchema.finish();
    if (main != m_iMainSchema || temporary != m_iTemporarySchema)
        Forget();
    m_iMainSchema = main;
    m_iTemporarySchema = temporary;
    return true;
}

void CStatements::Forget()
{
    m_queries.clear();
    m_names.clear();
}

CStatements::TQuery CStatements::Begin(const QString &sql, const QVariantList &values)
{
    TQuery query = m_queries.value(sql);
    const bool known = !query.isNull();
    if (!known || IsGone(*query))
        query = TQuery::create(Prepare(sql));
    if (IsGone(*query))
        return query;
    if (!known && m_queries.size() >= MOST_STATEMENTS)
        Forget();
    m_queries.insert(sql, query);
    ExecQuery(*query, values);
    return query;
}

QSqlQuery CStatements::Prepare(const QString &sql) const
{
    QSqlQuery query(static_cast<const QSqlDriver *>(parent())->createResult());
    query.setForwardOnly(true);
    query.prepare(sql);
    return query;
}

// Leaves the statement running at its only row.
bool CStatements::Fetch(QSqlQuery &pragma, const QString &sql) const
{
    if (IsGone(pragma))
        pragma = Prepare(sql);
    if (!IsGone(pragma) && pragma.exec() && pragma.next())
        return true;
    pragma.finish();
    return false;
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
