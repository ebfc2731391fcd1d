#pragma once

#include <Export.h>
#include <plugin/WebLinks.h>

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QTimer>

class CDownload;
class CLocalChanges;

/// Synchronises the user's settings and notes on players with the operator's web server, and so with the user's other
/// machines.
///
/// The exchange compares the newest times, in seconds on the server's clock. The client sends its newest times. The
/// server returns what is newer, and its own newest times. If they still differ, the client sends what the server
/// lacks. Each local change leads to the same comparison 5 s later. What the server returns overwrites the local
/// rows, whatever their times, and takes effect at once; the server must not send what is older. Ratings, custom
/// avatars and the settings of the installation stay on the machine.
///
/// No change by a user is lost in the exchange. These are the rules:
///
/// - Each change by the user, of a setting or of a player's note, tag, buddy flag or block, has a number. A request
///   carries the number of the last change that its times include, and its answer doesn't affect later changes. So
///   requests may overlap, fail, and be answered late. If the answer to a later request has arrived first, settings
///   are taken only if they aren't older than the stored ones, and players only if none of them is older.
/// - A change that waits to be written, 250 ms for settings and 3 s for players, isn't included in any time, so it
///   counts as later than any request. A request causes no writing.
/// - What a login stores again, what was changed by loading, ratings and pictures are no changes by the user. A
///   rating or picture that waits to be written is nevertheless kept when the answer arrives.
/// - An answer makes the buddy list match the rows: former buddies are removed, and nobody is added twice.
/// - What an answer doesn't affect gets a new time. If it were older than the server's, it would never be sent.
/// - Either all players of an answer are stored or none. If none are, the server sends them again, provided that the
///   machine's time shows that they haven't arrived.
/// - What can't be written at a logout is kept as a row of its user. At the user's next load it overrides what is
///   stored, and once the file can be written it is written, in both cases only if it isn't older; a row from before
///   the server's time was known counts as newer. If the user has changed nothing in a row, only its rating and
///   picture are used, because the rest was loaded and may have been changed elsewhere since.
/// - Rows belong to the user who changed them. A logout, CUserInfoDataModel::Reset() and the destruction of the own
///   player's model store them first. What was changed while nobody was logged in belongs to nobody.
///
/// For each request, signal_RequestSessionForSync() asks the host for a web session, and the host answers at any time
/// with StartSync() or SyncToServer(). A failed exchange changes nothing and isn't repeated: the next one sends what
/// is left. An answer is dropped if its user isn't logged in any more. The address is the configuration's
/// `link_settingssync`; without it nothing happens. Main thread.
class PLUGININTERFACE_EXPORT CSettingsSync : public QObject
{
    Q_OBJECT

public:
    static constexpr unsigned int ul_SYNC_TIMER = 5000; ///< The milliseconds from a local change to the comparison.

    /// Returns the object, creating it on first use; the library owns it.
    static CSettingsSync *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the object and its requests at the next turn of the event loop.
    static void DestroyInstance();

    /// Asks for a session for the first request. The host calls it after a login. Like all functions below, it does
    /// nothing while nobody is logged in, unless stated otherwise.
    void InitiateSync();
    /// Sends the first request with the \a session that the host got for WebLinks::SettingsSyncFetch. Its first 32
    /// characters are put into the address.
    void StartSync(QString session);
    /// Sends local changes with the \a session that the host got for WebLinks::SettingsSyncSend. Returns true if
    /// there was something to send and the request was sent. The session must belong to the user who is logged in
    /// now.
    bool SyncToServer(QString session);

    /// Restarts the 5 s timer. The stores call it after each local write.
    void StartSyncTimer();
    /// Gets the newest local times from the stores.
    void GetLocalTimestamps();
    /// Sends the first request; StartSync() calls it if a user is logged in.
    void InitialWebRequest(QString session);
    /// Applies the answer to the first request. Invalid JSON changes nothing. Skips entries without a key or a
    /// nickname, and settings whose value is an array or an object.
    void ReadJSON(QByteArray data);
    /// Returns what the server lacks according to its last answer; empty if there is nothing.
    QByteArray CreateJSONforSync();

Q_SIGNALS:
    /// Asks the host for a session for the link \a linkID.
    void signal_RequestSessionForSync(WebLinks::id linkID);

private Q_SLOTS:
    void slot_IntialWebRequestFinished(bool status, QByteArray data);
    void slot_SyncToServerFinished(bool status, QByteArray data);
    void slot_SyncTimer();

private:
    CSettingsSync();

    CDownload *CreateRequest(const QString &address, const QByteArray &body);
    bool TakeFinished() const;
    void SetServerTimes(const QJsonObject &answer);
    void RequestSessionIfBehind();
    void TakeAnswer(const QByteArray &data, quint64 known, bool overtaken);
    void StampLaterChanges(quint64 known);
    static void TakeSettings(const QString &nickname, const QJsonArray &settings, quint64 known, bool overtaken);
    void TakePlayerInfos(const QString &nickname, const QJsonArray &infos, quint64 known, bool overtaken) const;
    bool IsStoredLater(const QString &user, const QString &nick, quint64 known) const;
    void StorePlayerInfos(const QString &nickname, const QJsonArray &infos, quint64 known, bool overtaken) const;
    QJsonArray GetSettingsToSend(const QString &nickname) const;
    QJsonArray GetPlayerInfosToSend(const QString &nickname) const;

    // The newest times; those of the server are from its last answer.
    unsigned int m_ulServerSettingsTime = 0;
    unsigned int m_ulLocalSettingsTime = 0;
    unsigned int m_ulServerPlayerInfoTime = 0;
    unsigned int m_ulLocalPlayerInfoTime = 0;
    QTimer m_SyncTimer;
    QString m_strUser; // the user to whom the server's times belong
    const QSharedPointer<CLocalChanges> m_changes;
    quint64 m_ulKnownChange; // the last change by the user that the local times include

    quint64 m_iFetches = 0;  // how many first requests have been sent
    quint64 m_iAnswered = 0; // the last of them whose answer has arrived

    static QSharedPointer<CSettingsSync> m_Instance;
};
