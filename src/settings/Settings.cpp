#include "Settings.h"

#include <Singleton_p.h>
#include <database/BoundText_p.h>
#include <database/BusyWait_p.h>
#include <database/SettingsDB.h>
#include <models/UserInfo.h>
#include <settings/Config.h>
#include <settings/LocalChanges_p.h>
#include <settings/SettingsRows_p.h>
#include <settings/SettingsSync.h>
#include <time/CasinoTime.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScopedValueRollback>
#include <QSet>
#include <QSqlQuery>

#include <algorithm>
#include <optional>

PLUGININTERFACE_DEFINE_SINGLETON(CSettings);

namespace {

constexpr int SAVE_DELAY_MS = 250;
constexpr int USUAL_SETTINGS = 128; // stored ones of a user

const QString URS_USER = QStringLiteral("URS_cUser");
const QString URS_AREA = QStringLiteral("URS_cArea");
const QString URS_KEY = QStringLiteral("URS_cKey");
const QString URS_VALUE = QStringLiteral("URS_cValue");
const QString URS_TIMESTAMP = QStringLiteral("URS_iTimestamp");

const QLatin1String FILE_NICKNAME("nickname");
const QLatin1String FILE_USERNAME("username");
const QLatin1String FILE_PWD("pwd");
const QLatin1String FILE_SETTINGS("settings");
const QLatin1String FILE_KEY("key");
const QLatin1String FILE_VALUE("value");

// Returns the values of a user's rows, or of those of the installation, by key.
QHash<QString, QVariant> ReadValues(const QString &user)
{
    QHash<QString, QVariant> values;
    if (!CSettingsDB::GetInstance()->IsOpen())
        return values;
    QSqlQuery query = CSettingsDB::GetInstance()->GetQuery();
    query.prepare(QLatin1String("SELECT URS_cKey, URS_cValue FROM ") + CSettingsDB::strTableName +
                  QLatin1String(" WHERE URS_cUser = ?"));
    query.addBindValue(BoundText::ToBind(user.toLower()));
    values.reserve(USUAL_SETTINGS);
    query.exec();
    while (query.next())
        values.insert(query.value(0).toString(), query.value(1));
    return values;
}

// Returns the time of the user's stored row of that key, 0 if there is none.
qint64 GetTimestamp(const CSettings::SSetting &setting)
{
    QHash<QString, QVariant> row;
    CSettingsDB::GetInstance()->SelectOne(
        row, CSettingsDB::strTableName, {URS_TIMESTAMP},
        {{URS_USER, setting.strUser.toLower()}, {URS_KEY, setting.strKey.toLower()}});
    return row.value(URS_TIMESTAMP).toLongLong();
}

} // namespace

CSettings::CSettings()
{
    m_SaveTimer.setSingleShot(true);
    m_SaveTimer.setTimerType(Qt::PreciseTimer); // a crash loses no more than this delay
    m_SaveTimer.setInterval(SAVE_DELAY_MS);
    connect(&m_SaveTimer, &QTimer::timeout, this, [this] { slot_SaveSettings(); });
    const CUserInfo *user = CUserInfo::GetInstance();
    connect(user, &CUserInfo::signal_LoginStateChanged, this, &CSettings::slot_LoginStateChanged);
    connect(user, &CUserInfo::signal_PlayerModelChanged, this, &CSettings::FollowOwnPlayer);
    SetAvatarDisplayMode(user->GetAvatarDisplayModes().first(), nullptr, false);
    slot_LoginStateChanged();
    FollowOwnPlayer(user->GetPlayerModel());
}

void CSettings::Save(const QString &user, const QString &area, const QString &key, const QVariant &value,
                     qint64 timestamp)
{
    const bool isChange =
        timestamp < 0 && !user.isEmpty() && !m_bLoading && (IsChanged() || !IsStored(user, area, key, value));
    CLocalChanges *changes = isChange ? CLocalChanges::Get() : nullptr;
    if (changes)
        changes->AddSetting(user, key);
    const qint64 time = timestamp >= 0 ? timestamp : isChange ? SettingsRows::CHANGE : SettingsRows::STORED_AGAIN;
    m_lstPending.append({user, area, key, value, time});
    // A user's row of a setting of scope Global can only come from the server and applies to that user only.
    if (!user.isEmpty() && !IsGlobal(key))
        m_lstPending.append({QString(), area, key, value, time});
    // All settings of a load are one change.
    if (m_iPauseMs == 0 && !(m_bLoading && m_SaveTimer.isActive()))
        m_SaveTimer.start(SAVE_DELAY_MS);
}

