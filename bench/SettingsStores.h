#pragma once

#include "support.h"

#include <database/SettingsDB.h>
#include <files/Pathes.h>
#include <models/UserInfo.h>
#include <settings/Settings.h>
#include <time/CasinoTime.h>

#include <QMap>
#include <QSet>
#include <QSqlRecord>

// The stores of all user settings in the library's file: the library's, and SQL text.

namespace SettingsStores {

using Bench::Require;
using TRow = QHash<QString, QVariant>;
using TValues = QMap<QString, QString>; // of the user's settings, by key

// Server times of the rows that a case finds, and of those that it writes.
constexpr unsigned int TIME_FOUND = 1000;
constexpr unsigned int TIME_WRITTEN = 2000;
inline const QString USER = QStringLiteral("alice");

// Numbers in a row make values that differ. A blob is as long as a small one in Base64.
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
    QString strPath; // area and key
    EScope eScope;
    QVariant vDefault; // of the setting's type
    QVariant (*Value)(int number);
    void (*Set)(CSettings &settings, int number);
};

// All settings, each keyed one with one entry.
// clang-format off
inline const std::vector<SEntry> ENTRIES{
#define BENCH_ENTRY(Type, area, key, scope, setter) \
    {QStringLiteral(#area), QStringLiteral(key), QStringLiteral(#area "/" key), scope, QVariant(Type()), \
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

// The library with a user logged in, or with nobody, so that all settings are the installation's.
template <bool LOGGED_IN>
class CLibrary
{
public:
    CLibrary()
    {
        LogOut();
        Require(CSettingsDB::GetInstance()->Delete(CSettingsDB::strTableName, {}), "the emptying");
        CCasinoTime::GetInstance()->SetTimeUTCServer(TIME_FOUND);
        if (LOGGED_IN)
            CUserInfo::GetInstance()->SetLoggedIn(USER);
        for (const SEntry &entry : ENTRIES)
            entry.Set(*m_pSettings, 0);
        Sync();
        CCasinoTime::GetInstance()->SetTimeUTCServer(TIME_WRITTEN);
    }

    void Set(size_t entry, int number) { ENTRIES[entry].Set(*m_pSettings, number); }
    void Sync() { m_pSettings->slot_SaveSettings(true); }
    void LogIn() { CUserInfo::GetInstance()->SetLoggedIn(USER); }
    void LogOut()
    {
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        Sync();
        m_pSettings->Reset(); // a new process holds none of the stored values
    }

    TValues GetValues() const
    {
        TValues values;
        const auto settings = m_pSettings->GetSettings();
        for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting)
            values.insert(setting.key(), setting->toString());
        return values;
    }

    // Whether the file has all rows and no others, with the time of the last change.
    bool Holds(int number, bool changed) const
    {
        const QString time = QString::number(changed ? TIME_WRITTEN : TIME_FOUND);
        QSet<QStringList> expected;
        for (const SEntry &entry : ENTRIES) {
            const QStringList rest{entry.strPath, entry.Value(number).toString(), time};
            expected.insert(QStringList(QString()) + rest);
            if (LOGGED_IN && entry.eScope == User)
                expected.insert(QStringList(USER) + rest);
        }
        QSet<QStringList> found;
        QSqlQuery rows = CSettingsDB::GetInstance()->GetQuery();
        rows.exec(QStringLiteral("SELECT URS_cUser, URS_cArea || '/' || URS_cKey, URS_cValue, URS_iTimestamp"
                                 " FROM tbl_settings"));
        while (rows.next()) {
            found.insert({rows.value(0).toString(), rows.value(1).toString(), rows.value(2).toString(),
                          rows.value(3).toString()});
        }
        return found == expected;
    }

private:
    CSettings *m_pSettings = CSettings::GetInstance();
};
using CUserSettings = CLibrary<true>;
using CInstallationSettings = CLibrary<false>;

// The library's rows through SQL text, which is made outside of Sync().
class CLiteral : public CInstallationSettings
{
public:
    void Set(size_t entry, int number)
    {
        const SEntry &setting = ENTRIES[entry];
        const QString value = setting.Value(number).toString();
        m_lstSelects.append(QStringLiteral("SELECT * FROM 'tbl_settings' WHERE URS_cUser='' AND URS_cArea='%1' AND"
                                           " URS_cKey='%2' AND URS_cValue='%3' LIMIT 1")
                                .arg(setting.strArea, setting.strKey, value));
        m_lstReplaces.append(
            QStringLiteral("INSERT OR REPLACE INTO 'tbl_settings' ('URS_cUser','URS_cArea','URS_cKey','URS_cValue',"
                           "'URS_iTimestamp') VALUES ('','%1','%2','%3','%4')")
                .arg(setting.strArea, setting.strKey, value, QString::number(TIME_WRITTEN)));
    }
    void Sync()
    {
        m_file.transaction();
        for (int i = 0; i < m_lstSelects.size(); ++i) {
            QSqlQuery query(m_file);
            query.setForwardOnly(true);
            if (!query.exec(m_lstSelects.at(i)) || !query.next())
                query.exec(m_lstReplaces.at(i));
        }
        m_file.commit();
        m_lstSelects.clear();
        m_lstReplaces.clear();
    }

private:
    QSqlDatabase m_file = QSqlDatabase::database(Pathes::SettingsDB());
    QStringList m_lstSelects;
    QStringList m_lstReplaces;
};

// The installation's rows and the user's, read into hashes.
class CLiteralLogin : public CUserSettings
{
public:
    void LogIn()
    {
        m_lstRows.clear();
        for (const QString &user : {QString(), USER}) {
            QSqlQuery query(QSqlDatabase::database(Pathes::SettingsDB()));
            query.setForwardOnly(true);
            query.exec(QStringLiteral("SELECT * FROM 'tbl_settings' WHERE URS_cUser='%1'").arg(user));
            const QSqlRecord record = query.record();
            while (query.next()) {
                TRow row;
                for (int column = 0; column < record.count(); ++column)
                    row.insert(record.fieldName(column), query.value(column));
                m_lstRows.append(row);
            }
        }
    }
    TValues GetValues() const
    {
        TValues values;
        for (const TRow &row : m_lstRows) {
            if (row.value(QStringLiteral("URS_cUser")) == USER)
                values.insert(row.value(QStringLiteral("URS_cKey")).toString(),
                              row.value(QStringLiteral("URS_cValue")).toString());
        }
        return values;
    }

private:
    QList<TRow> m_lstRows;
};

} // namespace SettingsStores
