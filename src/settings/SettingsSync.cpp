#include "SettingsSync.h"

#include <Singleton_p.h>
#include <database/BusyWait_p.h>
#include <database/PlayerInfoDB.h>
#include <database/Transaction_p.h>
#include <models/PlayerModel.h>
#include <models/PlayerSaves_p.h>
#include <models/UserInfo.h>
#include <network/Download.h>
#include <settings/Config.h>
#include <settings/LocalChanges_p.h>
#include <settings/PlayerInfo_p.h>
#include <settings/Settings.h>

#include <QJsonDocument>
#include <QSet>
#include <QVariantMap>

#include <limits>

PLUGININTERFACE_DEFINE_SINGLETON(CSettingsSync);

namespace {

using PlayerInfo::GetUser;

constexpr int SESSION_LENGTH_IN_ADDRESS = 32;
// Properties of a request: the user who was logged in when it was sent, and the last change that its times include.
const char USER_PROPERTY[] = "user";
const char KNOWN_PROPERTY[] = "known";
const char LOGIN_PROPERTY[] = "login"; // because the same user may have logged in again
// Counts the first requests.
const char NUMBER_PROPERTY[] = "number";

// There has been no exchange yet for which a change could be too late.
constexpr quint64 ALL_CHANGES = std::numeric_limits<quint64>::max();

const QLatin1String QUERY("?session=%SESSION%&playerinfos=%PINF%&usersettings=%URS%");
const QLatin1String SESSION_MARKER("%SESSION%");
const QLatin1String PLAYER_INFOS_MARKER("%PINF%");
const QLatin1String SETTINGS_MARKER("%URS%");

const QString JSON_SETTINGS_TIME = QStringLiteral("usersettingstime");
const QString JSON_PLAYER_INFOS_TIME = QStringLiteral("playerinfostime");
const QString JSON_SETTINGS = QStringLiteral("usersettings");
const QString JSON_PLAYER_INFOS = QStringLiteral("playerinfos");
const QString JSON_AREA = QStringLiteral("area");
const QString JSON_KEY = QStringLiteral("key");
const QString JSON_VALUE = QStringLiteral("value");
const QString JSON_TYPE = QStringLiteral("type");
const QString JSON_TIME = QStringLiteral("time");
const QString JSON_NICK = QStringLiteral("nick");
const QString JSON_NOTE = QStringLiteral("note");
const QString JSON_TAG = QStringLiteral("tag");
const QString JSON_FLAGS = QStringLiteral("flags");

const QString STRING_TYPE = QStringLiteral("3"); // DBValue::DBT_String, used for every setting

bool IsSingleValue(const QVariant &value)
{
    return value.userType() != QMetaType::QVariantList && value.userType() != QMetaType::QVariantMap;
}

// Converts a number, or a text of digits.
int ToInt(const QJsonValue &value)
{
    return value.toVariant().toInt();
}

// An invalid time counts as 0. As a huge unsigned number it would be newer than all later times.
unsigned int ToTime(const QJsonValue &value)
{
    return static_cast<unsigned int>(qMax(0, ToInt(value)));
}

} // namespace

CSettingsSync::CSettingsSync()
    : m_changes(QSharedPointer<CLocalChanges>::create())
    , m_ulKnownChange(ALL_CHANGES)
{
    m_SyncTimer.setSingleShot(true);
    m_SyncTimer.setInterval(ul_SYNC_TIMER);
    connect(&m_SyncTimer, &QTimer::timeout, this, &CSettingsSync::slot_SyncTimer);
}

void CSettingsSync::InitiateSync()
{
    if (!CUserInfo::GetInstance()->IsLoggedIn())
        return;
    m_ulKnownChange = 0; // from now on changes are counted
    GetLocalTimestamps();
    Q_EMIT signal_RequestSessionForSync(WebLinks::SettingsSyncFetch);
}

void CSettingsSync::StartSync(QString session)
{
    if (CUserInfo::GetInstance()->IsLoggedIn())
        InitialWebRequest(session);
}

