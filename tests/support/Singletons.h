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

// Every singleton of the library; a new one is one more row.
#define SINGLETONS(ROW)        \
    ROW(CAutoTopUpModel)       \
    ROW(CCasinoInfo)           \
    ROW(CCasinoTime)           \
    ROW(CChatModel)            \
    ROW(CConfig)               \
    ROW(CConfigDB)             \
    ROW(CConsole)              \
    ROW(CHandHistoryDB)        \
    ROW(CLobbyListDB)          \
    ROW(CMenuManager)          \
    ROW(CNetworkAccessManager) \
    ROW(COptionsDialogManager) \
    ROW(CPlayerInfoDB)         \
    ROW(CPlayerLists)          \
    ROW(CPlayerTaggingModel)   \
    ROW(CSettings)             \
    ROW(CSettingsDB)           \
    ROW(CSettingsSync)         \
    ROW(CSoundManager)         \
    ROW(CTranslation)          \
    ROW(CTranslationDB)        \
    ROW(CUserInfo)

/// Addresses of what host and plugins have to share, by name, as the including module sees them. Creates the
/// singletons that aren't there.
inline QMap<QString, quint64> GetSharedAddresses()
{
    QMap<QString, quint64> addresses;
    const auto add = [&addresses](const char *name, const void *object) {
        addresses.insert(QString::fromLatin1(name), quint64(quintptr(object)));
    };
#define ADD_ADDRESS(Class) add(#Class, Class::GetInstance());
    SINGLETONS(ADD_ADDRESS)
#undef ADD_ADDRESS
    add("model of a player", CPlayerModel::GetInstance(QStringLiteral("Ann")));
    add("meta-object of CPluginInterface", &CPluginInterface::staticMetaObject);
    return addresses;
}

/// They end before it returns, but for the menus, which end a turn of the event loop later.
inline void DestroySingletons()
{
#define DESTROY(Class) Class::DestroyInstance();
    SINGLETONS(DESTROY)
#undef DESTROY
    CPlayerModel::DestroyInstances();
    CSoundPlayer::DestroyInstances();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