unsigned int CSettings::GetLastTimestamp(const QString &user)
{
    const QString newest = QStringLiteral("MAX(URS_iTimestamp)");
    QHash<QString, QVariant> row;
    CSettingsDB::GetInstance()->SelectOne(row, CSettingsDB::strTableName, {newest}, {{URS_USER, user.toLower()}});
    return static_cast<unsigned int>(row.value(newest).toInt());
}

QList<CSettings::SSetting> CSettings::GetSettingList(const QString &user)
{
    QList<QHash<QString, QVariant>> rows;
    CSettingsDB::GetInstance()->SelectAll(rows, CSettingsDB::strTableName, {}, {{URS_USER, user.toLower()}}, 0);
    QList<SSetting> settings;
    for (const auto &row : qAsConst(rows)) {
        settings.append({row.value(URS_USER).toString(), row.value(URS_AREA).toString(),
                         row.value(URS_KEY).toString(), row.value(URS_VALUE), row.value(URS_TIMESTAMP).toInt()});
    }
    return settings;
}

QByteArray CSettings::GetOptionJSON() const
{
    QJsonArray entries;
    const QHash<QString, QVariant> settings = GetSettings();
    for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting)
        entries.append(QJsonObject{{FILE_KEY, setting.key()}, {FILE_VALUE, setting.value().toString()}});
    const QJsonObject options{{FILE_NICKNAME, GetNickname()},
                              {FILE_USERNAME, GetUsername()},
                              {FILE_PWD, GetPwd()},
                              {FILE_SETTINGS, entries}};
    return QJsonDocument(options).toJson();
}

void CSettings::SetOptionJSON(const QByteArray &json)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError)
        return;
    QHash<QString, QVariant> values;
    const QVariantList entries = document.object().toVariantMap().value(FILE_SETTINGS).toList();
    for (const QVariant &entry : entries) {
        const QVariantMap setting = entry.toMap();
        values.insert(setting.value(FILE_KEY).toString(), setting.value(FILE_VALUE));
    }
    SetSettings({}, values, true);
}

bool CSettings::GetAnimationOff() const
{
    const CConfig *config = CConfig::GetInstance();
    return config->GetOptionAnimationsOffSelectable() ? GetAnimationsOff() : config->GetOptionAnimationsOff();
}

void CSettings::slot_SaveSettings(bool force)
{
    if (m_lstPending.isEmpty())
        return;
    const unsigned int now = CCasinoTime::GetInstance()->GetTimeUTCServer();
    if (now == 0 && !force) {
        m_SaveTimer.start(SAVE_DELAY_MS);
        return;
    }
    CSettingsDB *database = CSettingsDB::GetInstance();
    std::optional<CBusyWait> wait;
    if (!force)
        wait.emplace(*database, CBusyWait::RETRY_MS);
    if (SettingsRows::Write(*database, m_lstPending, now)) {
        m_iPauseMs = 0;
        m_lstPending.clear();
        CSettingsSync::GetInstance()->StartSyncTimer();
    } else {
        m_iPauseMs = CBusyWait::GetNextPause(m_iPauseMs);
        m_SaveTimer.start(m_iPauseMs); // the rows stay queued, and later ones are added
    }
}

void CSettings::slot_LoginStateChanged()
{
    // Writes the rows while the user is still the one for whom they were queued.
    slot_SaveSettings(true);
    if (m_lstPending.isEmpty())
        m_SaveTimer.stop(); // the load starts it anew
    CUserInfo *user = CUserInfo::GetInstance();
    SetNickname(user->GetNickname());
    SetUsername(user->GetUsername());
    SetPwd(user->GetPasswordHashed());
    const QString &nickname = GetNickname();
    const QScopedValueRollback<bool> loading(m_bLoading, true);
    SetSettings(GetValues(QString()), nickname.isEmpty() ? QHash<QString, QVariant>() : GetValues(nickname), true);
}

// The own player may be destroyed, and the next one set, without a change of the login state.
void CSettings::FollowOwnPlayer(const CPlayerModel *player)
{
    disconnect(m_ownPlayerEnds);
    if (!player)
        return;
    m_ownPlayerEnds = connect(player, &QObject::destroyed, this, [this] {
        if (m_Instance == this && CUserInfo::IsExisting()) // otherwise the library is being shut down
            slot_LoginStateChanged();
    });
    const CUserInfo *user = CUserInfo::GetInstance();
    if (user->GetLoginState() && user->GetNickname() != GetNickname())
        slot_LoginStateChanged();
}

