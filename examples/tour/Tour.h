#pragma once

#include "TourServers.h"
#include "WatchedApplication.h"

#include <client/Host.h>

#include <QMainWindow>

#include <functional>
#include <initializer_list>

/// A text in UTF-8.
inline QString operator""_s(const char *text, std::size_t size)
{
    return QString::fromUtf8(text, static_cast<int>(size));
}

/// One of the accounts of the example's game server.
inline const QString FIRST_NICKNAME = "Magnolia"_s;
inline const QString FIRST_PASSWORD = "river"_s;
inline const QString SECOND_NICKNAME = "Robin"_s;
/// By their own names. The last one is in effect when all have been shown.
inline const QStringList LANGUAGES{"Deutsch"_s, "Français"_s, "English"_s};
/// What game server and web server know of each other.
inline const QString WEB_KEY = "between the servers of the tour"_s;

struct STourOptions
{
    QString strOutput;     ///< Folder for the screenshots.
    QString strGameServer; ///< Program.
    QString strTables;     ///< Its data files.
    QString strAccounts;
    QString strWebServer; ///< Program.
    QString strPictures;  ///< Its folder of avatars.
    /// Folder with the servers' certificate and key, and "authority.pem"; in its folder "impostor", those of another
    /// authority.
    QString strKeys;
    quint16 usPort = 0;    ///< Where the client looks for the game server.
    quint16 usWebPort = 0; ///< Where both look for the web server.
    /// A client that another one's tour has started, in an installation of its own in \a strOutput, for the steps
    /// that its standard input names.
    bool bSecondMachine = false;
    bool bBigLobbyOnly = false; ///< None of the other steps.
};

/// The rows that \a sql selects from the SQLite file, columns separated by "|". A program that has nothing to do with
/// the client reads them, while the client may have the file open.
QStringList QueryDatabase(const QString &file, const QString &sql);

/// How many times as long all may take: 1, but for a build that sanitizers slow down and that says so. The second
/// machine's client hears of it too.
int Patience();

QString Describe(const CWatchedApplication::SEvent &event);

/// As a click does, from within the event loop, so that the time it takes is noted.
void Trigger(QAction *entry);

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
    /// runs in, and has none of that yet. Its web server is on \a webPort, and the authority in \a keys vouches for
    /// its servers.
    static void MakeInstallation(const QString &folder, quint16 webPort, const QString &keys);
    /// Lets the process run in the installation in \a folder, and have its documents there too.
    static void EnterInstallation(const QString &folder);
    /// Of an installation in \a folder.
    static QString GetClientFolder(const QString &folder);
    /// A port on loopback that nobody uses now.
    static quint16 FindFreePort();

private:
    using TAction = std::function<void()>;
    /// What a step waits for: describes what was seen, and answers an empty text as long as it isn't there.
    using TLook = std::function<QString()>;

    using TWords = std::initializer_list<const char *>;

    void Step(const QString &text, const TAction &action, const TLook &look);
    // A step for which nothing is done.
    void See(const QString &text, const TLook &look);
    // A step during which no turn of the event loop may be long. The action is taken again if one was.
    void StepInTime(const QString &text, const TAction &action, const TLook &look);
    // In the client's window, even if another one was in front.
    void PressInFront(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void TakePicture(QWidget &widget, const QString &name);
    // A step for each language, whose text has a place for its name.
    void ShowInLanguages(const QString &text, const std::function<QString(const QString &language)> &look);

    void ShowAll();
    void ShowStart();
    void ShowLobby();
    void ShowConsole();
    void ShowConsoleAgain();
    void ShowClock();
    void ShowCancelledLogin();
    void ShowLogin();
    void ShowDialogLanguages();
    void ShowLanguages();
    void ShowRunningNumbers();
    void ShowTimezones();
    void ShowQml();
    void ShowTable();
    void ShowSeats(const QWidget &table);
    void ShowChat(const QWidget &table);
    void ShowTopUp(const QWidget &table);
    void ShowSettings();
    void ShowSecondUser();
    void ShowFirstUserAgain();
    void ShowOptions();
    void ShowQuickLanguage();
    void ShowTransfers();
    void ShowKeyboard();
    void ShowLooks();
    void ShowBareStart();
    void ShowNotes();
    void ShowSecondMachine();
    void ShowLostWebServer();
    void ShowLostServer();
    void ShowBigLobby();
    void UseBigLobby(const QString &view);
    void ShowReturn();

    QStringList GetKeyArguments(const QString &folder = QString()) const;
    void StartGameServer(const QStringList &further = {});
    void StartWebServer();
    void MakeRules() const;
    QString GetFolder(const QString &name) const;
    QString SeeServerRows(TWords rows);

    // A step that either machine can take: its text and what TourPlayers.cpp understands.
    void Do(TWords step);
    void DoThere(TWords step);
    void TakeStep(const QStringList &step);
    void StartSecondMachine(const QString &name);
    void EndSecondMachine();
    int RunSecondMachine();

    void ChooseNextTab() const;
    bool ChoosePlayer(const QString &nickname) const;
    void ChangePlayer(const QString &nickname, const QString &value) const;
    void Rate(const QString &nickname, int stars) const;
    QString SeeStars(const QString &nickname, int stars) const;
    QString SeeFound(const QString &nicknames);
    void ChoosePicture(const QString &number) const;
    QString SeeOffer(const QString &picture);
    void ChooseAvatar(const QString &nickname, const QString &number) const;
    QString SeePlayer(const QString &nickname, const QString &value);
    QString SeeAvatar(const QString &nickname, const QString &number) const;
    static QString SeePlayerRow(const QString &nickname, const QString &value);
    QString SeeProblems(const QString &answers) const;
    QString SeeColours(const QString &colours);
    QString SeeState(EConnectionState::type state) const;
    QString SeeFilledLobby() const;
    // Only if a screen reader finds names for all controls.
    QString SaveScreenshot(QWidget &widget, const QString &name);

    void ChooseOptionsPage(int page) const;

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

    // As the options do it, but from within the event loop, so that the time it takes is noted.
    static void SetOption(const char *setting, const QVariant &value);
    static void SetLanguage(const QString &language);
    static bool IsLanguage(const QString &language);
    void ChooseLanguage(const QString &language, const QStringList &rows);
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
    CServerProcess m_gameServer;
    CServerProcess m_webServer;
    CSecondMachine m_secondMachine;
    QString m_strServerLine; // what the game server said when it started
    QString m_strFault;      // why the last step doesn't see what it waits for, if it knows
    int m_iSteps = 0;
    bool m_bFailed = false;
};