bool CSettingsSync::SyncToServer(QString session)
{
    QString address = CConfig::GetInstance()->GetLinkSettingsSync();
    if (address.isEmpty())
        return false;
    address.replace(SESSION_MARKER, session.left(SESSION_LENGTH_IN_ADDRESS));
    const QByteArray json = CreateJSONforSync();
    if (json.isEmpty())
        return false;
    CDownload *request = CreateRequest(address, "session=" + session.toUtf8() + "&json=" + json);
    connect(request, &CDownload::signal_Finished, this, &CSettingsSync::slot_SyncToServerFinished);
    request->Start();
    return true;
}

void CSettingsSync::StartSyncTimer()
{
    if (CUserInfo::GetInstance()->IsLoggedIn())
        m_SyncTimer.start();
}

void CSettingsSync::GetLocalTimestamps()
{
    const QString user = GetUser();
    m_ulLocalSettingsTime = CSettings::GetLastTimestamp(user);
    m_ulLocalPlayerInfoTime = PlayerInfo::GetLastTimestamp(user);
    if (m_ulKnownChange != ALL_CHANGES) {
        m_ulKnownChange = m_changes->GetLast();
        // Changes that aren't written yet count as later.
        if (CSettings::IsExisting())
            CSettings::GetInstance()->NumberUnwrittenChanges();
        if (const CPlayerSaves *saves = CPlayerSaves::Get())
            saves->NumberUnwrittenChanges();
    }
    if (user.isEmpty() || user == m_strUser)
        return;
    // The server's times for another user don't apply to this one.
    m_strUser = user;
    m_ulServerSettingsTime = 0;
    m_ulServerPlayerInfoTime = 0;
}

void CSettingsSync::InitialWebRequest(QString session)
{
    QString address = CConfig::GetInstance()->GetLinkSettingsSync();
    if (address.isEmpty())
        return;
    address += QUERY;
    address.replace(SESSION_MARKER, session.left(SESSION_LENGTH_IN_ADDRESS));
    address.replace(PLAYER_INFOS_MARKER, QString::number(m_ulLocalPlayerInfoTime));
    address.replace(SETTINGS_MARKER, QString::number(m_ulLocalSettingsTime));
    CDownload *request = CreateRequest(address, QByteArray());
    request->setProperty(KNOWN_PROPERTY, m_ulKnownChange);
    request->setProperty(NUMBER_PROPERTY, ++m_iFetches);
    connect(request, &CDownload::signal_Finished, this, &CSettingsSync::slot_IntialWebRequestFinished);
    request->Start();
}

void CSettingsSync::ReadJSON(QByteArray data)
{
    TakeAnswer(data, m_ulKnownChange, false);
}

void CSettingsSync::TakeAnswer(const QByteArray &data, quint64 known, bool overtaken)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(data, &error);
    const QString nickname = GetUser();
    if (error.error != QJsonParseError::NoError || nickname.isEmpty())
        return;
    const QJsonObject answer = document.object();
    if (!overtaken)
        SetServerTimes(answer);
    const auto settings = answer.constFind(JSON_SETTINGS);
    const auto infos = answer.constFind(JSON_PLAYER_INFOS);
    if (settings != answer.constEnd())
        TakeSettings(nickname, settings->toArray(), known, overtaken);
    // A slot may have logged the user out.
    if (infos != answer.constEnd() && GetUser() == nickname)
        TakePlayerInfos(nickname, infos->toArray(), known, overtaken);
    if ((settings != answer.constEnd() || infos != answer.constEnd()) && GetUser() == nickname)
        CUserInfo::GetInstance()->SetLoggedIn(nickname);
    // If it was overtaken, the later answer has led to that, and what was stored before that one's request was sent.
    if (!overtaken && GetUser() == nickname)
        StampLaterChanges(known);
}

QByteArray CSettingsSync::CreateJSONforSync()
{
    // Rows without a user belong to the installation and aren't sent.
    const QString nickname = GetUser();
    if (nickname.isEmpty())
        return QByteArray();
    const QJsonArray settings = GetSettingsToSend(nickname);
    const QJsonArray infos = GetPlayerInfosToSend(nickname);
    if (settings.isEmpty() && infos.isEmpty())
        return QByteArray();
    const QJsonObject root{{JSON_SETTINGS_TIME, QString::number(m_ulLocalSettingsTime)},
                           {JSON_PLAYER_INFOS_TIME, QString::number(m_ulLocalPlayerInfoTime)},
                           {JSON_SETTINGS, settings},
                           {JSON_PLAYER_INFOS, infos}};
    return QJsonDocument(root).toJson();
}

