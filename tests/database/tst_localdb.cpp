#include "Ladder.h"

#include <database/DBValue.h>

#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <optional>

using TRow = QHash<QString, QVariant>;
using TRows = QList<TRow>;
using TSteps = QList<unsigned int>;

namespace {

const QString TABLE = QStringLiteral("tbl_test");
const QString CREATE_TABLE = QStringLiteral("CREATE TABLE tbl_test (id INTEGER PRIMARY KEY, text TEXT)");
const QString ID = QStringLiteral("id");
const QString TEXT = QStringLiteral("text");
const QString STEP1 = QStringLiteral("tbl_step1");

// A process of its own on the file; it ends with the object.
class CChild : public QProcess
{
public:
    CChild(const char *mode, const QString &path)
    {
        start(QStringLiteral(CRASHCHILD_PATH), {QLatin1String(mode), path}, ReadOnly);
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

// Everything on real files, new ones for each row of data.
class tst_localdb : public QObject
{
    Q_OBJECT

    QByteArray Contents() const
    {
        QFile file(m_strPath);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    // A file that climbed to the version, or none if that is negative; answers its contents.
    QByteArray MakeFile(int version) const
    {
        if (version >= 0 && !CLadder(m_strPath, unsigned(version)).Init())
            qFatal("can't make %s", qUtf8Printable(m_strPath));
        return Contents();
    }

    bool Insert(int id, const QVariant &text) { return m_database->Insert(TABLE, {{ID, id}, {TEXT, text}}); }

    // The table as "1:text 2:text".
    QString Rows(const TRow &where = {})
    {
        TRows rows;
        m_database->SelectAll(rows, TABLE, {ID, TEXT}, where, 0);
        QStringList texts;
        for (const TRow &row : qAsConst(rows))
            texts.append(row.value(ID).toString() + QLatin1Char(':') + row.value(TEXT).toString());
        return texts.join(QLatin1Char(' '));
    }

    QTemporaryDir m_dir;
    QString m_strPath; ///< no file yet
    int m_iFiles = 0;
    std::optional<CLadder> m_database; ///< a file with an empty table of the columns ID and TEXT

private Q_SLOTS:
    void init()
    {
        m_strPath = m_dir.filePath(QStringLiteral("table%1.sqlite").arg(++m_iFiles));
        m_database.emplace(m_strPath, 0);
        QVERIFY(m_database->Init() && m_database->CreateTable(CREATE_TABLE, TABLE));
        m_strPath = m_dir.filePath(QStringLiteral("file%1.sqlite").arg(m_iFiles));
    }
    void cleanupTestCase() { m_database.reset(); }

    void ValuesPassUnchanged_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("escaped");
        const auto add = [](const QVariant &value, const char *escaped) {
            QTest::newRow(escaped) << value << QString::fromUtf8(escaped);
        };
        add(QStringLiteral("'it's'"), "''it''s''");
        add(QStringLiteral("'; DROP TABLE tbl_test; --"), "''; DROP TABLE tbl_test; --");
        for (const char *text :
             {"back\\slash\\", "\"100 %\" _", "a\nb\t\x01", ":name ? @x $1 %1", "/* x", "ß 🂡", " "})
            add(QString::fromUtf8(text), text);
        add(true, "true");
        add(-1.5, "-1.5");
        add(QVariant(), "");
    }

    void ValuesPassUnchanged()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, escaped);
        const QString text = value.toString();
        QCOMPARE(CLocalDB::Escape(value), escaped);
        QVERIFY(Insert(1, value) && Insert(2, QStringLiteral("other")));
        QCOMPARE(Rows({{TEXT, value}}), QLatin1String("1:") + text);
        QVERIFY(m_database->Update(TABLE, {{TEXT, value}}, {{ID, 2}}));
        QCOMPARE(Rows(), QStringLiteral("1:%1 2:%1").replace(QLatin1String("%1"), text));
        QVERIFY(m_database->InsertOrReplace(TABLE, {{ID, 1}, {TEXT, QStringLiteral("other")}}));
        QVERIFY(m_database->Delete(TABLE, {{TEXT, value}}));
        QCOMPARE(Rows(), QStringLiteral("1:other"));
    }

