#include "Settings.h"

#include <Singleton_p.h>
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

PLUGININTERFACE_DEFINE_SINGLETON(CSettings);

namespace {

constexpr int SAVE_DELAY_MS = 250;
// A locked file holds each attempt up for as long as SQLite waits.
constexpr int HINDERED_DELAY_MS = 5000;

const QString COLUMN_USER = QStringLiteral("URS_cUser");
const QString COLUMN_AREA = QStringLiteral("URS_cArea");
const QString COLUMN_KEY = QStringLiteral("URS_cKey");
const QString COLUMN_VALUE = QStringLiteral("URS_cValue");
const QString COLUMN_TIMESTAMP = QStringLiteral("URS_iTimestamp");

const QLatin1String JSON_NICKNAME("nickname");
const QLatin1String JSON_USERNAME("username");
const QLatin1String JSON_PWD("pwd");
const QLatin1String JSON_SETTINGS("settings");
const QLatin1String JSON_KEY("key");
const QLatin1String JSON_VALUE("value");

} // namespace

CSettings::CSettings()
{
    m_SaveTimer.setSingleShot(true);
    m_SaveTimer.setTimerType(Qt::PreciseTimer); // what a crash may lose is no more than the delay
    m_SaveTimer.setInterval(SAVE_DELAY_MS);
    connect(&m_SaveTimer, &QTimer::timeout, this, [this] { slot_SaveSettings(); });
    const CUserInfo *user = CUserInfo::GetInstance();
    connect(user, &CUserInfo::signal_LoginStateChanged, this, &CSettings::slot_LoginStateChanged);
    SetAvatarDisplayMode(user->GetAvatarDisplayModes().first(), nullptr, false);
    slot_LoginStateChanged();
}

void CSettings::Save(const QString &user, const QString &area, const QString &key, const QVariant &value,
                     qint64 timestamp)
{
    m_lstPending.append({user, area, key, value, timestamp});
    // A user's row of a setting that is the installation's can only come from the server, and is for no one else.
    if (!user.isEmpty() && !IsGlobal(key))
        m_lstPending.append({QString(), area, key, value, timestamp});
    if (timestamp < 0)
        CLocalChanges::AddSetting(user, key);
    m_SaveTimer.start(SAVE_DELAY_MS);
}

unsigned int CSettings::GetLastTimestamp(const QString &user)
{
    const QString newest = QStringLiteral("MAX(URS_iTimestamp)");
    QHash<QString, QVariant> row;
    CSettingsDB::GetInstance()->SelectOne(row, CSettingsDB::strTableName, {newest}, {{COLUMN_USER, user.toLower()}});
    return static_cast<unsigned int>(row.value(newest).toInt());
}

QList<CSettings::SSetting> CSettings::GetSettingList(const QString &user)
{
    QList<QHash<QString, QVariant>> rows;
    CSettingsDB::GetInstance()->SelectAll(rows, CSettingsDB::strTableName, {}, {{COLUMN_USER, user.toLower()}}, 0);
    QList<SSetting> settings;
    for (const auto &row : qAsConst(rows)) {
        settings.append({row.value(COLUMN_USER).toString(), row.value(COLUMN_AREA).toString(),
                         row.value(COLUMN_KEY).toString(), row.value(COLUMN_VALUE),
                         row.value(COLUMN_TIMESTAMP).toInt()});
    }
    return settings;
}

QByteArray CSettings::GetOptionJSON() const
{
    QJsonArray entries;
    const QHash<QString, QVariant> settings = GetSettings();
    for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting)
        entries.append(QJsonObject{{JSON_KEY, setting.key()}, {JSON_VALUE, setting.value().toString()}});
    const QJsonObject options{{JSON_NICKNAME, GetNickname()},
                              {JSON_USERNAME, GetUsername()},
                              {JSON_PWD, GetPwd()},
                              {JSON_SETTINGS, entries}};
    return QJsonDocument(options).toJson();
}

void CSettings::SetOptionJSON(const QByteArray &json)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError)
        return;
    QHash<QString, QVariant> values;
    const QVariantList entries = document.object().toVariantMap().value(JSON_SETTINGS).toList();
    for (const QVariant &entry : entries) {
        const QVariantMap setting = entry.toMap();
        values.insert(setting.value(JSON_KEY).toString(), setting.value(JSON_VALUE));
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
    if (now == 0 && !force)
        m_SaveTimer.start(SAVE_DELAY_MS);
    else if (!SettingsRows::Write(*CSettingsDB::GetInstance(), m_lstPending, now))
        m_SaveTimer.start(HINDERED_DELAY_MS); // the rows stay, and those that follow join them
    else {
        m_lstPending.clear();
        CSettingsSync::GetInstance()->StartSyncTimer();
    }
}

void CSettings::slot_LoginStateChanged()
{
    // Under the user they were queued for.
    slot_SaveSettings(true);
    CUserInfo *user = CUserInfo::GetInstance();
    SetNickname(user->GetNickname());
    SetUsername(user->GetUsername());
    SetPwd(user->GetPasswordHashed());
    const QString &nickname = GetNickname();
    SetSettings(GetValues(QString()), nickname.isEmpty() ? QHash<QString, QVariant>() : GetValues(nickname), true);
}

// What is stored, and over it what a locked file or a full disk has kept from being stored.
QHash<QString, QVariant> CSettings::GetValues(const QString &user) const
{
    QHash<QString, QVariant> values;
    const QList<SSetting> stored = GetSettingList(user);
    for (const SSetting &setting : stored)
        values.insert(setting.strKey, setting.vValue);
    for (const SSetting &setting : m_lstPending) {
        if (setting.strUser.toLower() == user.toLower())
            values.insert(setting.strKey.toLower(), setting.vValue.toString());
    }
    return values;
}
