#include <database/DBValue.h>
#include <database/LocalDB.h>
#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/ShortLock.h>

#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

#include <cstdio>
#include <functional>
#include <optional>
#include <unistd.h>

using TRow = QHash<QString, QVariant>;
using TRows = QList<TRow>;
using TSteps = QList<unsigned int>;

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
    explicit CLadder(const QString &path, unsigned int maxVersion = 3, bool fileRequired = false)
        : CLocalDB(path, fileRequired, false)
        , m_strPath(path)
        , m_uiMaxVersion(maxVersion)
    {
    }
    ~CLadder() override { QSqlDatabase::removeDatabase(m_strPath); }

    unsigned int m_uiFailingStep = 0; ///< does its work, then answers false
    int m_iRows = 3;                  ///< rows that a step inserts
    QString m_strText = TEXT;
    std::function<void()> m_Inserted = [] {};
    TSteps m_steps; ///< those that ran

    using CLocalDB::UseWriteAheadLog;

    bool Fill(const QString &table)
    {
        bool done = true;
        for (int row = 0; row < m_iRows; ++row) {
            done &= Insert(table, {{TEXT, m_strText}});
            m_Inserted();
        }
        return done && Update(STEP1, {{TEXT, m_strText + table}}, {});
    }

protected:
    unsigned int GetMaxVersion() override { return m_uiMaxVersion; }
    bool CreateDBVersion(unsigned int version) override
    {
        m_steps.append(version);
        const QString table = "tbl_step"_s + QString::number(version);
        return CreateTable("CREATE TABLE "_s + table + " (id INTEGER PRIMARY KEY, text TEXT)"_s, table) &&
               Fill(table) && version != m_uiFailingStep;
    }

private:
    QString m_strPath;
    unsigned int m_uiMaxVersion;
};

void Announce(const char *what, int number)
{
    std::printf("%s %d\n", what, number);
    std::fflush(stdout);
}

// A second process on the file. In the modes "report" and "report log" it climbs without the rights of root and
// prints the answer and how many rows the first step's table holds. In the others, "lock", "climb" and "insert", it
// prints a line for whatever it has done and goes on until killed.
int RunChild(const QString &mode, const QString &path)
{
    CLadder database(path);
    if (mode.startsWith("report"_s)) {
        if (mode == "report log"_s)
            database.UseWriteAheadLog();
        if (geteuid() == 0 && setuid(65534) != 0)
            return 1;
        const bool done = database.Init();
        TRows rows;
        database.SelectAll(rows, STEP1, {}, {}, 0);
        Announce(done ? "true" : "false", rows.size());
        return 0;
    }

    int inserted = 0;
    database.m_iRows = 50;
    database.m_strText = QString(2000, QLatin1Char('x'));
    database.m_Inserted = [&] {
        if (inserted == 0) // a small cache, so that the file is written to long before the commit
            database.Exec("PRAGMA cache_size = 5"_s);
        Announce("row", ++inserted);
    };
    const bool done = database.Init();
    if (mode == "lock"_s)
        Announce("locked", database.Exec("BEGIN EXCLUSIVE"_s));
    Announce("open", done);
    for (int batch = 1; mode == "insert"_s; ++batch) {
        database.StartTransaction();
        database.Fill(STEP1);
        database.EndTransaction(true);
        Announce("batch", batch);
    }
    return pause();
}

// It ends with the object.
class CChild : public QProcess
{
public:
    CChild(const QString &mode, const QString &path)
    {
        start(QCoreApplication::applicationFilePath(), {"child"_s, mode, path}, ReadOnly);
    }
    ~CChild() override { End(); }
    void End()
    {
        kill();
        waitForFinished();
    }
    QByteArray NextLine()
    {
        while (!canReadLine() && waitForReadyRead(20000)) {
        }
        return readLine().trimmed();
    }
};

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

    bool Insert(int id, const QVariant &text) { return m_database->Insert(TABLE, {{ID, id}, {TEXT, text}}); }

    // The table as "1:text 2:text".
    QString Rows(const TRow &where = {})
    {
        TRow row;
        m_database->SelectOne(row, TABLE, {"group_concat(id || ':' || ifnull(text, ''), ' ') AS list"_s}, where);
        return row.value("list"_s).toString();
    }

    QTemporaryDir m_dir;
    QString m_strPath; ///< no file yet
    int m_iFiles = 0;
    std::optional<CLadder> m_database; ///< a file with an empty table of the columns ID and TEXT

    void KilledAnywhere(const QString &mode, int version);

