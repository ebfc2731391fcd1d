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

/// The interface version that a plugin is built against; it goes into the plugin's `Q_PLUGIN_METADATA(IID ...)`. It
/// changes whenever a virtual operation is added, removed or moved, and a host loads no plugin with another one: it
/// can tell from the file's metadata, before any code of the plugin runs.
#define CPluginInterface_iid "plugininterface.CPluginInterface/1.0"

/// The bus: what a plugin calls to reach the host, and the one way by which the host reaches a plugin.
///
/// There are no answers and no errors on the bus: a call returns nothing, an event that nobody listens to is lost,
/// and a malformed request vanishes. All operations belong to the object's thread, but for emit_ReceiveEvent().
/// Whoever listens to a signal may delete the object; what would have been sent after that is lost.
///
/// The flag `afterLogin` asks for the login dialog first and keeps the event back until a user is logged in; with one
/// logged in it goes out at the next turn of the event loop. One event waits at a time: a newer one, of whatever
/// plugin, replaces it. It is lost without a message when the login is cancelled, when a logout comes instead, or
/// behind 30 s. The flag needs CConfigDB to be initialised, see CUserInfo.
class PLUGININTERFACE_EXPORT CPluginInterfaceFunctions : public QObject
{
    Q_OBJECT

public:
    /// Creates the object without a parent.
    CPluginInterfaceFunctions();
    ~CPluginInterfaceFunctions() override;

    /// What arrives at a plugin, see the same operation of CPluginInterface.
    /// @{
    virtual void ReceiveEvent(CEvent e) = 0;
    virtual void RegisterForEvents() = 0;
    virtual void ConnectionEstablished(unsigned short value) = 0;
    virtual void ConnectionStateChanged(EConnectionState::type state) = 0;
    virtual void LoginFailed(QString message) = 0;
    /// @}

    /// \name For the host
    /// @{

    /// Called once, after the signals are connected: registers the plugin for "M2PE" and then lets it register for
    /// more. A registration that nobody listens to is lost.
    void RegisterEvents();
    /// Delivers an event to the plugin: directly in the plugin's thread, queued from any other.
    void emit_ReceiveEvent(CEvent e);

    /// @}
    /// \name For plugins
    /// @{

    /// Asks the host for all events with this \a tag1 and \a tag2; an empty \a tag2 stands for every code of \a tag1.
    /// Does nothing if \a tag1 has fewer than four characters, or \a tag2 one to three.
    void RegisterForEvent(const QString &tag1, const QString &tag2) const;

    /// Sends an event: the one way out of a plugin.
    void SendInternEvent(CEvent e, bool afterLogin);
    /// The same for an event without payload and widget.
    void SendInternEvent(unsigned char moduleID, unsigned int targetID, QString tag1, QString tag2, bool afterLogin);

    /// Sends a complete packet of \a length bytes, see CPacketLayerWrapper, to the game server. Copies the bytes. A
    /// negative \a length, or bytes at a null address, send nothing.
    void SendToServer(char *data, int length, bool afterLogin);
    /// Frames \a data as the one record of a packet and sends it. Of \a length the low 16 bits count; a record too
    /// long for a packet, more than 32754 bytes, sends nothing.
    void SendToServer(const char *group, unsigned char moduleID, unsigned int targetID, const char *data, int length,
                      bool afterLogin);
    /// As SendToServer(), for the web server.
    void SendToWebServer(const char *data, int length, bool afterLogin);
    /// As SendToServer(), for the web server.
    void SendToWebServer(const char *group, unsigned char moduleID, unsigned int targetID, const char *data,
                         int length, bool afterLogin);

    /// Opens one of the operator's pages.
    void OpenWebPage(WebLinks::id link, bool afterLogin);
    /// Opens an address; does nothing if it is empty.
    void OpenWebPage(const QString &link, bool afterLogin);
    /// Opens a page that takes two texts, of which at most 65535 Latin-1 characters each are sent.
    void OpenWebPage(const QString &first, const QString &second, bool afterLogin);

    /// Asks for the login dialog, also while somebody is logged in.
    void OpenLoginDialog();
    /// Asks for the account's balances, behind a login.
    void RequestCashierInformation();
    /// Asks the host to end the client.
    void RequestShutDown();
    /// Hands a page to the designer; does nothing if \a name is empty or \a page null. The page stays the caller's
    /// until a receiver gives it a parent. At most 65535 UTF-8 bytes of the name are sent, never a part of a
    /// character.
    void AddDesignerPage(const QString &name, QWidget *page);

    /// @}

Q_SIGNALS:
    /// For the host: deliver events with these tags to this plugin.
    void signal_RegisterForEvent(QString tag1, QString tag2) const; // clazy:exclude=const-signal-or-slot (const use)
    /// For the host: an event from this plugin.
    void signal_SendEvent(CEvent e) const; // clazy:exclude=const-signal-or-slot (alike)
    /// An event for this plugin; it leads to the slot below.
    void signal_ReceiveEvent(CEvent e);

private Q_SLOTS:
    void slot_ReceiveEvent(CEvent e);

private:
    void SendPacketBytes(CEvent event, const char *data, int length, bool afterLogin);
    void SendFramed(const CEvent &event, CPacketLayerWrapper packet, const char *data, int length, bool afterLogin);
};

/// The base of every plugin. The host creates the object from the plugin's file, connects its signals, and calls in
/// this order: RegisterEvents(), Initialize(), Start(), CreateDesignerPages(), CreateView(); at the end CanClose()
/// and Shutdown().
///
/// A file whose code has run stays mapped until the process ends, as QPluginLoader sees to by itself: a setting, a
/// menu or a model may hold a text whose letters lie in it. A host that sets the loader's hints keeps
/// QLibrary::PreventUnloadHint among them.
class PLUGININTERFACE_EXPORT CPluginInterface : public CPluginInterfaceFunctions
{
    Q_OBJECT

public:
    /// Creates the object without a parent; it belongs to the loader that created it.
    CPluginInterface();
    ~CPluginInterface() override;

    /// An event that none of the three special operations below takes. Whatever the host delivers arrives, registered
    /// for or not.
    void ReceiveEvent(CEvent e) override;
    /// The place to call RegisterForEvent().
    void RegisterForEvents() override;
    /// The link to the game server stands; \a value is the host's, 0 if the event was too short to hold one.
    void ConnectionEstablished(unsigned short value) override;
    /// The link has changed; \a state is 0 if the event was too short to hold one.
    void ConnectionStateChanged(EConnectionState::type state) override;
    /// The login was refused; \a message tells why.
    void LoginFailed(QString message) override;

    /// Unique and unchanging; other plugins name it in their dependencies.
    virtual QString GetName() const = 0;
    /// For people to read.
    virtual QString GetVersion() const = 0;
    /// Names of the plugins that have to start before this one; without them this one doesn't start.
    virtual QStringList GetDependencies() const = 0;
    /// Makes the plugin ready. All plugins are loaded by now, and those it depends on are initialized. False: the
    /// plugin isn't used.
    virtual bool Initialize() = 0;
    /// All plugins are initialized and those it depends on are started: events may be sent.
    virtual void Start() = 0;
    /// Whether the client may end now; a plugin that answers false keeps it running.
    virtual bool CanClose() = 0;
    /// The client ends. Called in the opposite order of Start(); the event loop may not run again.
    virtual void Shutdown() = 0;
    /// The plugin's view as a child of \a parent, who owns it, or null if it has none. Called at most once.
    virtual QWidget *CreateView(QWidget *parent) = 0;

    /// A plugin with pages for the designer hands them over here with AddDesignerPage().
    virtual void CreateDesignerPages();
};
