#include "ServerProcess.h"

#include <database/LocalDB.h>

#include <support/Literal.h>

#include <QtTest>

#include <httplib.h>

namespace {

// The same for all, so that it can be another when the server has been.
using TWeb = std::unique_ptr<httplib::Client>;
const char FORM[] = "application/x-www-form-urlencoded";

QByteArray AskForSession(const TWeb &web, const QString &user, const QString &machine)
{
    const httplib::Params form{{"key", "k &"}, {"nickname", user.toStdString()}, {"machine", machine.toStdString()}};
    const auto answer = web->Post("/sessions", form);
    return answer ? QByteArray::fromStdString(answer->body) : QByteArray();
}

// What a client does with one of its two lists.
class CMachine
{
public:
    CMachine(const TWeb &web, const QString &user, const QString &name, bool notes)
        : m_web(web)
        , m_strList(notes ? "playerinfos"_s : "usersettings"_s)
        , m_strKey(notes ? "nick"_s : "key"_s)
        , m_strValue(notes ? "note"_s : "value"_s)
        , m_session(AskForSession(web, user, name))
    {
    }

    void Do(const QString &step) // see Convergence_data()
    {
        const QStringList change = step.split(QRegularExpression("[:=@]"_s));
        const char what = step.at(1).toLatin1();
        if (what == ':')
            m_rows[change.at(1)] = {change.at(2), change.at(3).toInt()};
        else if (what == '-')
            m_rows.clear();
        else if (what != '^')
            Fetch(what == '!');
        if (what == '^' || (what == '!' && !IsInStep()))
            Send();
    }
    QString GetValues() const
    {
        QStringList values;
        for (auto row = m_rows.cbegin(); row != m_rows.cend(); ++row)
            values.append(row.key() + QLatin1Char('=') + row->first);
        return values.join(QLatin1Char(' '));
    }
    int GetNewest() const
    {
        const auto older = [](const auto &one, const auto &other) { return one.second < other.second; };
        return m_rows.isEmpty() ? 0 : std::max_element(m_rows.begin(), m_rows.end(), older)->second;
    }
    bool IsInStep() const { return m_iNamed == GetNewest(); }
    int Fetch(bool arrives)
    {
        const std::string newest = std::to_string(GetNewest());
        const auto answer = m_web->Get("/sync?session=" + m_session.left(32).toStdString() +
                                       "&usersettings=" + newest + "&playerinfos=" + newest);
        if (!answer || answer->status != 200 || !arrives)
            return answer ? answer->status : 0;
        const QJsonObject root = QJsonDocument::fromJson(QByteArray::fromStdString(answer->body)).object();
        m_iNamed = root.value(m_strList + "time"_s).toInt(-1);
        const QJsonArray rows = root.value(m_strList).toArray();
        for (const QJsonValue &row : rows) {
            const QString value = row[m_strValue].toString();
            auto &kept = m_rows[row[m_strKey].toString()];
            if (m_strKey == "nick"_s || kept.first != value) // a setting that is alike keeps its older time
                kept = {value, row["time"_s].toInt()};
        }
        return answer->status;
    }
    int Send()
    {
        QJsonArray rows;
        for (auto row = m_rows.cbegin(); row != m_rows.cend(); ++row) {
            if (row->second >= m_iNamed + (m_strKey == "nick"_s ? 1 : 0))
                rows.append(QJsonValue::fromVariant(QVariantMap{{m_strKey, row.key()},
                                                                {m_strValue, row->first},
                                                                {"area"_s, ""_s},
                                                                {"tag"_s, row->first.isEmpty() ? "0"_s : "1"_s},
                                                                {"flags"_s, "0"_s},
                                                                {"time"_s, QString::number(row->second)}}));
        }
        const QString newest = QString::number(GetNewest());
        const QJsonObject root{{"usersettingstime"_s, newest}, {"playerinfostime"_s, newest}, {m_strList, rows}};
        const QByteArray body = "session=" + m_session + "&json=" + QJsonDocument(root).toJson();
        if (rows.isEmpty())
            return 200; // a client has nothing to say then
        const auto answer = m_web->Post("/sync", body.toStdString(), FORM);
        if (answer && answer->status == 200)
            m_iNamed =
                QJsonDocument::fromJson(QByteArray::fromStdString(answer->body))[m_strList + "time"_s].toInt(-1);
        return answer ? answer->status : 0;
    }

private:
    const TWeb &m_web;
    const QString m_strList, m_strKey, m_strValue;
    QByteArray m_session;
    QMap<QString, QPair<QString, int>> m_rows; // values and times
    int m_iNamed = 0;
};

} // namespace

