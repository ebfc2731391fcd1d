#include "PostgresDatabase.h"

#include "StoreTables.h"

#include <QCryptographicHash>
#include <QUrl>
#include <QUrlQuery>
#include <QVariant>
#include <QtEndian>

#include <algorithm>
#include <atomic>

namespace {

constexpr unsigned int FIRST_VERSION = 4; // which has what a file of that version has
constexpr int PARTS = 8;
constexpr int PAUSE_MS = 1000; // between attempts to connect
const char DRIVER[] = "QPSQL";

// What of an address goes to the driver's library, beside what all addresses have.
const QStringList PARAMETERS{QStringLiteral("sslmode"),         QStringLiteral("sslrootcert"),
                             QStringLiteral("sslcert"),         QStringLiteral("sslkey"),
                             QStringLiteral("passfile"),        QStringLiteral("target_session_attrs"),
                             QStringLiteral("application_name")};

// A server that isn't heard of any more is given up, so that the others' requests are answered.
const QString PATIENCE = QStringLiteral("connect_timeout=5;keepalives_idle=10;keepalives_interval=5;"
                                        "keepalives_count=3;tcp_user_timeout=20000");
const QLatin1String SESSION_SETTINGS[] = {QLatin1String("SET lock_timeout = '10s'"),
                                          QLatin1String("SET statement_timeout = '60s'"),
                                          QLatin1String("SET idle_in_transaction_session_timeout = '30s'"),
                                          QLatin1String("SET client_min_messages = error")};

// Two servers may begin at once. Any number does that no other program of the database takes.
const QString LOCK_TABLES = QStringLiteral("SELECT pg_advisory_xact_lock(7309453102847561)");
const QString INFO_TABLE = QStringLiteral("CREATE TABLE IF NOT EXISTS tbl_dbinfo (DBI_cKey TEXT PRIMARY KEY,"
                                          " DBI_cValue TEXT)");

// All that belongs to a list is in the parts with its number, so that they can be spread over disks. Texts are
// compared by their bytes, and an index holds digests of those that may be long.
struct STable
{
    const char *name;
    const char *columns;
    const char *list;
    const char *unique;
};
constexpr STable TABLES[] = {
    {"tbl_machine",
     "MAC_cList TEXT COLLATE \"C\", MAC_cMachine TEXT COLLATE \"C\", MAC_iBase BIGINT, MAC_iOffered BIGINT,"
     " MAC_bMet INTEGER, MAC_iSession BIGINT",
     "MAC_cList", "MAC_cList, MAC_cMachine"},
    {"tbl_row",
     "ROW_cList TEXT COLLATE \"C\", ROW_cKey TEXT COLLATE \"C\", ROW_cContent TEXT COLLATE \"C\","
     " ROW_iChanged BIGINT, ROW_iStamp BIGINT",
     "ROW_cList", "ROW_cList, ROW_cKey"},
    {"tbl_past",
     "PST_cList TEXT COLLATE \"C\", PST_cKey TEXT COLLATE \"C\", PST_cContent TEXT COLLATE \"C\","
     " PST_iTime BIGINT, PST_iUntil BIGINT",
     "PST_cList", "PST_cList, PST_cKey, PST_iTime, md5(PST_cContent)"},
    {"tbl_held",
     "HLD_cList TEXT COLLATE \"C\", HLD_cMachine TEXT COLLATE \"C\", HLD_cKey TEXT COLLATE \"C\","
     " HLD_cContent TEXT COLLATE \"C\", HLD_iOffer BIGINT, HLD_bEmpty INTEGER, HLD_iSent BIGINT",
     "HLD_cList", "HLD_cList, HLD_cMachine, HLD_cKey, md5(HLD_cContent)"}};
const QLatin1String SESSION_TABLE("CREATE TABLE tbl_session (SES_iNumber BIGINT GENERATED ALWAYS AS IDENTITY"
                                  " PRIMARY KEY, SES_cID TEXT COLLATE \"C\" UNIQUE, SES_cRest TEXT, SES_cUser TEXT,"
                                  " SES_cMachine TEXT, SES_iExpiry BIGINT)");
const QLatin1String STAMP_INDEX("CREATE INDEX idx_row_stamp ON tbl_row (ROW_cList, ROW_iStamp)");

QStringList GetStatements(const STable &table)
{
    const QString name = QString::fromLatin1(table.name);
    QStringList statements{QStringLiteral("CREATE TABLE %1 (%2) PARTITION BY HASH (%3)")
                               .arg(name, QString::fromLatin1(table.columns), QString::fromLatin1(table.list))};
    for (int part = 0; part < PARTS; ++part)
        statements.append(
            QStringLiteral("CREATE TABLE %1_%2 PARTITION OF %1 FOR VALUES WITH (MODULUS %3, REMAINDER %2)")
                .arg(name)
                .arg(part)
                .arg(PARTS));
    statements.append(
        QStringLiteral("CREATE UNIQUE INDEX %1_key ON %1 (%2)").arg(name, QString::fromLatin1(table.unique)));
    return statements;
}

QString MakeName()
{
    static std::atomic<int> number{0};
    return QStringLiteral("store %1").arg(++number);
}

} // namespace

