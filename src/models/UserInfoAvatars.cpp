#include "UserInfo.h"

#include <settings/Settings.h>

// The own player's avatars follow the settings; the way back is the player's own.

void CUserInfo::slot_CartoonAvatarSettingChanged()
{
    const CSettings *settings = CSettings::GetInstance();
    CPlayerModel *own = GetPlayerModel();
    if (settings->GetCaller() != this && own)
        own->SetCartoonAvatar(static_cast<unsigned short>(settings->GetCartoonAvatar()));
}

void CUserInfo::slot_CustomAvatarSettingChanged()
{
    const CSettings *settings = CSettings::GetInstance();
    CPlayerModel *own = GetPlayerModel();
    if (settings->GetCaller() != this && own)
        own->SetCustomAvatar(static_cast<unsigned int>(settings->GetCustomCurrent()));
}

void CUserInfo::slot_ConnectSlots()
{
    const CSettings *settings = CSettings::GetInstance();
    connect(settings, &CSettings::signal_CustomCurrentChanged, this, &CUserInfo::slot_CustomAvatarSettingChanged);
    connect(settings, &CSettings::signal_CartoonAvatarChanged, this, &CUserInfo::slot_CartoonAvatarSettingChanged);
    // Of a user whose settings are those that were in force before nothing is signalled.
    connect(this, &CUserInfo::signal_LoginStateChanged, this, [this] {
        slot_CustomAvatarSettingChanged();
        slot_CartoonAvatarSettingChanged();
    });
}
