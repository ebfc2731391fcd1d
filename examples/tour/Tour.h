#pragma once

#include "TourServers.h"

#include <client/Host.h>

#include <QMainWindow>

#include <functional>

/// One of the accounts of the example's game server.
inline const QString FIRST_NICKNAME = QStringLiteral("Magnolia");

struct STourOptions
{
    QString strOutput;     ///< Folder for the screenshots.
    QString strGameServer; ///< Program.
    QString strTables;     ///< Its data files.
    QString strAccounts;
    quint16 usPort = 0; ///< Where the client looks for it.
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

    /// Makes an installation in \a folder that shares all but what changes at run time with the one that the process
    /// runs in, and has none of that yet. Returns its client folder.
    static QString MakeInstallation(const QString &folder);
    /// A port on loopback that nobody uses now.
    static quint16 FindFreePort();

private:
    using TAction = std::function<void()>;
    /// What a step waits for: describes what was seen, and answers an empty text as long as it isn't there.
    using TLook = std::function<QString()>;

    void Step(const QString &text, const TAction &action, const TLook &look);

    void ShowStart();
    void ShowLobby();
    void ShowClock();
    void ShowCancelledLogin();
    void ShowLogin();
    void ShowDialogLanguages();
    void ShowLanguages();
    void ShowRunningNumbers();
    void ShowTimezones();
    void ShowSettings();
    void ShowSecondUser();
    void ShowFirstUserAgain();
    void ShowLostServer();
    void ShowBadServers();
    void ShowReturn();

    void StartGameServer();
    QString SeeState(EConnectionState::type state) const;
    QString SeeFilledLobby() const;
    QString SaveScreenshot(QWidget &widget, const QString &name) const;

    void ChooseTable() const;
    void TypeFilter(const QString &text) const;
    void LogIn(const QString &nickname, const QString &password, const QString &lastNickname);
    void LogOut();
    void TypeLogin(const QString &nickname, const QString &password) const;
    QString SeeDialog() const;
    QString SeeUser(const QString &text) const;
    QString SeeFilter(const QString &text) const;
    QString SeeSeat(const QString &nickname) const;
    QString SeeRows(const QStringList &rows) const;

    void ChooseEntry(const char *menu, const QString &text) const;
    void ChooseLanguage(const QString &language, const QStringList &rows);
    QString GetChosenEntry(const char *menu) const;
    QString SeeTexts(const QString &language);
    int SeeJackpot() const;

    template <typename Object>
    Object *Find(const char *objectName = nullptr) const
    {
        return m_window.findChild<Object *>(QLatin1String(objectName));
    }

    STourOptions m_options;
    CHost &m_host;
    QMainWindow &m_window;
    CGameServerProcess m_gameServer;
    QString m_strServerLine;  // what the game server said when it started
    QString m_strLastRequest; // the last packet that a plugin sent
    QString m_strFault;       // why the last step doesn't see what it waits for, if it knows
    int m_iCountChanges = 0;  // player counts that changed in the lobby
    int m_iSteps = 0;
    bool m_bFailed = false;
};