CPostgresDatabase::CPostgresDatabase(const QString &address, EOrder order)
    : m_strAddress(address)
    , m_strConnection(MakeName())
    , m_eOrder(order)
{
}

CPostgresDatabase::~CPostgresDatabase()
{
    if (QSqlDatabase::contains(m_strConnection))
        QSqlDatabase::removeDatabase(m_strConnection);
}

bool CPostgresDatabase::Init()
{
    return IsOpen() || (Open() && IsUtf8() && BringToVersion());
}

bool CPostgresDatabase::Begin(const QString &user, bool &waited, QSqlError &error)
{
    waited = false;
    QSqlQuery begin = GetQuery();
    // With a snapshot for all of it, it wouldn't see what was written while it waited for the lock.
    bool good = begin.exec(QStringLiteral("BEGIN ISOLATION LEVEL READ COMMITTED"));
    if (!good)
        error = begin.lastError();
    else if (m_eOrder == EOrder::OneByOne) {
        bool taken = false;
        good = Lock(QStringLiteral("pg_try_advisory_xact_lock"), user, taken, error);
        waited = good && !taken;
        if (waited)
            good = Lock(QStringLiteral("pg_advisory_xact_lock"), user, taken, error);
        QSqlError ignored;
        if (!good)
            End(false, ignored);
    }
    return good;
}

// A commit of a transaction in which a statement has failed would be a rollback, and no error.
bool CPostgresDatabase::End(bool commit, QSqlError &error)
{
    QSqlQuery end = GetQuery();
    const bool good = end.exec(commit ? QStringLiteral("COMMIT") : QStringLiteral("ROLLBACK"));
    if (!good)
        error = end.lastError();
    return good && commit;
}

CStoreDatabase::EFailure CPostgresDatabase::GetFailure(const QSqlError &error) const
{
    const QString code = error.nativeErrorCode();
    if (code == QLatin1String("40001") || code == QLatin1String("40P01"))
        return EFailure::Repeat;
    // The server has ended or said nothing, or it isn't any more the one that takes what is written.
    const bool lost = code.isEmpty() || code.startsWith(QLatin1String("08")) ||
                      code.startsWith(QLatin1String("57P")) || code == QLatin1String("25006") ||
                      code == QLatin1String("25P03") || code == QLatin1String("26000");
    return lost ? EFailure::Reopen : EFailure::Final;
}

bool CPostgresDatabase::Reopen()
{
    // With the driver, so that the queries from before don't speak to it any more.
    QSqlDatabase::removeDatabase(m_strConnection);
    if (!m_again.hasExpired())
        return false;
    const bool open = Open();
    m_again = open ? QDeadlineTimer() : QDeadlineTimer(PAUSE_MS);
    return open;
}

// With the offset, the planner searches the table for each text, by an index. Else it would read the whole list for
// each, as long as it has no statistics.
QString CPostgresDatabase::Adapt(QString sql) const
{
    return sql.replace(QLatin1String("%digest("), QLatin1String("md5("))
        .replace(QLatin1String("%texts(?)"), QLatin1String("json_array_elements_text(CAST(? AS JSON))"))
        .replace(QLatin1String("%join"), QLatin1String("CROSS JOIN LATERAL (SELECT * FROM"))
        .replace(QLatin1String("%end"), QLatin1String("OFFSET 0) AS found"))
        .replace(QLatin1String("%rows(?)"), QLatin1String("json_array_elements(CAST(? AS JSON))"));
}

bool CPostgresDatabase::Open()
{
    const QString driver = QString::fromLatin1(DRIVER);
    if (!QSqlDatabase::isDriverAvailable(driver)) {
        m_strError = QStringLiteral("the driver %1 of Qt SQL is missing").arg(driver);
        return false;
    }
    QSqlDatabase connection = QSqlDatabase::addDatabase(driver, m_strConnection);
    if (!Configure(connection, QUrl(m_strAddress, QUrl::StrictMode)))
        return false;
    if (!connection.open()) {
        m_strError = connection.lastError().databaseText().trimmed();
        return false;
    }
    return std::all_of(std::begin(SESSION_SETTINGS), std::end(SESSION_SETTINGS),
                       [this](const auto &sql) { return Exec(sql); });
}

