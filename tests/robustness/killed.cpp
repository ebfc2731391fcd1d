// A client to be killed: killed WORK NUMBER [ADDRESS], in the client folder of an installation.
//
// Over and over, from NUMBER on, it prints a number after what that stands for is stored:
// notes: the user notes the number on each of the players, and logs out, which writes them all at once;
// avatars: a player gets the custom avatar of that number, whose picture is fetched from the server at ADDRESS;
// settings: the user changes two settings to the number, which are written after the delay.

#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <models/PlayerLists.h>
#include <models/UserInfo.h>
#include <settings/Config.h>
#include <settings/Settings.h>
#include <support/Literal.h>
#include <time/CasinoTime.h>

#include <QApplication>
#include <QTimer>

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
    CUserInfo::GetInstance()->SetLoggedIn("Ann"_s);
    for (int player = 0; player < PLAYERS; ++player)
        CPlayerLists::GetInstance()->GetPlayerModel("player%1"_s.arg(player))->SetNotes(QString::number(number));
    CUserInfo::GetInstance()->SetLoggedIn(QString());
    Tell(number);
}

void FetchAvatars(unsigned int number)
{
    CPlayerModel *player = CPlayerLists::GetInstance()->GetPlayerModel("Bob"_s);
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
    const QList<CSettings::SSetting> stored = CSettings::GetSettingList("Ann"_s);
    if (changed == number && (stored.isEmpty() || stored.last().vValue.toInt() != number))
        return; // it waits
    if (changed == number)
        Tell(number++);
    changed = number;
    CSettings::GetInstance()->SetThemeChips(number);
    CSettings::GetInstance()->SetVolume(number);
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
    if (arguments.at(1) == "avatars"_s) {
        CConfig::GetInstance()->SetConfigs({{"playerpicture_link"_s, arguments.value(3)}});
        FetchAvatars(static_cast<unsigned int>(number));
    } else if (arguments.at(1) == "settings"_s) {
        CUserInfo::GetInstance()->SetLoggedIn("Ann"_s);
        QObject::connect(&timer, &QTimer::timeout, [&number] { ChangeSettings(number); });
        timer.start(1);
    } else {
        QObject::connect(&timer, &QTimer::timeout, [&number] { StoreNotes(number++); });
        timer.start(0);
    }
    return QApplication::exec();
}
