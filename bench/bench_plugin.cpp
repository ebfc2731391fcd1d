// What the bus and the packet layer cost beside a floor in the same run: a plain virtual call, and a copy of the same
// bytes.

#include <plugin/PacketLayerWrapper.h>
#include <plugin/PluginInterface.h>

#include <benchmark/benchmark.h>

#include <QDataStream>

#include <cstring>
#include <vector>

namespace {

class CCountingPlugin : public CPluginInterface
{
public:
    void ReceiveEvent(CEvent) override { ++m_iEvents; }

    QString GetName() const override { return QStringLiteral("counting"); }
    QString GetVersion() const override { return QStringLiteral("1"); }
    QStringList GetDependencies() const override { return {}; }
    bool Initialize() override { return true; }
    void Start() override {}
    bool CanClose() override { return true; }
    void Shutdown() override {}
    QWidget *CreateView(QWidget *) override { return nullptr; }

    int m_iEvents = 0;
};

CEvent TableEvent()
{
    CEvent event = CEvent::Create(QStringLiteral("LOBB"), QStringLiteral("TBLE"));
    event.data = QByteArray(64, 'x');
    return event;
}

void VirtualCall(benchmark::State &state)
{
    CCountingPlugin plugin;
    CPluginInterfaceFunctions *bus = &plugin;
    const CEvent event = TableEvent();
    for (auto _ : state) {
        benchmark::DoNotOptimize(bus);
        bus->ReceiveEvent(event);
    }
    benchmark::DoNotOptimize(plugin.m_iEvents);
}
BENCHMARK(VirtualCall);

void BusDelivery(benchmark::State &state)
{
    CCountingPlugin plugin;
    const CEvent event = TableEvent();
    for (auto _ : state)
        plugin.emit_ReceiveEvent(event);
    benchmark::DoNotOptimize(plugin.m_iEvents);
}
BENCHMARK(BusDelivery);

constexpr int RECORD_BYTES = 60;

void CopyRecords(benchmark::State &state)
{
    const std::vector<char> record(RECORD_BYTES, 'x');
    for (auto _ : state) {
        std::vector<char> packet;
        for (int64_t i = 0; i < state.range(0); ++i)
            packet.insert(packet.end(), record.begin(), record.end());
        benchmark::DoNotOptimize(packet.data());
    }
    state.SetBytesProcessed(state.iterations() * state.range(0) * RECORD_BYTES);
}
BENCHMARK(CopyRecords)->Arg(1)->Arg(500);

void StreamRecords(benchmark::State &state)
{
    const QByteArray record(RECORD_BYTES, 'x');
    for (auto _ : state) {
        QByteArray packet;
        QDataStream stream(&packet, QIODevice::WriteOnly);
        for (int64_t i = 0; i < state.range(0); ++i)
            stream << record;
        benchmark::DoNotOptimize(packet.constData());
    }
    state.SetBytesProcessed(state.iterations() * state.range(0) * RECORD_BYTES);
}
BENCHMARK(StreamRecords)->Arg(1)->Arg(500);

CPacketLayerWrapper BuildPacket(int64_t records)
{
    const std::vector<char> record(RECORD_BYTES, 'x');
    CPacketLayerWrapper packet("LOBB", 1, 0);
    for (int64_t i = 0; i < records; ++i)
        packet.AddPacket(record.data(), RECORD_BYTES);
    return packet;
}

void BuildRecords(benchmark::State &state)
{
    for (auto _ : state) {
        CPacketLayerWrapper packet = BuildPacket(state.range(0));
        benchmark::DoNotOptimize(packet.GetPacket());
    }
    state.SetBytesProcessed(state.iterations() * state.range(0) * RECORD_BYTES);
}
BENCHMARK(BuildRecords)->Arg(1)->Arg(500);

void WalkRecords(benchmark::State &state)
{
    CPacketLayerWrapper packet = BuildPacket(state.range(0));
    const std::vector<char> bytes(packet.GetPacket(), packet.GetPacket() + packet.GetPacketSize());
    for (auto _ : state) {
        CPacketLayerWrapper reader(bytes.data());
        while (reader.GetNext())
            benchmark::DoNotOptimize(reader.GetPayload());
    }
    state.SetBytesProcessed(state.iterations() * state.range(0) * RECORD_BYTES);
}
BENCHMARK(WalkRecords)->Arg(1)->Arg(500);

} // namespace

BENCHMARK_MAIN();
