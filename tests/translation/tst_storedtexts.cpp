// Every look-up answers what the catalogue's file says now: random look-ups, while the own connection, another one
// and another process change the file. The expected text is what SQL on the own connection finds.
//
// PLUGININTERFACE_LOOKUPS=100000 makes so many instead of some thousand, PLUGININTERFACE_SEED others.

#include <support/Languages.h>
#include <translation/Translation.h>

#include <QProcess>
#include <QRandomGenerator>

namespace {

#ifdef SANITIZED
constexpr int USUAL_LOOKUPS = 3000;
#else
constexpr int USUAL_LOOKUPS = 10000;
#endif
constexpr int LOOKUPS_A_CHANGE = 20; // so that most texts are remembered

const QStringList AREAS{"core"_s, "CORE"_s, "Lobby"_s, "none"_s};
const QStringList KEYS{"A"_s, "b"_s, "C'"_s, "\u00c4"_s, "d"_s};

// Executes each line of its input, and answers it.
int RunOther(const QString &path)
{
    QSqlDatabase connection = QSqlDatabase::addDatabase("QSQLITE"_s);
    connection.setDatabaseName(path);
    QFile in, out;
    if (!connection.open() || !in.open(stdin, QIODevice::ReadOnly) || !out.open(stdout, QIODevice::WriteOnly))
        return 1;
    while (!in.atEnd()) {
        connection.exec(QString::fromUtf8(in.readLine()));
        out.write("done\n");
        out.flush();
    }
    return 0;
}

} // namespace

class tst_storedtexts : public QObject
{
    Q_OBJECT

    QString Find(const QString &area, const QString &key, int language) const
    {
        return CTranslation::GetInstance()->GetTranslatedString(key, area, language);
    }

    // By the own connection.
    static QString Expect(const QString &area, const QString &key, int language)
    {
        QSqlQuery query(QSqlDatabase::database(Pathes::LanguageDB()));
        for (const QString &where : {area.toLower(), "core"_s}) {
            query.exec("SELECT TRL_cTranslation FROM tbl_translations WHERE TRL_cArea='%1' AND TRL_cKey='%2' AND"
                       " TRL_AVL_iID='%3' LIMIT 1"_s.arg(where, CLocalDB::Escape(key.toLower()))
                           .arg(language < 0 ? CTranslation::GetInstance()->GetLanguage().iID : language));
            if (query.next())
                return query.value(0).toString();
        }
        return area.toLower() + u'/' + key.toLower() + "\nNOT IN TRANSLATION"_s;
    }

    struct SName
    {
        QString strArea;
        QString strKey;
        int iLanguage;
    };

    SName Name() { return {Area(), Key(), m_random.bounded(4)}; }
    QString Area() { return Of(AREAS); }
    QString Key() { return Of(KEYS); }
    QString Of(const QStringList &from) { return from.at(m_random.bounded(from.size())); }

    // Of a text that may be there or not, and that is looked up next.
    QString Change()
    {
        m_changed = Name();
        const QString row = "'%1', '%2', '%3'"_s.arg(m_changed.iLanguage)
                                .arg(m_changed.strArea.toLower(), CLocalDB::Escape(m_changed.strKey.toLower()));
        const QString text =
            Of({"'text %1'"_s, "''"_s, "NULL"_s, "%1"_s}).replace("%1"_s, QString::number(++m_iTexts));
        return m_random.bounded(3) == 0
                   ? "DELETE FROM tbl_translations WHERE (TRL_AVL_iID, TRL_cArea, TRL_cKey) = (%1)"_s.arg(row)
                   : "INSERT OR REPLACE INTO tbl_translations VALUES (%1, %2)"_s.arg(row, text);
    }

    // From here on all texts are remembered.
    void FindAll() const
    {
        for (const QString &area : AREAS) {
            for (const QString &key : KEYS) {
                for (int language = 0; language < 4; ++language)
                    Find(area, key, language);
            }
        }
    }

    void ExecElsewhere(const QString &sql)
    {
        m_process.write(sql.toUtf8() + '\n');
        QVERIFY(m_process.waitForReadyRead());
        m_process.readAll();
    }

    void SwitchLanguage() { CSettings::GetInstance()->SetSelectedLanguage(1 + m_random.bounded(3)); }

    // The connection goes on with a copy, whose counter is the same, but not its texts.
    void ReplaceFile()
    {
        const QString path = Pathes::LanguageDB();
        m_other.close();
        CTranslationDB::GetInstance()->Exec("PRAGMA journal_mode = DELETE"_s);
        QFile::remove(path + ".copy"_s);
        QVERIFY(QFile::copy(path, path + ".copy"_s));
        CTranslationDB::GetInstance()->Exec(Change());
        {
            QSqlDatabase copy = QSqlDatabase::addDatabase("QSQLITE"_s, "copy"_s);
            copy.setDatabaseName(path + ".copy"_s);
            QVERIFY(copy.open());
            copy.exec(Change());
        }
        QSqlDatabase::removeDatabase("copy"_s);
        FindAll();
        QSqlDatabase::database(path).close();
        QVERIFY(QFile::remove(path) && QFile::rename(path + ".copy"_s, path));
        EndOthers();
        BeginOthers();
    }

