#include "PluginInterface.h"

#include <plugin/EventAfterLogin_p.h>
#include <plugin/EventTable_p.h>
#include <plugin/PacketLayerWrapper.h>

#include <QPointer>
#include <QtEndian>

#include <cstring>
#include <limits>

namespace {

namespace Events {

struct STags
{
    char tag1[sizeof CEvent::tag1 + 1];
    char tag2[sizeof CEvent::tag2 + 1];
};

#define EVENT_TAGS(Name, first, second, payload, meaning) constexpr STags Name{first, second};
EVENT_TABLE(EVENT_TAGS)
#undef EVENT_TAGS

} // namespace Events

constexpr int MAX_COUNTED_BYTES = std::numeric_limits<quint16>::max();

CEvent CreateEvent(const Events::STags &tags, const QByteArray &data = QByteArray())
{
    CEvent event;
    std::memcpy(event.tag1, tags.tag1, sizeof event.tag1);
    std::memcpy(event.tag2, tags.tag2, sizeof event.tag2);
    event.data = data;
    return event;
}

bool IsEvent(const CEvent &event, const Events::STags &tags)
{
    return event.HasTags(tags.tag1, tags.tag2);
}

template <typename Number>
void AppendLittleEndian(QByteArray &data, Number value)
{
    char bytes[sizeof value];
    qToLittleEndian(value, bytes);
    data.append(bytes, sizeof bytes);
}

// A payload that is too short for its event counts as 0.
template <typename Number>
Number ReadLittleEndian(const QByteArray &data)
{
    return data.size() < int(sizeof(Number)) ? Number(0) : qFromLittleEndian<Number>(data.constData());
}

// Appends the number of bytes, in 16 bits, and then the bytes.
void AppendCounted(QByteArray &data, const QByteArray &bytes)
{
    AppendLittleEndian(data, static_cast<quint16>(bytes.size()));
    data.append(bytes);
}

QByteArray ToUtf8WithinCount(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    if (bytes.size() <= MAX_COUNTED_BYTES)
        return bytes;
    // The first byte that is cut off must begin a character. Continuation bytes have the form 10xxxxxx.
    int length = MAX_COUNTED_BYTES;
    while (length > 0 && (static_cast<unsigned char>(bytes.at(length)) & 0xC0u) == 0x80u)
        --length;
    bytes.truncate(length);
    return bytes;
}

QString TextUpToZero(const QByteArray &data)
{
    return QString::fromUtf8(data.constData(),
                             static_cast<int>(qstrnlen(data.constData(), static_cast<uint>(data.size()))));
}

} // namespace

CPluginInterfaceFunctions::CPluginInterfaceFunctions()
{
    // Queued connections look up the type by its name.
    qRegisterMetaType<CEvent>("CEvent");
    connect(this, &CPluginInterfaceFunctions::signal_ReceiveEvent, this,
            &CPluginInterfaceFunctions::slot_ReceiveEvent, Qt::AutoConnection);
}

CPluginInterfaceFunctions::~CPluginInterfaceFunctions() = default;

void CPluginInterfaceFunctions::RegisterEvents()
{
    const QPointer<CPluginInterfaceFunctions> self = this;
    Q_EMIT signal_RegisterForEvent(QStringLiteral("M2PE"), QString());
    if (self)
        RegisterForEvents();
}

void CPluginInterfaceFunctions::emit_ReceiveEvent(CEvent e)
{
    Q_EMIT signal_ReceiveEvent(e);
}

void CPluginInterfaceFunctions::RegisterForEvent(const QString &tag1, const QString &tag2) const
{
    constexpr int TAG_LENGTH = sizeof CEvent::tag1;
    if (tag1.size() < TAG_LENGTH || (!tag2.isEmpty() && tag2.size() < TAG_LENGTH))
        return;
    Q_EMIT signal_RegisterForEvent(tag1, tag2);
}

void CPluginInterfaceFunctions::SendInternEvent(CEvent e, bool afterLogin)
{
    if (!afterLogin) {
        Q_EMIT signal_SendEvent(e);
        return;
    }
    // The host may delete the plugin when it is asked for the dialog. So may a slot that reacts to the cancelling of
    // an older event.
    const QPointer<CPluginInterfaceFunctions> self = this;
    OpenLoginDialog();
    if (!self)
        return;
    auto *waiting = new CEventAfterLogin(e, this);
    if (self)
        connect(waiting, &CEventAfterLogin::signal_Event, this, &CPluginInterfaceFunctions::signal_SendEvent);
}