    void Selections()
    {
        TRow row{{QStringLiteral("kept"), 1}};
        TRows rows;
        QVERIFY(!m_database->SelectAll(rows, TABLE, {}, {}, 0));
        QVERIFY(!m_database->SelectOne(row, TABLE, {}, {}));
        rows.append(row);
        QVERIFY(m_database->SelectAll(rows, TABLE, {}, {}, 0)); // nothing found, but something there
        QCOMPARE(rows, TRows{(TRow{{QStringLiteral("kept"), 1}})});

        QVERIFY(Insert(1, TEXT) && Insert(2, TEXT) && Insert(3, TEXT));
        QVERIFY(m_database->SelectAll(rows, TABLE, {}, {{TEXT, TEXT}}, 2));
        QCOMPARE(rows.mid(1), TRows({{{ID, 1}, {TEXT, TEXT}}, {{ID, 2}, {TEXT, TEXT}}}));
        QVERIFY(m_database->SelectOne(row, TABLE, {QStringLiteral("MAX(id)"), QStringLiteral("COUNT(*)")}, {}));
        QCOMPARE(row, (TRow{{QStringLiteral("MAX(id)"), 3}, {QStringLiteral("COUNT(*)"), 3}}));
        QCOMPARE(Rows({{ID, 2}, {TEXT, TEXT}}), QStringLiteral("2:text"));
        QCOMPARE(Rows({{ID, 2}, {TEXT, QStringLiteral("other")}}), QString());
        QVERIFY(!m_database->SelectAll(rows, QString(), {}, {}, 0));
        QVERIFY(!m_database->SelectAll(rows, TABLE, {QStringLiteral("missing")}, {}, 0));
    }

    void Writes()
    {
        int id = 0;
        QVERIFY(!m_database->Insert(TABLE, {}) && !m_database->Insert(QString(), {{ID, 1}}));
        QVERIFY(!m_database->Update(TABLE, {}, {}));
        QVERIFY(Insert(7, TEXT) && m_database->GetLastInsertID(id));
        QCOMPARE(id, 7);
        QVERIFY(!Insert(7, QStringLiteral("again")));
        QVERIFY(m_database->InsertOrReplace(TABLE, {{ID, 7}}));
        QCOMPARE(Rows(), QStringLiteral("7:"));
        QVERIFY(m_database->InsertOrUpdate(TABLE, {{TEXT, QStringLiteral("b")}}, {{ID, 99}})); // 99 isn't inserted
        QVERIFY(m_database->InsertOrUpdate(TABLE, {{TEXT, QStringLiteral("c")}}, {{ID, 7}}));
        QCOMPARE(Rows(), QStringLiteral("7:c 8:b"));
        QVERIFY(m_database->Update(TABLE, {{TEXT, TEXT}}, {}));
        QCOMPARE(Rows(), QStringLiteral("7:text 8:text"));
        QVERIFY(m_database->CreateTable(CREATE_TABLE, TABLE)); // the same text
        QCOMPARE(Rows(), QStringLiteral("7:text 8:text"));
        QVERIFY(m_database->Delete(TABLE, {}));
        QCOMPARE(Rows(), QString());
        QVERIFY(Insert(1, TEXT));
        const QString oneBlankMore = QString(CREATE_TABLE).replace(QLatin1String(", "), QLatin1String(",  "));
        QVERIFY(m_database->CreateTable(oneBlankMore, TABLE)); // drops the rows
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
        QCOMPARE(Rows(), QStringLiteral("1:text 2:text"));

        // A deferred reference without its row is refused at the commit.
        QVERIFY(m_database->Exec(QStringLiteral(
            "CREATE TABLE tbl_reference (id INTEGER REFERENCES tbl_test DEFERRABLE INITIALLY DEFERRED)")));
        QVERIFY(m_database->StartTransaction() && Insert(3, TEXT));
        QVERIFY(m_database->Insert(QStringLiteral("tbl_reference"), {{ID, 99}}));
        QVERIFY(m_database->EndTransaction(true) && !m_database->EndTransaction(true));
        QCOMPARE(Rows(), QStringLiteral("1:text 2:text"));
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
        QVERIFY(!database.Delete(TABLE, {}) && !database.Exec(QStringLiteral("SELECT 1")));
        QVERIFY(!database.StartTransaction() && !database.EndTransaction(true) && !database.GetLastInsertID(id));
        QCOMPARE(id, -1);
        MakeFile(1);
        QVERIFY(database.Init() && database.m_steps.isEmpty()); // is used as it is
    }