class tst_webserver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QDir(m_dir.path()).mkpath("pictures/5"_s));
        for (const QString &name : {"pictures/5/5001.png"_s, "pictures/5/4999.png"_s, "secret.png"_s}) {
            QFile file(m_dir.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("png") == 3);
        }
        Start();
    }

    void cleanupTestCase() { m_server.close(); }

    // Requests are method, target, and body; in a body S stands for a session with what follows it, in a target for
    // what of it goes there.
    void Answers_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<int>("status");
        const auto row = [](int status, const QByteArray &request) {
            QTest::newRow(request.left(100)) << request << status;
        };
        const auto json = [&row](int status, const char *change, const QByteArray &to) {
            QByteArray rows =
                R"({"usersettingstime":"7","playerinfostime":"7","usersettings":[{"area":"a","key":"k",)"
                R"("value":"v","time":"7"}],"playerinfos":[{"nick":"n","note":"","tag":"1","flags":"0",)"
                R"("time":"7"}]})";
            row(status, "POST /sync session=S" + rows.replace(change, to));
        };
        row(403, "POST /sessions key=x&nickname=a&machine=m");
        row(400, "POST /sessions key=k+%26&nickname=&machine=m");
        row(400, "POST /sessions key=k+%26&nickname=a&machine=" + QByteArray(65, 'm'));
        row(403, "GET /sync?session=s&playerinfos=0&usersettings=0 ");
        for (const char *time : {"", "x", "-1", "1.5", "4102444800"})
            row(400, "GET /sync?session=S&playerinfos=0&usersettings=" + QByteArray(time) + " ");
        row(403, "POST /sync session=s&json={}");
        for (const char *body : {"S", "S[]", "S{}", "S{\"usersettingstime\":\"7\"}"})
            row(400, "POST /sync session=" + QByteArray(body));
        json(400, "\"7\"", "7");
        json(400, "\"tag\":\"1\"", "\"tag\":\"x\"");
        json(400, "\"note\":\"\",", "");
        json(400, "\"playerinfos\":[", "\"playerinfos\":[7,");
        json(400, "}]}", "}]");
        json(413, "}]}", "}]}" + QByteArray(100000, ' '));
        for (const char *path : {"pictures/5/5001.png", "files/5001.png"})
            row(200, "GET /" + QByteArray(path) + " ");
        for (const char *path : {"../secret.png", "..%2F..%2Fsecret.png", ".", "", "5"})
            row(404, "GET /files/" + QByteArray(path) + " ");
        for (const char *path : {"5/4999.png", "5/5002.png", "../secret.png", "5/..%2F..%2Fsecret.png", "", "5/5001"})
            row(404, "GET /pictures/" + QByteArray(path) + " ");
    }

    void Answers()
    {
        QFETCH(QByteArray, request);
        const QByteArray session = AskForSession(m_pWeb, "Zoë"_s, "desk"_s);
        const QByteArray target = request.split(' ').at(1);
        const std::string body = request.mid(request.indexOf(target) + target.size() + 1)
                                     .replace("=S", "=" + session + "&json=")
                                     .toStdString();
        const std::string path = QByteArray(target).replace("=S", "=" + session.left(32)).toStdString();
        const auto answer = request.startsWith("GET") ? m_pWeb->Get(path) : m_pWeb->Post(path, body, FORM);
        QVERIFY(answer);
        QTEST(answer->status, "status");
        CMachine other(m_pWeb, "ZOË"_s, "other"_s, false); // that finds nothing stored
        other.Fetch(true);
        QVERIFY(other.GetValues().isEmpty());
    }

    void Restart()
    {
        CMachine machine(m_pWeb, "Vega"_s, "desk"_s, true);
        for (const char *step : {"A:x=1@100", "A^"})
            machine.Do(QString::fromLatin1(step));
        m_server.kill();
        QVERIFY(m_server.waitForFinished());
        Start();
        for (const char *step : {"A-", "A!", "A:y=2@110"})
            machine.Do(QString::fromLatin1(step));
        QCOMPARE(machine.GetValues(), "x=1 y=2"_s);

        CLocalDB database(m_dir.filePath("db"_s), true, true);
        QVERIFY(database.Init() && database.Exec("UPDATE tbl_session SET SES_iExpiry = 1"_s));
        QCOMPARE(machine.Fetch(true), 403);
        QCOMPARE(machine.Send(), 403);
    }

    // What a new machine has got is sent again neither to it nor to the others, or each new one would cost all of
    // them the whole list.
    void newMachine()
    {
        CMachine first(m_pWeb, "Rigel"_s, "first"_s, true);
        CMachine second(m_pWeb, "Rigel"_s, "second"_s, true);
        for (const char *step : {"A:x=1@100", "A:y=2@101", "A!"})
            first.Do(QString::fromLatin1(step));
        for (int exchange = 0; exchange < 2; ++exchange) {
            second.Do("B!"_s);
            first.Do("A!"_s);
        }
        QCOMPARE(second.GetValues(), "x=1 y=2"_s);
        QCOMPARE(second.GetNewest(), 101);
        QCOMPARE(first.GetNewest(), 101);
    }

    // What machines may hold is known as before: B a note that it loads again later, C one without any text, as it
    // comes from a rating, or the one that it has been offered.
    void upgrade()
    {
        std::map<QChar, CMachine> machines;
        for (const QString &name : {"A"_s, "B"_s, "C"_s})
            machines.emplace(name.at(0), CMachine(m_pWeb, "Lyra"_s, name, true));
        const auto run = [&machines](const QString &script) {
            for (const QString &step : script.split(QLatin1Char(' ')))
                machines.at(step.at(0)).Do(step);
        };
        run("A:x=1@100 A! B! A:x=2@110 A! C?"_s);
        m_server.kill();
        QVERIFY(m_server.waitForFinished());
        MakeVersion2();
        Start();
        run("B:x=1@120 B! C:x=@130 C^ A! B! C! A! B! C!"_s);
        for (const auto &machine : machines) {
            QCOMPARE(machine.second.GetValues(), "x=2"_s);
            QVERIFY(machine.second.IsInStep());
        }
    }

    // A row's name is its script, through which both lists go. A, B and C are machines. "A:x=1@100" is a change there
    // and its time, "A!" an exchange, "A?" one whose first answer is lost, "A^" is sending without asking, "A-" loses
    // all rows.
    void Convergence_data()
    {
        QTest::addColumn<QString>("values");
        const auto row = [](const char *script, const QString &values) { QTest::newRow(script) << values; };
        row("A:x=1@100 A! B! B:x=2@110 B! A! A:y=3@120 A!", "x=2 y=3"_s);
        row("A! B! B:x=2@120 B! A:x=1@110 A!", "x=2"_s);     // pushed later, but older
        row("A! B! B:x=1@105 B! A:y=2@110 A!", "x=1 y=2"_s); // A's time is beyond what it never got
        row("A! B! A:x=1@100 B:x=2@100 A! B!", "x=2"_s);     // one second
        row("A:x=1@100 A! A:y=2@100 A:z=3@101 A!", "x=1 y=2 z=3"_s);
        row("C! A! B! B:y=1@105 A:z=1@110 A! B! A! C:y=2@108 C! A:w=1@120 A!",
            "w=1 y=2 z=1"_s);                                            // a stamp is no change
        row("A! B! C! A:x=1@100 B:x=1@120 A! B! C:x=2@110 C!", "x=1"_s); // made so again
        row("A! B! A:x=1@100 B:x=1@120 B! A!", "x=1"_s);
        row("A! B! C! A:x=1@100 A! B:x=1@105 B! C:y=2@103 C!", "x=1 y=2"_s); // B's time is beyond all rows
        row("A:x=1@100 A! B? B! B:x=2@110 B! A? A? A:y=3@120 A^", "x=2 y=3"_s);
        row("A:x=1@100 A! B:x=9@500 B:y=2@500 B!", "x=1 y=2"_s); // a stranger's defaults
        row("A:x=1@100 A! B:x=9@500 B:y=2@500 B? B^ B!", "x=1 y=2"_s);
        row("A:x=1@100 A! B:x=9@500 B^ B:y=2@501 B^ B:x=9@502 B^", "x=1 y=2"_s);
        row("A:x=1@100 A:y=2@101 A! B! B:x=3@130 B^", "x=3 y=2"_s); // no stranger any more
        row("A:x=1@100 A! B! B:y=2@110 B! A- A! A:x=4@120 A! B-", "x=4 y=2"_s);
    }

    void Convergence()
    {
        QFETCH(QString, values);
        const QString script = QString::fromUtf8(QTest::currentDataTag()) + " A! B! C!"_s.repeated(4);
        const QStringList steps = script.split(QLatin1Char(' '));
        for (const bool notes : {false, true}) {
            const QString user = QString::number(++m_iUsers);
            std::map<QChar, CMachine> machines;
            for (const QString &name : {"A"_s, "B"_s, "C"_s})
                machines.emplace(name.at(0), CMachine(m_pWeb, user, name, notes));
            for (const QString &step : steps)
                machines.at(step.at(0)).Do(step);
            for (const auto &machine : machines) {
                QCOMPARE(machine.second.GetValues(), values);
                QVERIFY(machine.second.IsInStep());
            }
        }
    }

