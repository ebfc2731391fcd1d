#include "RememberedLogin.h"

#include <common/Note.h>
#include <files/Pathes.h>
#include <settings/Settings.h>

#include <QFile>

namespace {

// Takes the rights of others from the settings, which an older client may have created with them.
bool MakePrivate()
{
    constexpr auto owner = QFile::ReadOwner | QFile::WriteOwner;
    constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    for (const QString &file : {Pathes::SettingsDB(), Pathes::SettingsDB() + QLatin1String("-wal"),
                                Pathes::SettingsDB() + QLatin1String("-shm")}) {
        if (QFile::permissions(file) & others) // none if there is no such file
            QFile::setPermissions(file, owner);
        if (QFile::permissions(file) & others)
            return false;
    }
    return true;
}

} // namespace

AccountProtocol::STokenLogin RememberedLogin::Get()
{
    const CSettings *settings = CSettings::GetInstance();
    if (settings->GetLastUserPwd().size() != AccountProtocol::TOKEN_LENGTH)
        return {};
    return {settings->GetLastUserName(), settings->GetLastUserPwd()};
}

void RememberedLogin::Store(const AccountProtocol::STokenLogin &login)
{
    Forget();
    if (login.strToken.isEmpty() || !MakePrivate()) {
        Note(QStringLiteral("The login of %1 isn't remembered: %2")
                 .arg(login.strNickname, login.strToken.isEmpty()
                                             ? QStringLiteral("the game server gives no token")
                                             : Pathes::SettingsDB() + QStringLiteral(" is open to other users")),
             CConsole::MC_General);
        return;
    }
    CSettings::GetInstance()->SetLastUserName(login.strNickname);
    CSettings::GetInstance()->SetLastUserPwd(login.strToken);
}

void RememberedLogin::Forget()
{
    CSettings::GetInstance()->SetLastUserPwd(QString());
}
