#include <database/DBValue.h>
#include <database/LocalDB.h>
#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>
#include <support/ShortLock.h>

#include <QProcess>
#include <QtTest>

#include <future>
#include <optional>
#include <unistd.h>

using TRow = QHash<QString, QVariant>;
using TRows = QList<TRow>;

namespace {

const QString TABLE = QStringLiteral("tbl_test");
const QString CREATE_TABLE = QStringLiteral("CREATE TABLE tbl_test (id INTEGER PRIMARY KEY, text TEXT)");
const QString ID = QStringLiteral("id");
const QString TEXT = QStringLiteral("text");
const QString STEP1 = QStringLiteral("tbl_step1");

// A file with three steps, each of which makes and fills a table and rewrites the rows of the first one. The
// connection ends with the object, so that the next one opens the file anew, as a new process would.
class CLadder : public CLocalDB
{
public:
    explicit CLadder(const QString &path, unsigned int maxVersion = 3)
        : CLocalDB(path, false, false)
        , m_strPath(path)
        , m_uiMaxVersion(maxVersion)
    {
    }
    ~CLadder() override { QSqlDatabase::removeDatabase(m_strPath); }

    unsigned int m_uiFailingStep = 0; ///< does its work, then answers false
    QStringList m_statements;         ///< executed after each row
    QStringList m_steps;              ///< those that ran

    using CLocalDB::UseWriteAheadLog;

    bool Fill(const QString &table)
    {
        bool done = true;
        for (int row = 0; row < 3; ++row) {
            done &= Insert(table, {{TEXT, TEXT}});
            for (const QString &statement : qAsConst(m_statements))
                Exec(statement);
        }
        return done && Update(STEP1, {{TEXT, TEXT + table}}, {});
    }

protected:
    unsigned int GetMaxVersion() override { return m_uiMaxVersion; }
    bool CreateDBVersion(unsigned int version) override
    {
        m_steps.append(QString::number(version));
        const QString table = "tbl_step"_s + m_steps.last();
        return CreateTable("CREATE TABLE "_s + table + " (id INTEGER PRIMARY KEY, text TEXT)"_s, table) &&
               Fill(table) && version != m_uiFailingStep;
    }

private:
    QString m_strPath;
    unsigned int m_uiMaxVersion;
};

// The one value that a query answers.
QVariant Ask(CLocalDB &database, const QString &table, const QString &field, const TRow &where = {})
{
    TRow row;
    database.SelectOne(row, table, {field}, where);
    return row.value(field);
}

QVariant GetVersion(CLocalDB &database)
{
    return Ask(database, "tbl_dbinfo"_s, "DBI_cValue"_s);
}

// A second process, without the rights of root, who may write anywhere. Its exit code is how many rows the first
// step's table holds, and 100 more if the file couldn't be opened.
int RunClient(const QString &path, bool writeAheadLog)
{
    CLadder database(path);
    if (writeAheadLog)
        database.UseWriteAheadLog();
    if (geteuid() == 0 && setuid(65534) != 0)
        return -1;
    const int failure = database.Init() ? 0 : 100;
    return failure + Ask(database, STEP1, "COUNT(*)"_s).toInt();
}

int StartClient(const QString &path, bool writeAheadLog)
{
    return QProcess::execute(QCoreApplication::applicationFilePath(),
                             {"client"_s, path, writeAheadLog ? "log"_s : QString()});
}

} // namespace

// Everything on real files, new ones for each init().
class tst_localdb : public QObject
{
    Q_OBJECT

    // A file that climbed to the version, or none if that is negative; answers its contents.
    QByteArray MakeFile(int version) const
    {
        if (version >= 0 && !CLadder(m_strPath, unsigned(version)).Init())
            qFatal("can't make %s", qUtf8Printable(m_strPath));
        return ReadFile(m_strPath);
    }

