// What it costs to store all user settings in a file on disk: the login of a user who has them stored, a burst of
// changes, and the write of the queue alone. QSettings with its INI format and KConfig do the same work; the floor of
// the queue is ready-made SQL text, one select and one replace a row. In the end each file has to hold what was set.

#include <database/ConfigDB.h>
#include <database/SettingsDB.h>
#include <files/Pathes.h>
#include <models/UserInfo.h>
#include <settings/Settings.h>
#include <time/CasinoTime.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QSettings>
#include <QTemporaryDir>

#ifdef BENCH_KCONFIG
#include <KConfig>
#include <KConfigGroup>
#endif

#include <optional>
#include <vector>

namespace {

constexpr int BURST = 1000;
// Server times of the rows that a case finds, and of those that it writes.
constexpr unsigned int TIME_FOUND = 1000;
constexpr unsigned int TIME_WRITTEN = 2000;
const QString USER = QStringLiteral("alice");

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
const std::vector<SEntry> ENTRIES{
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

// The number behind each entry's present value.
using TNumbers = std::vector<int>;

void Require(bool done, const char *what)
{
    if (!done)
        qFatal("%s failed", what);
}

// An installation for the library. It lives as long as the process, as the library's connection does.
struct SInstallation
{
    SInstallation()
    {
        const QString former = QDir::currentPath();
        const QString client = dir.filePath(QStringLiteral("Contents/Client"));
        Require(QDir().mkpath(client) && QDir(client).mkpath(QStringLiteral("../Tmp")), "the installation");
        QDir::setCurrent(client);
        CConfigDB::GetInstance()->Init(); // there is none, so that the defaults hold
        Require(CSettingsDB::GetInstance()->Init(), "the settings' file");
        file = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));
        file.setDatabaseName(Pathes::SettingsDB());
        Require(file.open(), "the second connection");
        QDir::setCurrent(former);
    }

    QTemporaryDir dir;
    QSqlDatabase file; // a connection beside the library's
};
SInstallation *pInstallation = nullptr;

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
    void LogIn()
    {
        CUserInfo::GetInstance()->SetLoggedIn(USER);
        Sync();
    }
    void LogOut()
    {
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        Sync();
        m_pSettings->Reset(); // a new process holds none of the stored values
    }

    // Whether the file has all rows and no others, with the time of the last change.
    bool Holds(const TNumbers &numbers, bool changed) const
    {
        const QString time = QString::number(changed ? TIME_WRITTEN : TIME_FOUND);
        QSet<QStringList> expected;
        for (size_t i = 0; i < ENTRIES.size(); ++i) {
            const QStringList rest{ENTRIES[i].strPath, ENTRIES[i].Value(numbers[i]).toString(), time};
            expected.insert(QStringList(QString()) + rest);
            if (LOGGED_IN && ENTRIES[i].eScope == User)
                expected.insert(QStringList(USER) + rest);
        }
        QSet<QStringList> found;
        QSqlQuery rows(QStringLiteral("SELECT URS_cUser, URS_cArea || '/' || URS_cKey, URS_cValue, URS_iTimestamp"
                                      " FROM tbl_settings"),
                       pInstallation->file);
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

// The library's rows of the installation through SQL text, which is made outside of Sync().
class CPlainSql : public CInstallationSettings
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
        pInstallation->file.transaction();
        for (int i = 0; i < m_lstSelects.size(); ++i) {
            QSqlQuery query(pInstallation->file);
            query.setForwardOnly(true);
            if (!query.exec(m_lstSelects.at(i)) || !query.next())
                query.exec(m_lstReplaces.at(i));
        }
        pInstallation->file.commit();
        m_lstSelects.clear();
        m_lstReplaces.clear();
    }

private:
    QStringList m_lstSelects;
    QStringList m_lstReplaces;
};

struct SIniFile
{
    explicit SIniFile(const QString &path)
        : settings(path, QSettings::IniFormat)
    {
    }
    QVariant Read(size_t entry)
    {
        QVariant value = settings.value(ENTRIES[entry].strPath);
        value.convert(ENTRIES[entry].vDefault.userType());
        return value;
    }
    void Write(size_t entry, const QVariant &value) { settings.setValue(ENTRIES[entry].strPath, value); }
    void Sync() { settings.sync(); }

    QSettings settings;
};

#ifdef BENCH_KCONFIG
struct SKConfigFile
{
    explicit SKConfigFile(const QString &path)
        : config(path, KConfig::SimpleConfig)
    {
        for (size_t i = 0; i < ENTRIES.size(); ++i) {
            const bool sameArea = i > 0 && ENTRIES[i].strArea == ENTRIES[i - 1].strArea;
            groups.push_back(sameArea ? groups.back() : config.group(ENTRIES[i].strArea));
        }
    }
    QVariant Read(size_t entry) { return groups[entry].readEntry(ENTRIES[entry].strKey, ENTRIES[entry].vDefault); }
    void Write(size_t entry, const QVariant &value) { groups[entry].writeEntry(ENTRIES[entry].strKey, value); }
    void Sync() { config.sync(); }