void CSettingsSync::slot_IntialWebRequestFinished(bool status, QByteArray data)
{
    const QObject *request = sender();
    const quint64 known = request ? request->property(KNOWN_PROPERTY).toULongLong() : m_ulKnownChange;
    if (!TakeFinished() || !status)
        return;
    const QString user = GetUser();
    const quint64 number = request ? request->property(NUMBER_PROPERTY).toULongLong() : m_iFetches;
    const bool overtaken = number < m_iAnswered;
    m_iAnswered = qMax(m_iAnswered, number);
    TakeAnswer(data, known, overtaken);
    if (GetUser() != user)
        return; // a slot has logged the user out
    GetLocalTimestamps();
    RequestSessionIfBehind();
}

void CSettingsSync::slot_SyncToServerFinished(bool status, QByteArray data)
{
    if (!TakeFinished() || !status)
        return;
    QJsonParseError error{};
    const QJsonObject answer = QJsonDocument::fromJson(data, &error).object();
    if (error.error == QJsonParseError::NoError && answer.contains(JSON_SETTINGS_TIME) &&
        answer.contains(JSON_PLAYER_INFOS_TIME))
        SetServerTimes(answer);
}

void CSettingsSync::slot_SyncTimer()
{
    if (!CUserInfo::GetInstance()->IsLoggedIn())
        return;
    GetLocalTimestamps();
    RequestSessionIfBehind();
}

CDownload *CSettingsSync::CreateRequest(const QString &address, const QByteArray &body)
{
    auto *request = new CDownload(this, address, body, false);
    request->setProperty(USER_PROPERTY, GetUser());
    request->setProperty(LOGIN_PROPERTY, m_changes->GetEndedLogins());
    return request;
}

// Called when a request has finished: deletes it later, and returns false if its user isn't logged in any more.
bool CSettingsSync::TakeFinished() const
{
    const QString user = GetUser();
    QObject *request = sender();
    if (!request)
        return !user.isEmpty();
    request->deleteLater();
    return !user.isEmpty() && request->property(USER_PROPERTY).toString() == user &&
           request->property(LOGIN_PROPERTY).toULongLong() == m_changes->GetEndedLogins();
}

void CSettingsSync::SetServerTimes(const QJsonObject &answer)
{
    m_strUser = GetUser();
    m_ulServerSettingsTime = ToTime(answer.value(JSON_SETTINGS_TIME));
    m_ulServerPlayerInfoTime = ToTime(answer.value(JSON_PLAYER_INFOS_TIME));
}

void CSettingsSync::RequestSessionIfBehind()
{
    if (m_ulLocalPlayerInfoTime != m_ulServerPlayerInfoTime || m_ulLocalSettingsTime != m_ulServerSettingsTime)
        Q_EMIT signal_RequestSessionForSync(WebLinks::SettingsSyncSend);
}

void CSettingsSync::TakeSettings(const QString &nickname, const QJsonArray &settings, quint64 known, bool overtaken)
{
    CSettings *store = CSettings::GetInstance();
    QHash<QString, QVariant> values;
    for (const QJsonValue &element : settings) {
        const QVariantMap setting = element.toObject().toVariantMap();
        const QString key = setting.value(JSON_KEY).toString();
        const QVariant value = setting.value(JSON_VALUE);
        if (key.isEmpty() || !IsSingleValue(value))
            continue;
        const QString area = setting.value(JSON_AREA).toString();
        const int time = qMax(0, setting.value(JSON_TIME).toInt());
        const CSettings::SSetting row{nickname, area, key, value, time};
        if (store->YieldsToChange(row, known) || (overtaken && store->IsOlder(row)))
            continue;
        store->Save(nickname, area, key, value, time);
        values.insert(key.toLower(), value.toString());
    }
    // The values take effect at once. They are already queued with their own times, so they aren't stored again.
    store->SetSettings({}, values, false);
}