private:
    // Of the file, as servers of that version have left it.
    void MakeVersion2() const
    {
        CLocalDB database(m_dir.filePath("db"_s), true, true);
        QVERIFY(database.Init());
        for (const QString &sql :
             {"CREATE TABLE held2 (HLD_cList TEXT, HLD_cMachine TEXT, HLD_cKey TEXT, HLD_cContent TEXT,"
              " HLD_iOffer INTEGER, PRIMARY KEY(HLD_cList, HLD_cMachine, HLD_cKey, HLD_cContent))"_s,
              "INSERT INTO held2 SELECT HLD_cList, HLD_cMachine, HLD_cKey, HLD_cContent, HLD_iOffer FROM tbl_held"_s,
              "INSERT OR IGNORE INTO held2 SELECT HLD_cList, HLD_cMachine, HLD_cKey,"
              " '{\"flags\":0,\"note\":\"\",\"tag\":0}', 0 FROM tbl_held WHERE HLD_bEmpty"_s,
              "DROP TABLE tbl_held"_s, "ALTER TABLE held2 RENAME TO tbl_held"_s,
              "UPDATE tbl_dbinfo SET DBI_cValue = '2' WHERE DBI_cKey = 'version'"_s})
            QVERIFY2(database.Exec(sql), qPrintable(sql));
    }

    void Start()
    {
        const quint16 port = StartServer(m_server, QStringLiteral(WEBSERVER_PATH),
                                         {"--database"_s, m_dir.filePath("db"_s), "--pictures"_s,
                                          m_dir.filePath("pictures"_s), "--files"_s, m_dir.filePath("pictures/5"_s),
                                          "--key"_s, "k &"_s, "--body-limit"_s, "100000"_s});
        QVERIFY(port != 0);
        m_pWeb = std::make_unique<httplib::Client>("127.0.0.1", port);
    }

    QTemporaryDir m_dir;
    QProcess m_server;
    TWeb m_pWeb;
    int m_iUsers = 0;
};

QTEST_GUILESS_MAIN(tst_webserver)
#include "tst_webserver.moc"
