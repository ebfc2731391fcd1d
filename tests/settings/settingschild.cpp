// A client to be killed: settingschild, in the client folder of an installation.
//
// Logs in and changes two settings to the same number, four numbers 5 ms apart and then a pause of 350 ms, over and
// over. It prints each number behind the change. By the first number of four, those before it are to be stored.

#include <database/SettingsDB.h>
#include <models/UserInfo.h>
#include <settings/Settings.h>
#include <time/CasinoTime.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (!CSettingsDB::GetInstance()->Init())
        return 1;
    CCasinoTime::GetInstance()->SetTimeUTCServer(1700000000);
    CUserInfo::GetInstance()->SetLoggedIn(QStringLiteral("Ann"));
    CSettings *settings = CSettings::GetInstance();
    int number = settings->GetThemeChips();
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        ++number;
        settings->SetThemeChips(number);
        settings->SetVolume(number);
        std::printf("%d\n", number);
        std::fflush(stdout);
        timer.start(number % 4 == 0 ? 350 : 5);
    });
    timer.start(0);
    return QCoreApplication::exec();
}