bool CPostgresDatabase::Configure(QSqlDatabase &connection, const QUrl &address)
{
    QString host = address.host(QUrl::FullyDecoded);
    QString options = PATIENCE;
    const auto parameters = QUrlQuery(address).queryItems(QUrl::FullyDecoded);
    for (const auto &parameter : parameters) {
        if (parameter.first == QLatin1String("host"))
            host = parameter.second;
        else if (PARAMETERS.contains(parameter.first) && !parameter.second.contains(QLatin1Char(';')))
            options += QStringLiteral(";%1='%2'")
                           .arg(parameter.first, QString(parameter.second)
                                                     .replace(QLatin1Char('\\'), QLatin1String("\\\\"))
                                                     .replace(QLatin1Char('\''), QLatin1String("\\'")));
        else {
            m_strError = QStringLiteral("the address of the store can't have \"%1\"").arg(parameter.first);
            return false;
        }
    }
    if (!address.isValid() || address.path().size() < 2) {
        m_strError = QStringLiteral("the address of the store isn't postgres://USER@HOST:PORT/DATABASE");
        return false;
    }
    connection.setHostName(host);
    connection.setPort(address.port());
    connection.setDatabaseName(address.path(QUrl::FullyDecoded).mid(1));
    connection.setUserName(address.userName(QUrl::FullyDecoded));
    connection.setPassword(address.password(QUrl::FullyDecoded));
    connection.setConnectOptions(options);
    return true;
}

bool CPostgresDatabase::IsUtf8()
{
    QSqlQuery query = GetQuery();
    const bool good = query.exec(QStringLiteral("SHOW server_encoding")) && query.next() &&
                      query.value(0).toString() == QLatin1String("UTF8");
    if (!good)
        m_strError = QStringLiteral("the database of the store isn't in UTF-8");
    return good;
}

bool CPostgresDatabase::BringToVersion()
{
    unsigned int version = 0;
    // Another server may be upgrading a store that is large.
    bool good = Exec(QStringLiteral("BEGIN ISOLATION LEVEL READ COMMITTED")) &&
                Exec(QStringLiteral("SET LOCAL lock_timeout = 0")) &&
                Exec(QStringLiteral("SET LOCAL statement_timeout = 0")) && Exec(LOCK_TABLES) && Exec(INFO_TABLE) &&
                ReadVersion(version);
    for (unsigned int step = std::max(version + 1, FIRST_VERSION); good && step <= VERSION; ++step) {
        good = CreateVersion(step) &&
               Exec(QStringLiteral("INSERT INTO tbl_dbinfo VALUES ('version', '%1') ON CONFLICT (DBI_cKey)"
                                   " DO UPDATE SET DBI_cValue = excluded.DBI_cValue")
                        .arg(step));
    }
    const QString error = m_strError;
    good = Exec(good ? QStringLiteral("COMMIT") : QStringLiteral("ROLLBACK")) && good;
    if (!good) {
        m_strError = error.isEmpty() ? m_strError : error;
        GetConnection().close();
    }
    return good;
}

bool CPostgresDatabase::ReadVersion(unsigned int &version)
{
    QSqlQuery query = GetQuery();
    if (!query.exec(QStringLiteral("SELECT DBI_cValue FROM tbl_dbinfo WHERE DBI_cKey = 'version'"))) {
        m_strError = query.lastError().databaseText().trimmed();
        return false;
    }
    version = query.next() ? query.value(0).toUInt() : 0;
    return true;
}

bool CPostgresDatabase::CreateVersion(unsigned int version)
{
    const auto exec = [this](const auto &sql) { return Exec(sql); };
    if (version == 5)
        return std::all_of(std::begin(StoreTables::SESSION_INDEXES), std::end(StoreTables::SESSION_INDEXES), exec);
    QStringList statements{SESSION_TABLE};
    for (const STable &table : TABLES)
        statements += GetStatements(table);
    statements.append(STAMP_INDEX);
    return std::all_of(statements.cbegin(), statements.cend(), exec);
}

bool CPostgresDatabase::Exec(const QString &sql)
{
    QSqlQuery query = GetQuery();
    const bool good = query.exec(sql);
    if (!good)
        m_strError = query.lastError().databaseText().trimmed();
    return good;
}

bool CPostgresDatabase::Lock(const QString &function, const QString &user, bool &taken, QSqlError &error)
{
    // Not prepared, which would take three messages instead of one.
    const QByteArray hash = QCryptographicHash::hash(user.toUtf8(), QCryptographicHash::Sha256);
    QSqlQuery query = GetQuery();
    const bool good =
        query.exec(QStringLiteral("SELECT %1(%2)").arg(function).arg(qFromBigEndian<qint64>(hash.constData()))) &&
        query.next();
    if (good)
        taken = query.value(0).toBool();
    else
        error = query.lastError();
    return good;
}
