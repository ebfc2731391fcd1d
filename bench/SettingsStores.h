#pragma once

#include "LiteralQuery.h"

#include <database/SettingsDB.h>
#include <files/Pathes.h>
#include <models/UserInfo.h>
#include <settings/Settings.h>

#include <QDateTime>
#include <QFile>
#include <QMap>
#include <QSettings>
#include <QTemporaryDir>

#ifdef BENCH_KCONFIG
#include <KConfig>
#include <KConfigGroup>
#endif

#include <optional>

// The stores of all user settings that are compared.

namespace SettingsStores {

using Bench::Require;
using Bench::TRow;
using TValues = QMap<QString, QString>; // by key

inline const QString USER = QStringLiteral("alice");
inline const QString SELECT_OF_USER = QStringLiteral("SELECT * FROM 'tbl_settings' WHERE URS_cUser='%1'");

// Returns a value; consecutive numbers give different values. A blob is as long as a small one in Base64.
template <typename Type>
Type MakeValue(int number)
{
    if constexpr (std::is_same_v<Type, QString>)
        return QString::number(number);
    else if constexpr (std::is_same_v<Type, QByteArray>)
        return QByteArray::number(number).rightJustified(64, 'A');
    else if constexpr (std::is_same_v<Type, bool>)
        return number % 2 != 0;
    else
        return number;
}

enum EScope { User, Global };

struct SEntry
{
    QString strArea;
    QString strKey;
    EScope eScope;
    QVariant vDefault; // of the setting's type
    QVariant (*Value)(int number);
    void (*Set)(CSettings &settings, int number);
};

// All settings; each keyed setting has one entry.
// clang-format off
inline const std::vector<SEntry> ENTRIES{
#define BENCH_ENTRY(Type, area, key, scope, setter) \
    {QStringLiteral(#area), QStringLiteral(key), scope, QVariant(Type()), \
     [](int number) { return QVariant(MakeValue<Type>(number)); }, \
     [](CSettings &settings, int number) { settings.setter; }},
#define BENCH_PLAIN(Type, Name, key, area, scope, defaultValue) \
    BENCH_ENTRY(Type, area, #key, scope, Set##Name(MakeValue<Type>(number)))
#define BENCH_KEYED(Type, Name, key, area, scope, defaultValue) \
    BENCH_ENTRY(CSettings::Type::mapped_type, area, #key "[main]", scope, \
                Set##Name##ByKey(QStringLiteral("main"), MakeValue<CSettings::Type::mapped_type>(number)))
    SETTINGS_TABLE(BENCH_PLAIN, BENCH_KEYED)
#undef BENCH_ENTRY
#undef BENCH_PLAIN
#undef BENCH_KEYED
};
// clang-format on

inline TValues ToValues(const QList<TRow> &rows)
{
    TValues values;
    for (const TRow &row : rows)
        values.insert(row.value(QStringLiteral("URS_cKey")).toString(),
                      row.value(QStringLiteral("URS_cValue")).toString());
    return values;
}

// The library's store with a user logged in, or with nobody, in which case all settings are those of the
// installation.
template <bool LOGGED_IN>
class CLibrary
{
public:
    CLibrary()
    {
        LogOut();
        Require(CSettingsDB::GetInstance()->Delete(CSettingsDB::strTableName, {}), "the emptying");
        if (LOGGED_IN)
            LogIn();
        for (const SEntry &entry : ENTRIES)
            entry.Set(*CSettings::GetInstance(), 0);
        Sync();
    }

    void Set(const SEntry &entry, int number) { entry.Set(*CSettings::GetInstance(), number); }
    void Sync() { CSettings::GetInstance()->slot_SaveSettings(true); }
    TValues GetStored() { return ToValues(Bench::RunLiteral(m_connection, SELECT_OF_USER.arg(QString()))); }

    void LogIn() { CUserInfo::GetInstance()->SetLoggedIn(USER); }
    void LogOut()
    {
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        Sync();
        CSettings::GetInstance()->Reset(); // a new process holds none of the stored values
    }
    TValues GetUsers()
    {
        TValues values;
        const TRow settings = CSettings::GetInstance()->GetSettings();
        for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting)
            values.insert(setting.key(), setting->toString());
        return values;
    }

protected:
    QSqlDatabase m_connection = QSqlDatabase::database(Pathes::SettingsDB());
};
using CUserSettings = CLibrary<true>;
using CInstallationSettings = CLibrary<false>;

// The rows of the installation, written with SQL text that is composed outside of Sync().
class CLiteral : public CInstallationSettings
{
public:
    void Set(const SEntry &entry, int number)
    {
        const QString value = entry.Value(number).toString();
        m_lstSelects.append(QStringLiteral("SELECT * FROM 'tbl_settings' WHERE URS_cUser='' AND URS_cArea='%1' AND"
                                           " URS_cKey='%2' AND URS_cValue='%3' LIMIT 1")
                                .arg(entry.strArea, entry.strKey, value));
        m_lstReplaces.append(
            QStringLiteral("INSERT OR REPLACE INTO 'tbl_settings' ('URS_cUser','URS_cArea','URS_cKey',"
                           "'URS_cValue','URS_iTimestamp') VALUES ('','%1','%2','%3','0')")
                .arg(entry.strArea, entry.strKey, value));
    }
    void Sync()
    {
        m_connection.transaction();
        for (int i = 0; i < m_lstSelects.size(); ++i) {
            if (Bench::RunLiteral(m_connection, m_lstSelects.at(i)).isEmpty())
                Bench::RunLiteral(m_connection, m_lstReplaces.at(i));
        }
        m_connection.commit();
        m_lstSelects.clear();
        m_lstReplaces.clear();
    }

private:
    QStringList m_lstSelects;
    QStringList m_lstReplaces;
};

// The rows of the installation and of the user, read into hashes.
class CLiteralLogin : public CUserSettings
{
public:
    void LogIn()
    {
        m_lstRows = Bench::RunLiteral(m_connection, SELECT_OF_USER.arg(QString()));
        m_lstRows = Bench::RunLiteral(m_connection, SELECT_OF_USER.arg(USER));
    }
    TValues GetUsers() const { return ToValues(m_lstRows); }

private:
    QList<TRow> m_lstRows;
};

struct SIniFile : QSettings
{
    explicit SIniFile(const QString &path)
        : QSettings(path, QSettings::IniFormat)
    {
    }
    QVariant Read(const SEntry &entry)
    {
        const QVariant read = value(entry.strArea + QLatin1Char('/') + entry.strKey);
        const int type = entry.vDefault.userType();
        return type == QMetaType::Bool ? read.toBool() : type == QMetaType::Int ? read.toInt() : read;
    }
    void Write(const SEntry &entry, const QVariant &written)
    {
        setValue(entry.strArea + QLatin1Char('/') + entry.strKey, written);
    }
};

#ifdef BENCH_KCONFIG
struct SKConfigFile : KConfig
{
    explicit SKConfigFile(const QString &path)
        : KConfig(path, KConfig::SimpleConfig)
    {
    }
    QVariant Read(const SEntry &entry) { return group(entry.strArea).readEntry(entry.strKey, entry.vDefault); }
    void Write(const SEntry &entry, const QVariant &value) { group(entry.strArea).writeEntry(entry.strKey, value); }
};
#endif

// The file of another store, which has neither users nor times.
template <typename File>
class CPeer
{
public:
    CPeer()
    {
        LogIn();
        for (const SEntry &entry : ENTRIES)
            Set(entry, 0);
        Sync();
    }

    void Set(const SEntry &entry, int number) { m_File->Write(entry, entry.Value(number)); }
    void Sync() { m_File->sync(); }
    // A copy is read, because it contains exactly what has been written and nobody has cached it.
    TValues GetStored()
    {
        const QString path = m_dir.filePath(QStringLiteral("copy%1.conf").arg(++m_iTime));
        Require(QFile::copy(m_file.fileName(), path), "the copy of the file");
        File copy(path);
        return Read(copy, false);
    }

    void LogIn()
    {
        m_File.emplace(m_file.fileName());
        m_values = Read(*m_File, true);
    }
    // QSettings caches the contents of a closed file until the file's time changes.
    void LogOut()
    {
        m_File.reset();
        Require(m_file.open(QIODevice::ReadWrite) &&
                    m_file.setFileTime(QDateTime::fromSecsSinceEpoch(++m_iTime), QFileDevice::FileModificationTime),
                "the ageing of the file");
        m_file.close();
    }
    TValues GetUsers() const { return m_values; }

private:
    static TValues Read(File &file, bool onlyUsers)
    {
        TValues values;
        for (const SEntry &entry : ENTRIES) {
            if (!onlyUsers || entry.eScope == User)
                values.insert(entry.strKey, file.Read(entry).toString());
        }
        return values;
    }

    QTemporaryDir m_dir;
    QFile m_file{m_dir.filePath(QStringLiteral("settings.conf"))};
    std::optional<File> m_File;
    TValues m_values;
    qint64 m_iTime = 0;
};

} // namespace SettingsStores