private Q_SLOTS:
    void init()
    {
        m_strPath = m_dir.filePath(QString::number(++m_iFiles));
        m_database.emplace(m_strPath + ".table"_s, 0);
        QVERIFY(m_database->Init() && m_database->CreateTable(CREATE_TABLE, TABLE));
    }
    void cleanupTestCase() { m_database.reset(); }

    void ValuesPassUnchanged()
    {
        QCOMPARE(CLocalDB::Escape("'it's'"_s), "''it''s''"_s);
        QVariantList values{true, -1.5, QVariant()};
        for (const char *text : {"'it's'", "'; DROP TABLE tbl_test; --", "back\\slash\\", "\"100 %\" _", "a\nb\t\x01",
                                 ":name ? @x $1 %1", "/* x", "ß 🂡", " "})
            values.append(QString::fromUtf8(text));
        for (const QVariant &value : values) {
            const QString text = value.toString();
            QVERIFY(Insert(1, value) && Insert(2, "other"_s));
            QCOMPARE(Rows({{TEXT, value}}), "1:"_s + text);
            QVERIFY(m_database->Update(TABLE, {{TEXT, value}}, {{ID, 2}}));
            QCOMPARE(Rows(), "1:"_s + text + " 2:"_s + text);
            QVERIFY(m_database->Delete(TABLE, {{TEXT, value}}));
            QCOMPARE(Rows(), QString());
        }
    }

    // Texts that SQLite's way through UTF-16 would change or cut.
    void OddCharacters_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("stored");
        const auto add = [](const char *name, const QString &text, const QString &stored) {
            QTest::newRow(name) << text << stored;
        };
        add("byte order mark", "\ufeffa"_s, "\ufeffa"_s);
        add("two byte order marks", "\ufeff\ufeff"_s, "\ufeff\ufeff"_s);
        add("NUL", "a\0'b"_s, "a\0'b"_s);
        add("pair of surrogates", "\U0001f0a1"_s, "\U0001f0a1"_s);
        add("swapped byte order mark", "\ufffea"_s, "\ufffda"_s);
        add("reserved", "a\uffff"_s, "a\ufffd"_s);
        add("first half", QChar(0xd83c) + "a"_s, "\ufffda"_s);
        add("first half at the end", "a"_s + QChar(0xd83c), "a\ufffd"_s);
        add("halves in the wrong order", QString(QChar(0xdca1)) + QChar(0xd83c), "\ufffd\ufffd"_s);
    }

    void OddCharacters()
    {
        QFETCH(QString, text);
        QFETCH(QString, stored);
        QVERIFY(Insert(1, "before"_s));
        QVERIFY(m_database->Update(TABLE, {{TEXT, text}}, {{TEXT, "before"_s}}));
        TRow row;
        QVERIFY(m_database->SelectOne(row, TABLE, {TEXT}, {{TEXT, text}}));
        QCOMPARE(row.value(TEXT).toString(), stored);
        QVERIFY(m_database->InsertOrUpdate(TABLE, {{ID, 2}}, {{TEXT, text}})); // finds the row
        QCOMPARE(Rows({{TEXT, stored}}), "2:"_s + stored);
        QVERIFY(m_database->Delete(TABLE, {{TEXT, stored}}));
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

        QVERIFY(Insert(1, TEXT) && Insert(2, TEXT) && Insert(3, TEXT));
        QVERIFY(m_database->SelectAll(rows, TABLE, {}, {{TEXT, TEXT}}, 2));
        QCOMPARE(rows.mid(1), TRows({{{ID, 1}, {TEXT, TEXT}}, {{ID, 2}, {TEXT, TEXT}}}));
        QVERIFY(m_database->SelectOne(row, TABLE, {"MAX(id)"_s, "COUNT(*)"_s}, {}));
        QCOMPARE(row, (TRow{{"MAX(id)"_s, 3}, {"COUNT(*)"_s, 3}}));
        QCOMPARE(Rows({{ID, 2}, {TEXT, TEXT}}), "2:text"_s);
        QCOMPARE(Rows({{ID, 2}, {TEXT, "other"_s}}), QString());
        QVERIFY(!m_database->SelectAll(rows, QString(), {}, {}, 0));
        QVERIFY(!m_database->SelectAll(rows, TABLE, {"missing"_s}, {}, 0));
    }

    void Writes()
    {
        int id = 0;
        QVERIFY(!m_database->Insert(TABLE, {}) && !m_database->Insert(QString(), {{ID, 1}}));
        QVERIFY(!m_database->Update(TABLE, {}, {}));
        QVERIFY(Insert(7, TEXT) && m_database->GetLastInsertID(id));
        QCOMPARE(id, 7);
        QVERIFY(!Insert(7, "again"_s));
        QVERIFY(m_database->InsertOrReplace(TABLE, {{ID, 7}}));
        QCOMPARE(Rows(), "7:"_s);
        QVERIFY(m_database->InsertOrUpdate(TABLE, {{TEXT, "b"_s}}, {{ID, 99}})); // 99 isn't inserted
        QVERIFY(m_database->InsertOrUpdate(TABLE, {{TEXT, "c"_s}}, {{ID, 7}}));
        QCOMPARE(Rows(), "7:c 8:b"_s);
        QVERIFY(m_database->Update(TABLE, {{TEXT, TEXT}}, {}));
        QVERIFY(m_database->CreateTable(CREATE_TABLE, TABLE)); // the same text
        QCOMPARE(Rows(), "7:text 8:text"_s);
        QVERIFY(m_database->CreateTable(QString(CREATE_TABLE).replace(", "_s, ",  "_s), TABLE)); // one blank more
        QCOMPARE(Rows(), QString());
        QVERIFY(Insert(1, TEXT) && m_database->Delete(TABLE, {}));
        QCOMPARE(Rows(), QString());
    }

    void Transactions()
    {
        QVERIFY(!m_database->EndTransaction(true));
        QVERIFY(m_database->StartTransaction() && Insert(1, TEXT) && m_database->EndTransaction(false));
        QCOMPARE(Rows(), QString());
        QVERIFY(m_database->StartTransaction() && Insert(1, TEXT));
        QVERIFY(m_database->StartTransaction() && Insert(2, TEXT)); // doesn't nest
        QVERIFY(m_database->EndTransaction(true) && !m_database->EndTransaction(false));
        QCOMPARE(Rows(), "1:text 2:text"_s);

        // A deferred reference without its row is refused at the commit.
        QVERIFY(m_database->Exec(
            "CREATE TABLE tbl_reference (id INTEGER REFERENCES tbl_test DEFERRABLE INITIALLY DEFERRED)"_s));
        QVERIFY(m_database->StartTransaction() && Insert(3, TEXT));
        QVERIFY(m_database->Insert("tbl_reference"_s, {{ID, 99}}));
        QVERIFY(m_database->EndTransaction(true) && !m_database->EndTransaction(true));
        QCOMPARE(Rows(), "1:text 2:text"_s);
    }

    void NothingWorksBeforeInit()
    {
        CLadder database(m_strPath, 3, true);
        TRow row;
        int id = 0;
        QVERIFY(!database.Init() && !database.IsOpen()); // the file is required
        QVERIFY(!QFile::exists(m_strPath));
        QVERIFY(!database.SelectOne(row, TABLE, {}, {}) && !database.CreateTable(CREATE_TABLE, TABLE));
        QVERIFY(!database.Insert(TABLE, {{ID, 1}}) && !database.InsertOrReplace(TABLE, {{ID, 1}}));
        QVERIFY(!database.InsertOrUpdate(TABLE, {{ID, 1}}, {}) && !database.Update(TABLE, {{ID, 1}}, {}));
        QVERIFY(!database.Delete(TABLE, {}) && !database.Exec("SELECT 1"_s));
        QVERIFY(!database.StartTransaction() && !database.EndTransaction(true) && !database.GetLastInsertID(id));
        QCOMPARE(id, -1);
        MakeFile(1);
        QVERIFY(database.Init() && database.m_steps.isEmpty()); // is used as it is
    }

    void Climbs()
    {
        // The file's version, or -1 for none; the step that fails; those that run.
        const std::tuple<int, unsigned int, TSteps> climbs[] = {{-1, 0, {1, 2, 3}}, {1, 0, {2, 3}}, {3, 0, {}},
                                                                {4, 0, {}},         {0, 1, {1}},    {1, 3, {2, 3}}};
        for (const auto &[fileVersion, failingStep, steps] : climbs) {
            init();
            const QByteArray before = MakeFile(fileVersion);
            CLadder database(m_strPath);
            database.m_uiFailingStep = failingStep;
            QCOMPARE(database.Init(), failingStep == 0);
            QCOMPARE(ReadFile(m_strPath) == before, failingStep != 0 || steps.isEmpty());
            QVERIFY(database.Init());
            QCOMPARE(database.m_steps, steps);
            TRow row;
            QVERIFY(database.SelectOne(row, "tbl_dbinfo"_s, {"DBI_cValue"_s}, {}));
            const int version = failingStep == 0 ? qMax(fileVersion, 3) : fileVersion;
            QCOMPARE(row.values(), QVariantList{QString::number(version)});
            QVERIFY(CLocalDB(m_strPath, true, true).IsOpen()); // the connection is the file's, not the object's
        }
    }

    void DamagedFilesStay()
    {
        // Bytes off the end, or with 0 a text over the beginning. The last page is the third step's table.
        for (const int cut : {0, 2048, 4096 + 2048}) {
            init();
            MakeFile(3);
            QFile file(m_strPath);
            QVERIFY(file.open(QIODevice::ReadWrite) && file.resize(file.size() - cut));
            QVERIFY(cut > 0 || file.write("A text that is no database.") > 0);
            file.close();
            const QByteArray contents = ReadFile(m_strPath);
            CLadder database(m_strPath);
            TRows rows;
            QCOMPARE(database.Init(), cut == 2048);
            database.SelectAll(rows, STEP1, {}, {}, 0);
            QCOMPARE(rows.size(), cut == 2048 ? 3 : 0);
            QCOMPARE(ReadFile(m_strPath), contents);
        }
    }

    void FileThatCannotBeOpened()
    {
        QVERIFY(!CLadder(m_dir.path()).Init()); // a folder at its place
        const QString path = m_dir.filePath("missing/folder.sqlite"_s);
        CLadder database(path);
        QVERIFY(!database.Init());
        QVERIFY(!database.Insert(TABLE, {{ID, 1}}));
        QVERIFY(QDir(m_dir.path()).mkdir("missing"_s));
        QVERIFY(!database.IsOpen() && !database.StartTransaction()); // only Init() opens what may be a new file
        QVERIFY(!QFile::exists(path));
        QVERIFY(database.Init());
        QCOMPARE(database.m_steps, TSteps({1, 2, 3}));
        QSqlDatabase::database(path, false).close();
        QVERIFY(database.Insert(STEP1, {{ID, 4}})); // it was open
    }

    // The commit finds that a reference has no row.
    void RefusedCommitOfAClimb()
    {
        CLadder database(m_strPath);
        database.m_Inserted = [&database] {
            database.Exec("CREATE TABLE IF NOT EXISTS tbl_reference"
                          " (id INTEGER REFERENCES tbl_step1 DEFERRABLE INITIALLY DEFERRED)"_s);
            database.Insert("tbl_reference"_s, {{ID, 99}});
        };
        QVERIFY(!database.Init());
        TRow row;
        QVERIFY(database.SelectOne(row, "tbl_dbinfo"_s, {"DBI_cValue"_s}, {}));
        QCOMPARE(row.values(), QVariantList{"0"_s});
        QVERIFY(!database.SelectOne(row, STEP1, {}, {}) && !database.EndTransaction(true));
    }

    void LockedFileIsLeftAlone()
    {
        MakeFile(3);
        CChild child("lock"_s, m_strPath);
        QCOMPARE(child.NextLine(), QByteArrayLiteral("locked 1"));
        const QByteArray contents = ReadFile(m_strPath);
        constexpr int WAIT_MS = 400;
        // The driver would wait five seconds.
        QSqlDatabase::addDatabase("QSQLITE"_s, m_strPath) // clazy:exclude=writing-to-temporary (a handle)
            .setConnectOptions("QSQLITE_BUSY_TIMEOUT=%1"_s.arg(WAIT_MS));
        CLadder database(m_strPath);
        database.UseWriteAheadLog();
        QElapsedTimer wait;
        wait.start();
        QVERIFY(!database.Init());
        QVERIFY(!database.IsOpen() && !database.Insert(STEP1, {{ID, 4}}));
        QVERIFY2(wait.elapsed() < 2 * WAIT_MS, QByteArray::number(wait.elapsed())); // once
        child.End();
        QCOMPARE(ReadFile(m_strPath), contents);
        QVERIFY(database.Init() && database.m_steps.isEmpty() && database.Insert(STEP1, {{ID, 4}}));
    }

    // A file that isn't one yet, as another client is about to make it.
    void LockedNewFile()
    {
        QSqlDatabase::addDatabase("QSQLITE"_s, m_strPath) // clazy:exclude=writing-to-temporary (a handle)
            .setConnectOptions("QSQLITE_BUSY_TIMEOUT=10"_s);
        CLadder database(m_strPath);
        {
            const CShortLock other(m_strPath);
            QVERIFY(!database.Init() && !database.IsOpen());
        }
        QVERIFY(database.Init());
        QCOMPARE(database.m_steps, TSteps({1, 2, 3}));
    }

    // Another program writes for a moment: it is waited for.
    void ShortlyLockedFile_data()
    {
        QTest::addColumn<int>("fileVersion");
        QTest::addColumn<QString>("lock");
        QTest::newRow("a new file") << 0 << "BEGIN EXCLUSIVE"_s;
        QTest::newRow("a step is pending") << 1 << "BEGIN IMMEDIATE"_s;
        QTest::newRow("a transaction reads and writes") << 3 << "BEGIN IMMEDIATE"_s;
    }

    void ShortlyLockedFile()
    {
        QFETCH(int, fileVersion);
        QFETCH(QString, lock);
        if (fileVersion > 0)
            MakeFile(fileVersion);
        CLadder database(m_strPath);
        QVERIFY(fileVersion < 3 || database.Init());
        const CShortLock other(m_strPath, lock);
        QVERIFY(database.Init());
        QCOMPARE(database.m_steps.size(), 3 - fileVersion);
        TRow row;
        QVERIFY(database.StartTransaction() && database.SelectOne(row, STEP1, {}, {{ID, 1}}));
        QVERIFY(database.Insert(STEP1, {{ID, 4}}) && database.EndTransaction(true));
        QVERIFY(database.SelectOne(row, STEP1, {}, {{ID, 4}}));
    }

    void ClientsStartTogether()
    {
        QVERIFY(QFile::setPermissions(m_dir.path(), QFile::Permissions(0x7777)));
        for (int start = 0; start < 10; ++start) {
            init();
            CChild first("report log"_s, m_strPath);
            CChild second("report log"_s, m_strPath);
            QCOMPARE(first.NextLine() + ", " + second.NextLine(), QByteArrayLiteral("true 3, true 3"));
        }
        QVERIFY(QFile::setPermissions(m_dir.path(), QFile::Permissions(0x7755)));
    }

    // Root may write anywhere, so that a process without its rights tries.
    void FolderWithoutWritePermission()
    {
        using TCase = std::pair<int, const char *>;
        for (const auto &[version, answer] : {TCase(-1, "false 0"), TCase(1, "false 3"), TCase(3, "true 3")}) {
            init();
            const QByteArray contents = MakeFile(version);
            QVERIFY(QFile::setPermissions(m_dir.path(), QFile::Permissions(0x5555)));
            const QByteArray line = CChild("report"_s, m_strPath).NextLine();
            QVERIFY(QFile::setPermissions(m_dir.path(), QFile::Permissions(0x7755)));
            QCOMPARE(line, QByteArray(answer));
            QCOMPARE(ReadFile(m_strPath), contents);
            QCOMPARE(QFile::exists(m_strPath), version >= 0);
        }
    }

    void AnotherProcessReads()
    {
        CLadder database(m_strPath);
        QVERIFY(QFile::setPermissions(m_dir.path(), QFile::Permissions(0x7755)));
        QVERIFY(database.Init() && database.StartTransaction() && database.Insert(STEP1, {{ID, 4}}));
        QCOMPARE(CChild("report"_s, m_strPath).NextLine(), QByteArrayLiteral("true 3"));
        QVERIFY(database.EndTransaction(true));
        QCOMPARE(CChild("report"_s, m_strPath).NextLine(), QByteArrayLiteral("true 4"));
    }

    // A write is there for others without a wait for the disk, and a log that can't be written doesn't hide the file.
    void WriteAheadLog()
    {
        {
            CLadder database(m_strPath);
            database.UseWriteAheadLog();
            QVERIFY(QFile::setPermissions(m_dir.path(), QFile::Permissions(0x7777)) && database.Init());
            TRow row;
            QVERIFY(database.SelectOne(row, "pragma_synchronous"_s, {}, {}) && row.value("synchronous"_s) == 1);
            QVERIFY(database.Insert(STEP1, {{ID, 4}}) && QFile::exists(m_strPath + "-wal"_s));
            QVERIFY(QFile::setPermissions(m_strPath, QFile::Permissions(0x6666)));
            for (const char *file : {"-wal", "-shm"})
                QVERIFY(QFile::setPermissions(m_strPath + QLatin1String(file), QFile::Permissions(0x6666)));
            QCOMPARE(CChild("report log"_s, m_strPath).NextLine(), QByteArrayLiteral("true 4"));
        }
        QVERIFY(!QFile::exists(m_strPath + "-wal"_s));
        QVERIFY(QFile::setPermissions(m_dir.path(), QFile::Permissions(0x5555)));
        const QByteArray line = CChild("report log"_s, m_strPath).NextLine();
        QVERIFY(QFile::setPermissions(m_dir.path(), QFile::Permissions(0x7755)));
        QCOMPARE(line, QByteArrayLiteral("true 4"));
    }

    void KilledWhileClimbing() { KilledAnywhere("climb"_s, 1); }
    void KilledWhileInserting() { KilledAnywhere("insert"_s, 3); }

    void Conversions()
    {
        using namespace DBValue;
        std::tuple<bool, bool, int, double, QString> values(true, false, 0, 0, QString());
        auto &[off, byDefault, number, real, text] = values;
        QVERIFY(!ToInt(number, TEXT, DBT_Int) && !ToDouble(real, TEXT, DBT_Double));
        QVERIFY(ToBool(off, "Off"_s, DBT_Int) && ToBool(byDefault, QVariant(), DBT_Int));
        QVERIFY(ToInt(number, "-7"_s, DBT_Bool) && ToDouble(real, "2.5"_s, DBT_Bool) && ToString(text, 2.5, DBT_Int));
        QVERIFY(values == std::tuple(false, true, -7, 2.5, "2.5"_s));
        for (const QVariant &value : {QVariant(true), QVariant(1), QVariant(1.), QVariant(TEXT), QVariant(1LL)})
            text += QLatin1Char(' ') + ToTypeString(ToType(value));
        for (const QVariant &value : {QVariant(0), QVariant("2"_s), QVariant(4), QVariant(-1), QVariant(TEXT)})
            text += QLatin1Char(' ') + QString::number(ToTypeFromDB(value));
        QCOMPARE(text + ToTypeString(static_cast<DBConfigType>(7)), "2.5 bool int double string string 0 2 3 3 3"_s);
    }
};

