// A client that is killed at any moment: each of its files opens, what it told as stored is there, what belongs
// together is there together, and the next one goes on with the same files. So does the web server.
//
// PLUGININTERFACE_KILLS=200 kills so often in each way, instead of a few times.

#include <examples/ServerProcess.h>
#include <files/Pathes.h>
#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>

#include <QBuffer>
#include <QDirIterator>
#include <QImage>
#include <QProcess>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

#include <httplib.h>

#include <csignal>
#include <thread>

namespace {

constexpr int PLAYERS = 50;
constexpr int FIRST = 1000;
const int KILLS = qMax(5, qEnvironmentVariableIntValue("PLUGININTERFACE_KILLS"));
const bool PATIENT = qputenv("QTEST_FUNCTION_TIMEOUT", QByteArray::number(300000 + KILLS * 10000));

// A picture that no other number has, of some tens of thousands of bytes.
QByteArray MakePicture(unsigned int number)
{
    QImage image(100, 100, QImage::Format_RGB32);
    QRandomGenerator random(number);
    random.fillRange(reinterpret_cast<quint32 *>(image.bits()), qsizetype(image.width()) * image.height());
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes;
}

// The operator's, in a thread of its own.
class CPictureServer
{
public:
    CPictureServer()
    {
        m_server.Get(R"(/\d+/(\d+)\.png)", [](const httplib::Request &request, httplib::Response &answer) {
            const unsigned int number = QByteArray::fromStdString(request.matches[1]).toUInt();
            answer.set_content(MakePicture(number).toStdString(), "image/png");
        });
        m_iPort = m_server.bind_to_any_port("127.0.0.1");
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
    }
    ~CPictureServer()
    {
        m_server.stop();
        m_thread.join();
    }
    QString GetAddress() const { return "http://127.0.0.1:%1/"_s.arg(m_iPort); }

private:
    httplib::Server m_server;
    int m_iPort = 0;
    std::thread m_thread;
};

// The first column of what a statement selects, as another program reads it: by a connection of its own, which is
// closed again.
QStringList ReadFirstColumn(const QString &file, const QString &sql)
{
    QStringList rows;
    {
        QSqlDatabase reader = QSqlDatabase::addDatabase("QSQLITE"_s, "reader"_s);
        reader.setDatabaseName(file);
        if (reader.open()) {
            QSqlQuery query(sql, reader);
            while (query.next())
                rows.append(query.value(0).toString());
        }
    }
    QSqlDatabase::removeDatabase("reader"_s);
    return rows;
}

void CheckFiles(const QString &folder)
{
    QDirIterator files(folder, {"*.sqlite"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
        QCOMPARE(ReadFirstColumn(files.next(), "PRAGMA integrity_check"_s), QStringList{"ok"_s});
}

} // namespace

class tst_kill : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void Killed_data() { AddRows("notes;avatars;settings"_s); }

    void Killed()
    {
        const QString work = QString::fromLatin1(QTest::currentDataTag());
        const unsigned int after = work == "settings"_s ? 245000 : 0; // around the next write
        const CPictureServer server;
        QRandomGenerator random(7);
        int last = FIRST - 1;
        for (int kill = 0; kill < KILLS; ++kill) {
            QProcess child;
            child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
            child.start(QStringLiteral(KILLED_PATH), {work, QString::number(last + 1), server.GetAddress()});
            QTRY_VERIFY_WITH_TIMEOUT(child.canReadLine(), 20000);
            QThread::usleep(after + random.bounded(30000u));
            child.kill();
            QVERIFY(child.waitForFinished() && child.exitStatus() == QProcess::CrashExit);
            while (child.canReadLine())
                last = child.readLine().toInt();
            Check(work, last);
            if (QTest::currentTestFailed())
                return;
        }
        qInfo("%d kills, %d stored", KILLS, last - FIRST + 1);
    }

#ifdef WEBSERVER_PATH // where the example is built
    // What the server has acknowledged it has, whenever it is killed.
    void WebServer()
    {
        const QString program = QStringLiteral(WEBSERVER_PATH);
        const CInstallationTree tree;
        const QString file = tree.GetPath("web.sqlite"_s);
        QRandomGenerator random(9);
        int last = 0;
        for (int kill = 0; kill < KILLS; ++kill) {
            QProcess server;
            server.setStandardErrorFile(QProcess::nullDevice());
            const quint16 port = StartServer(server, program, {"--database"_s, file, "--key"_s, "k"_s});
            httplib::Client client("127.0.0.1", port);
            const httplib::Params user{{"key", "k"}, {"nickname", "Ann"}, {"machine", "first"}};
            const auto session = client.Post("/sessions", user);
            QVERIFY(session && session->status == 200);
            const auto send = [&](int number) {
                const QString json = R"(&json={"playerinfostime":"%1","usersettingstime":"%1","playerinfos":[)"
                                     R"({"nick":"p%1","note":"n","tag":"0","flags":"0","time":"%1"}]})"_s;
                const std::string body = "session=" + session->body + json.arg(number).toStdString();
                const auto answer = client.Post("/sync", body, "text/plain");
                return answer && answer->status == 200;
            };
            const int before = last;
            QVERIFY(send(++last));
            std::thread killer([id = pid_t(server.processId()), after = random.bounded(60000u)] {
                QThread::usleep(after);
                ::kill(id, SIGKILL);
            });
            while (send(last + 1))
                ++last;
            killer.join();
            QVERIFY(server.waitForFinished());
            CheckFiles(tree.GetPath(QString()));
            const QStringList rows = ReadFirstColumn(file, "SELECT ROW_cKey FROM tbl_row"_s);
            for (int number = before + 1; number <= last; ++number)
                QVERIFY2(rows.contains("{\"nick\":\"p%1\"}"_s.arg(number)), qPrintable(QString::number(number)));
        }
        qInfo("%d kills, %d acknowledged", KILLS, last);
    }
#endif

private:
    void Check(const QString &work, int last)
    {
        CheckFiles(m_installation.GetPath(QString()));
        if (work != "avatars"_s) {
            const bool notes = work == "notes"_s;
            const QStringList rows =
                notes ? ReadFirstColumn(Pathes::PlayerInfoDB(), "SELECT PIN_cNote FROM tbl_playerinfo"_s)
                      : ReadFirstColumn(Pathes::SettingsDB(), "SELECT URS_cValue FROM tbl_settings WHERE URS_cKey IN"
                                                              " ('themechips', 'volume')"_s);
            QCOMPARE(rows.count(rows.value(0)), notes ? PLAYERS : 4); // the user's and the installation's, together
            QVERIFY2(rows.first().toInt() >= last && rows.first().toInt() <= last + 1, qPrintable(rows.first()));
            return;
        }
        for (; m_iChecked <= last; ++m_iChecked)
            QCOMPARE(ReadFile(Pathes::CustomAvatar(unsigned(m_iChecked))), MakePicture(unsigned(m_iChecked)));
        const QString next = Pathes::CustomAvatar(unsigned(last + 1)); // stored, but not told
        QVERIFY(!QFile::exists(next) || ReadFile(next) == MakePicture(unsigned(last + 1)));
    }

    CInstallationTree m_installation;
    int m_iChecked = FIRST;
};

QTEST_MAIN(tst_kill)
#include "tst_kill.moc"
