#pragma once

#include "EventRouter.h"
#include "PluginManager.h"
#include "ServerLink.h"
#include "Session.h"
#include "Synchronisation.h"

#include <QObject>
#include <QSet>
#include <QUrl>

class QNetworkReply;

/// The host's side of the bus: loads the plugins, keeps the connection to the game server and the user's session,
/// synchronises the user's data with the web server, and serves the plugins' requests. Plugins have no connection to
/// a web server: packets for it, and all other events that can't be served, are written to the console.
class CHost : public QObject
{
    Q_OBJECT

public:
    CHost(const QString &server, quint16 port);

    /// Sets whom the game server has to be vouched for by, and whether its connection isn't encrypted, over which
    /// nobody can log in. By default the system's authorities count, and it is. Called before OpenLink().
    void SetTrust(const CServerTrust &trust, bool isPlain);
    /// Loads the plugins of \a directory and starts them, each after those it depends on.
    void StartPlugins(const QString &directory);
    /// Connects a plugin to the bus and lets it register for events; StartPlugins() does so with those that it loads.
    void ConnectPlugin(CPluginInterface *plugin);
    /// Connects to the game server; a lost connection is established again by itself.
    void OpenLink();

    /// Returns whether every plugin allows the client to end.
    bool CanClose() const;
    /// Closes the connection and shuts the plugins down in the opposite order of the start.
    void Shutdown();

    const CPluginManager &GetPluginManager() const { return m_plugins; }
    const CServerLink &GetServerLink() const { return m_link; }
    /// Connects now instead of after the pause between two attempts.
    void Reconnect() { m_link.Retry(); }
    CSession &GetSession() { return m_session; }
    CSynchronisation &GetSynchronisation() { return m_synchronisation; }

Q_SIGNALS:
    void signal_ConnectionStateChanged(EConnectionState::type state);
    /// Emitted when a plugin asks for the login dialog while nobody is logged in.
    void signal_LoginRequested();
    /// Emitted when a plugin asks to end the client.
    void signal_ShutDownRequested();
    /// Emitted when a plugin asks to show a page, whose address is always http or https with a host.
    void signal_PageRequested(const QUrl &url);
    /// Emitted when a web server, which is told nothing then, couldn't prove who it is, or leads to one whose
    /// connections aren't encrypted; again only after all was well. \a key is the key of the text to show, in the
    /// area of Texts.
    void signal_WebServerMistrusted(const QString &key, const QString &server);
    /// Emitted for each event on the bus: \a sender has sent it or, if null, it is about to be delivered to plugins.
    void signal_EventPassed(const CEvent &event, const CPluginInterface *sender);

private:
    void OnSendEvent(CEvent e);
    void OnConnectionStateChanged(EConnectionState::type state);
    void OnPacketReceived(CPacketLayerWrapper packet);
    void OnWebReply(const QNetworkReply *reply);
    void Deliver(const CEvent &event);
    void DeliverToPlugins(const QString &tag2, const QByteArray &data);

    // These serve the plugins' requests under "P2ME".
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
    QSet<QString> m_mistrusted; // web servers
    quint16 m_usLinkCount = 0;
};