// Returns whether the user's row has the value or will have it; also true if there is no row or it can't be read now.
bool CSettings::IsStored(const QString &user, const QString &area, const QString &key, const QVariant &value) const
{
    const auto isRow = [&](const SSetting &setting) {
        return setting.strUser == user && setting.strKey == key && setting.strArea == area;
    };
    const auto pending = std::find_if(m_lstPending.crbegin(), m_lstPending.crend(), isRow);
    if (pending != m_lstPending.crend())
        return pending->vValue.toString() == value.toString();
    CSettingsDB *database = CSettingsDB::GetInstance();
    const CBusyWait wait(*database, CBusyWait::RETRY_MS);
    QHash<QString, QVariant> row;
    return !database->SelectOne(row, CSettingsDB::strTableName, {URS_VALUE},
                                {{URS_USER, user.toLower()}, {URS_AREA, area.toLower()}, {URS_KEY, key.toLower()}}) ||
           row.value(URS_VALUE).toString() == BoundText::Stored(value.toString());
}

bool CSettings::HasUnwrittenChange(const QString &key) const
{
    return std::any_of(m_lstPending.cbegin(), m_lstPending.cend(), [this, &key](const SSetting &setting) {
        return setting.iTimestamp == SettingsRows::CHANGE && setting.strUser == GetNickname() &&
               setting.strKey.compare(key, Qt::CaseInsensitive) == 0;
    });
}

// Numbers the unwritten changes anew, because the times of the rows don't include them.
void CSettings::NumberUnwrittenChanges() const
{
    CLocalChanges *changes = CLocalChanges::Get();
    for (const SSetting &setting : m_lstPending) {
        if (changes && setting.iTimestamp == SettingsRows::CHANGE && setting.strUser == GetNickname())
            changes->AddSetting(setting.strUser, setting.strKey);
    }
}

// Returns whether the user has changed the setting after the change known. The server's row isn't applied then.
bool CSettings::YieldsToChange(const SSetting &fromServer, quint64 known)
{
    const CLocalChanges *changes = CLocalChanges::Get();
    if (!changes || !changes->IsSettingLater(fromServer.strUser, fromServer.strKey, known))
        return false;
    if (HasUnwrittenChange(fromServer.strKey)) {
        // The server's value is queued first, so that the change differs from it and is stamped and sent.
        m_lstPending.prepend(fromServer);
        return true;
    }
    // If the value was set before without being stored, the change may have left the row as it was, with its older
    // time.
    return GetTimestamp(fromServer) >= fromServer.iTimestamp;
}

// Returns whether the stored row, or one that waits to be written, is newer.
bool CSettings::IsOlder(const SSetting &fromServer) const
{
    const bool waits =
        std::any_of(m_lstPending.cbegin(), m_lstPending.cend(), [&fromServer](const SSetting &setting) {
            return setting.strUser == fromServer.strUser && setting.iTimestamp > fromServer.iTimestamp &&
                   setting.strKey.compare(fromServer.strKey, Qt::CaseInsensitive) == 0;
        });
    return waits || GetTimestamp(fromServer) > fromServer.iTimestamp;
}

// Gives a new time to those of the user's rows that are older than notOlder, because they would never be sent.
void CSettings::StampAnew(const QStringList &keys, qint64 notOlder)
{
    if (keys.isEmpty())
        return;
    const QSet<QString> wanted(keys.cbegin(), keys.cend());
    const QList<SSetting> stored = GetSettingList(GetNickname());
    for (const SSetting &setting : stored) {
        if (setting.iTimestamp < notOlder && wanted.contains(setting.strKey) && !HasUnwrittenChange(setting.strKey))
            m_lstPending.append(
                {GetNickname(), setting.strArea, setting.strKey, setting.vValue, SettingsRows::STAMPED_ANEW});
    }
    if (!m_lstPending.isEmpty() && m_iPauseMs == 0)
        m_SaveTimer.start(SAVE_DELAY_MS);
}

// Returns what is stored, overridden by what a locked file or a full disk has kept from being stored.
QHash<QString, QVariant> CSettings::GetValues(const QString &user) const
{
    QHash<QString, QVariant> values = ReadValues(user);
    for (const SSetting &setting : m_lstPending) {
        if (setting.strUser.toLower() == user.toLower())
            values.insert(setting.strKey.toLower(), setting.vValue.toString());
    }
    return values;
}
