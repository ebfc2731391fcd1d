// Rows read through CLocalDB, beside the same SQL text through QSqlQuery on the same connection.

#include "support.h"

#include <database/LocalDB.h>

#include <QCoreApplication>
#include <QSqlRecord>
#include <QTemporaryDir>

namespace {

using Bench::CRow;
using Bench::Require;
using TRow = QHash<QString, QVariant>;

constexpr int KEYS = 64; // that are asked for in turn
const QString TABLE = QStringLiteral("tbl_rows");

// A file with so many rows.
struct STable
{
    explicit STable(int rows)
        : database(dir.filePath(QStringLiteral("rows.sqlite")), false, true)
    {
        Require(database.Init() &&
                    database.Exec(QStringLiteral("CREATE TABLE tbl_rows (user CHAR(32), name CHAR(128),"
                                                 " value TEXT, stamp INTEGER,"
                                                 " PRIMARY KEY(user, name))")),
                "the table");
        Require(database.Exec(QStringLiteral("WITH RECURSIVE rows(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM rows"
                                             " WHERE i < %1 - 1) INSERT INTO tbl_rows SELECT 'alice',"
                                             " 'settings.key[' || i || ']', 'true', i FROM rows")
                                  .arg(rows)),
                "the filling");
        connection = QSqlDatabase::database(dir.filePath(QStringLiteral("rows.sqlite")));
        for (int i = 0; i < KEYS; ++i)
            names.append(QStringLiteral("settings.key[%1]").arg(qint64(i) * rows / KEYS));
    }

    QTemporaryDir dir;
    CLocalDB database;
    QSqlDatabase connection;
    QStringList names;
};

// They stay until the program ends, so that no side fills one anew.
STable &GetTable(int rows)
{
    static std::map<int, std::unique_ptr<STable>> tables;
    auto &table = tables[rows];
    if (!table)
        table = std::make_unique<STable>(rows);
    return *table;
}

QList<TRow> RunLiteral(const QSqlDatabase &connection, const QString &sql)
{
    QSqlQuery query(connection);
    query.setForwardOnly(true);
    Require(query.exec(sql), "the literal query");
    const QSqlRecord record = query.record();
    QStringList names;
    for (int column = 0; column < record.count(); ++column)
        names.append(record.fieldName(column));
    QList<TRow> rows;
    while (query.next()) {
        TRow row;
        row.reserve(names.size());
        for (int column = 0; column < names.size(); ++column)
            row.insert(names.at(column), query.value(column));
        rows.append(row);
    }
    return rows;
}

// The keys one behind the other; answers all rows.
template <typename Select>
QList<TRow> SelectKeys(int rows, Select select)
{
    STable &table = GetTable(rows);
    QList<TRow> found;
    for (const QString &name : qAsConst(table.names))
        found.append(select(table, name));
    return found;
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
    return RunLiteral(table.connection,
                      QStringLiteral("SELECT * FROM 'tbl_rows' WHERE user='alice' AND name='%1' LIMIT 1").arg(name))
        .value(0);
}

QList<TRow> SelectPrepared(int rows)
{
    QSqlQuery query(GetTable(rows).connection);
    query.setForwardOnly(true);
    query.prepare(QStringLiteral("SELECT user, name, value, stamp FROM tbl_rows WHERE user = ? AND name = ?"));
    return SelectKeys(rows, [&query](STable &, const QString &name) {
        query.bindValue(0, QStringLiteral("alice"));
        query.bindValue(1, name);
        Require(query.exec() && query.next(), "the prepared query");
        const TRow row{{QStringLiteral("user"), query.value(0)},
                       {QStringLiteral("name"), query.value(1)},
                       {QStringLiteral("value"), query.value(2)},
                       {QStringLiteral("stamp"), query.value(3)}};
        query.finish();
        return row;
    });
}

QList<TRow> SelectAllThroughLocalDB(int rows)
{
    QList<TRow> found;
    GetTable(rows).database.SelectAll(found, TABLE, {}, {}, 0);
    return found;
}

void AddRows()
{
    const std::vector<int> sizes{100, 1000, 10000, 100000};
    const auto makeTable = [](int rows) { GetTable(rows); };
    CRow<QList<TRow>>("select_one", sizes)
        .Setup(makeTable)
        .Side("library", [](int rows) { return SelectKeys(rows, SelectThroughLocalDB); })
        .Side("floor", [](int rows) { return SelectKeys(rows, SelectLiteral); })
        .Side("prepared", SelectPrepared);
    CRow<QList<TRow>>("select_all", sizes)
        .Setup(makeTable)
        .Side("library", SelectAllThroughLocalDB)
        .Side("floor", [](int rows) {
            return RunLiteral(GetTable(rows).connection, QStringLiteral("SELECT * FROM 'tbl_rows'"));
        });
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // the SQL driver is a plugin of Qt
    AddRows();
    return Bench::RunRows(argc, argv);
}
