#include "LocalDB.h"

#include <database/SqliteResult_p.h>
#include <database/Statements_p.h>
#include <database/Transaction_p.h>
#include <files/PrivateFiles_p.h>

#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QStringList>
#include <QUrl>

#include <algorithm>

namespace {

using TRow = QHash<QString, QVariant>;

const QLatin1String INFO_TABLE("tbl_dbinfo");
const QLatin1String INFO_KEY("DBI_cKey");
const QLatin1String INFO_VALUE("DBI_cValue");
const QLatin1String VERSION_KEY("version");

// This text is part of the file format: CreateTable() compares it with the stored statement, character by character.
const QLatin1String
    CREATE_INFO_TABLE("CREATE TABLE tbl_dbinfo (  DBI_cKey CHAR(30) PRIMARY KEY, -- key of the dbinfo entry\n"
                      "  DBI_cValue CHAR(1024) -- value for the dbinfo entry\n"
                      ")");

// Set on the driver of a connection that Init() has opened. Nothing else may open a file, because that could create a
// new and empty one.
const char OPENED_PROPERTY[] = "opened";

QString Quoted(const QString &name)
{
    return QLatin1Char('\'') + name + QLatin1Char('\'');
}

// The pairs of a hash in the order of their columns, so that a statement about the same columns has the same text.
struct SPairs
{
    explicit SPairs(const TRow &row)
        : columns(row.keys())
    {
        std::sort(columns.begin(), columns.end());
        values.reserve(columns.size());
        for (const QString &column : qAsConst(columns))
            values.append(row.value(column));
    }

    QStringList columns;
    QVariantList values;
};

// Appends column=? for each pair, as a condition or a list of assignments.
void AppendEquations(QString &sql, const SPairs &pairs, QLatin1String separator)
{
    for (int i = 0; i < pairs.columns.size(); ++i) {
        if (i > 0)
            sql += separator;
        sql += pairs.columns.at(i) + QLatin1String("=?");
    }
}

void AppendCondition(QString &sql, const SPairs &where)
{
    if (where.columns.isEmpty())
        return;
    sql += QLatin1String(" WHERE ");
    AppendEquations(sql, where, QLatin1String(" AND "));
}

void AppendRows(QList<TRow> &rows, QSqlQuery &query, const QStringList &names)
{
    do {
        TRow row;
        row.reserve(names.size());
        for (int column = 0; column < names.size(); ++column)
            row.insert(names.at(column), query.value(column));
        rows.append(row);
    } while (query.next());
}

void EnforceForeignKeys(const QSqlDatabase &connection)
{
    QSqlQuery(connection).exec(QStringLiteral("PRAGMA foreign_keys = ON"));
}

// Only with the log is the file safe without each commit waiting for the disk. If another program holds the file, the
// mode is left to that program.
void StartWriteAheadLog(const QSqlDatabase &connection)
{
    QSqlQuery query(connection);
    if (query.exec(QStringLiteral("PRAGMA journal_mode = WAL")) && query.next() &&
        query.value(0).toString() == QLatin1String("wal")) {
        query.finish();
        query.exec(QStringLiteral("PRAGMA synchronous = NORMAL"));
    }
}

} // namespace

CLocalDB::CLocalDB(const QString &path, bool fileRequired, bool unversioned)
    : m_bFileRequired(fileRequired)
    , m_bUnversioned(unversioned)
    , m_strDatabase(path)
{
}

CLocalDB::~CLocalDB() = default;

bool CLocalDB::Init()
{
    // IsOpen() would open a file that failed to open before, and leave it at its old version.
    if (QSqlDatabase::database(m_strDatabase, false).isOpen())
        return true;
    if (!Open())
        return false;
    if (!m_bFileRequired && !m_bUnversioned) {
        const EOutcome outcome = BringToMaxVersion();
        if (outcome == EOutcome::Locked)
            Close();
        if (outcome != EOutcome::Done)
            return false;
    }
    if (m_bWriteAheadLog)
        StartWriteAheadLog(GetConnection());
    return true;
}

bool CLocalDB::IsOpen()
{
    return GetConnection().isOpen();
}

bool CLocalDB::CreateTable(const QString &sql, const QString &name)
{
    TRow stored;
    const bool exists =
        SelectOne(stored, QStringLiteral("sqlite_master"), {QStringLiteral("sql")}, {{QStringLiteral("name"), name}});
    if (exists) {
        if (stored.value(QStringLiteral("sql")).toString() == sql)
            return true;
        Exec(QLatin1String("DROP TABLE ") + name);
    }
    return Exec(sql);
}

bool CLocalDB::SelectOne(QHash<QString, QVariant> &row, QString table, QList<QString> fields,
                         QHash<QString, QVariant> where)
{
    QList<TRow> rows;
    if (!SelectAll(rows, table, fields, where, 1))
        return false;
    row = rows.first();
    return true;
}

