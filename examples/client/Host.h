#pragma once

#include "EventRouter.h"
#include "PluginManager.h"
#include "ServerLink.h"
#include "Session.h"
#include "Synchronisation.h"

#include <QObject>
#include <QUrl>

/// The host's side of the bus: loads the plugins, keeps the link to the game server, the user's session on it and the
/// user's data in step with the web server, and serves what plugins ask for. There is no link to a web server for
/// plugins: packets for it, and all else that can't be served, are noted in the console.
class CHost : public QObject
{
    Q_OBJECT

public:
    CHost(const QString &server, quint16 port);

    /// Loads the plugins of \a directory and starts them, each behind those it depends on.
    void StartPlugins(const QString &directory);
    /// Puts a plugin on the bus and lets it register; StartPlugins() does so with those that it loads.
    void ConnectPlugin(CPluginInterface *plugin);
    /// Opens the link to the game server; it comes back by itself from then on.
    void OpenLink();

    /// Whether every plugin agrees that the client ends.
    bool CanClose() const;
    /// Closes the link and shuts the plugins down, the last started first.
    void Shutdown();

    const CPluginManager &GetPluginManager() const { return m_plugins; }
    const CServerLink &GetServerLink() const { return m_link; }
    CSession &GetSession() { return m_session; }
    CSynchronisation &GetSynchronisation() { return m_synchronisation; }

Q_SIGNALS:
    void signal_ConnectionStateChanged(EConnectionState::type state);
    /// A plugin wants the user to log in, and nobody is.
    void signal_LoginRequested();
    /// A plugin wants the client to end.
    void signal_ShutDownRequested();
    /// A plugin wants a page to be shown; always http or https, with a host.
    void signal_PageRequested(const QUrl &url);
    /// An event crosses the bus: \a sender has sent it, or, without one, it is about to be delivered to plugins.
    void signal_EventPassed(const CEvent &event, const CPluginInterface *sender);

private:
    void OnSendEvent(CEvent e);
    void OnConnectionStateChanged(EConnectionState::type state);
    void OnPacketReceived(CPacketLayerWrapper packet);
    void Deliver(const CEvent &event);
    void DeliverToPlugins(const QString &tag2, const QByteArray &data);

    // What plugins ask for under "P2ME".
    void OpenLoginDialog();
    void SendToServer(const QByteArray &packet);
    void RequestBalances();
    void OpenLinkID(const QByteArray &data);
    void OpenAddress(const QString &address);
    void OpenAddressWithQuery(const QByteArray &data);

    CEventRouter m_router;
    CServerLink m_link;
    CSession m_session;
    CSynchronisation m_synchronisation;
    CPluginManager m_plugins;
    quint16 m_usLinkCount = 0;
};
