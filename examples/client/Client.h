#pragma once

#include "Host.h"
#include "MainWindow.h"

/// The running client: creates the user's folder, the databases, all shared objects of the library, the host and its
/// window, in the order in which they need each other. The current directory is the client's folder of an
/// installation.
///
/// It reports missing parts of the installation in the console, and in a dialog that comes before the window. If the
/// user goes on, it uses the library's defaults instead.
class CClient
{
public:
    struct SServer
    {
        QString strHost;
        quint16 usPort = 0;
        QString strAuthority = QString(); ///< See Installation::ReadTrust().
        bool bPlain = false;              ///< The connection isn't encrypted.
    };

    /// Starts the plugins, shows the window, and connects to the game server; the latter two only when the user has
    /// answered the dialog, if there is one.
    explicit CClient(const SServer &server);
    ~CClient();

    CHost &GetHost() { return m_host; }
    CMainWindow &GetWindow() { return m_window; }

private:
    // Creates and destroys the shared objects of the library.
    class CShared
    {
    public:
        CShared();
        ~CShared();
    };

    CShared m_shared;
    CHost m_host;
    CMainWindow m_window; // before the plugins, which may request something at once
};
