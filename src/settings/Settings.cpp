#include "Settings.h"

#include <Singleton_p.h>
#include <database/SettingsDB.h>
#include <models/UserInfo.h>
#include <settings/Config.h>
#include <settings/SettingsRows_p.h>
#include <time/CasinoTime.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

PLUGININTERFACE_DEFINE_SINGLETON(CSettings);

namespace {

constexpr int SAVE_DELAY_MS = 250;

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

QHash<QString, QVariant> ValuesByKey(const QList<CSettings::SSetting> &settings)
{
    QHash<QString, QVariant> values;
    for (const CSettings::SSetting &setting : settings)
        values.insert(setting.strKey, setting.vValue);
    return values;
}

} // namespace

CSettings::CSettings()
{
    m_SaveTimer.setSingleShot(true);
    m_SaveTimer.setTimerType(Qt::PreciseTimer);
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
    if (!user.isEmpty())
        m_lstPending.append({QString(), area, key, value, timestamp});
    m_SaveTimer.start();
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

QByteArray CSettings::GetOptionJSON()
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
    QJsonParseError error;
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

bool CSettings::GetAnimationOff()
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
        m_SaveTimer.start();
        return;
    }
    CSettingsDB *database = CSettingsDB::GetInstance();
    database->StartTransaction();
    const bool locked = !SettingsRows::Write(*database, m_lstPending, now);
    database->EndTransaction(!locked);
    // Another program holds the file: the rows stay, and those that follow join them.
    if (locked)
        m_SaveTimer.start();
    else
        m_lstPending.clear();
}

void CSettings::slot_LoginStateChanged()
{
    // Under the user they were queued for.
    slot_SaveSettings(true);
    CUserInfo *user = CUserInfo::GetInstance();
    SetNickname(user->GetNickname());
    SetUsername(user->GetUsername());
    SetPwd(user->GetPasswordHashed());
    const QHash<QString, QVariant> globals = ValuesByKey(GetSettingList(QString()));
    const QString &nickname = GetNickname();
    SetSettings(globals, nickname.isEmpty() ? QHash<QString, QVariant>() : ValuesByKey(GetSettingList(nickname)),
                true);
}
