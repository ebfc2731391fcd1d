// The bus beside bare Qt signals, and packets beside a buffer that a program manages by itself.

#include "support.h"

#include <plugin/PacketLayerWrapper.h>
#include <support/StubPlugin.h>

#include <QtEndian>

#include <cstdlib>
#include <cstring>

namespace {

using Bench::CRow;

CEvent TableEvent()
{
    CEvent event = CEvent::Create(QStringLiteral("LOBB"), QStringLiteral("TBLE"));
    event.data = QByteArray(64, 'x');
    return event;
}

class CCountingPlugin : public CStubPlugin
{
public:
    void ReceiveEvent(CEvent e) override { iBytes = e.data.size(); }

    int iBytes = 0;
};

// A plugin and a host of bare signals and slots.
class CBarePlugin : public QObject
{
    Q_OBJECT

public:
    virtual void ReceiveEvent(CEvent e) { iBytes = e.data.size(); }

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
    CHost()
    {
        connect(&plugin, &CPluginInterfaceFunctions::signal_SendEvent, this, &CHost::slot_Event);
        connect(&bare, &CBarePlugin::signal_Send, this, &CHost::slot_BareEvent);
        connect(&bare, &CBarePlugin::signal_Receive, &bare, &CBarePlugin::slot_Receive);
    }

    CCountingPlugin plugin;
    CBarePlugin bare;

public Q_SLOTS:
    void slot_Event(CEvent e) { plugin.emit_ReceiveEvent(e); }
    void slot_BareEvent(CEvent e) { Q_EMIT bare.signal_Receive(e); }
};

void AddEventRow()
{
    const auto host = std::make_shared<CHost>();
    const CEvent event = TableEvent();
    CRow<int>("event", {1})
        .Side("library",
              [host, event](int) {
                  host->plugin.SendInternEvent(event, false);
                  return host->plugin.iBytes;
              })
        .Side("floor", [host, event](int) {
            Q_EMIT host->bare.signal_Send(event);
            return host->bare.iBytes;
        });
}

constexpr unsigned short PAYLOAD_BYTES = 24;
constexpr size_t RECORD_BYTES = PAYLOAD_BYTES + CPacketLayerWrapper::RECORD_LENGTH_SIZE;
const char PAYLOAD[PAYLOAD_BYTES + 1] = "TBLEa record of a table.";

CPacketLayerWrapper BuildPacket(int records)
{
    CPacketLayerWrapper packet("LOBB", 1, 7);
    for (int i = 0; i < records; ++i)
        packet.AddPacket(PAYLOAD, PAYLOAD_BYTES);
    return packet;
}

struct SFree
{
    void operator()(char *bytes) const { std::free(bytes); }
};

struct SBuffer
{
    std::unique_ptr<char, SFree> bytes;
    size_t uSize = 0;
};

// As exact as the library's buffer.
void Grow(SBuffer &buffer, size_t size)
{
    char *bytes = static_cast<char *>(std::realloc(buffer.bytes.release(), size));
    buffer.bytes.reset(bytes);
    buffer.uSize = size;
}

SBuffer BuildByHand(int records)
{
    SBuffer buffer;
    Grow(buffer, CPacketLayerWrapper::HEADER_SIZE);
    std::memcpy(buffer.bytes.get(), "LOBB\1", 5);
    qToLittleEndian<quint32>(7, buffer.bytes.get() + 5);
    for (int i = 0; i < records; ++i) {
        const size_t end = buffer.uSize;
        Grow(buffer, end + RECORD_BYTES);
        qToLittleEndian<quint16>(RECORD_BYTES, buffer.bytes.get() + end);
        std::memcpy(buffer.bytes.get() + end + CPacketLayerWrapper::RECORD_LENGTH_SIZE, PAYLOAD, PAYLOAD_BYTES);
        qToLittleEndian(quint16(buffer.uSize), buffer.bytes.get() + 9);
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
    Grow(copy, qFromLittleEndian<quint16>(bytes + 9));
    std::memcpy(copy.bytes.get(), bytes, copy.uSize);
    const char *end = copy.bytes.get() + copy.uSize;
    quint32 sum = 0;
    for (const char *record = copy.bytes.get() + CPacketLayerWrapper::HEADER_SIZE; record < end;) {
        const auto length = qFromLittleEndian<quint16>(record);
        sum += qFromLittleEndian<quint32>(record + CPacketLayerWrapper::RECORD_LENGTH_SIZE);
        record += length;
    }
    return sum;
}

void AddPacketRows()
{
    CRow<QByteArray>("packet_build", {10, 100, 1000})
        .Side("library", BuildPacket,
              [](CPacketLayerWrapper &packet) { return QByteArray(packet.GetPacket(), packet.GetPacketSize()); })
        .Side("floor", BuildByHand,
              [](SBuffer &buffer) { return QByteArray(buffer.bytes.get(), int(buffer.uSize)); });

    const auto packet = std::make_shared<CPacketLayerWrapper>();
    CRow<quint32>("packet_walk", {10, 100, 1000})
        .Setup([packet](int records) { *packet = BuildPacket(records); })
        .Side("library", [packet](int) { return WalkPacket(packet->GetPacket()); })
        .Side("floor", [packet](int) { return WalkByHand(packet->GetPacket()); });
}

} // namespace

int main(int argc, char **argv)
{
    AddEventRow();
    AddPacketRows();
    return Bench::RunRows(argc, argv);
}

#include "bench_plugin.moc"
