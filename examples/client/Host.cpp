#include "Host.h"

#include "WebPages.h"

#include <common/Note.h>
#include <common/Texts.h>
#include <models/UserInfo.h>
#include <network/NetworkAccessManager.h>

#include <QDataStream>
#include <QNetworkReply>
#include <QtEndian>

#include <algorithm>

namespace {

constexpr int MAX_NOTED_LENGTH = 200; // of a plugin's payload in the console

bool IsHostGroup(const CEvent &event)
{
    return event.HasTag1("M2PE") || event.HasTag1("P2ME");
}

template <typename Number>
QByteArray LittleEndianBytes(Number value)
{
    QByteArray bytes(sizeof value, Qt::Uninitialized);
    qToLittleEndian(value, bytes.data());
    return bytes;
}

// Returns a Latin-1 text that follows its 16-bit length; null if it isn't complete.
QString ReadCountedText(QDataStream &stream)
{
    quint16 length = 0;
    stream >> length;
    QByteArray text(length, Qt::Uninitialized);
    if (stream.status() != QDataStream::Ok || stream.readRawData(text.data(), length) != length)
        return QString();
    return QString::fromLatin1(text);
}

} // namespace

CHost::CHost(const QString &server, quint16 port)
    : m_link(server, port)
    , m_session([this](const QByteArray &packet) { return m_link.Send(packet); })
    , m_synchronisation(m_session)
{
    connect(&m_link, &CServerLink::signal_StateChanged, this, &CHost::OnConnectionStateChanged);
    connect(&m_link, &CServerLink::signal_PacketReceived, this, &CHost::OnPacketReceived);
    connect(&m_link, &CServerLink::signal_Problem, this,
            [](const QString &text) { Note(text, CConsole::MC_Network); });
    connect(&m_session, &CSession::signal_LoginRefused, this,
            [this](const QString &key) { DeliverToPlugins(QStringLiteral("LGNF"), Texts::Get(key).toUtf8()); });
    connect(&m_plugins, &CPluginManager::signal_PluginDropped, this,
            [this](CPluginInterface *plugin) { m_router.Unregister(plugin); });
    connect(CNetworkAccessManager::GetInstance(), &QNetworkAccessManager::finished, this, &CHost::OnWebReply);
}

void CHost::SetTrust(const CServerTrust &trust, bool isPlain)
{
    m_link.SetTrust(trust);
    if (isPlain)
        m_link.SetPlain();
}

void CHost::StartPlugins(const QString &directory)
{
    m_plugins.Load(directory);
    // A plugin whose Initialize() fails is dropped at once with those that depend on it, so the loops iterate over
    // copies.
    const auto loaded = m_plugins.GetPlugins();
    for (CPluginInterface *plugin : loaded)
        ConnectPlugin(plugin);
    for (CPluginInterface *plugin : loaded) {
        if (m_plugins.GetPlugins().contains(plugin) && !plugin->Initialize())
            m_plugins.Drop(plugin, QStringLiteral("it couldn't be initialized"));
    }
    const auto initialized = m_plugins.GetPlugins();
    for (CPluginInterface *plugin : initialized) {
        plugin->Start();
        Note(QStringLiteral("Plugin \"%1\" %2 started").arg(plugin->GetName(), plugin->GetVersion()),
             CConsole::MC_Plugin, CConsole::ML_Info);
    }
    for (CPluginInterface *plugin : initialized)
        plugin->CreateDesignerPages();
}

void CHost::OpenLink()
{
    m_link.Open();
}

bool CHost::CanClose() const
{
    const auto &plugins = m_plugins.GetPlugins();
    return std::all_of(plugins.begin(), plugins.end(), [](CPluginInterface *plugin) { return plugin->CanClose(); });
}

void CHost::Shutdown()
{
    // This also stores the latest notes.
    if (CUserInfo::GetInstance()->IsLoggedIn())
        m_session.Leave();
    m_link.Close();
    const auto &plugins = m_plugins.GetPlugins();
    std::for_each(plugins.rbegin(), plugins.rend(), [](CPluginInterface *plugin) { plugin->Shutdown(); });
}

void CHost::OnSendEvent(CEvent e)
{
    if (e.HasTags("P2ME", "LGND"))
        OpenLoginDialog();
    else if (e.HasTags("P2ME", "RQCI"))
        RequestBalances();
    else if (e.HasTags("P2ME", "RSHD"))
        Q_EMIT signal_ShutDownRequested();
    else if (e.HasTags("P2ME", "RSRV"))
        SendToServer(e.data);
    else if (e.HasTags("P2ME", "RWEB"))
        Note(QStringLiteral("A packet for the web server is lost: there is no link to it"), CConsole::MC_Network);
    else if (e.HasTags("P2ME", "WLID"))
        OpenLinkID(e.data);
    else if (e.HasTags("P2ME", "WLNK"))
        OpenAddress(QString::fromUtf8(e.data));
    else if (e.HasTags("P2ME", "WEBW"))
        OpenAddressWithQuery(e.data);
    else if (IsHostGroup(e))
        Note(QStringLiteral("A plugin sent an event that no plugin may send, or that nobody knows"),
             CConsole::MC_Plugin);
    else
        Deliver(e);
}

