// The store of all user settings in a file on disk: the write of the queue, and the login of a user who has them
// stored. The floor is SQL text on the same connection; QSettings with its INI format and KConfig keep the same
// settings in files of their own. In the end each file has to hold what was set.

#include "SettingsPeers.h"

#include <database/ConfigDB.h>
#include <support/InstallationTree.h>

#include <QCoreApplication>

namespace {

using namespace SettingsStores;
using Bench::CRow;

// Calls of the process by which it has written to any file.
double CountWrites()
{
    const QList<QByteArray> lines = ReadFile(QStringLiteral("/proc/self/io")).split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("syscw: "))
            return line.mid(7).toDouble();
    }
    qFatal("the kernel counts no writes");
}

template <typename Store>
void AddFlush(CRow<bool> &row, const char *side, bool changed)
{
    struct SCase
    {
        std::optional<Store> store;
        int iNumber = 0;
        double dWrites = 0;
    };
    const auto present = std::make_shared<SCase>();
    row.Setup([present](int) {
           present->store.reset();
           present->store.emplace();
           present->iNumber = 0;
       })
        .Prepare([present, changed](int) {
            present->iNumber += changed ? 1 : 0;
            for (size_t i = 0; i < ENTRIES.size(); ++i)
                present->store->Set(i, present->iNumber);
            present->dWrites = CountWrites();
        })
        .Side(
            side,
            [present](int) {
                present->store->Sync();
                return true;
            },
            [present, changed](bool &) {
                Bench::Count("writes", CountWrites() - present->dWrites);
                Require(present->store->Holds(present->iNumber, changed), "what the file has to hold");
                present->store.reset();
                return true;
            });
}

template <typename Store>
void AddLogin(CRow<TValues> &row, const char *side)
{
    const auto store = std::make_shared<std::optional<Store>>();
    row.Setup([store](int) {
           store->reset();
           store->emplace();
       })
        .Prepare([store](int) { (*store)->LogOut(); })
        .Side(
            side,
            [store](int) {
                (*store)->LogIn();
                return true;
            },
            [store](bool &) { return (*store)->GetValues(); });
}

void AddRows()
{
    const int settings = int(ENTRIES.size());
    CRow<bool> changed("settings_changed", {settings});
    CRow<bool> unchanged("settings_unchanged", {settings});
    CRow<TValues> login("settings_login", {settings});
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
    CConfigDB::GetInstance()->Init(); // there is none, so that the defaults hold
    Require(CSettingsDB::GetInstance()->Init(), "the settings' file");
    AddRows();
    return Bench::RunRows(argc, argv);
}
