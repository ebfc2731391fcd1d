// A client to be killed: killed WORK NUMBER [ADDRESS [MACHINE]], in the client folder of an installation.
//
// Over and over, from NUMBER on, it prints a number behind what that stands for is stored:
// notes: the user notes the number on each of the players, and logs out, which writes them all at once;
// avatars: a player gets the custom avatar of that number, whose picture is fetched from the server at ADDRESS;
// settings: the user changes two settings to the number, which are written behind the delay;
// sync: the user notes something of the player of that number and changes a setting to it. It prints the number once
// more, negative, when the web server at ADDRESS has acknowledged both. From 0 it changes nothing, but exchanges
// three times and ends.

#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <models/PlayerLists.h>
#include <models/UserInfo.h>
#include <network/Download.h>
#include <settings/Config.h>
#include <settings/PlayerInfo.h>
#include <settings/Settings.h>
#include <settings/SettingsSync.h>
#include <time/CasinoTime.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <httplib.h>

#include <cstdio>

namespace {

constexpr int PLAYERS = 50;

void Tell(int number)
{
    std::printf("%d\n", number);
    std::fflush(stdout);
}

void StoreNotes(int number)
{
    CUserInfo::GetInstance()->SetLoggedIn(QStringLiteral("Ann"));
    for (int player = 0; player < PLAYERS; ++player)
        CPlayerLists::GetInstance()
            ->GetPlayerModel(QStringLiteral("player%1").arg(player))
            ->SetNotes(QString::number(number));
    CUserInfo::GetInstance()->SetLoggedIn(QString());
    Tell(number);
}

void FetchAvatars(unsigned int number)
{
    CPlayerModel *player = CPlayerLists::GetInstance()->GetPlayerModel(QStringLiteral("Bob"));
    QObject::connect(player, &CPlayerModel::signal_CustomAvatarChanged, player, [player](unsigned int there) {
        static unsigned int last = 0;
        if (there == last)
            return; // each comes twice
        last = there;
        Tell(int(there));
        QTimer::singleShot(0, player, [player, there] { player->SetNewCustomAvatar(there + 1); });
    });
    player->SetNewCustomAvatar(number);
}

void ChangeSettings(int &number)
{
    static int changed = 0;
    const QList<CSettings::SSetting> stored = CSettings::GetSettingList(QStringLiteral("Ann"));
    if (changed == number && (stored.isEmpty() || stored.last().vValue.toInt() != number))
        return; // it waits
    if (changed == number)
        Tell(number++);
    changed = number;
    CSettings::GetInstance()->SetThemeChips(number);
    CSettings::GetInstance()->SetVolume(number);
}

// The server's clock counts milliseconds, so that no two machines' changes have the same time.
void Change(int number, const QString &machine)
{
    QElapsedTimer clock;
    clock.start();
    CCasinoTime::GetInstance()->SetTimeUTCServer(static_cast<unsigned int>(clock.msecsSinceReference() & 0x7fffffff));
    const QString player = machine + QString::number(number);
    CPlayerLists::GetInstance()->GetPlayerModel(player)->SetNotes(machine);
    PlayerInfo::SaveInfo(player);
    CSettings::GetInstance()->SetSelSubThemeByKey(machine, number);
    CSettings::GetInstance()->slot_SaveSettings();
}

void GiveSession(WebLinks::id link, const QString &address, const QString &machine)
{
    const httplib::Params form{{"key", "k"}, {"nickname", "Ann"}, {"machine", machine.toStdString()}};
    const auto answer = httplib::Client(address.toStdString()).Post("/sessions", form);
    const QString session = answer ? QString::fromStdString(answer->body) : QString();
    if (link == WebLinks::SettingsSyncFetch)
        CSettingsSync::GetInstance()->StartSync(session);
    else
        CSettingsSync::GetInstance()->SyncToServer(session);
}

void Synchronise(int &number, const QString &machine)
{
    static int exchanges = 0;
    CSettingsSync *sync = CSettingsSync::GetInstance();
    if (sync->findChild<CDownload *>())
        return;                                    // under way
    CSettings::GetInstance()->slot_SaveSettings(); // what has come with the last one
    if (number == 0 && exchanges++ == 3)
        QApplication::quit();
    if (number > 0 && exchanges++ > 0 && !sync->CreateJSONforSync().contains("nick")) { // the server has what is here
        Tell(-number);
        Change(++number, machine);
    }
    sync->InitiateSync();
    Tell(number);
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 3 || !CSettingsDB::GetInstance()->Init() || !CPlayerInfoDB::GetInstance()->Init())
        return 1;
    CCasinoTime::GetInstance()->SetTimeUTCServer(1700000000);
    int number = arguments.at(2).toInt();
    QTimer timer;
    if (arguments.at(1) == QLatin1String("avatars")) {
        CConfig::GetInstance()->SetConfigs({{QStringLiteral("playerpicture_link"), arguments.value(3)}});
        FetchAvatars(static_cast<unsigned int>(number));
    } else if (arguments.at(1) == QLatin1String("sync")) {
        const QString address = arguments.value(3), machine = arguments.value(4);
        CConfig::GetInstance()->SetConfigs({{QStringLiteral("link_settingssync"), address + QLatin1String("/sync")}});
        CUserInfo::GetInstance()->SetLoggedIn(QStringLiteral("Ann"));
        QObject::connect(CSettingsSync::GetInstance(), &CSettingsSync::signal_RequestSessionForSync,
                         [=](WebLinks::id link) { GiveSession(link, address, machine); });
        if (number > 0)
            Change(number, machine);
        QObject::connect(&timer, &QTimer::timeout, [&number, machine] { Synchronise(number, machine); });
        timer.start(1);
    } else if (arguments.at(1) == QLatin1String("settings")) {
        CUserInfo::GetInstance()->SetLoggedIn(QStringLiteral("Ann"));
        QObject::connect(&timer, &QTimer::timeout, [&number] { ChangeSettings(number); });
        timer.start(1);
    } else {
        QObject::connect(&timer, &QTimer::timeout, [&number] { StoreNotes(number++); });
        timer.start(0);
    }
    return QApplication::exec();
}
