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

/// Keeps the user's settings and notes on players in step with the operator's web server, and so with the user's
/// other machines.
///
/// The exchange is one of newest times, in seconds on the server's clock: the client says how far it is; the server
/// sends what is newer, and how far itself is; if they still differ, the client sends what the server lacks. Each
/// local change leads to the same comparison 5 s later. What arrives overwrites what is here, without a look at the
/// times of single rows, and takes effect at once; it is the server's business not to send what is older. Ratings,
/// custom avatars, and the settings of the installation stay on the machine.
///
/// What a user wrote isn't lost on the way. These are the rules:
///
/// - Each change of the user, of a setting or of a player's note, tag, buddy flag or block, has a number. A request
///   carries the number of the last change that its times tell of, and its answer leaves alone what has a later one.
///   So requests may overlap, fail, and be answered late. Of an answer that a later request's answer has overtaken
///   no row is taken that is older than the one that is here.
/// - A change that waits to be written, 250 ms for settings and 3 s for players, is in no time yet, so it counts as
///   later than any request. Nothing is written for a request.
/// - What a login stores again, what a load has changed, a rating and a picture are no changes of the user. A rating
///   and a picture that wait to be written survive the answer all the same.
/// - An answer makes the buddy list what the rows say: who is no buddy any more leaves it, and nobody joins it twice.
/// - What an answer has left alone is stamped anew, or the server's newest time could hide it.
/// - All players of an answer are stored, or none. Those that aren't the server sends again if it sees by the
///   machine's time that they haven't arrived.
/// - What can't be written at a logout is kept as a row of its user. At the user's next load it lies over what is
///   stored, and once the file can be written it goes there, each time only where it isn't older; a row from before
///   the server's time was known counts as newer. Of a row that no change of the user is in, only the rating and the
///   picture go there, for the rest was loaded and may have been changed elsewhere since.
/// - Rows belong to whom they were changed by. A logout, CUserInfoDataModel::Reset() and the end of the own player's
///   model store them first; what was changed while nobody was logged in is nobody's.
///
/// For each request the host is asked for a web session by signal_RequestSessionForSync() and answers with
/// StartSync() or SyncToServer(), whenever it has one. An exchange that fails changes nothing and isn't repeated:
/// what is left goes with the next one. An answer that arrives when its user isn't logged in any more is dropped. The
/// address is the configuration's `link_settingssync`; without one nothing happens. Main thread.
class PLUGININTERFACE_EXPORT CSettingsSync : public QObject
{
    Q_OBJECT

public:
    static constexpr unsigned int ul_SYNC_TIMER = 5000; ///< Milliseconds from a local change to the comparison.

    /// Creates the object on first use; the library owns it.
    static CSettingsSync *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop, and its requests with it.
    static void DestroyInstance();

    /// For the host, after a login: asks for a session for the first request. Like all below it does nothing while
    /// nobody is logged in, unless it says otherwise.
    void InitiateSync();
    /// The host's answer to WebLinks::SettingsSyncFetch. The first 32 characters go into the address.
    void StartSync(QString session);
    /// The host's answer to WebLinks::SettingsSyncSend: true if there was something to send, and it went out. Whoever
    /// is logged in now has to be the one for whom the session was asked.
    bool SyncToServer(QString session);

    /// For the stores, after each local write: begins the 5 s anew.
    void StartSyncTimer();
    /// Takes the newest local times from the stores.
    void GetLocalTimestamps();
    /// Sends the first request; StartSync() does so for a user who is logged in.
    void InitialWebRequest(QString session);
    /// Takes in the answer to the first request. What is no JSON changes nothing. An entry without a key or a
    /// nickname is skipped, and so is a setting whose value is no single value.
    void ReadJSON(QByteArray data);
    /// What the server lacks, as far as its last answer tells; empty if there is nothing.
    QByteArray CreateJSONforSync();

Q_SIGNALS:
    /// The host is to get a session for that link.
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
    void StorePlayerInfos(const QString &nickname, const QJsonArray &infos, quint64 known, bool overtaken) const;
    QJsonArray GetSettingsToSend(const QString &nickname) const;
    QJsonArray GetPlayerInfosToSend(const QString &nickname) const;

    // Newest times, the server's as of its last answer.
    unsigned int m_ulServerSettingsTime = 0;
    unsigned int m_ulLocalSettingsTime = 0;
    unsigned int m_ulServerPlayerInfoTime = 0;
    unsigned int m_ulLocalPlayerInfoTime = 0;
    QTimer m_SyncTimer;
    QString m_strUser; // whose times the server's are
    const QSharedPointer<CLocalChanges> m_changes;
    quint64 m_ulKnownChange; // the last change of the user's of which the local times tell

    quint64 m_iFetches = 0;  // how many first requests have gone out
    quint64 m_iAnswered = 0; // the last of them whose answer has been taken

    static QSharedPointer<CSettingsSync> m_Instance;
};
