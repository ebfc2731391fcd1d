#pragma once

#include <QProcess>
#include <QTcpServer>

/// The real game server, as a process of its own.
class CGameServerProcess
{
public:
    ~CGameServerProcess();

    /// Returns the line by which the server says that it listens, empty if it doesn't start.
    QString Start(const QString &program, const QString &tables, const QString &accounts, quint16 port);
    /// Ends it at once, wherever it is.
    void Kill();

private:
    QProcess m_process;
};

/// A server gone wrong: sends the same bytes to whoever comes, and hangs up on them if so told.
class CBadServer
{
public:
    CBadServer(quint16 port, const QByteArray &bytes, bool hangUp);

    int GetLinkCount() const { return m_iLinks; }

private:
    QTcpServer m_server;
    int m_iLinks = 0;
};
