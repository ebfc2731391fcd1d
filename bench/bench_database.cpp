// What 10,000 rows cost through CLocalDB beside the plain SQLite C API, on one table of one file on disk: inserted in
// one transaction, and read. The peers are a prepared statement, and sqlite3_exec() with the generated texts
// ready-made, which leaves SQLite's own share of them. Only CLocalDB hands out rows to keep.

#include <database/LocalDB.h>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <QCoreApplication>
#include <QTemporaryDir>

#include <vector>

namespace {

constexpr int ROWS = 10000;
const QString NAME = QStringLiteral("tbl_rows");

void Require(bool done, const char *what)
{
    if (!done)
        qFatal("%s failed", what);
}

// The table that both sides work on, each through a connection of its own.
struct STable
{
    STable()
        : path(dir.filePath(QStringLiteral("rows.sqlite")))
        , database(path, false, true)
    {
        const QString sql = QStringLiteral("CREATE TABLE tbl_rows (user CHAR(32), name CHAR(128), value TEXT,"
                                           " stamp INTEGER, PRIMARY KEY(user, name))");
        Require(database.Init() && database.CreateTable(sql, NAME), "the table");
        Require(sqlite3_open(qUtf8Printable(path), &plain) == SQLITE_OK, "the plain connection");
        for (int i = 0; i < ROWS; ++i) {
            names.push_back(QStringLiteral("settings.key[%1]").arg(i));
            texts.push_back(QStringLiteral("INSERT INTO 'tbl_rows' ('user','name','value','stamp') VALUES "
                                           "('alice','%1','true','%2')")
                                .arg(names.back(), QString::number(i))
                                .toUtf8());
        }
    }
    ~STable() { sqlite3_close(plain); }

    void Run(const char *sql) { Require(sqlite3_exec(plain, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql); }

    QTemporaryDir dir;
    QString path;
    CLocalDB database;
    sqlite3 *plain = nullptr;
    std::vector<QString> names;
    std::vector<QByteArray> texts;
};

void InsertThroughLocalDB(STable &table)
{
    const QString columns[] = {QStringLiteral("user"), QStringLiteral("name"), QStringLiteral("value"),
                               QStringLiteral("stamp")};
    const QString user = QStringLiteral("alice");
    const QString value = QStringLiteral("true");
    table.database.StartTransaction();
    for (int i = 0; i < ROWS; ++i)
        Require(table.database.Insert(
                    NAME,
                    {{columns[0], user}, {columns[1], table.names[size_t(i)]}, {columns[2], value}, {columns[3], i}}),
                "CLocalDB::Insert");
    table.database.EndTransaction(true);
}

void InsertPrepared(STable &table)
{
    table.Run("BEGIN");
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(table.plain, "INSERT INTO tbl_rows VALUES (?, ?, 'true', ?)", -1, &statement, nullptr);
    for (int i = 0; i < ROWS; ++i) {
        const QByteArray name = table.names[size_t(i)].toUtf8();
        sqlite3_bind_text(statement, 1, "alice", -1, SQLITE_STATIC);
        sqlite3_bind_text(statement, 2, name.constData(), name.size(), SQLITE_STATIC);
        sqlite3_bind_int(statement, 3, i);
        Require(sqlite3_step(statement) == SQLITE_DONE, "a prepared insert");
        sqlite3_reset(statement);
    }
    sqlite3_finalize(statement);
    table.Run("COMMIT");
}

void InsertExecuted(STable &table)
{
    table.Run("BEGIN");
    for (const QByteArray &text : table.texts)
        table.Run(text.constData());
    table.Run("COMMIT");
}

int ReadThroughLocalDB(STable &table)
{
    QList<QHash<QString, QVariant>> rows;
    table.database.SelectAll(rows, NAME, {}, {}, 0);
    return rows.size();
}

int ReadPrepared(STable &table)
{
    int rows = 0;
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(table.plain, "SELECT * FROM tbl_rows", -1, &statement, nullptr);
    for (; sqlite3_step(statement) == SQLITE_ROW; ++rows) {
        for (int column = 0; column < 3; ++column)
            benchmark::DoNotOptimize(sqlite3_column_text(statement, column));
        benchmark::DoNotOptimize(sqlite3_column_int64(statement, 3));
    }
    sqlite3_finalize(statement);
    return rows;
}

int ReadExecuted(STable &table)
{
    int rows = 0;
    const auto count = [](void *number, int, char **, char **) { return ++*static_cast<int *>(number) < 0 ? 1 : 0; };
    sqlite3_exec(table.plain, "SELECT * FROM 'tbl_rows'", count, &rows, nullptr);
    return rows;
}

void Insert(benchmark::State &state, void (*insert)(STable &))
{
    STable table;
    for (auto _ : state) {
        insert(table);
        state.PauseTiming();
        table.Run("DELETE FROM tbl_rows");
        state.ResumeTiming();
    }
}
BENCHMARK_CAPTURE(Insert, prepared, InsertPrepared)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(Insert, exec, InsertExecuted)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(Insert, CLocalDB, InsertThroughLocalDB)->Unit(benchmark::kMillisecond)->UseRealTime();

void Read(benchmark::State &state, int (*read)(STable &))
{
    STable table;
    InsertExecuted(table);
    for (auto _ : state)
        Require(read(table) == ROWS, "the read of all rows");
}
BENCHMARK_CAPTURE(Read, prepared, ReadPrepared)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(Read, exec, ReadExecuted)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(Read, CLocalDB, ReadThroughLocalDB)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // the SQL driver is a plugin of Qt
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
