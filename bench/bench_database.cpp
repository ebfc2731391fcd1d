// Rows read with CLocalDB, compared with the same SQL text in QSqlQuery on the same connection.

#include "LiteralQuery.h"

#include <database/LocalDB.h>

#include <QCoreApplication>
#include <QTemporaryDir>

namespace {

using Bench::Require;
using Bench::RunLiteral;
using Bench::SRow;
using Bench::TRow;

constexpr int KEYS = 64; // the number of keys that are looked up in turn
const QString TABLE = QStringLiteral("tbl_rows");

// A file with the given number of rows.
struct STable
{
    explicit STable(int rows)
        : path(dir.filePath(QStringLiteral("rows.sqlite")))
        , database(path, false, true)
    {
        Require(database.Init(), "the file");
        const auto create = QStringLiteral("CREATE TABLE tbl_rows (user CHAR(32), name CHAR(128), value TEXT,"
                                           " stamp INTEGER, PRIMARY KEY(user, name))");
        const auto fill = QStringLiteral("WITH RECURSIVE rows(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM rows WHERE"
                                         " i < %1 - 1) INSERT INTO tbl_rows SELECT 'alice', 'settings.key[' || i ||"
                                         " ']', 'true', i FROM rows");
        Require(database.Exec(create) && database.Exec(fill.arg(rows)), "the filling");
        connection = QSqlDatabase::database(path);
        prepared = QSqlQuery(connection);
        prepared.setForwardOnly(true);
        prepared.prepare(QStringLiteral("SELECT * FROM tbl_rows WHERE user = 'alice' AND name = ?"));
        for (int i = 0; i < KEYS; ++i)
            names.append(QStringLiteral("settings.key[%1]").arg(qint64(i) * rows / KEYS));
    }

    QTemporaryDir dir;
    QString path;
    CLocalDB database;
    QSqlDatabase connection;
    QSqlQuery prepared;
    QStringList names;
};

// The tables exist until the program ends, so that each is filled once.
STable &GetTable(int rows)
{
    static std::map<int, std::unique_ptr<STable>> tables;
    auto &table = tables[rows];
    if (!table)
        table = std::make_unique<STable>(rows);
    return *table;
}

TRow SelectThroughLocalDB(STable &table, const QString &name)
{
    TRow row;
    table.database.SelectOne(row, TABLE, {},
                             {{QStringLiteral("user"), QStringLiteral("alice")}, {QStringLiteral("name"), name}});
    return row;
}

TRow SelectLiteral(STable &table, const QString &name)
{
    const auto sql = QStringLiteral("SELECT * FROM 'tbl_rows' WHERE user='alice' AND name='%1' LIMIT 1").arg(name);
    return RunLiteral(table.connection, sql).value(0);
}

// Selects as a program would that looks the same thing up repeatedly.
TRow SelectPrepared(STable &table, const QString &name)
{
    QSqlQuery &query = table.prepared;
    query.bindValue(0, name);
    Require(query.exec() && query.next(), "the prepared query");
    const TRow row{{QStringLiteral("user"), query.value(0)},
                   {QStringLiteral("name"), query.value(1)},
                   {QStringLiteral("value"), query.value(2)},
                   {QStringLiteral("stamp"), query.value(3)}};
    query.finish();
    return row;
}

QList<TRow> SelectAllThroughLocalDB(int rows)
{
    QList<TRow> found;
    GetTable(rows).database.SelectAll(found, TABLE, {}, {}, 0);
    return found;
}

QList<TRow> SelectAllLiteral(int rows)
{
    return RunLiteral(GetTable(rows).connection, QStringLiteral("SELECT * FROM 'tbl_rows'"));
}

// Adds a side that looks up all keys one after the other.
void AddOneSide(SRow<QList<TRow>> &row, const char *side, TRow (*select)(STable &, const QString &))
{
    row.Side(side, [select](int rows) {
        STable &table = GetTable(rows);
        QList<TRow> found;
        for (const QString &name : qAsConst(table.names))
            found.append(select(table, name));
        return found;
    });
}

void AddRows()
{
    const std::vector<int> sizes{100, 1000, 10000, 100000};
    SRow<QList<TRow>> one{"select_one", sizes, GetTable};
    AddOneSide(one, "library", SelectThroughLocalDB);
    AddOneSide(one, "floor", SelectLiteral);
    AddOneSide(one, "prepared once", SelectPrepared);
    SRow<QList<TRow>> all{"select_all", sizes, GetTable};
    all.Side("library", SelectAllThroughLocalDB);
    all.Side("floor", SelectAllLiteral);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // the SQL driver is a plugin of Qt
    AddRows();
    return Bench::RunRows(argc, argv);
}
