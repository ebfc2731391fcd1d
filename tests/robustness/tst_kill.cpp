// A client that is killed at any moment: each of its files opens, what it told as stored is there, what belongs
// together is there together, and the next one goes on with the same files. So does the web server.
//
// PLUGININTERFACE_KILLS=200 kills so often in each way, instead of a few times.

#include "Reader.h"

#include <examples/ServerProcess.h>
#include <files/Pathes.h>
#include <support/InstallationTree.h>

#include <QBuffer>
#include <QDirIterator>
#include <QImage>
#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

#include <httplib.h>

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

void CheckFiles(const QString &folder)
{
    QDirIterator files(folder, {"*.sqlite"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
        QCOMPARE(ReadFirstColumn(files.next(), "PRAGMA integrity_check"_s), QStringList{"ok"_s});
}

// One of the user's, which keeps in step with the web server.
struct SMachine
{
    QString strName = "first"_s;
    const CInstallationTree tree;
    QProcess client;
    int iStored = 0;
    int iAcknowledged = 0;

    void Start(const QString &server, int from)
    {
        client.setWorkingDirectory(tree.GetPath("Client"_s));
        client.start(QStringLiteral(KILLED_PATH), {"sync"_s, QString::number(from), server, strName});
    }
    void Listen()
    {
        while (client.canReadLine()) {
            const int told = client.readLine().toInt();
            iStored = qMax(iStored, told);
            iAcknowledged = qMax(iAcknowledged, -told);
        }
    }
    // Players with a note, and the settings of both machines.
    QStringList Read() const
    {
        const QString settings = "SELECT URS_cKey || URS_cValue FROM tbl_settings WHERE URS_cUser = 'ann'"
                                 " AND URS_cKey LIKE 'sel%' ORDER BY 1"_s;
        return ReadFirstColumn(tree.GetPath("Tmp/playerinfo.sqlite"_s),
                               "SELECT PIN_cPlayer FROM tbl_playerinfo WHERE PIN_cNote != '' ORDER BY 1"_s) +
               ReadFirstColumn(tree.GetPath("Tmp/settings.sqlite"_s), settings);
    }
};

} // namespace

class tst_kill : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void Killed_data()
    {
        QTest::addColumn<QString>("work");
        QTest::newRow("notes") << "notes"_s;
        QTest::newRow("avatars") << "avatars"_s;
        QTest::newRow("settings") << "settings"_s;
    }

    void Killed()
    {
        QFETCH(QString, work);
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

    // Two machines change things at the same time, and each in turn and the server are killed.
    void InStep()
    {
        const QString program = QStringLiteral(WEBSERVER_PATH);
        if (program.isEmpty())
            QSKIP("the example isn't built");
        const CInstallationTree tree;
        SMachine machines[2];
        machines[1].strName = "second"_s;
        QProcess server;
        server.setStandardErrorFile(QProcess::nullDevice());
        QStringList options{"--database"_s, tree.GetPath("web.sqlite"_s), "--key"_s, "k"_s};
        const QString port = QString::number(StartServer(server, program, options));
        options << "--port"_s << port;
        const QString address = "http://127.0.0.1:"_s + port;
        QRandomGenerator random(9);
        for (SMachine &machine : machines)
            machine.Start(address, 1);
        for (int kill = 0; kill < 2 * KILLS; ++kill) {
            SMachine &victim = machines[kill / 2 % 2];
            const int before = victim.iAcknowledged;
            QTRY_VERIFY_WITH_TIMEOUT((victim.Listen(), victim.iAcknowledged > before), 20000);
            QThread::usleep(random.bounded(150000u));
            QProcess &process = kill % 2 == 0 ? victim.client : server;
            process.kill();
            QVERIFY(process.waitForFinished());
            CheckInStep(tree, machines);
            if (QTest::currentTestFailed())
                return;
            if (kill % 2 == 0)
                victim.Start(address, victim.iStored + 1);
            else
                QCOMPARE(StartServer(server, program, options), port.toUShort());
        }
        for (int i : {0, 1, 0}) {
            machines[i].client.kill();
            machines[i].client.waitForFinished();
            machines[i].Listen();
            machines[i].Start(address, 0);
            QVERIFY(machines[i].client.waitForFinished() && machines[i].client.exitCode() == 0);
        }
        CheckInStep(tree, machines);
        QCOMPARE(machines[0].Read(), machines[1].Read());
        server.close();
        qInfo("%d kills of each, %d and %d stored", KILLS, machines[0].iStored, machines[1].iStored);
    }

private:
    // What the server has acknowledged, it has; what a machine has stored, that has, and its setting with it.
    static void CheckInStep(const CInstallationTree &server, SMachine (&machines)[2])
    {
        CheckFiles(server.GetPath(QString()));
        for (SMachine &machine : machines) {
            machine.Listen();
            const QStringList keys =
                ReadFirstColumn(server.GetPath("web.sqlite"_s), "SELECT ROW_cKey FROM tbl_row"_s);
            CheckFiles(machine.tree.GetPath(QString()));
            const QStringList rows = machine.Read();
            for (int number = 1; number <= machine.iStored; ++number) {
                const QString player = machine.strName + QString::number(number);
                QVERIFY2(rows.contains(player), qPrintable(player));
                QVERIFY2(number > machine.iAcknowledged || keys.contains("{\"nick\":\"%1\"}"_s.arg(player)),
                         qPrintable(player));
            }
            const QString setting = rows.filter("selsubtheme[%1]"_s.arg(machine.strName)).value(0);
            QVERIFY2(setting.section(QLatin1Char(']'), 1).toInt() >= machine.iStored, qPrintable(setting));
        }
    }

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
