#pragma once

#include <Export.h>
#include <plugin/ConnectionState.h>
#include <plugin/Event.h>
#include <plugin/WebLinks.h>

#include <QObject>
#include <QString>
#include <QStringList>

class CPacketLayerWrapper;
class QWidget;

/// The version of the interface that a plugin is built against; used in the plugin's `Q_PLUGIN_METADATA(IID ...)`. It
/// changes whenever a virtual function is added, removed or moved. The host loads no plugin with a different version,
/// which it reads from the file's metadata before any code of the plugin runs.
#define CPluginInterface_iid "plugininterface.CPluginInterface/1.0"

/// The bus between a plugin and the host: the plugin's calls to the host, and the host's only way to reach the
/// plugin.
///
/// The bus reports no results and no errors: a call returns nothing, an event without a receiver is lost, and an
/// invalid request is ignored. All functions except emit_ReceiveEvent() are called in the object's thread. A slot
/// that is connected to a signal may delete the object; whatever would have been sent after that is lost.
///
/// The flag `afterLogin` first asks for the login dialog and holds the event back until a user is logged in. If a
/// user is logged in already, the event is sent at the next turn of the event loop. Only one event waits at a time: a
/// newer event of any plugin replaces it. The event is lost without a message when the login is cancelled, when a
/// logout is reported instead, or after 30 s. The flag requires an initialised CConfigDB, see CUserInfo.
class PLUGININTERFACE_EXPORT CPluginInterfaceFunctions : public QObject
{
    Q_OBJECT

public:
    /// Creates the object without a parent.
    CPluginInterfaceFunctions();
    ~CPluginInterfaceFunctions() override;

    /// Called for what arrives at the plugin; see the function of the same name in CPluginInterface.
    /// @{
    virtual void ReceiveEvent(CEvent e) = 0;
    virtual void RegisterForEvents() = 0;
    virtual void ConnectionEstablished(unsigned short value) = 0;
    virtual void ConnectionStateChanged(EConnectionState::type state) = 0;
    virtual void LoginFailed(QString message) = 0;
    /// @}

    /// \name For the host
    /// @{

    /// Registers the plugin for "M2PE" and then calls RegisterForEvents(). The host calls it once, after connecting
    /// the signals. A registration is lost if nothing is connected to signal_RegisterForEvent().
    void RegisterEvents();
    /// Delivers the event \a e to the plugin: directly in the plugin's thread, queued from any other thread.
    void emit_ReceiveEvent(CEvent e);

    /// @}
    /// \name For plugins
    /// @{

    /// Asks the host for all events with \a tag1 and \a tag2. An empty \a tag2 means all event codes of \a tag1. Does
    /// nothing if \a tag1 has fewer than four characters, or \a tag2 one to three.
    void RegisterForEvent(const QString &tag1, const QString &tag2) const;

    /// Sends the event \a e to the host. All functions below that send something use it.
    void SendInternEvent(CEvent e, bool afterLogin);
    /// Sends an event that has no payload and no widget.
    void SendInternEvent(unsigned char moduleID, unsigned int targetID, QString tag1, QString tag2, bool afterLogin);

    /// Sends a complete packet of \a length bytes to the game server, see CPacketLayerWrapper. Copies the bytes.
    /// Sends nothing if \a length is negative, or if \a data is null and \a length is not 0.
    void SendToServer(char *data, int length, bool afterLogin);
    /// Sends \a data to the game server as the only record of a new packet. Only the low 16 bits of \a length are
    /// used. Sends nothing if the record is longer than the 32754 bytes that fit into a packet.
    void SendToServer(const char *group, unsigned char moduleID, unsigned int targetID, const char *data, int length,
                      bool afterLogin);
    /// Sends a complete packet to the web server; otherwise like SendToServer().
    void SendToWebServer(const char *data, int length, bool afterLogin);
    /// Sends a packet with one record to the web server; otherwise like SendToServer().
    void SendToWebServer(const char *group, unsigned char moduleID, unsigned int targetID, const char *data,
                         int length, bool afterLogin);

