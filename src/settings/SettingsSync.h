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

/// Keeps the user's settings and notes on players in step with the operator's web server, and so with the user's
/// other machines.
///
/// The exchange is one of newest times, in seconds on the server's clock: the client says how far it is; the server
/// sends what is newer, and how far itself is; if they still differ, the client sends what the server lacks. Each
/// local change leads to the same comparison 5 s later. What arrives overwrites what is here, without a look at the
/// times of single rows, but not over what the user has changed since InitiateSync(), and takes effect at once; it is
/// the server's business not to send what is older. Ratings, custom avatars, and the settings of the installation
/// stay on the machine.
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

    /// For the host, behind a login: asks for a session for the first request. Like all below it does nothing while
    /// nobody is logged in, unless it says otherwise.
    void InitiateSync();
    /// The host's answer to WebLinks::SettingsSyncFetch. The first 32 characters go into the address.
    void StartSync(QString session);
    /// The host's answer to WebLinks::SettingsSyncSend: true if there was something to send, and it went out. Whoever
    /// is logged in now has to be the one for whom the session was asked.
    bool SyncToServer(QString session);

    /// For the stores, behind each local write: begins the 5 s anew.
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
    static void TakeSettings(const QString &nickname, const QJsonArray &settings);
    static void TakePlayerInfos(const QString &nickname, const QJsonArray &infos);
    static void StorePlayerInfos(const QString &nickname, const QJsonArray &infos);
    QJsonArray GetSettingsToSend(const QString &nickname) const;
    QJsonArray GetPlayerInfosToSend(const QString &nickname) const;

    // Newest times, the server's as of its last answer.
    unsigned int m_ulServerSettingsTime = 0;
    unsigned int m_ulLocalSettingsTime = 0;
    unsigned int m_ulServerPlayerInfoTime = 0;
    unsigned int m_ulLocalPlayerInfoTime = 0;
    QTimer m_SyncTimer;
    QString m_strUser; // whose times the server's are

    static QSharedPointer<CSettingsSync> m_Instance;
};
