#pragma once

#include "Servers.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <array>
#include <cstring>
#include <memory>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

/// What a machine asks the web server.
struct SHttp
{
    std::shared_ptr<QTcpSocket> pSocket; ///< None: nothing has come.
    QByteArray target;                   ///< Path and query.
    QByteArray body;
};

/// What stays from town to town: the web servers, and the program of which all machines are forks.
class CGround
{
public:
    /// \a order: of what belongs to one user, where servers share a store.
    explicit CGround(CServers::EOrder order = CServers::EOrder::OneByOne)
        : servers(dir.filePath("web.sqlite"_s), qEnvironmentVariable("PLUGININTERFACE_STORE") == "postgres"_s, order)
    {
        sockaddr_un here{};
        here.sun_family = AF_UNIX;
        const QString path = dir.filePath("socket"_s);
        std::strncpy(here.sun_path, QFile::encodeName(path).constData(), sizeof here.sun_path - 1);
        if (bind(m_iSocket, reinterpret_cast<sockaddr *>(&here), sizeof here) != 0 || listen(m_iSocket, 9) != 0 ||
            !m_server.listen(QHostAddress::LocalHost))
            qFatal("no ground for a town");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LD_BIND_NOW"_s, "1"_s); // once, before it forks
        m_program.setProcessEnvironment(environment);
        m_program.setProcessChannelMode(QProcess::ForwardedChannels);
        m_program.start(QStringLiteral(MACHINE_PATH),
                        {path, "http://127.0.0.1:%1/%SESSION%"_s.arg(m_server.serverPort())});
    }
    ~CGround()
    {
        m_program.closeWriteChannel();
        m_program.waitForFinished();
        close(m_iSocket);
    }
    Q_DISABLE_COPY_MOVE(CGround)

    /// The socket to a new machine, whose process it tells.
    int Begin(const QString &folder, const QString &name, int &process)
    {
        m_program.write(QFile::encodeName(folder) + ' ' + name.toUtf8() + '\n');
        m_program.waitForBytesWritten();
        const int machine = accept4(m_iSocket, nullptr, nullptr, SOCK_CLOEXEC);
        if (machine < 0 || recv(machine, &process, sizeof process, 0) != sizeof process)
            qFatal("a machine doesn't begin");
        return machine;
    }

    /// Tells a machine the line, if it isn't empty; what it answers, or nothing if it has ended.
    static QJsonObject Ask(int machine, const QByteArray &line)
    {
        static std::array<char, (1 << 18)> buffer;
        if (!line.isEmpty() && send(machine, line.constData(), size_t(line.size()), MSG_NOSIGNAL) < 0)
            return {};
        const ssize_t size = recv(machine, buffer.data(), buffer.size(), 0);
        return QJsonDocument::fromJson(QByteArray::fromRawData(buffer.data(), int(qMax<ssize_t>(0, size)))).object();
    }

    /// The next request to the web server, whole.
    SHttp Receive()
    {
        SHttp request;
        if (!m_server.hasPendingConnections() && !m_server.waitForNewConnection(ARRIVAL_MS))
            return request;
        const std::shared_ptr<QTcpSocket> socket(m_server.nextPendingConnection());
        QByteArray data;
        QByteArray::size_type header = 0;
        int size = 0;
        do {
            if (!socket->waitForReadyRead(ARRIVAL_MS))
                return request;
            data += socket->readAll();
            header = data.indexOf("\r\n\r\n");
            const auto length = data.indexOf("Content-Length: ");
            size = length < 0 ? 0 : std::atoi(data.constData() + length + std::strlen("Content-Length: "));
        } while (header < 0 || data.size() < header + 4 + size);
        return {socket, data.split(' ').at(1), data.mid(header + 4)};
    }

    QTemporaryDir dir{QDir("/dev/shm"_s).exists() ? "/dev/shm/town-XXXXXX"_s : QDir::tempPath() + "/town-XXXXXX"_s};
    CServers servers;
    int iTowns = 0;
    bool bTells = false; ///< What happens.

private:
    static constexpr int ARRIVAL_MS = 10000;

    QTcpServer m_server;
    QProcess m_program;
    const int m_iSocket = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
};
