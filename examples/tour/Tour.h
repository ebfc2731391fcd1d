#pragma once

#include "TourServers.h"

#include <client/Host.h>

#include <QMainWindow>

#include <functional>

struct STourOptions
{
    QString strOutput;     ///< Folder for the screenshots.
    QString strGameServer; ///< Program.
    QString strTables;     ///< Its data file.
    quint16 usPort = 0;    ///< Where the client looks for it.
};

/// Shows the client by itself: starts and ends servers, uses the window, and prints for each step what was seen. A
/// step that doesn't happen in time ends it.
class CTour
{
public:
    /// The client has started already, and no server is there yet.
    CTour(const STourOptions &options, CHost &host, QMainWindow &window);

    /// Exit code for the process: 0 if every step happened.
    int Run();

    /// A port on loopback that nobody uses now.
    static quint16 FindFreePort();

private:
    using TAction = std::function<void()>;
    /// What a step waits for: describes what was seen, and answers an empty text as long as it isn't there.
    using TLook = std::function<QString()>;

    void Step(const QString &text, const TAction &action, const TLook &look);

    void ShowStart();
    void ShowLobby();
    void ShowLostServer();
    void ShowBadServers();
    void ShowReturn();

    void StartGameServer();
    QString SeeState(EConnectionState::type state) const;
    QString SeeFilledLobby() const;
    QString SaveScreenshot(const QString &name) const;

    template <typename Widget>
    Widget *Find(const char *objectName) const;

    STourOptions m_options;
    CHost &m_host;
    QMainWindow &m_window;
    CGameServerProcess m_gameServer;
    QString m_strServerLine;  // what the game server said when it started
    QString m_strLastRequest; // the last packet that a plugin sent
    int m_iCountChanges = 0;  // player counts that changed in the lobby
    int m_iSteps = 0;
    bool m_bFailed = false;
};