void CHost::OnConnectionStateChanged(EConnectionState::type state)
{
    // The session comes first, so that the server knows the user when a plugin sends a request.
    m_session.SetConnectionState(state, m_link.IsEncrypted());
    DeliverToPlugins(QStringLiteral("SCOC"), LittleEndianBytes<qint32>(state));
    // The number of connections so far lets a plugin tell the first from a later one.
    if (state == EConnectionState::Connected)
        DeliverToPlugins(QStringLiteral("SCOE"), LittleEndianBytes<quint16>(++m_usLinkCount));
    Q_EMIT signal_ConnectionStateChanged(state);
}

void CHost::OnPacketReceived(CPacketLayerWrapper packet)
{
    while (packet.GetNext()) {
        CEvent event = CEvent::Create(packet.GetGroup(), packet.GetPayloadTag());
        // A server must not act as the host or a plugin.
        if (IsHostGroup(event) || event.HasTag1("DESI")) {
            Note(QStringLiteral("The game server sent a packet of the client's own group %1").arg(packet.GetGroup()),
                 CConsole::MC_Network);
            return;
        }
        event.moduleID = packet.GetModuleID();
        event.targetID = packet.GetTargetID();
        event.data = QByteArray(packet.GetPayload(), packet.GetPayloadLength());
        if (!m_synchronisation.HandleRecord(event) && !m_session.HandleRecord(event))
            Deliver(event);
    }
}

void CHost::OnWebReply(const QNetworkReply *reply)
{
    const QString server = reply->url().authority();
    const QUrl target = reply->url().resolved(reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl());
    const bool isImpostor = reply->error() == QNetworkReply::SslHandshakeFailedError;
    const bool leadsAway =
        reply->url().scheme() == QLatin1String("https") && target.scheme() == QLatin1String("http");
    if (reply->error() == QNetworkReply::NoError && !leadsAway)
        m_mistrusted.remove(server);
    if ((!isImpostor && !leadsAway) || m_mistrusted.contains(server))
        return;
    m_mistrusted.insert(server);
    Note(isImpostor ? QStringLiteral("%1 isn't the server that it should be, and is told nothing: %2")
                          .arg(server, CNetworkAccessManager::GetError(*reply))
                    : QStringLiteral("%1 leads to %2, which isn't encrypted and is told nothing")
                          .arg(server, target.toDisplayString()),
         CConsole::MC_Network);
    Q_EMIT signal_WebServerMistrusted(isImpostor ? QStringLiteral("WEB_IMPOSTOR") : QStringLiteral("WEB_LEADS_AWAY"),
                                      server);
}

void CHost::ConnectPlugin(CPluginInterface *plugin)
{
    connect(plugin, &CPluginInterface::signal_SendEvent, this,
            [this, plugin](const CEvent &event) { Q_EMIT signal_EventPassed(event, plugin); });
    connect(plugin, &CPluginInterface::signal_SendEvent, this, &CHost::OnSendEvent);
    connect(plugin, &CPluginInterface::signal_RegisterForEvent, this,
            [this, plugin](const QString &tag1, const QString &tag2) { m_router.Register(plugin, tag1, tag2); });
    plugin->RegisterEvents();
}

void CHost::Deliver(const CEvent &event)
{
    Q_EMIT signal_EventPassed(event, nullptr);
    m_router.Deliver(event);
}

void CHost::DeliverToPlugins(const QString &tag2, const QByteArray &data)
{
    CEvent event = CEvent::Create(QStringLiteral("M2PE"), tag2);
    event.data = data;
    Deliver(event);
}

void CHost::OpenLoginDialog()
{
    if (!CUserInfo::GetInstance()->IsLoggedIn())
        Q_EMIT signal_LoginRequested();
}

void CHost::SendToServer(const QByteArray &packet)
{
    // The user decides who logs in, not a plugin.
    if (packet.startsWith(AccountProtocol::GROUP) || !m_link.Send(packet))
        Note(QStringLiteral("A packet of %1 bytes for the game server isn't sent").arg(packet.size()),
             CConsole::MC_Network);
}

void CHost::RequestBalances()
{
    if (!m_session.RequestBalances())
        Note(QStringLiteral(
                 "A plugin's request for the balances isn't sent: nobody is logged in, or there is no link"),
             CConsole::MC_Network);
}

void CHost::OpenLinkID(const QByteArray &data)
{
    const qint32 id = data.size() < int(sizeof(qint32)) ? 0 : qFromLittleEndian<qint32>(data.constData());
    const QString address = WebPages::GetAddress(static_cast<WebLinks::id>(id));
    if (address.isEmpty())
        Note(QStringLiteral("Page %1 has no address").arg(id), CConsole::MC_General);
    else
        OpenAddress(address);
}

void CHost::OpenAddress(const QString &address)
{
    const QUrl url(address, QUrl::StrictMode);
    const bool isWeb = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    // A plugin may have received its address from a server, so only web pages are opened.
    if (isWeb && url.isValid() && !url.host().isEmpty())
        Q_EMIT signal_PageRequested(url);
    else
        Note(QStringLiteral("No web page: %1").arg(address.left(MAX_NOTED_LENGTH)), CConsole::MC_General);
}

// The plugins of this client pass a page's address first and its query second; in the payload the second comes first.
void CHost::OpenAddressWithQuery(const QByteArray &data)
{
    QDataStream stream(data);
    stream.setByteOrder(QDataStream::LittleEndian);
    const QString query = ReadCountedText(stream);
    const QString address = ReadCountedText(stream);
    OpenAddress(query.isEmpty() ? address : address + QLatin1Char('?') + query);
}
