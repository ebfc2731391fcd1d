#include "UserInfo.h"

#include <settings/Settings.h>

// Makes the user's avatars follow the settings; CPlayerModel makes the settings follow the avatars.

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
    // If a user's settings equal those that were in effect before, CSettings signals no change.
    connect(this, &CUserInfo::signal_LoginStateChanged, this, [this] {
        slot_CustomAvatarSettingChanged();
        slot_CartoonAvatarSettingChanged();
    });
}
