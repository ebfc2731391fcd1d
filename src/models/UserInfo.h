#pragma once

#include <models/UserInfoDataModel.h>

#include <QHash>
#include <QList>
#include <QSharedPointer>
#include <QTimer>

/// The person at the keyboard: whether somebody is logged in and who, the account's data, the tournaments and waiting
/// lists that the user is in, and whether the user is active at all.
///
/// The host feeds it. CConfigDB has to be initialised before the object is created, which reads the configuration.
/// Main thread.
class PLUGININTERFACE_EXPORT CUserInfo : public CUserInfoDataModel
{
    Q_OBJECT

public:
    /// Which pictures of players are shown.
    enum EAvatarDisplayMode : int {
        ADM_NoAvatars = 0,
        ADM_CartoonAvatars = 1,
        ADM_CustomAvatars = 2,
    };
    Q_ENUM(EAvatarDisplayMode)

    /// What GetPlayerStatus() may tell; the library compares it with nothing.
    enum EPlayerStates : int {
        PS_Playmoney_NotValidated = 0,
        PS_Playmoney_Validated = 1,
        PS_Realmoney_NotValidated = 2,
        PS_Realmoney_Validated = 3,
        PS_Realmoney_Legitimated = 4,
    };
    Q_ENUM(EPlayerStates)

    /// Makes an object beside the shared one.
    explicit CUserInfo(QObject *parent = nullptr);
    ~CUserInfo() override;

    /// Creates the object on first use; the library owns it.
    static CUserInfo *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop.
    static void DestroyInstance();

    /// Whether there is a model of the own player. GetLoginState() may still be true behind the end of the model.
    bool IsLoggedIn() const;
    /// For the host: at login, with the nickname of the own player; at logout, with an empty one. The nickname can be
    /// read by the time the login state is signalled. What the user before has noted of players is stored first. From
    /// one nickname to another only the model changes and no login state is signalled, so a host calls
    /// SetLoggedIn("") in between.
    void SetLoggedIn(const QString &nickname);
    /// The name under which all that is the user's own is stored and sent; empty if nobody is logged in.
    QString GetNickname() const;

    /// For the host: the user takes part; once more does nothing.
    void AddTournament(unsigned int id);
    /// For the host: the user takes part no more.
    void RemoveTournament(unsigned int id);
    /// Whether the user takes part.
    bool IsInTournament(unsigned int id) const;

    /// For the host: the user waits at a table. \a position counts from 1; a later one replaces it.
    void AddWaitingListTable(unsigned int table, unsigned char position);
    /// For the host: the user waits there no more.
    void RemoveWaitingListTable(unsigned int table);
    /// 0 if the user isn't on that table's list.
    unsigned char GetPositionOnWaitingList(unsigned int table) const;

    /// Forces either state. The next key press, mouse press or mouse move makes the user active again.
    void SetUserActivity(bool active);

    /// The modes that the operator allows, the preferred one first; never empty.
    const QList<CUserInfo::EAvatarDisplayMode> &GetAvatarDisplayModes() const;
    /// Replaces \a list by the modes that \a text names, in its order: "cartoon", "custom", "noavatar" in any case,
    /// with one character between two of them. An empty \a text allows all three, one without any of the words none
    /// but ADM_NoAvatars.
    static void ConvertAvatarDisplayMode(QList<CUserInfo::EAvatarDisplayMode> &list, const QString &text);

    /// Drops what waits for a login.
    void EmitLoginCanceled();

    /// Sees every event of the application, takes mouse presses, mouse moves and key presses for activity, and lets
    /// all of them pass.
    bool eventFilter(QObject *object, QEvent *event) override;

Q_SIGNALS:
    /// The user has been without input for the operator's time, `activitytimertimeout`, or is back.
    void signal_ActivityChanged(bool isActive);
    /// The login that was asked for won't come.
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

    QTimer m_ActivityTimer; // runs as long as the user is active
    QHash<unsigned int, unsigned char> m_hWaitingLists;
    QHash<unsigned int, unsigned char> m_hTournaments; // a set: the values are 1
    QList<CUserInfo::EAvatarDisplayMode> m_lAvatarDisplayModes;

    static QSharedPointer<CUserInfo> m_Instance;
};