bool CLocalDB::SelectAll(QList<QHash<QString, QVariant>> &rows, QString table, QList<QString> fields,
                         QHash<QString, QVariant> where, unsigned int limit)
{
    CStatements *statements = CStatements::Get(GetConnection());
    if (!statements || table.isEmpty())
        return false;
    const SPairs condition(where);
    const QString columns = fields.isEmpty() ? QStringLiteral("*") : QStringList(fields).join(QLatin1String(", "));
    QString sql = QLatin1String("SELECT ") + columns + QLatin1String(" FROM ") + Quoted(table);
    AppendCondition(sql, condition);
    if (limit > 0)
        sql += QLatin1String(" LIMIT ") + QString::number(limit);
    const bool done =
        statements->Select(sql, condition.values, !columns.contains(QLatin1Char('*')),
                           [&rows](QSqlQuery &query, const QStringList &names) { AppendRows(rows, query, names); });
    if (!done)
        return false;
    return !rows.isEmpty();
}

bool CLocalDB::Insert(QString table, QHash<QString, QVariant> values)
{
    return InsertRow(QLatin1String("INSERT INTO "), table, values);
}

bool CLocalDB::InsertOrReplace(QString table, QHash<QString, QVariant> values)
{
    return InsertRow(QLatin1String("INSERT OR REPLACE INTO "), table, values);
}

bool CLocalDB::InsertOrUpdate(QString table, QHash<QString, QVariant> values, QHash<QString, QVariant> where)
{
    TRow row;
    if (!SelectOne(row, table, {}, where))
        return Insert(table, values);
    return Update(table, values, where);
}

bool CLocalDB::Update(QString table, QHash<QString, QVariant> values, QHash<QString, QVariant> where)
{
    const SPairs assignments(values);
    const SPairs condition(where);
    QString sql = QLatin1String("UPDATE ") + Quoted(table) + QLatin1String(" SET ");
    AppendEquations(sql, assignments, QLatin1String(", "));
    AppendCondition(sql, condition);
    return ExecBound(sql, assignments.values + condition.values);
}

bool CLocalDB::Delete(QString table, QHash<QString, QVariant> where)
{
    const SPairs condition(where);
    QString sql = QLatin1String("DELETE FROM ") + Quoted(table);
    AppendCondition(sql, condition);
    return ExecBound(sql, condition.values);
}

bool CLocalDB::Exec(const QString &sql)
{
    return IsOpen() && GetQuery().exec(sql);
}

QSqlQuery CLocalDB::GetQuery()
{
    const QSqlDatabase connection = GetConnection();
    // An invalid connection would make the query use the host's default connection.
    QSqlQuery query = connection.isValid() ? QSqlQuery(connection) : QSqlQuery(static_cast<QSqlResult *>(nullptr));
    query.setForwardOnly(true);
    return query;
}

bool CLocalDB::GetLastInsertID(int &id)
{
    id = -1;
    if (!IsOpen())
        return false;
    QSqlQuery query = GetQuery();
    if (!query.exec(QStringLiteral("Select last_insert_rowid() AS ID")) || !query.next())
        return false;
    bool ok = false;
    const int number = query.value(0).toInt(&ok);
    if (ok)
        id = number;
    return ok;
}

bool CLocalDB::StartTransaction()
{
    if (!IsOpen())
        return false;
    if (!Exec(QStringLiteral("BEGIN IMMEDIATE")))
        Exec(QStringLiteral("BEGIN"));
    m_bTransaction = true;
    return true;
}

bool CLocalDB::EndTransaction(bool commit)
{
    if (!m_bTransaction)
        return false;
    QSqlDatabase connection = GetConnection();
    if (!commit || !connection.commit())
        connection.rollback();
    m_bTransaction = false;
    return true;
}

QString CLocalDB::Escape(const QVariant &value)
{
    return value.toString().replace(QLatin1Char('\''), QLatin1String("''"));
}

void CLocalDB::UseWriteAheadLog()
{
    m_bWriteAheadLog = true;
}

unsigned int CLocalDB::GetMaxVersion()
{
    return 0;
}

bool CLocalDB::CreateDBVersion(unsigned int)
{
    return false;
}

bool CLocalDB::Open()
{
    if (m_bFileRequired && !QFile::exists(m_strDatabase))
        return false;
    // After a failed attempt the connection is still registered.
    QSqlDatabase connection = QSqlDatabase::contains(m_strDatabase)
                                  ? QSqlDatabase::database(m_strDatabase, false)
                                  : QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_strDatabase);
    connection.setDatabaseName(m_strDatabase);
    if (IsReadOnlyLog()) {
        const QUrl file = QUrl::fromLocalFile(QFileInfo(m_strDatabase).absoluteFilePath());
        connection.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI"));
        connection.setDatabaseName(file.toString(QUrl::FullyEncoded) + QLatin1String("?immutable=1"));
    }
    if (!OpenFile(connection))
        return false;
    connection.driver()->setProperty(OPENED_PROPERTY, true);
    EnforceForeignKeys(connection);
    return IsOpen();
}