    // The exit code of another client that starts while the folder has these permissions.
    int StartClientWith(int permissions, bool writeAheadLog = false) const
    {
        QFile::setPermissions(m_dir.path(), QFile::Permissions(permissions));
        const int code = StartClient(m_strPath, writeAheadLog);
        QFile::setPermissions(m_dir.path(), QFile::Permissions(READABLE));
        return code;
    }

    bool Insert(int id, const QVariant &text = TEXT) { return m_database->Insert(TABLE, {{ID, id}, {TEXT, text}}); }

    // The table as "1:text 2:text".
    QString Rows(const TRow &where = {})
    {
        return Ask(*m_database, TABLE, "group_concat(id || ':' || ifnull(text, ''), ' ')"_s, where).toString();
    }

    enum { READABLE = 0x7755, WRITABLE = 0x7777, READ_ONLY = 0x5555 };

    QTemporaryDir m_dir;
    QString m_strPath; ///< no file yet
    int m_iFiles = 0;
    std::optional<CLadder> m_database; ///< a file with an empty table of the columns ID and TEXT

private Q_SLOTS:
    void init()
    {
        m_strPath = m_dir.filePath(QString::number(++m_iFiles));
        m_database.emplace(m_strPath + ".table"_s, 0);
        QVERIFY(m_database->Init() && m_database->CreateTable(CREATE_TABLE, TABLE));
    }
    void cleanupTestCase() { m_database.reset(); }

    void Values_data()
    {
        AddRows<QVariant, QString>(
            {"value", "stored"},
            {{"number", -1.5, "-1.5"_s},
             {"null", QVariant(), QString()},
             {"marks", "'it's' \"100 %\" _\\a\n\x01; -- /* x"_s, "'it's' \"100 %\" _\\a\n\x01; -- /* x"_s},
             // Texts that SQLite's way through UTF-16 would change or cut.
             {"NUL", "a\0'b"_s, "a\0'b"_s},
             {"pair of surrogates", "ß \U0001f0a1"_s, "ß \U0001f0a1"_s},
             {"byte order marks", "\ufeff\ufeff"_s, "\ufeff\ufeff"_s},
             {"reserved", "\ufffea\uffff"_s, "\ufffda\ufffd"_s},
             {"first halves", QChar(0xd83c) + "a"_s + QChar(0xd83c), "\ufffda\ufffd"_s}});
    }