    void Climbs_data()
    {
        QTest::addColumn<int>("fileVersion"); // -1 is no file
        QTest::addColumn<unsigned int>("failingStep");
        QTest::addColumn<TSteps>("steps");
        QTest::newRow("new file") << -1 << 0u << TSteps{1, 2, 3};
        QTest::newRow("from 1") << 1 << 0u << TSteps{2, 3};
        QTest::newRow("newest") << 3 << 0u << TSteps{};
        QTest::newRow("newer than the code") << 4 << 0u << TSteps{};
        QTest::newRow("first step fails") << 0 << 1u << TSteps{1};
        QTest::newRow("last step fails") << 1 << 3u << TSteps{2, 3};
    }

    void Climbs()
    {
        QFETCH(int, fileVersion);
        QFETCH(unsigned int, failingStep);
        QFETCH(TSteps, steps);
        const QByteArray before = MakeFile(fileVersion);
        CLadder database(m_strPath);
        database.m_uiFailingStep = failingStep;
        QCOMPARE(database.Init(), failingStep == 0);
        QCOMPARE(Contents() == before, failingStep != 0 || steps.isEmpty());
        QVERIFY(database.Init());
        QCOMPARE(database.m_steps, steps);
        TRow row;
        QVERIFY(database.SelectOne(row, QStringLiteral("tbl_dbinfo"), {QStringLiteral("DBI_cValue")}, {}));
        const int version = failingStep == 0 ? qMax(fileVersion, 3) : fileVersion;
        QCOMPARE(row.values(), QVariantList{QString::number(version)});
        QVERIFY(CLocalDB(m_strPath, true, true).IsOpen()); // the connection is the file's, not the object's
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
            const QByteArray contents = Contents();
            CLadder database(m_strPath);
            TRows rows;
            QCOMPARE(database.Init(), cut == 2048);
            database.SelectAll(rows, STEP1, {}, {}, 0);
            QCOMPARE(rows.size(), cut == 2048 ? 3 : 0);
            QCOMPARE(Contents(), contents);
        }
    }