void CPluginInterfaceFunctions::SendInternEvent(unsigned char moduleID, unsigned int targetID, QString tag1,
                                                QString tag2, bool afterLogin)
{
    CEvent event = CEvent::Create(tag1, tag2);
    event.moduleID = moduleID;
    event.targetID = targetID;
    SendInternEvent(event, afterLogin);
}

void CPluginInterfaceFunctions::SendToServer(char *data, int length, bool afterLogin)
{
    SendPacketBytes(CreateEvent(Events::ServerPacket), data, length, afterLogin);
}

void CPluginInterfaceFunctions::SendToServer(const char *group, unsigned char moduleID, unsigned int targetID,
                                             const char *data, int length, bool afterLogin)
{
    SendFramed(CreateEvent(Events::ServerPacket), CPacketLayerWrapper(group, moduleID, targetID), data, length,
               afterLogin);
}

void CPluginInterfaceFunctions::SendToWebServer(const char *data, int length, bool afterLogin)
{
    SendPacketBytes(CreateEvent(Events::WebPacket), data, length, afterLogin);
}

void CPluginInterfaceFunctions::SendToWebServer(const char *group, unsigned char moduleID, unsigned int targetID,
                                                const char *data, int length, bool afterLogin)
{
    SendFramed(CreateEvent(Events::WebPacket), CPacketLayerWrapper(group, moduleID, targetID), data, length,
               afterLogin);
}

void CPluginInterfaceFunctions::OpenWebPage(WebLinks::id link, bool afterLogin)
{
    QByteArray data;
    AppendLittleEndian<qint32>(data, link);
    SendInternEvent(CreateEvent(Events::WebPage, data), afterLogin);
}

void CPluginInterfaceFunctions::OpenWebPage(const QString &link, bool afterLogin)
{
    if (link.isEmpty())
        return;
    SendInternEvent(CreateEvent(Events::WebAddress, link.toUtf8()), afterLogin);
}

void CPluginInterfaceFunctions::OpenWebPage(const QString &first, const QString &second, bool afterLogin)
{
    QByteArray data;
    AppendCounted(data, second.left(MAX_COUNTED_BYTES).toLatin1());
    AppendCounted(data, first.left(MAX_COUNTED_BYTES).toLatin1());
    SendInternEvent(CreateEvent(Events::WebTexts, data), afterLogin);
}

void CPluginInterfaceFunctions::OpenLoginDialog()
{
    SendInternEvent(CreateEvent(Events::LoginDialog), false);
}

void CPluginInterfaceFunctions::RequestCashierInformation()
{
    SendInternEvent(CreateEvent(Events::Cashier), true);
}

void CPluginInterfaceFunctions::RequestShutDown()
{
    SendInternEvent(CreateEvent(Events::ShutDown), false);
}

void CPluginInterfaceFunctions::AddDesignerPage(const QString &name, QWidget *page)
{
    if (name.isEmpty() || !page)
        return;
    CEvent event = CreateEvent(Events::DesignerPage);
    AppendCounted(event.data, ToUtf8WithinCount(name));
    event.widget = page;
    SendInternEvent(event, false);
}

void CPluginInterfaceFunctions::slot_ReceiveEvent(CEvent e)
{
    if (IsEvent(e, Events::LinkEstablished))
        ConnectionEstablished(ReadLittleEndian<quint16>(e.data));
    else if (IsEvent(e, Events::LinkChanged))
        ConnectionStateChanged(static_cast<EConnectionState::type>(ReadLittleEndian<qint32>(e.data)));
    else if (IsEvent(e, Events::LoginRefused))
        LoginFailed(TextUpToZero(e.data));
    else
        ReceiveEvent(e);
}

void CPluginInterfaceFunctions::SendPacketBytes(CEvent event, const char *data, int length, bool afterLogin)
{
    if (length < 0 || (!data && length > 0))
        return;
    event.data = QByteArray(data, length);
    SendInternEvent(event, afterLogin);
}

void CPluginInterfaceFunctions::SendFramed(const CEvent &event, CPacketLayerWrapper packet, const char *data,
                                           int length, bool afterLogin)
{
    if (packet.AddPacket(data, static_cast<unsigned short>(length)))
        SendPacketBytes(event, packet.GetPacket(), packet.GetPacketSize(), afterLogin);
}

CPluginInterface::CPluginInterface() = default;

CPluginInterface::~CPluginInterface() = default;

// Does nothing by default; a plugin overrides the functions that it needs.
void CPluginInterface::ReceiveEvent(CEvent) {}

void CPluginInterface::RegisterForEvents() {}

void CPluginInterface::ConnectionEstablished(unsigned short) {}

void CPluginInterface::ConnectionStateChanged(EConnectionState::type) {}

void CPluginInterface::LoginFailed(QString) {}

void CPluginInterface::CreateDesignerPages() {}
