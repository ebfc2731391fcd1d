// A download from a web server on loopback, which has a thread of its own, compared with a bare socket.

#include "support.h"

#include <database/ConfigDB.h>
#include <network/Download.h>
#include <support/InstallationTree.h>

#include <httplib.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTcpSocket>
#include <QTimer>

#include <cstring>
#include <thread>

#include <malloc.h>

namespace {

using Bench::Require;
using Bench::SRow;

constexpr int MEGA = 1 << 20;
constexpr int BEAT_MS = 5;

// A web server in a thread of its own that answers "/64" with 64 MiB.
class CServer
{
public:
    CServer()
        : m_block(MEGA, 'x')
    {
        for (size_t i = 0; i < m_block.size(); ++i)
            m_block[i] = static_cast<char>('a' + i * i / 7 % 26);
        m_server.Get(R"(/(\d+))", [this](const httplib::Request &request, httplib::Response &answer) {
            const auto provide = [this](size_t offset, size_t length, httplib::DataSink &sink) {
                const size_t begin = offset % m_block.size();
                return sink.write(m_block.data() + begin, std::min(length, m_block.size() - begin));
            };
            answer.set_content_provider(std::stoul(request.matches[1]) * MEGA, "application/octet-stream", provide);
        });
        m_iPort = m_server.bind_to_any_port("127.0.0.1");
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
    }
    ~CServer()
    {
        m_server.stop();
        m_thread.join();
    }
    Q_DISABLE_COPY_MOVE(CServer)
    int GetPort() const { return m_iPort; }

private:
    std::string m_block;
    httplib::Server m_server;
    int m_iPort = 0;
    std::thread m_thread;
};

// Returns the memory of the process in bytes: "VmRSS" or, as the peak since the last ResetPeak(), "VmHWM".
double Memory(const char *which)
{
    const QList<QByteArray> lines = ReadFile(QStringLiteral("/proc/self/status")).split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(which))
            return line.simplified().split(' ').at(1).toDouble() * 1024;
    }
    qFatal("the kernel tells no %s", which);
}

void ResetPeak()
{
    malloc_trim(0);
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    Require(file.open(QIODevice::WriteOnly) && file.write("5") == 1, "the reset of the peak");
}

// Runs the event loop until it is quit, and measures the gaps between timer events and the peak of the memory.
void RunLoop(QEventLoop &loop, int megabytes)
{
    const double before = Memory("VmRSS");
    QElapsedTimer sinceBeat;
    sinceBeat.start();
    QTimer beat;
    const auto count = [&sinceBeat] { Bench::Count("longest_gap_ms", double(sinceBeat.nsecsElapsed()) / 1e6); };
    QObject::connect(&beat, &QTimer::timeout, [&] {
        count();
        sinceBeat.start();
    });
    beat.setTimerType(Qt::PreciseTimer);
    beat.start(BEAT_MS);
    loop.exec();
    count();
    Bench::Count("peak_memory_of_body", (Memory("VmHWM") - before) / (double(megabytes) * MEGA));
}

QByteArray Download(int port, int megabytes)
{
    CDownload download(nullptr, QStringLiteral("http://127.0.0.1:%1/%2").arg(port).arg(megabytes), QByteArray(),
                       false);
    QEventLoop loop;
    QByteArray body;
    QObject::connect(&download, &CDownload::signal_Finished, &loop, [&](bool status, const QByteArray &data) {
        Require(status, "the download");
        body = data;
        loop.quit();
    });
    download.Start();
    RunLoop(loop, megabytes);
    return body;
}

// Receives in place, except for the few bytes that arrive with the header.
QByteArray ReadFromSocket(int port, int megabytes)
{
    QTcpSocket socket;
    QEventLoop loop;
    QByteArray body(megabytes * MEGA, Qt::Uninitialized);
    qint64 received = 0;
    bool headed = false;
    QObject::connect(&socket, &QTcpSocket::connected, [&] {
        socket.write("GET /" + QByteArray::number(megabytes) + " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    });
    QObject::connect(&socket, &QTcpSocket::readyRead, &loop, [&] {
        received += qMax<qint64>(0, socket.read(body.data() + received, body.size() - received));
        const auto end = headed ? -1 : QByteArray::fromRawData(body.constData(), int(received)).indexOf("\r\n\r\n");
        if (end >= 0) {
            headed = true;
            received -= end + 4;
            std::memmove(body.data(), body.constData() + end + 4, size_t(received));
        }
        if (received == body.size())
            loop.quit();
    });
    socket.connectToHost(QStringLiteral("127.0.0.1"), quint16(port), QIODevice::ReadWrite | QIODevice::Unbuffered);
    RunLoop(loop, megabytes);
    return body;
}

void AddRows(int port)
{
    SRow<QByteArray> row{"download", {1, 8, 64}};
    row.Prepare = [](int) { ResetPeak(); };
    row.Side("library", [port](int megabytes) { return Download(port, megabytes); });
    row.Side("floor", [port](int megabytes) { return ReadFromSocket(port, megabytes); });
}

} // namespace

int main(int argc, char **argv)
{
    const CServer server;
    const QCoreApplication application(argc, argv);
    const CInstallationTree installation;
    CConfigDB::GetInstance()->Init(); // there is no file, so that the defaults are used
    AddRows(server.GetPort());
    return Bench::RunRows(argc, argv);
}