    void Values()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, stored);
        QVERIFY(Insert(1, value));
        QCOMPARE(Ask(*m_database, TABLE, TEXT, {{TEXT, value}}), QVariant(stored));
        QVERIFY(m_database->Update(TABLE, {{TEXT, "other"_s}}, {{TEXT, value}}));
        QVERIFY(m_database->Update(TABLE, {{TEXT, value}}, {{TEXT, "other"_s}}));
        QVERIFY(m_database->InsertOrUpdate(TABLE, {{ID, 2}}, {{TEXT, value}})); // finds the row
        QCOMPARE(Rows({{TEXT, stored}}), "2:"_s + stored);
        QVERIFY(m_database->Delete(TABLE, {{TEXT, value}}));
        QCOMPARE(Rows(), QString());
    }

    void Selections()
    {
        TRow row{{"kept"_s, 1}};
        TRows rows;
        QVERIFY(!m_database->SelectAll(rows, TABLE, {}, {}, 0));
        QVERIFY(!m_database->SelectOne(row, TABLE, {}, {}));
        rows.append(row);
        QVERIFY(m_database->SelectAll(rows, TABLE, {}, {}, 0)); // nothing found, but something there
        QCOMPARE(rows, TRows{(TRow{{"kept"_s, 1}})});

        for (const int id : {1, 2, 3})
            QVERIFY(Insert(id));
        QVERIFY(m_database->SelectAll(rows, TABLE, {}, {{TEXT, TEXT}}, 2));
        QCOMPARE(rows.mid(1), TRows({{{ID, 1}, {TEXT, TEXT}}, {{ID, 2}, {TEXT, TEXT}}}));
        QVERIFY(m_database->SelectOne(row, TABLE, {"MAX(id)"_s, "COUNT(*)"_s}, {}));
        QCOMPARE(row, (TRow{{"MAX(id)"_s, 3}, {"COUNT(*)"_s, 3}}));
        QCOMPARE(Rows({{ID, 2}, {TEXT, "other"_s}}), QString());
        QVERIFY(!m_database->SelectAll(rows, TABLE, {"missing"_s}, {}, 0));
    }

    void Writes()
    {
        int id = 0;
        QCOMPARE(std::pair(m_database->Insert(TABLE, {}), m_database->Update(TABLE, {}, {})),
                 std::pair(false, false));
        QVERIFY(Insert(7));
        QVERIFY(m_database->GetLastInsertID(id));
        QCOMPARE(id, 7);
        QVERIFY(!Insert(7, "again"_s));
        QVERIFY(m_database->InsertOrReplace(TABLE, {{ID, 7}}));
        QVERIFY(m_database->InsertOrUpdate(TABLE, {{TEXT, "b"_s}}, {{ID, 99}})); // 99 isn't inserted
        QVERIFY(m_database->InsertOrUpdate(TABLE, {{TEXT, "c"_s}}, {{ID, 7}}));
        QCOMPARE(Rows(), "7:c 8:b"_s);
        QVERIFY(m_database->Update(TABLE, {{TEXT, TEXT}}, {}));
        QVERIFY(m_database->CreateTable(CREATE_TABLE, TABLE)); // the same text
        QCOMPARE(Rows(), "7:text 8:text"_s);
        QVERIFY(m_database->CreateTable(QString(CREATE_TABLE).replace(", "_s, ",  "_s), TABLE)); // one blank more
        QCOMPARE(Rows(), QString());
    }

    void Transactions()
    {
        QVERIFY(!m_database->EndTransaction(true));
        QVERIFY(m_database->StartTransaction() && Insert(1));
        QVERIFY(m_database->EndTransaction(false));
        QCOMPARE(Rows(), QString());
        QVERIFY(m_database->StartTransaction() && Insert(1));
        QVERIFY(m_database->StartTransaction() && Insert(2)); // doesn't nest
        QVERIFY(m_database->EndTransaction(true));
        QVERIFY(!m_database->EndTransaction(false));
        QCOMPARE(Rows(), "1:text 2:text"_s);

        // A deferred reference without its row is refused at the commit.
        QVERIFY(m_database->Exec(
            "CREATE TABLE tbl_reference (id INTEGER REFERENCES tbl_test DEFERRABLE INITIALLY DEFERRED)"_s));
        QVERIFY(m_database->StartTransaction() && Insert(3));
        QVERIFY(m_database->Insert("tbl_reference"_s, {{ID, 99}}));
        QVERIFY(m_database->EndTransaction(true));
        QVERIFY(!m_database->EndTransaction(true));
        QCOMPARE(Rows(), "1:text 2:text"_s);
    }

    void Climbs_data()
    {
        AddRows("new file|-1|0|1 2 3;older file|1|0|2 3;file of today|3|0|;newer file|4|0|;"
                "first step fails|0|1|1;last step fails|1|3|2 3"_s);
    }

    void Climbs()
    {
        QFETCH(QStringList, in); // the file's version, or -1 for none; the step that fails; those that run
        const int fileVersion = in[1].toInt();
        const unsigned int failingStep = in[2].toUInt();
        const QByteArray before = MakeFile(fileVersion);
        CLadder database(m_strPath);
        database.m_uiFailingStep = failingStep;
        QCOMPARE(database.Init(), failingStep == 0);
        QCOMPARE(ReadFile(m_strPath) == before, failingStep != 0 || in[3].isEmpty());
        QVERIFY(database.Init());
        QCOMPARE(database.m_steps.join(QLatin1Char(' ')), in[3]);
        QCOMPARE(GetVersion(database).toInt(), failingStep == 0 ? qMax(fileVersion, 3) : fileVersion);
        QVERIFY(CLocalDB(m_strPath, true, true).IsOpen()); // the connection is the file's, not the object's
    }

    // The commit finds that a reference has no row.
    void RefusedClimb()
    {
        CLadder database(m_strPath);
        database.m_statements = QStringList{"CREATE TABLE IF NOT EXISTS tbl_reference"
                                            " (id INTEGER REFERENCES tbl_step1 DEFERRABLE INITIALLY DEFERRED)"_s,
                                            "INSERT INTO tbl_reference VALUES (99)"_s};
        QVERIFY(!database.Init());
        QCOMPARE(GetVersion(database), QVariant("0"_s));
        QVERIFY(!Ask(database, STEP1, "COUNT(*)"_s).isValid());
        QVERIFY(!database.EndTransaction(true));
    }

    void FileThatCannotBeOpened()
    {
        QVERIFY(!CLadder(m_dir.path()).Init()); // a folder at its place
        QFile noDatabase(m_strPath);
        QVERIFY(noDatabase.open(QIODevice::WriteOnly) && noDatabase.write("A text.") > 0);
        noDatabase.close();
        QVERIFY(!CLadder(m_strPath).Init());
        QCOMPARE(ReadFile(m_strPath), QByteArray("A text."));
        const QString path = m_dir.filePath("missing/folder.sqlite"_s);
        CLadder database(path);
        QVERIFY(!database.Init());
        QVERIFY(QDir(m_dir.path()).mkdir("missing"_s));
        TRow row;
        int id = 0;
        QCOMPARE(std::tuple(database.Insert(TABLE, {{ID, 1}}), database.SelectOne(row, TABLE, {}, {}),
                            database.Exec("SELECT 1"_s), database.GetLastInsertID(id), id, database.IsOpen()),
                 std::tuple(false, false, false, false, -1, false));
        QVERIFY(!database.StartTransaction()); // only Init() opens what may be a new file
        QVERIFY(!QFile::exists(path));
        QVERIFY(database.Init());
        QSqlDatabase::database(path, false).close();
        QVERIFY(database.Insert(STEP1, {{ID, 4}})); // it was open
    }

    void LockedFile()
    {
        const QByteArray before = MakeFile(3);
        constexpr int WAIT_MS = 400;
        // The driver would wait five seconds.
        QSqlDatabase::addDatabase("QSQLITE"_s, m_strPath) // clazy:exclude=writing-to-temporary (a handle)
            .setConnectOptions("QSQLITE_BUSY_TIMEOUT=%1"_s.arg(WAIT_MS));
        CLadder database(m_strPath);
        database.UseWriteAheadLog();
        {
            const CShortLock other(m_strPath, "BEGIN EXCLUSIVE"_s, 4 * WAIT_MS);
            QElapsedTimer wait;
            wait.start();
            QVERIFY(!database.Init());
            QVERIFY(!database.Insert(STEP1, {{ID, 4}}));
            QVERIFY2(wait.elapsed() < 2 * WAIT_MS, QByteArray::number(wait.elapsed())); // once
        }
        QCOMPARE(ReadFile(m_strPath), before);
        QVERIFY(database.Init());
    }

    void ShortlyLockedFile_data()
    {
        AddRows("a new file|0|BEGIN EXCLUSIVE;a step is pending|1|BEGIN IMMEDIATE;"
                "a transaction reads and writes|3|BEGIN IMMEDIATE"_s);
    }

    // Another program writes for a moment: it is waited for.
    void ShortlyLockedFile()
    {
        QFETCH(QStringList, in); // the file's version; the other's lock
        const int fileVersion = in[1].toInt();
        if (fileVersion > 0)
            MakeFile(fileVersion);
        CLadder database(m_strPath);
        QVERIFY(fileVersion < 3 || database.Init());
        const CShortLock other(m_strPath, in[2]);
        QVERIFY(database.Init());
        QCOMPARE(database.m_steps.size(), 3 - fileVersion);
        QVERIFY(database.StartTransaction());
        QCOMPARE(Ask(database, STEP1, ID, {{ID, 1}}), QVariant(1));
        QVERIFY(database.Insert(STEP1, {{ID, 4}}));
        QVERIFY(database.EndTransaction(true));
        QCOMPARE(Ask(database, STEP1, ID, {{ID, 4}}), QVariant(4));
    }

    void ClientsStartTogether()
    {
        QVERIFY(QFile::setPermissions(m_dir.path(), QFile::Permissions(WRITABLE)));
        for (int start = 0; start < 20; ++start) {
            init();
            auto first = std::async(std::launch::async, StartClient, m_strPath, true);
            const int second = StartClient(m_strPath, true);
            QCOMPARE(std::tuple(first.get(), second), std::tuple(3, 3));
        }
    }

    void FolderWithoutWritePermission_data()
    {
        AddRows<int, int>({"fileVersion", "code"}, {{"no file", -1, 100}, {"a step is pending", 1, 103}});
    }

    void FolderWithoutWritePermission()
    {
        QFETCH(int, fileVersion);
        const QByteArray contents = MakeFile(fileVersion);
        QFile::setPermissions(m_strPath, QFile::Permissions(0x6666)); // as an older client has created it
        QTEST(StartClientWith(READ_ONLY), "code");
        QCOMPARE(ReadFile(m_strPath), contents);
        QCOMPARE(QFile::exists(m_strPath), fileVersion >= 0);
    }

    // A write is there for others without a wait for the disk, and a log that can't be written doesn't hide the file.
    void WriteAheadLog()
    {
        {
            CLadder database(m_strPath);
            database.UseWriteAheadLog();
            QVERIFY(database.Init());
            QCOMPARE(Ask(database, "pragma_synchronous"_s, "synchronous"_s), QVariant(1));
            QVERIFY(database.Insert(STEP1, {{ID, 4}}));
            for (const QString &suffix : {QString(), "-wal"_s, "-shm"_s}) {
                QCOMPARE(QFile::permissions(m_strPath + suffix), QFile::Permissions(0x6600)); // the user's alone
                QVERIFY2(QFile::setPermissions(m_strPath + suffix, QFile::Permissions(0x6666)), qPrintable(suffix));
            }
            QCOMPARE(StartClientWith(WRITABLE, true), 4);
        }
        QVERIFY(!QFile::exists(m_strPath + "-wal"_s));
        QCOMPARE(StartClientWith(READ_ONLY, true), 4);
    }

    void Conversions()
    {
        using namespace DBValue;
        bool off = true, byDefault = false;
        int number = 0;
        double real = 0;
        QString text;
        const QList<bool> converted{ToInt(number, TEXT, DBT_Int),      ToDouble(real, TEXT, DBT_Double),
                                    ToBool(off, "Off"_s, DBT_Int),     ToInt(number, "-7"_s, DBT_Bool),
                                    ToDouble(real, "2.5"_s, DBT_Bool), ToBool(byDefault, QVariant(), DBT_Int),
                                    ToString(text, 2.5, DBT_Int)};
        QCOMPARE(converted, (QList<bool>{false, false, true, true, true, true, true}));
        QCOMPARE(std::tuple(off, byDefault, number, real, text), std::tuple(false, true, -7, 2.5, "2.5"_s));
        QStringList types{ToTypeString(static_cast<DBConfigType>(7))};
        for (const QVariant &value : {QVariant(true), QVariant(1), QVariant(1.), QVariant(TEXT), QVariant(1LL)})
            types += ToTypeString(ToType(value));
        for (const QVariant &value : {QVariant(0), QVariant("2"_s), QVariant(4), QVariant(-1), QVariant(TEXT)})
            types += QString::number(ToTypeFromDB(value));
        QCOMPARE(types.join(QLatin1Char(' ')), " bool int double string string 0 2 3 3 3"_s);
        QCOMPARE(CLocalDB::Escape("'it's'"_s), "''it''s''"_s);
    }
};

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "client"_s)
        return RunClient(arguments.value(2), !arguments.value(3).isEmpty());
    tst_localdb test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_localdb.moc"
