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

// Returns why an SQLite file may not take the place of what is there; nothing if it may. An empty file is an empty
// database.
QString FindObstacle(const QString &path)
{
    static const QByteArray signature("SQLite format 3", 16); // with the zero byte at its end
    if (!QFileInfo::exists(path))
        return {};
    if (!QFileInfo(path).isFile())
        return QStringLiteral("is there already, and isn't a file");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    const QByteArray begin = file.read(signature.size());
    return begin.isEmpty() || begin == signature
               ? QString()
               : QStringLiteral("is there already, and isn't an SQLite file; it was left unchanged");
}

} // namespace

CDataFile::CDataFile(const QString &path)
    : m_file(path)
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
        const QString rest = m_file.GetPath() + QLatin1String(suffix);
        if (QFile::exists(rest))
            return Fail(QLatin1String("in use, or left half-written, by another program: ") + rest);
    }
    const QString obstacle = FindObstacle(m_file.GetPath());
    if (!obstacle.isEmpty())
        return Fail(obstacle);
    if (!m_file.Open())
        return Fail(m_file.GetError());
    QSqlDatabase connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), WRITER);
    connection.setDatabaseName(m_file.GetTemporaryPath());
    if (!connection.open())
        return Fail(Text(connection.lastError()));
    // If the program is interrupted, the incomplete file is discarded, so its journal can be in memory.
    return Exec(QStringLiteral("PRAGMA journal_mode = MEMORY")) && Exec(QStringLiteral("BEGIN"));
}

bool CDataFile::Exec(const QString &sql)
{
    if (!m_strError.isEmpty())
        return false;
    QSqlQuery query(QSqlDatabase::database(WRITER));
    return query.exec(sql) || Fail(Text(query.lastError()));
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
    return done || Fail(Text(query.lastError()));
}

bool CDataFile::Commit()
{
    if (!Exec(QStringLiteral("COMMIT")))
        return false;
    Close();
    return m_file.Commit() || Fail(m_file.GetError());
}

bool CDataFile::Fail(const QString &error)
{
    if (m_strError.isEmpty())
        m_strError = error.isEmpty() ? QStringLiteral("can't be written") : error;
    return false;
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
