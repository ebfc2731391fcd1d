// A client that is killed at any moment: each of its files opens, what it told as stored is there, what belongs
// together is there together, and the next one goes on with the same files.
//
// PLUGININTERFACE_KILLS=200 kills it so often in each way, instead of a few times.

#include "Reader.h"

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

// A picture that no other number has, of some tens of thousands of bytes.
QByteArray MakePicture(unsigned int number)
{
    QImage image(100, 100, QImage::Format_RGB32);
    QRandomGenerator random(number);
    random.fillRange(reinterpret_cast<quint32 *>(image.bits()), image.width() * image.height());
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
    }

    void Killed()
    {
        QFETCH(QString, work);
        const CPictureServer server;
        const int kills = qMax(5, qEnvironmentVariableIntValue("PLUGININTERFACE_KILLS"));
        QRandomGenerator random(7);
        int last = FIRST - 1;
        for (int kill = 0; kill < kills; ++kill) {
            QProcess child;
            child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
            child.start(QStringLiteral(KILLED_PATH), {work, QString::number(last + 1), server.GetAddress()});
            QTRY_VERIFY_WITH_TIMEOUT(child.canReadLine(), 20000);
            QThread::usleep(random.bounded(30000u));
            child.kill();
            QVERIFY(child.waitForFinished() && child.exitStatus() == QProcess::CrashExit);
            while (child.canReadLine())
                last = child.readLine().toInt();
            Check(work, last);
            if (QTest::currentTestFailed())
                return;
        }
        qInfo("%d kills, %d stored", kills, last - FIRST + 1);
    }

private:
    void Check(const QString &work, int last)
    {
        QDirIterator files(m_installation.GetPath(QString()), {"*.sqlite"_s}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext())
            QCOMPARE(ReadFirstColumn(files.next(), "PRAGMA integrity_check"_s), QStringList{"ok"_s});
        if (work == "notes"_s) {
            const QStringList notes =
                ReadFirstColumn(Pathes::PlayerInfoDB(), "SELECT PIN_cNote FROM tbl_playerinfo"_s);
            QCOMPARE(notes.size(), PLAYERS);
            QCOMPARE(notes.count(notes.first()), PLAYERS); // written together
            QVERIFY2(notes.first().toInt() >= last && notes.first().toInt() <= last + 1, qPrintable(notes.first()));
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
