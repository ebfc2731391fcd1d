#pragma once

#include <settings/SettingsBase.h>

#include <QList>
#include <QSharedPointer>
#include <QTimer>

class CPlayerModel;

/// The user's settings, and their way to CSettingsDB and back.
///
/// A change is queued and written 250 ms behind the last one of its burst, all in one transaction, stamped with the
/// server's time; before that is known only a change of the login writes. A change of a logged-in user goes to the
/// user's row and to the global one, which thus holds what was chosen last on this machine. A row that holds the
/// value already stays as it is, its time too. While another program keeps the file locked, or the disk is full, the
/// changes wait and are tried again, first after a second, then at growing intervals of up to half a minute; if the
/// file isn't open, they last as long as the process.
///
/// At each change of the login state, and where the own player is another one or has ended without one, the pending
/// changes are written and the global and the user's rows applied; a user's first login begins with the global rows.
/// A setting without a row keeps its value.
///
/// Each write of a logged-in user starts the timer of CSettingsSync.
///
/// CSettingsDB and CConfigDB have to be initialised before the object is created. It writes nothing when it is
/// destroyed: the host calls `slot_SaveSettings(true)` before. Main thread.
class PLUGININTERFACE_EXPORT CSettings : public CSettingsBase
{
    Q_OBJECT

public:
    /// One stored or pending row. User, area and key are lower case in the file.
    struct SSetting
    {
        QString strUser;       ///< Nickname, empty for a row of the installation.
        QString strArea;       ///< The group of settings it stands in.
        QString strKey;        ///< "key", or "key[subkey]" of a keyed setting.
        QVariant vValue;       ///< Stored as its text.
        qint64 iTimestamp = 0; ///< Seconds since 1970 UTC; negative stands for the time of writing.
    };

    /// Creates the object on first use; the library owns it.
    static CSettings *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop.
    static void DestroyInstance();

    /// Queues a row; with a \a user a second one without, unless the setting is of scope Global.
    void Save(const QString &user, const QString &area, const QString &key, const QVariant &value,
              qint64 timestamp) override;

    /// The time of the user's newest row, 0 if there is none.
    static unsigned int GetLastTimestamp(const QString &user);
    /// All rows of the user.
    static QList<SSetting> GetSettingList(const QString &user);

    /// The user, the hash of the password and the user's settings as JSON, those of the installation left out.
    QByteArray GetOptionJSON() const;
    /// Applies the settings of such a JSON and stores them; ignores anything else, and what is no JSON.
    void SetOptionJSON(const QByteArray &json);

    /// Whether animations are off, by the user's choice or, where the operator leaves none, by the operator's.
    bool GetAnimationOff() const;

public Q_SLOTS:
    /// Writes the queue. Unless forced it waits until the server's time is known; forced before that, it stamps with
    /// 0. Where the file is locked, or its disk full, the queue stays, to be tried again later; forced it waits up to
    /// 5 s for the lock, else 0.1 s.
    void slot_SaveSettings(bool force = false);

private Q_SLOTS:
    void slot_LoginStateChanged();

private:
    CSettings();

    friend class CSettingsSync;

    void FollowOwnPlayer(const CPlayerModel *player);
    bool IsStored(const QString &user, const QString &area, const QString &key, const QVariant &value) const;
    bool HasUnwrittenChange(const QString &key) const;
    void NumberUnwrittenChanges() const;
    bool YieldsToChange(const SSetting &fromServer, quint64 known);
    bool IsOlder(const SSetting &fromServer) const;
    void StampAnew(const QStringList &keys, qint64 notOlder);
    QHash<QString, QVariant> GetValues(const QString &user) const;

    QList<SSetting> m_lstPending; // oldest first
    QTimer m_SaveTimer;
    bool m_bLoading = false;                 // what the setters store is what was stored
    int m_iPauseMs = 0;                      // until the next attempt to write, while the file can't be used
    QMetaObject::Connection m_ownPlayerEnds; // of the own player, none without one

    static QSharedPointer<CSettings> m_Instance;
};