    /// Asks the host to open one of the operator's pages.
    void OpenWebPage(WebLinks::id link, bool afterLogin);
    /// Asks the host to open the address \a link. Does nothing if it is empty.
    void OpenWebPage(const QString &link, bool afterLogin);
    /// Asks the host to open a page that takes two texts. At most 65535 Latin-1 characters of each are sent.
    void OpenWebPage(const QString &first, const QString &second, bool afterLogin);

    /// Asks the host for the login dialog, even if a user is logged in.
    void OpenLoginDialog();
    /// Asks the host for the account's balances, after a login.
    void RequestCashierInformation();
    /// Asks the host to end the client.
    void RequestShutDown();
    /// Offers a page to the designer. Does nothing if \a name is empty or \a page is null. The caller owns the page
    /// until a receiver gives it a parent. At most 65535 UTF-8 bytes of the name are sent, and no incomplete
    /// character.
    void AddDesignerPage(const QString &name, QWidget *page);

    /// @}

Q_SIGNALS:
    /// Asks the host to deliver events with these tags to this plugin.
    void signal_RegisterForEvent(QString tag1, QString tag2) const; // clazy:exclude=const-signal-or-slot (const use)
    /// Passes an event from this plugin to the host.
    void signal_SendEvent(CEvent e) const; // clazy:exclude=const-signal-or-slot (alike)
    /// Passes an event to this plugin; it is connected to slot_ReceiveEvent().
    void signal_ReceiveEvent(CEvent e);

private Q_SLOTS:
    void slot_ReceiveEvent(CEvent e);

private:
    void SendPacketBytes(CEvent event, const char *data, int length, bool afterLogin);
    void SendFramed(const CEvent &event, CPacketLayerWrapper packet, const char *data, int length, bool afterLogin);
};

/// The base class of all plugins. The host creates the object from the plugin's file, connects its signals, and
/// calls, in this order, RegisterEvents(), Initialize(), Start(), CreateDesignerPages() and CreateView(). At the end
/// it calls CanClose() and Shutdown().
///
/// A plugin's file stays loaded until the process ends, because a setting, a menu or a model may hold a text whose
/// characters lie in it. QPluginLoader ensures this by default. A host that sets the loader's hints includes
/// QLibrary::PreventUnloadHint.
class PLUGININTERFACE_EXPORT CPluginInterface : public CPluginInterfaceFunctions
{
    Q_OBJECT

public:
    /// Creates the object without a parent. The loader that created it owns it.
    CPluginInterface();
    ~CPluginInterface() override;

    /// Receives every event that isn't passed to one of the three functions below, registered for or not.
    void ReceiveEvent(CEvent e) override;
    /// Called when the plugin should register its events with RegisterForEvent().
    void RegisterForEvents() override;
    /// Called when the connection to the game server is established. \a value is defined by the host; it is 0 if the
    /// event is too short.
    void ConnectionEstablished(unsigned short value) override;
    /// Called when the state of the connection has changed. \a state is 0 if the event is too short.
    void ConnectionStateChanged(EConnectionState::type state) override;
    /// Called when the login was refused. \a message is the reason.
    void LoginFailed(QString message) override;

    /// Returns the plugin's name, which is unique and never changes. Other plugins use it in GetDependencies().
    virtual QString GetName() const = 0;
    /// Returns the plugin's version, for display only.
    virtual QString GetVersion() const = 0;
    /// Returns the names of the plugins that must start before this one. If one is missing, this plugin isn't
    /// started.
    virtual QStringList GetDependencies() const = 0;
    /// Initializes the plugin. All plugins are loaded, and those in GetDependencies() are initialized. If it returns
    /// false, the plugin isn't used.
    virtual bool Initialize() = 0;
    /// Starts the plugin. All plugins are initialized, and those in GetDependencies() are started. From now on the
    /// plugin may send events.
    virtual void Start() = 0;
    /// Returns whether the client may end now. False keeps it running.
    virtual bool CanClose() = 0;
    /// Called when the client ends, in the reverse order of Start(). The event loop may not run again.
    virtual void Shutdown() = 0;
    /// Returns the plugin's view as a child of \a parent, which takes ownership, or null if there is no view. Called
    /// at most once.
    virtual QWidget *CreateView(QWidget *parent) = 0;

    /// Called when the plugin should offer its pages to the designer with AddDesignerPage().
    virtual void CreateDesignerPages();
};
