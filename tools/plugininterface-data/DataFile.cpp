#include "DataFile.h"

#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

namespace {

const QLatin1String WRITER("writer");
const QLatin1String READER("reader");

QString Text(const QSqlError &error)
{
    const QString text = error.databaseText();
    return text.isEmpty() ? error.text() : text;
}

} // namespace

CDataFile::CDataFile(const QString &path)
    : m_strPath(path)
    , m_file(path)
{
}

CDataFile::~CDataFile()
{
    Close();
}

bool CDataFile::Open()
{
    // SQLite would apply such a file of an interrupted program to the new database when it is opened next, and spoil
    // it.
    for (const char *suffix : {"-journal", "-wal"}) {
        const QString rest = m_strPath + QLatin1String(suffix);
        if (!Check(!QFile::exists(rest), QLatin1String("in use, or left half-written, by another program: ") + rest))
            return false;
    }
    if (!Check(m_file.Open(), m_file.GetError()))
        return false;
    QSqlDatabase connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), WRITER);
    connection.setDatabaseName(m_file.GetTemporaryPath());
    if (!Check(connection.open(), Text(connection.lastError())))
        return false;
    // If the program is interrupted, the incomplete file is discarded, so its journal can be in memory.
    return Exec(QStringLiteral("PRAGMA journal_mode = MEMORY")) && Exec(QStringLiteral("BEGIN"));
}

bool CDataFile::Exec(const QString &sql)
{
    if (!m_strError.isEmpty())
        return false;
    QSqlQuery query(QSqlDatabase::database(WRITER));
    const bool done = query.exec(sql);
    return Check(done, Text(query.lastError()));
}

bool CDataFile::Insert(const QString &sql, const QVector<QVariantList> &rows)
{
    if (!m_strError.isEmpty())
        return false;
    QSqlQuery query(QSqlDatabase::database(WRITER));
    bool done = query.prepare(sql);
    for (auto row = rows.cbegin(); done && row != rows.cend(); ++row) {
        for (int column = 0; column < row->size(); ++column)
            query.bindValue(column, row->at(column));
        done = query.exec();
    }
    return Check(done, Text(query.lastError()));
}

bool CDataFile::Commit()
{
    if (!Exec(QStringLiteral("COMMIT")))
        return false;
    Close();
    return Check(m_file.Commit(), m_file.GetError());
}

bool CDataFile::Check(bool done, const QString &error)
{
    if (!done && m_strError.isEmpty())
        m_strError = error;
    return done;
}

void CDataFile::Close()
{
    if (QSqlDatabase::contains(WRITER))
        QSqlDatabase::removeDatabase(WRITER);
}

CDataReader::CDataReader(const QString &path)
    : m_strPath(path)
{
}

CDataReader::~CDataReader()
{
    if (QSqlDatabase::contains(READER))
        QSqlDatabase::removeDatabase(READER);
}

bool CDataReader::Open(const QStringList &tables)
{
    if (!QFileInfo(m_strPath).isFile()) {
        m_strError = QStringLiteral("no such file");
        return false;
    }
    QSqlDatabase connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), READER);
    connection.setDatabaseName(m_strPath);
    connection.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    if (!connection.open()) {
        m_strError = Text(connection.lastError());
        return false;
    }
    const auto names = Select(QStringLiteral("SELECT name FROM sqlite_master"));
    for (const QString &table : tables) {
        if (m_strError.isEmpty() && !names.contains({table}))
            m_strError = QLatin1String("has no table ") + table;
    }
    return m_strError.isEmpty();
}

QVector<QVariantList> CDataReader::Select(const QString &sql)
{
    QVector<QVariantList> rows;
    QSqlQuery query(QSqlDatabase::database(READER));
    query.setForwardOnly(true);
    query.exec(sql);
    const int columns = query.record().count();
    while (query.next()) {
        QVariantList row;
        for (int column = 0; column < columns; ++column)
            row.append(query.value(column));
        rows.append(row);
    }
    if (query.lastError().isValid()) {
        m_strError = Text(query.lastError());
        rows.clear();
    }
    return rows;
}