void tst_localdb::KilledAnywhere(const QString &mode, int version)
{
    const bool climbing = version == 1;
    const QString original = m_strPath;
    const QByteArray before = MakeFile(version);
    QByteArray after;
    QRandomGenerator random(25);
    int interrupted = 0;
    for (int kill = 0; kill <= 25; ++kill) {
        m_strPath = original + QLatin1Char('.') + QString::number(kill);
        QVERIFY(QFile::copy(original, m_strPath));
        CChild child(mode, m_strPath);
        int rowLines = 0;
        // 101 lines are the whole climb with its two times 50 rows, which the first child comes to.
        const int lines = kill == 0 ? 101 : random.bounded(1, 102);
        for (int line = 0; line < lines; ++line)
            rowLines += child.NextLine().startsWith("row");
        const bool climbed = climbing && rowLines < lines;
        child.End();
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        interrupted += QFile::exists(m_strPath + "-journal"_s);

        CLadder database(m_strPath, unsigned(version));
        TRows rows;
        TRow sound;
        QVERIFY(database.Init() && database.SelectAll(rows, STEP1, {ID}, {}, 0));
        QVERIFY(database.SelectOne(sound, "pragma_integrity_check"_s, {}, {}));
        QCOMPARE(sound, (TRow{{"integrity_check"_s, "ok"_s}}));
        QCOMPARE(rows.size() % 50, 3);
        if (kill == 0)
            after = ReadFile(m_strPath);
        if (climbing)
            QVERIFY(ReadFile(m_strPath) == after || (ReadFile(m_strPath) == before && !climbed));
        else
            QVERIFY(rows.size() / 50 >= lines - rowLines - 1); // without the line "open"
    }
    QVERIFY(interrupted > 0 && after.size() > before.size() + 50 * 2000);
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc == 4 && argv[1] == "child"_s.toUtf8())
        return RunChild(application.arguments().at(2), application.arguments().at(3));
    tst_localdb test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_localdb.moc"
