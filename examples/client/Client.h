#pragma once

#include "Host.h"
#include "MainWindow.h"

/// The running client: the user's folder, the databases, all that the library shares, the host and its window, in the
/// order in which they need each other. The process runs in the client's folder of an installation.
///
/// Whatever of the installation is missing is told in the console and in the window; the client works with the
/// library's defaults instead.
class CClient
{
public:
    /// Shows the window, starts the plugins, and opens the link to the game server.
    CClient(const QString &server, quint16 port);
    ~CClient();

    CHost &GetHost() { return m_host; }
    CMainWindow &GetWindow() { return m_window; }

private:
    // All that the library shares.
    class CShared
    {
    public:
        CShared();
        ~CShared();
    };

    CShared m_shared;
    CHost m_host;
    CMainWindow m_window; // before the plugins, which may ask for something at once
};