    KConfig config;
    std::vector<KConfigGroup> groups; // of each entry
};
#endif

// A peer's file, which knows neither users nor times.
template <typename File>
class CPeer
{
public:
    CPeer()
    {
        m_File.emplace(m_strPath);
        for (size_t i = 0; i < ENTRIES.size(); ++i)
            Set(i, 0);
        Sync();
    }

    void Set(size_t entry, int number) { m_File->Write(entry, ENTRIES[entry].Value(number)); }
    void Sync() { m_File->Sync(); }
    void LogIn()
    {
        m_File.emplace(m_strPath);
        std::vector<QVariant> values;
        for (size_t i = 0; i < ENTRIES.size(); ++i)
            values.push_back(m_File->Read(i));
        for (size_t i = 0; i < ENTRIES.size(); ++i)
            m_File->Write(i, values[i]);
        Sync();
    }
    // QSettings remembers the contents of a file that it has closed, until the file's time changes.
    void LogOut()
    {
        m_File.reset();
        QFile file(m_strPath);
        Require(file.open(QIODevice::ReadWrite) &&
                    file.setFileTime(QDateTime::fromSecsSinceEpoch(TIME_FOUND), QFileDevice::FileModificationTime),
                "the ageing of the file");
    }

    // What has reached the file, which a copy tells that nobody has read yet.
    bool Holds(const TNumbers &numbers, bool) const
    {
        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("copy.conf"));
        Require(QFile::copy(m_strPath, path), "the copy of the file");
        File copy(path);
        for (size_t i = 0; i < ENTRIES.size(); ++i) {
            if (copy.Read(i) != ENTRIES[i].Value(numbers[i]))
                return false;
        }
        return true;
    }

private:
    QTemporaryDir m_dir;
    QString m_strPath = m_dir.filePath(QStringLiteral("settings.conf"));
    std::optional<File> m_File;
};

template <typename Store>
void Check(benchmark::State &state, Store &store, const TNumbers &numbers, bool changed)
{
    if (!store.Holds(numbers, changed))
        state.SkipWithError("the file doesn't hold what was set");
}

template <typename Store>
void Login(benchmark::State &state)
{
    Store store;
    for (auto _ : state) {
        state.PauseTiming();
        store.LogOut();
        state.ResumeTiming();
        store.LogIn();
    }
    Check(state, store, TNumbers(ENTRIES.size(), 0), false);
}

template <typename Store>
void Burst(benchmark::State &state)
{
    Store store;
    TNumbers numbers(ENTRIES.size(), 0);
    for (auto _ : state) {
        for (size_t call = 0; call < BURST; ++call) {
            const size_t entry = call % ENTRIES.size();
            store.Set(entry, ++numbers[entry]);
        }
        store.Sync();
    }
    Check(state, store, numbers, true);
}

template <typename Store, bool CHANGED>
void Flush(benchmark::State &state)
{
    Store store;
    int number = 0;
    for (auto _ : state) {
        state.PauseTiming();
        number += CHANGED ? 1 : 0;
        for (size_t i = 0; i < ENTRIES.size(); ++i)
            store.Set(i, number);
        state.ResumeTiming();
        store.Sync();
    }
    Check(state, store, TNumbers(ENTRIES.size(), number), CHANGED);
}

using CQSettings = CPeer<SIniFile>;
constexpr bool CHANGED = true;
constexpr bool UNCHANGED = false;
#define BENCH_CASE(...) BENCHMARK_TEMPLATE(__VA_ARGS__)->Unit(benchmark::kMillisecond)->UseRealTime()
BENCH_CASE(Login, CQSettings);
BENCH_CASE(Login, CUserSettings);
BENCH_CASE(Burst, CQSettings);
BENCH_CASE(Burst, CInstallationSettings);
BENCH_CASE(Burst, CUserSettings);
BENCH_CASE(Flush, CPlainSql, CHANGED);
BENCH_CASE(Flush, CInstallationSettings, CHANGED);
BENCH_CASE(Flush, CPlainSql, UNCHANGED);
BENCH_CASE(Flush, CInstallationSettings, UNCHANGED);
#ifdef BENCH_KCONFIG
using CKConfig = CPeer<SKConfigFile>;
BENCH_CASE(Login, CKConfig);
BENCH_CASE(Burst, CKConfig);
#endif

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // the SQL driver is a plugin of Qt
    SInstallation installation;
    pInstallation = &installation;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
