#pragma once

#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <vector>

/// Connections to a port on loopback over which nothing is ever said.
class CSilentConnections
{
public:
    CSilentConnections(unsigned short port, int count)
    {
        rlimit files{};
        getrlimit(RLIMIT_NOFILE, &files);
        files.rlim_cur = files.rlim_max;
        setrlimit(RLIMIT_NOFILE, &files);
        sockaddr_in there{};
        there.sin_family = AF_INET;
        there.sin_port = htons(port);
        there.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        for (int i = 0; i < count; ++i) {
            const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
            if (::connect(socket, reinterpret_cast<sockaddr *>(&there), sizeof there) == 0)
                m_sockets.push_back(socket);
            else
                ::close(socket);
        }
    }
    ~CSilentConnections()
    {
        for (const int socket : m_sockets)
            ::close(socket);
    }
    CSilentConnections(const CSilentConnections &) = delete;
    CSilentConnections &operator=(const CSilentConnections &) = delete;

    int Count() const { return static_cast<int>(m_sockets.size()); }

private:
    std::vector<int> m_sockets;
};
