#pragma once

#include <database/ConfigDB.h>
#include <database/HandHistoryDB.h>
#include <database/LobbyListDB.h>
#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <database/TranslationDB.h>
#include <files/Console.h>
#include <models/AutoTopUpModel.h>
#include <models/CasinoInfo.h>
#include <models/ChatModel.h>
#include <models/PlayerLists.h>
#include <models/PlayerTaggingModel.h>
#include <models/UserInfo.h>
#include <network/NetworkAccessManager.h>
#include <plugin/PluginInterface.h>
#include <settings/Config.h>
#include <settings/Settings.h>
#include <settings/SettingsSync.h>
#include <sound/SoundManager.h>
#include <sound/SoundPlayer.h>
#include <time/CasinoTime.h>
#include <translation/Translation.h>
#include <ui/MenuManager.h>
#include <ui/OptionsDialogManager.h>

#include <QCoreApplication>
#include <QMap>
#include <QString>

#include <typeinfo>

template <typename... Singletons>
struct SSingletonList
{
    static QMap<QString, quint64> GetAddresses()
    {
        return {{QString::fromLatin1(typeid(Singletons).name()), quint64(quintptr(Singletons::GetInstance()))}...};
    }
    static void Destroy() { (Singletons::DestroyInstance(), ...); }
};

/// Every singleton of the library.
using TSingletons =
    SSingletonList<CAutoTopUpModel, CCasinoInfo, CCasinoTime, CChatModel, CConfig, CConfigDB, CConsole,
                   CHandHistoryDB, CLobbyListDB, CMenuManager, CNetworkAccessManager, COptionsDialogManager,
                   CPlayerInfoDB, CPlayerLists, CPlayerTaggingModel, CSettings, CSettingsDB, CSettingsSync,
                   CSoundManager, CTranslation, CTranslationDB, CUserInfo>;

/// Addresses of what host and plugins have to share, by name, as the including module sees them. Creates the
/// singletons that aren't there.
inline QMap<QString, quint64> GetSharedAddresses()
{
    QMap<QString, quint64> addresses = TSingletons::GetAddresses();
    const CPlayerModel *ann = CPlayerModel::GetInstance(QStringLiteral("Ann"));
    addresses.insert(QStringLiteral("a player's model"), quint64(quintptr(ann)));
    addresses.insert(QStringLiteral("a meta-object"), quint64(quintptr(&CPluginInterface::staticMetaObject)));
    return addresses;
}

/// They end before it returns, but for the menus, which end a turn of the event loop later.
inline void DestroySingletons()
{
    TSingletons::Destroy();
    CPlayerModel::DestroyInstances();
    CSoundPlayer::DestroyInstances();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
