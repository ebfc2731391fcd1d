#include <plugin/PacketLayerWrapper.h>

#include <support/Literal.h>
#include <support/Rows.h>

#include <QtTest>

#include <vector>

namespace {

using TRecords = QList<QByteArray>;

constexpr int HEADER_SIZE = 11;

QByteArray Number(QByteArray::size_type number)
{
    return QByteArray(1, char(number & 0xff)) + char(number >> 8);
}

// A packet of these records, built by hand.
QByteArray MakePacket(const TRecords &records)
{
    QByteArray packet = QByteArray::fromHex("41424344 07 04030201 0000");
    for (const QByteArray &record : records)
        packet += Number(record.size() + 2) + record;
    return packet.replace(ucPacketSizePos, 2, Number(packet.size()));
}

// A wrapper that was given the bytes in a heap block of exactly their size, so that a read beyond them shows.
CPacketLayerWrapper ReadExactly(const QByteArray &packet)
{
    const std::vector<char> block(packet.begin(), packet.end());
    return CPacketLayerWrapper(block.data());
}

QByteArray GetBytes(CPacketLayerWrapper &wrapper)
{
    return QByteArray(wrapper.GetPacket(), wrapper.GetPacketSize());
}

// The payloads that are delivered; cut off when there are more than a packet can hold.
TRecords Walk(CPacketLayerWrapper wrapper)
{
    TRecords payloads;
    while (payloads.size() <= wrapper.GetPacketSize() && wrapper.GetNext())
        payloads << QByteArray(wrapper.GetPayload(), wrapper.GetPayloadLength());
    if (wrapper.GetNext() || wrapper.GetPayload() || wrapper.GetPayloadLength() || !wrapper.GetPayloadTag().isEmpty())
        payloads << "no end";
    return payloads;
}

} // namespace

// Building and walking packets, and what becomes of bytes that no sender of good will would send.
class tst_packetlayerwrapper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void Build()
    {
        CPacketLayerWrapper wrapper("ABCD", 7, 0x01020304);
        QVERIFY(wrapper.AddPacket("TAG1\x05\x06", 6));
        QCOMPARE(GetBytes(wrapper).toHex(' '),
                 QByteArray("41 42 43 44 07 04 03 02 01 13 00 08 00 54 41 47 31 05 06"));
        QVERIFY(!wrapper.AddPacket(nullptr, 1));
        QVERIFY(wrapper.AddPacket(nullptr, 0));
        QCOMPARE(GetBytes(wrapper), MakePacket({"TAG1\x05\x06", ""}));
        QCOMPARE(wrapper.GetPayloadTag(), "TAG1"_s); // the cursor stands on the first record
        QCOMPARE(Walk(wrapper), TRecords{""});

        CPacketLayerWrapper read = ReadExactly(GetBytes(wrapper));
        QVERIFY(!read.GetPayload()); // and here before it
        QCOMPARE(int(read.GetModuleID()), 7);
        QCOMPARE(read.GetTargetID(), 0x01020304u);
        QCOMPARE(CPacketLayerWrapper("AB"_s, 0, 0).GetGroup(), "AB"_s);
        QCOMPARE(CPacketLayerWrapper("\u00c4BCDE"_s, 0, 0).GetGroup(), "\u00c4BCD"_s);
    }

    void Limits()
    {
        const QByteArray data(65535, 'x');
        CPacketLayerWrapper wrapper("ABCD", 7, 0x01020304);
        for (const int length : {32755, 32767, 65533, 65534, 65535})
            QVERIFY(!wrapper.AddPacket(data.constData(), static_cast<unsigned short>(length)));
        QVERIFY(wrapper.AddPacket(data.constData(), 32754));
        QCOMPARE(GetBytes(wrapper), MakePacket({data.left(32754)}));
        QCOMPARE(Walk(ReadExactly(GetBytes(wrapper))), TRecords{data.left(32754)});
    }

    void RefusedSizes()
    {
        for (const int size : {0, HEADER_SIZE - 1, 32768, 65535}) {
            CPacketLayerWrapper wrapper = ReadExactly(MakePacket({}).replace(ucPacketSizePos, 2, Number(size)));
            QCOMPARE(std::tuple(size, int(wrapper.GetPacketSize()), wrapper.GetGroup(), int(wrapper.GetModuleID()),
                                wrapper.GetTargetID(), wrapper.AddPacket("TAG1", 4)),
                     std::tuple(size, 0, QString(), 0, 0u, false));
            QVERIFY(!wrapper.GetPacket());
        }
    }

    // Whole records are delivered up to the first that has no length or doesn't fit; any bytes at all are for the
    // fuzzer.
    void Records_data()
    {
        const QByteArray two = MakePacket({"TAG1", "TAG2ab"}); // their lengths are at 11 and 17
        const auto cut = [&two](int size) { return two.left(size).replace(ucPacketSizePos, 2, Number(size)); };
        const auto damage = [&two](int length) { return QByteArray(two).replace(17, 2, Number(length)); };
        const TRecords first{"TAG1"};
        AddRows<QByteArray, TRecords>({"packet", "records"},
                                      {{"empty ones", MakePacket({"", "TAG2", ""}), {"", "TAG2", ""}},
                                       {"short tags", MakePacket({"T", {"AB\0DE", 5}}), {"T", {"AB\0DE", 5}}},
                                       {"cut in a length", cut(18), first},
                                       {"length 0", damage(0), first},
                                       {"length of nothing", damage(2), {"TAG1", ""}},
                                       {"length beyond the end", damage(9), first},
                                       {"length of 16 bits", damage(65535), first}});
    }

    void Records()
    {
        QFETCH(QByteArray, packet);
        QTEST(Walk(ReadExactly(packet)), "records");
    }

    void OtherPackets()
    {
        CPacketLayerWrapper wrapper("ABCD", 7, 0x01020304);
        QVERIFY(wrapper.AddPacket("TAG1", 4));
        const CPacketLayerWrapper moved(std::move(wrapper));
        QCOMPARE(moved.GetPayloadTag(), "TAG1"_s); // the cursor moves, too
        // Empty, but still usable. NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
        QCOMPARE(std::pair(wrapper.GetPacket() == nullptr, wrapper.AddPacket("TAG1", 4)), std::pair(true, false));
        wrapper.SetPacket(nullptr);
        QVERIFY(!wrapper.GetPacket());
    }

    void OwnBytes()
    {
        CPacketLayerWrapper wrapper("ABCD", 7, 0x01020304);
        const QByteArray inner = MakePacket({"TAG2"});
        QVERIFY(wrapper.AddPacket(inner.constData(), static_cast<unsigned short>(inner.size())));
        QVERIFY(wrapper.AddPacket(wrapper.GetPayload(), wrapper.GetPayloadLength()));
        QCOMPARE(GetBytes(wrapper), MakePacket({inner, inner}));
        wrapper.SetPacket(wrapper.GetPayload());
        QCOMPARE(GetBytes(wrapper), inner);
    }
};

QTEST_GUILESS_MAIN(tst_packetlayerwrapper)
#include "tst_packetlayerwrapper.moc"
