#pragma once

#include <models/UserInfoDataModel.h>

#include <QHash>
#include <QList>
#include <QSharedPointer>
#include <QTimer>

/// The user of this client: whether somebody is logged in and who, the account data, the tournaments and waiting
/// lists that the user is in, and whether the user is active.
///
/// The host sets the data. CConfigDB must be initialised first, because the constructor reads the configuration. Main
/// thread.
class PLUGININTERFACE_EXPORT CUserInfo : public CUserInfoDataModel
{
    Q_OBJECT

public:
    /// The pictures of players that are shown.
    enum EAvatarDisplayMode : int {
        ADM_NoAvatars = 0,
        ADM_CartoonAvatars = 1,
        ADM_CustomAvatars = 2,
    };
    Q_ENUM(EAvatarDisplayMode)

    /// The values of GetPlayerStatus(), which the library itself doesn't interpret.
    enum EPlayerStates : int {
        PS_Playmoney_NotValidated = 0,
        PS_Playmoney_Validated = 1,
        PS_Realmoney_NotValidated = 2,
        PS_Realmoney_Validated = 3,
        PS_Realmoney_Legitimated = 4,
    };
    Q_ENUM(EPlayerStates)

    /// Constructs an object in addition to the shared one.
    explicit CUserInfo(QObject *parent = nullptr);
    ~CUserInfo() override;

    /// Returns the object, creating it on first use; the library owns it.
    static CUserInfo *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the object at the next turn of the event loop.
    static void DestroyInstance();

    /// Returns whether there is a model of the user. GetLoginState() may still return true after the model was
    /// destroyed.
    bool IsLoggedIn() const;
    /// Logs the user in with \a nickname, or out with an empty one. For the host. Stores the previous user's notes on
    /// players first, and sets the nickname before the login state is signalled. Going from one nickname directly to
    /// another changes only the model and doesn't signal a login state, so a host calls SetLoggedIn("") in between.
    void SetLoggedIn(const QString &nickname);
    /// Returns the name under which the user's own data is stored and sent; empty if nobody is logged in.
    QString GetNickname() const;

    /// Adds a tournament that the user takes part in; adding it again does nothing. For the host.
    void AddTournament(unsigned int id);
    /// Removes a tournament that the user no longer takes part in. For the host.
    void RemoveTournament(unsigned int id);
    /// Returns whether the user takes part in the tournament.
    bool IsInTournament(unsigned int id) const;

    /// Adds the user to the waiting list of a table. \a position counts from 1 and replaces an earlier one. For the
    /// host.
    void AddWaitingListTable(unsigned int table, unsigned char position);
    /// Removes the user from the waiting list of a table. For the host.
    void RemoveWaitingListTable(unsigned int table);
    /// Returns the user's position on the waiting list of a table; 0 if the user isn't on it.
    unsigned char GetPositionOnWaitingList(unsigned int table) const;

    /// Makes the user active or inactive. The next key press, mouse press or mouse move makes the user active again.
    void SetUserActivity(bool active);

    /// Returns the modes that the operator allows, the preferred one first; never empty.
    const QList<CUserInfo::EAvatarDisplayMode> &GetAvatarDisplayModes() const;
    /// Replaces the contents of \a list with the modes that \a text names, in its order: "cartoon", "custom",
    /// "noavatar" in any case, separated by one character. An empty \a text allows all three modes; one without any
    /// of these words allows only ADM_NoAvatars.
    static void ConvertAvatarDisplayMode(QList<CUserInfo::EAvatarDisplayMode> &list, const QString &text);

    /// Emits signal_LoginCanceled(), which drops what waits for a login.
    void EmitLoginCanceled();

    /// Takes mouse presses, mouse moves and key presses anywhere in the application for activity. Lets all events
    /// pass.
    bool eventFilter(QObject *object, QEvent *event) override;

Q_SIGNALS:
    /// Emitted when there was no input for the operator's time `activitytimertimeout`, and when the user is active
    /// again.
    void signal_ActivityChanged(bool isActive);
    /// Emitted when the requested login won't happen.
    void signal_LoginCanceled();

private Q_SLOTS:
    void slot_ActivityTimeout();
    void slot_CartoonAvatarSettingChanged();
    void slot_CustomAvatarSettingChanged();
    void slot_ConnectSlots();

private:
    void Reset() override;
    void EndLogin() const;
    void RunActivityTimer(bool run);

    QTimer m_ActivityTimer; // runs while the user is active
    QHash<unsigned int, unsigned char> m_hWaitingLists;
    QHash<unsigned int, unsigned char> m_hTournaments; // used as a set: all values are 1
    QList<CUserInfo::EAvatarDisplayMode> m_lAvatarDisplayModes;

    static QSharedPointer<CUserInfo> m_Instance;
};
