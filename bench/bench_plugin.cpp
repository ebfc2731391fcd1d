// The bus compared with bare Qt signals, and packets compared with a buffer that a program manages itself.

#include "support.h"

#include <plugin/PacketLayerWrapper.h>
#include <support/StubPlugin.h>

#include <QtEndian>

#include <cstdlib>
#include <cstring>

namespace {

using Bench::SRow;

constexpr unsigned short PAYLOAD_BYTES = 24;
constexpr int LENGTH_BYTES = CPacketLayerWrapper::RECORD_LENGTH_SIZE;
constexpr int RECORD_BYTES = PAYLOAD_BYTES + LENGTH_BYTES;
constexpr int SIZE_POS = 9;
const char PAYLOAD[PAYLOAD_BYTES + 1] = "TBLEa record of a table.";

class CCountingPlugin : public CStubPlugin
{
public:
    void ReceiveEvent(CEvent e) override { iBytes = int(e.data.size()); }
    int iBytes = 0;
};

// A plugin of bare signals and slots.
class CBarePlugin : public QObject
{
    Q_OBJECT

public:
    virtual void ReceiveEvent(CEvent e) { iBytes = int(e.data.size()); }
    int iBytes = 0;

Q_SIGNALS:
    void signal_Send(CEvent e);
    void signal_Receive(CEvent e);

public Q_SLOTS:
    void slot_Receive(CEvent e) { ReceiveEvent(e); }
};

class CHost : public QObject
{
    Q_OBJECT

public:
    CCountingPlugin plugin;
    CBarePlugin bare;

public Q_SLOTS:
    void slot_Event(CEvent e) { plugin.emit_ReceiveEvent(e); }
    void slot_BareEvent(CEvent e) { Q_EMIT bare.signal_Receive(e); }
};

int SendThroughBus(CHost &host, const CEvent &event)
{
    host.plugin.SendInternEvent(event, false);
    return host.plugin.iBytes;
}

int SendBare(CHost &host, const CEvent &event)
{
    Q_EMIT host.bare.signal_Send(event);
    return host.bare.iBytes;
}

void AddEventRow(CHost &host)
{
    QObject::connect(&host.plugin, &CPluginInterfaceFunctions::signal_SendEvent, &host, &CHost::slot_Event);
    QObject::connect(&host.bare, &CBarePlugin::signal_Send, &host, &CHost::slot_BareEvent);
    QObject::connect(&host.bare, &CBarePlugin::signal_Receive, &host.bare, &CBarePlugin::slot_Receive);
    CEvent event = CEvent::Create(QStringLiteral("LOBB"), QStringLiteral("TBLE"));
    event.data = QByteArray(64, 'x');
    SRow<int> row{"event", {1}};
    row.Side("library", [&host, event](int) { return SendThroughBus(host, event); });
    row.Side("floor", [&host, event](int) { return SendBare(host, event); });
}

CPacketLayerWrapper BuildPacket(int records)
{
    CPacketLayerWrapper packet("LOBB", 1, 7);
    for (int i = 0; i < records; ++i)
        packet.AddPacket(PAYLOAD, PAYLOAD_BYTES);
    return packet;
}

// A buffer of the exact size, like the library's.
struct SBuffer
{
    SBuffer() = default;
    ~SBuffer() { std::free(pBytes); } // NOLINT(cppcoreguidelines-no-malloc): see below
    Q_DISABLE_COPY_MOVE(SBuffer)
    char *Grow(int bytes)
    {
        // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): the floor
        pBytes = static_cast<char *>(std::realloc(pBytes, size_t(iSize) + size_t(bytes)));
        iSize += bytes;
        return pBytes + iSize - bytes;
    }

    char *pBytes = nullptr;
    int iSize = 0;
};

std::unique_ptr<SBuffer> BuildByHand(int records)
{
    auto buffer = std::make_unique<SBuffer>();
    std::memcpy(buffer->Grow(CPacketLayerWrapper::HEADER_SIZE), "LOBB\1\7\0\0\0", SIZE_POS);
    for (int i = 0; i < records; ++i) {
        char *record = buffer->Grow(RECORD_BYTES);
        qToLittleEndian<quint16>(RECORD_BYTES, record);
        std::memcpy(record + LENGTH_BYTES, PAYLOAD, PAYLOAD_BYTES);
        qToLittleEndian(quint16(buffer->iSize), buffer->pBytes + SIZE_POS);
    }
    return buffer;
}

quint32 WalkPacket(const char *bytes)
{
    quint32 sum = 0;
    CPacketLayerWrapper packet(bytes);
    while (packet.GetNext())
        sum += qFromLittleEndian<quint32>(packet.GetPayload());
    return sum;
}

quint32 WalkByHand(const char *bytes)
{
    SBuffer copy;
    const auto size = qFromLittleEndian<quint16>(bytes + SIZE_POS);
    std::memcpy(copy.Grow(size), bytes, size);
    quint32 sum = 0;
    for (int at = CPacketLayerWrapper::HEADER_SIZE; at < size; at += qFromLittleEndian<quint16>(copy.pBytes + at))
        sum += qFromLittleEndian<quint32>(copy.pBytes + at + LENGTH_BYTES);
    return sum;
}

void AddPacketRows(CPacketLayerWrapper &packet)
{
    SRow<QByteArray> build{"packet_build", {10, 100, 1000}};
    build.Side("library", BuildPacket,
               [](CPacketLayerWrapper &built) { return QByteArray(built.GetPacket(), built.GetPacketSize()); });
    build.Side("floor", BuildByHand, [](const auto &built) { return QByteArray(built->pBytes, built->iSize); });

    SRow<quint32> walk{"packet_walk", {10, 100, 1000}};
    walk.Setup = [&packet](int records) { packet = BuildPacket(records); };
    walk.Side("library", [&packet](int) { return WalkPacket(packet.GetPacket()); });
    walk.Side("floor", [&packet](int) { return WalkByHand(packet.GetPacket()); });
}

} // namespace

int main(int argc, char **argv)
{
    CHost host;
    CPacketLayerWrapper packet;
    AddEventRow(host);
    AddPacketRows(packet);
    return Bench::RunRows(argc, argv);
}

#include "bench_plugin.moc"
