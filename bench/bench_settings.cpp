// The store of all user settings in a file on disk: writing the queue, and the login of a user with stored settings.
// The floor is SQL text on the same connection; QSettings with its INI format and KConfig store the same settings in
// files of their own. At the end each file has to contain the values that were set.

#include "SettingsStores.h"

#include <database/ConfigDB.h>
#include <support/InstallationTree.h>
#include <time/CasinoTime.h>

#include <QCoreApplication>

namespace {

using namespace SettingsStores;
using Bench::SRow;

// Returns the number of system calls with which the process has written to files.
double CountWrites()
{
    const QByteArray counts = ReadFile(QStringLiteral("/proc/self/io"));
    return counts.mid(counts.indexOf("syscw: ") + 7).split('\n').first().toDouble();
}

template <typename Store>
void AddFlush(SRow<bool> row, const char *side, bool changed)
{
    static std::optional<Store> store;
    static int number;
    static double writes;
    row.Setup = [](int) {
        store.emplace();
        number = 0;
    };
    row.Prepare = [changed](int) {
        number += changed ? 1 : 0;
        for (const SEntry &entry : ENTRIES)
            store->Set(entry, number);
        writes = CountWrites();
    };
    const auto check = [](bool) {
        Bench::Count("writes", CountWrites() - writes);
        TValues expected;
        for (const SEntry &entry : ENTRIES)
            expected.insert(entry.strKey, entry.Value(number).toString());
        Require(store->GetStored() == expected, "what the file has to hold");
        store.reset();
        return true;
    };
    row.Side(
        side, [](int) { return store->Sync(), true; }, check);
}

template <typename Store>
void AddLogin(SRow<TValues> row, const char *side)
{
    static std::optional<Store> store;
    row.Setup = [](int) { store.emplace(); };
    row.Prepare = [](int) { store->LogOut(); };
    row.Side(
        side, [](int) { return store->LogIn(), true; }, [](bool) { return store->GetUsers(); });
}

void AddRows()
{
    const int settings = int(ENTRIES.size());
    const SRow<bool> changed{"settings_changed", {settings}};
    const SRow<bool> unchanged{"settings_unchanged", {settings}};
    const SRow<TValues> login{"settings_login", {settings}};
    AddFlush<CInstallationSettings>(changed, "library", true);
    AddFlush<CLiteral>(changed, "floor", true);
    AddFlush<CUserSettings>(changed, "logged in", true);
    AddFlush<CPeer<SIniFile>>(changed, "QSettings", true);
    AddFlush<CInstallationSettings>(unchanged, "library", false);
    AddFlush<CLiteral>(unchanged, "floor", false);
    AddLogin<CUserSettings>(login, "library");
    AddLogin<CLiteralLogin>(login, "floor");
    AddLogin<CPeer<SIniFile>>(login, "QSettings");
#ifdef BENCH_KCONFIG
    AddFlush<CPeer<SKConfigFile>>(changed, "KConfig", true);
    AddLogin<CPeer<SKConfigFile>>(login, "KConfig");
#endif
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // the SQL driver is a plugin of Qt
    const CInstallationTree installation;
    CConfigDB::GetInstance()->Init(); // there is no file, so that the defaults are used
    CCasinoTime::GetInstance()->SetTimeUTCServer(1000);
    Require(CSettingsDB::GetInstance()->Init(), "the settings' file");
    AddRows();
    return Bench::RunRows(argc, argv);
}