    void FileThatCannotBeOpened()
    {
        QVERIFY(!CLadder(m_dir.path()).Init()); // a folder at its place
        CLadder database(m_dir.filePath(QStringLiteral("missing/folder.sqlite")));
        QVERIFY(!database.Init());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("unable to open database")));
        QVERIFY(!database.Insert(TABLE, {{ID, 1}}));
        QVERIFY(QDir(m_dir.path()).mkdir(QStringLiteral("missing")));
        QVERIFY(database.Init());
        QCOMPARE(database.m_steps, TSteps({1, 2, 3}));
    }

    void LockedFileIsLeftAlone()
    {
        MakeFile(3);
        CChild child("lock", m_strPath);
        QCOMPARE(child.NextLine(), QByteArrayLiteral("locked 1"));
        const QByteArray contents = Contents();
        for (const bool locked : {true, false}) {
            // The driver would wait five seconds for each statement.
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_strPath)
                .setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=1"));
            CLadder database(m_strPath);
            QCOMPARE(database.Init(), !locked);
            QVERIFY(database.m_steps.isEmpty());
            child.End();
            QCOMPARE(Contents(), contents);
        }
    }

    // Root may write anywhere, so that a process without its rights tries.
    void FolderWithoutWritePermission()
    {
        using TCase = std::pair<int, const char *>;
        for (const auto &[version, answer] : {TCase(-1, "false 0"), TCase(1, "false 3"), TCase(3, "true 3")}) {
            init();
            const QByteArray contents = MakeFile(version);
            QVERIFY(QFile::setPermissions(m_dir.path(), QFile::Permissions(0x5555)));
            const QByteArray line = CChild("report", m_strPath).NextLine();
            QVERIFY(QFile::setPermissions(m_dir.path(), QFile::Permissions(0x7755)));
            QCOMPARE(line, QByteArray(answer));
            QCOMPARE(Contents(), contents);
            QCOMPARE(QFile::exists(m_strPath), version >= 0);
        }
    }

    void AnotherProcessReads()
    {
        CLadder database(m_strPath);
        QVERIFY(QFile::setPermissions(m_dir.path(), QFile::Permissions(0x7755)));
        QVERIFY(database.Init() && database.StartTransaction() && database.Insert(STEP1, {{ID, 4}}));
        QCOMPARE(CChild("report", m_strPath).NextLine(), QByteArrayLiteral("true 3"));
        QVERIFY(database.EndTransaction(true));
        QCOMPARE(CChild("report", m_strPath).NextLine(), QByteArrayLiteral("true 4"));
    }

    void KilledAnywhere_data()
    {
        QTest::addColumn<int>("version");
        QTest::newRow("climb") << 1;
        QTest::newRow("insert") << 3;
    }

    void KilledAnywhere()
    {
        QFETCH(int, version);
        const bool climbing = version == 1;
        const QString original = m_strPath;
        const QByteArray before = MakeFile(version);
        QByteArray after;
        QRandomGenerator random(25);
        int interrupted = 0;
        for (int kill = 0; kill <= 25; ++kill) {
            m_strPath = original + QString::number(kill);
            QVERIFY(QFile::copy(original, m_strPath));
            CChild child(QTest::currentDataTag(), m_strPath);
            int rowLines = 0;
            // 101 lines are the whole climb with its two times 50 rows, which the first child comes to.
            const int lines = kill == 0 ? 101 : random.bounded(1, 102);
            for (int line = 0; line < lines; ++line)
                rowLines += child.NextLine().startsWith("row");
            const bool climbed = climbing && rowLines < lines;
            child.End();
            QCOMPARE(child.exitStatus(), QProcess::CrashExit);
            interrupted += QFile::exists(m_strPath + QLatin1String("-journal"));

            CLadder database(m_strPath, unsigned(version));
            TRows rows;
            TRow sound;
            QVERIFY(database.Init() && database.SelectAll(rows, STEP1, {ID}, {}, 0));
            QVERIFY(database.SelectOne(sound, QStringLiteral("pragma_integrity_check"), {}, {}));
            QCOMPARE(sound.value(QStringLiteral("integrity_check")).toString(), QStringLiteral("ok"));
            QCOMPARE(rows.size() % 50, 3);
            if (kill == 0)
                after = Contents();
            if (climbing)
                QVERIFY(Contents() == after || (Contents() == before && !climbed));
            else
                QVERIFY(rows.size() / 50 >= lines - rowLines - 1); // without the line "open"
        }
        QVERIFY(interrupted > 0 && after.size() > before.size() + 50 * 2000);
    }

    void Conversions()
    {
        using namespace DBValue;
        bool truth = true;
        int number = 0;
        double real = 0;
        QString text;
        QVERIFY(ToBool(truth, QStringLiteral("Off"), DBT_Int) && !truth);
        QVERIFY(ToBool(truth, QVariant(), DBT_Int) && truth);
        QVERIFY(ToInt(number, QStringLiteral("-7"), DBT_Bool) && number == -7);
        QVERIFY(ToDouble(real, QStringLiteral("2.5"), DBT_Bool) && qFuzzyCompare(real, 2.5));
        QVERIFY(!ToInt(number, TEXT, DBT_Int) && !ToDouble(real, TEXT, DBT_Double));
        QVERIFY(ToString(text, 2.5, DBT_Int) && text == QLatin1String("2.5"));

        QStringList kinds;
        for (const QVariant &value : {QVariant(true), QVariant(1), QVariant(1.), QVariant(TEXT), QVariant(1LL)})
            kinds.append(ToTypeString(ToType(value)));
        QCOMPARE(kinds.join(QLatin1Char(' ')), QStringLiteral("bool int double string string"));
        QList<int> named;
        for (const QVariant &value :
             {QVariant(0), QVariant(QStringLiteral("2")), QVariant(4), QVariant(-1), QVariant(TEXT)})
            named.append(ToTypeFromDB(value));
        QCOMPARE(named, QList<int>({0, 2, 3, 3, 3}));
        QCOMPARE(ToTypeString(static_cast<DBConfigType>(7)), QString());
    }
};

QTEST_GUILESS_MAIN(tst_localdb)
#include "tst_localdb.moc"