void CSettingsSync::TakePlayerInfos(const QString &nickname, const QJsonArray &infos, quint64 known,
                                    bool overtaken) const
{
    StorePlayerInfos(nickname, infos, known, overtaken);
    PlayerInfo::LoadAnswered(known);
}

// Gives a new time to what the answer didn't affect: if it is older than the server's newest time, it would never be
// sent.
void CSettingsSync::StampLaterChanges(quint64 known)
{
    const QString user = GetUser();
    CPlayerSaves::Get()->SaveAgain(m_changes->GetLaterPlayers(user, known));
    CSettings::GetInstance()->StampAnew(m_changes->GetLaterSettings(user, known), m_ulServerSettingsTime);
}

// Returns whether the file already has a later change by the user. A change that still waits will be written over the
// answer's row; until then the row is stored, or nothing would be left of it if the program were killed.
bool CSettingsSync::IsStoredLater(const QString &user, const QString &nick, quint64 known) const
{
    return m_changes->IsPlayerLater(user, nick, known) &&
           !(CPlayerModel::IsExisting(nick) && CPlayerSaves::Get()->IsWaiting(CPlayerModel::GetInstance(nick)));
}

// Stores all or none. What isn't stored now comes with the next exchange, because the newest local time stays the
// same.
void CSettingsSync::StorePlayerInfos(const QString &nickname, const QJsonArray &infos, quint64 known,
                                     bool overtaken) const
{
    const CBusyWait wait(*CPlayerInfoDB::GetInstance(), CBusyWait::RETRY_MS);
    CTransaction transaction(*CPlayerInfoDB::GetInstance());
    if (!transaction.IsBegun())
        return;
    QSet<QString> kept; // what an earlier login couldn't write; like a change that waits, it will be
    const QList<CPlayerSaves::SKept> entries = CPlayerSaves::Get()->GetKept(nickname);
    for (const CPlayerSaves::SKept &entry : entries)
        kept.insert(entry.row.at(1).toString());
    {
        PlayerInfo::CInserter inserter(overtaken ? PlayerInfo::NotOlder : PlayerInfo::All);
        for (const QJsonValue &element : infos) {
            const QJsonObject info = element.toObject();
            const QString nick = info.value(JSON_NICK).toVariant().toString();
            if (nick.isEmpty() || (!kept.contains(nick) && IsStoredLater(nickname, nick, known)))
                continue;
            const bool written = inserter.Insert({nickname, nick, info.value(JSON_NOTE).toVariant().toString(),
                                                  static_cast<unsigned int>(ToInt(info.value(JSON_TAG))),
                                                  static_cast<unsigned int>(ToInt(info.value(JSON_FLAGS))),
                                                  ToTime(info.value(JSON_TIME))});
            if (!written)
                return;
        }
    }
    transaction.Commit();
}

QJsonArray CSettingsSync::GetSettingsToSend(const QString &nickname) const
{
    QJsonArray list;
    const QList<CSettings::SSetting> settings = CSettings::GetSettingList(nickname);
    for (const CSettings::SSetting &setting : settings) {
        if (setting.iTimestamp < static_cast<qint64>(m_ulServerSettingsTime))
            continue;
        list.append(QJsonObject{{JSON_AREA, setting.strArea},
                                {JSON_KEY, setting.strKey},
                                {JSON_VALUE, setting.vValue.toString()},
                                {JSON_TYPE, STRING_TYPE},
                                {JSON_TIME, QString::number(setting.iTimestamp)}});
    }
    return list;
}

QJsonArray CSettingsSync::GetPlayerInfosToSend(const QString &nickname) const
{
    QJsonArray list;
    const QList<PlayerInfo::SPlayerInfoSyncElement> infos =
        PlayerInfo::GetSyncList(nickname, m_ulServerPlayerInfoTime);
    for (const PlayerInfo::SPlayerInfoSyncElement &info : infos) {
        list.append(QJsonObject{{JSON_NICK, info.strPlayer},
                                {JSON_NOTE, info.strNote},
                                {JSON_TAG, QString::number(info.ulTagID)},
                                {JSON_FLAGS, QString::number(info.ulPlayerFlags)},
                                {JSON_TIME, QString::number(info.ulTimestamp)}});
    }
    return list;
}