// A file that doesn't exist yet is created for its user alone; SQLite's files beside it get the same mode.
bool CLocalDB::OpenFile(QSqlDatabase &connection) const
{
    if (!m_bFileRequired && !m_strDatabase.isEmpty() && m_strDatabase != QLatin1String(":memory:"))
        PrivateFiles::MakeFile(m_strDatabase);
    return connection.open();
}

// Closes the connection so that nothing waits for the file's lock again.
void CLocalDB::Close() const
{
    QSqlDatabase connection = GetConnection();
    connection.driver()->setProperty(OPENED_PROPERTY, false);
    connection.close();
}

// Returns whether the file uses a log but no log can be created next to it. SQLite would then refuse to read it
// unless it is told that nothing writes to it.
bool CLocalDB::IsReadOnlyLog() const
{
    const QFileInfo file(m_strDatabase);
    return m_bWriteAheadLog && file.exists() && !QFileInfo(file.path()).isWritable() &&
           !QFile::exists(m_strDatabase + QLatin1String("-wal"));
}

CLocalDB::EOutcome CLocalDB::BringToMaxVersion()
{
    unsigned int version = 0;
    EOutcome outcome = GetDBVersion(version);
    if (outcome == EOutcome::Failed) {
        outcome = CreateDBInfoTable();
        if (outcome != EOutcome::Locked)
            outcome = GetDBVersion(version);
    }
    return outcome == EOutcome::Done && version < GetMaxVersion() ? ClimbToMaxVersion() : outcome;
}

CLocalDB::EOutcome CLocalDB::ClimbToMaxVersion()
{
    CTransaction transaction(*this);
    // Another client may have upgraded the file while this one waited for the lock.
    unsigned int version = 0;
    if (!transaction.IsBegun() || GetDBVersion(version) != EOutcome::Done)
        return GetOutcome(transaction.GetError());
    for (unsigned int step = version + 1; step <= GetMaxVersion(); ++step) {
        if (!CreateDBVersion(step) || !SetDBVersion(step))
            return EOutcome::Failed;
    }
    return transaction.Commit() ? EOutcome::Done : GetOutcome(transaction.GetError());
}

CLocalDB::EOutcome CLocalDB::CreateDBInfoTable()
{
    CTransaction transaction(*this);
    if (!transaction.IsBegun())
        return GetOutcome(transaction.GetError());
    // Another client may have created the table in the meantime. Its version counts: a file taken for a new one would
    // lose its tables in the upgrade.
    unsigned int version = 0;
    if (!CreateTable(CREATE_INFO_TABLE, INFO_TABLE) || (GetDBVersion(version) != EOutcome::Done && !SetDBVersion(0)))
        return EOutcome::Failed;
    return transaction.Commit() ? EOutcome::Done : GetOutcome(transaction.GetError());
}

CLocalDB::EOutcome CLocalDB::GetDBVersion(unsigned int &version)
{
    version = 0;
    QSqlQuery query = GetQuery();
    const bool found = query.exec(QLatin1String("SELECT ") + INFO_VALUE + QLatin1String(" FROM ") + INFO_TABLE +
                                  QLatin1String(" WHERE ") + INFO_KEY + QLatin1String(" = 'version'")) &&
                       query.next();
    if (!found)
        return GetOutcome(query.lastError());
    version = static_cast<unsigned int>(query.value(0).toInt());
    return EOutcome::Done;
}

bool CLocalDB::SetDBVersion(unsigned int version)
{
    return InsertOrUpdate(INFO_TABLE, {{INFO_KEY, VERSION_KEY}, {INFO_VALUE, QString::number(version)}},
                          {{INFO_KEY, VERSION_KEY}});
}

bool CLocalDB::InsertRow(QLatin1String verb, const QString &table, const QHash<QString, QVariant> &values)
{
    if (table.isEmpty() || values.isEmpty())
        return false;
    const SPairs pairs(values);
    QString columns;
    QString markers;
    for (const QString &column : pairs.columns) {
        const QLatin1String separator(columns.isEmpty() ? "" : ",");
        columns += separator + Quoted(column);
        markers += separator + QLatin1Char('?');
    }
    return ExecBound(verb + Quoted(table) + QLatin1String(" (") + columns + QLatin1String(") VALUES (") + markers +
                         QLatin1Char(')'),
                     pairs.values);
}

bool CLocalDB::ExecBound(const QString &sql, const QVariantList &values)
{
    CStatements *statements = CStatements::Get(GetConnection());
    return statements && statements->Exec(sql, values);
}

CLocalDB::EOutcome CLocalDB::GetOutcome(const QSqlError &error)
{
    return SqliteResult::IsLocked(error) ? EOutcome::Locked : EOutcome::Failed;
}

QSqlDatabase CLocalDB::GetConnection() const
{
    QSqlDatabase connection = QSqlDatabase::database(m_strDatabase, false);
    if (connection.isValid() && !connection.isOpen() && connection.driver()->property(OPENED_PROPERTY).toBool() &&
        (!m_bFileRequired || QFile::exists(m_strDatabase)) && OpenFile(connection)) {
        EnforceForeignKeys(connection);
        if (m_bWriteAheadLog)
            StartWriteAheadLog(connection);
    }
    return connection;
}