    void BeginOthers()
    {
        m_other = QSqlDatabase::addDatabase("QSQLITE"_s, "other"_s);
        m_other.setDatabaseName(Pathes::LanguageDB());
        m_other.setConnectOptions("QSQLITE_BUSY_TIMEOUT=0"_s);
        QVERIFY(m_other.open());
        m_process.start(QCoreApplication::applicationFilePath(), {"other"_s, Pathes::LanguageDB()});
        QVERIFY(m_process.waitForStarted());
    }

    void EndOthers()
    {
        m_other = QSqlDatabase();
        QSqlDatabase::removeDatabase("other"_s);
        m_process.closeWriteChannel();
        QVERIFY(m_process.waitForFinished());
    }

    void ChangeSomewhere()
    {
        CTranslationDB *own = CTranslationDB::GetInstance();
        const int where = m_random.bounded(m_bTransaction ? 12 : 40);
        if (m_bTransaction && where < 3) { // which ends sooner or later
            own->EndTransaction(where < 2);
            m_bTransaction = false;
        } else if (where < 12) {
            own->Exec(Change());
        } else if (where < 20) {
            m_other.exec(Change());
        } else if (where < 28) {
            ExecElsewhere(Change());
        } else if (where < 33) {
            FindAll();
            m_bTransaction = own->StartTransaction();
        } else if (where < 36) {
            SwitchLanguage();
        } else if (where < 38) {
            own->Exec("PRAGMA journal_mode = "_s + Of({"WAL"_s, "DELETE"_s, "TRUNCATE"_s}));
        } else if (m_random.bounded(2) == 0) {
            ReplaceFile();
        } else {
            QSqlDatabase::database(Pathes::LanguageDB()).close();
        }
    }

    const CLanguages m_languages{"1|core|a|text"_s, "1 en English,2 de Deutsch,3 fr Français"_s};
    QSqlDatabase m_other;
    QProcess m_process;
    QRandomGenerator m_random{quint32(qEnvironmentVariableIntValue("PLUGININTERFACE_SEED"))};
    bool m_bTransaction = false; // of the own connection
    SName m_changed{"core"_s, "a"_s, 1};
    int m_iTexts = 0;

private Q_SLOTS:
    void AnswersWhatTheFileSays()
    {
        CTranslationDB::GetInstance()->Exec("CREATE UNIQUE INDEX texts ON tbl_translations (TRL_AVL_iID, TRL_cArea,"
                                            " TRL_cKey)"_s);
        BeginOthers();
        bool given = false;
        const int asked = qEnvironmentVariableIntValue("PLUGININTERFACE_LOOKUPS", &given);
        const int lookups = given ? asked : USUAL_LOOKUPS;
        int texts = 0;
        for (int number = 0; number < lookups; ++number) {
            SName name = Name();
            if (m_random.bounded(m_bTransaction ? 3 : LOOKUPS_A_CHANGE) == 0) {
                ChangeSomewhere();
                name = m_changed;
            }
            const int language = m_random.bounded(3) == 0 ? -1 : name.iLanguage;
            const QString text = Find(name.strArea, name.strKey, language);
            texts += text.endsWith("TRANSLATION"_s) ? 0 : 1;
            QCOMPARE(qMakePair(number, text), qMakePair(number, Expect(name.strArea, name.strKey, language)));
        }
        QVERIFY(texts > lookups / 5);
        EndOthers();
        CTranslationDB::GetInstance()->EndTransaction(true);
    }

    // It is a look-up, and the first after another's change, that waits for a lock: no text is remembered meanwhile.
    void LockedFile()
    {
        CTranslationDB::GetInstance()->Exec("PRAGMA busy_timeout = 50"_s);
        CTranslationDB::GetInstance()->Exec(
            "INSERT OR REPLACE INTO tbl_translations VALUES ('1', 'core', 'x', '1')"_s);
        CTranslationDB::GetInstance()->Exec("PRAGMA journal_mode = DELETE"_s);
        QCOMPARE(Find("core"_s, "x"_s, 1), "1"_s);
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE"_s, "locking"_s);
        other.setDatabaseName(Pathes::LanguageDB());
        QVERIFY(other.open());
        QVERIFY(!other.exec("BEGIN EXCLUSIVE"_s).lastError().isValid());
        other.exec("UPDATE tbl_translations SET TRL_cTranslation = '2' WHERE TRL_cKey = 'x'"_s);
        QCOMPARE(Find("core"_s, "y"_s, 1), "core/y\nNOT IN TRANSLATION"_s);
        other.exec("INSERT INTO tbl_translations VALUES ('1', 'core', 'y', '3')"_s);
        QVERIFY(!other.exec("COMMIT"_s).lastError().isValid());
        QCOMPARE(Find("core"_s, "x"_s, 1) + Find("core"_s, "y"_s, 1), "23"_s);
    }
};

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "other"_s)
        return RunOther(arguments.value(2));
    tst_storedtexts test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_storedtexts.moc"
