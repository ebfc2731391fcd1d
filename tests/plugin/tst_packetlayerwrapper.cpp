#include <plugin/PacketLayerWrapper.h>

#include <support/Literal.h>

#include <QtEndian>
#include <QtTest>

#include <vector>

namespace {

using TRecords = QList<QByteArray>;

constexpr int HEADER_SIZE = 11;

QByteArray Number(int number)
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

// A wrapper that was given the bytes in a heap block of exactly their size, so that a read behind them shows.
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
    while (payloads.size() <= wrapper.GetPacketSize() && wrapper.GetNext()) {
        payloads << QByteArray(wrapper.GetPayload(), wrapper.GetPayloadLength());
        if (wrapper.GetPayloadTag() != QString::fromLatin1(payloads.last().left(4).constData()))
            payloads << "wrong tag";
    }
    if (wrapper.GetNext() || wrapper.GetPayload() || wrapper.GetPayloadLength() || !wrapper.GetPayloadTag().isEmpty())
        payloads << "no end";
    return payloads;
}

// What a walk should deliver: whole records up to the first that has no length or doesn't fit.
TRecords GetWholeRecords(const QByteArray &packet)
{
    TRecords payloads;
    for (int offset = HEADER_SIZE; offset + 2 <= packet.size();) {
        const int length = qFromLittleEndian<quint16>(packet.constData() + offset);
        if (length < 2 || offset + length > packet.size())
            break;
        payloads << packet.mid(offset + 2, length - 2);
        offset += length;
    }
    return payloads;
}

} // namespace

// Building and walking packets, and what becomes of bytes that no sender of good will would send.
class tst_PacketLayerWrapper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void build()
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
        QCOMPARE(read.GetGroup(), "ABCD"_s);
        QCOMPARE(CPacketLayerWrapper("AB"_s, 0, 0).GetGroup(), "AB"_s);
        QCOMPARE(CPacketLayerWrapper("\u00c4BCDE"_s, 0, 0).GetGroup(), "\u00c4BCD"_s);
    }

    void limits()
    {
        const QByteArray data(65535, 'x');
        CPacketLayerWrapper wrapper("ABCD", 7, 0x01020304);
        for (const int length : {32755, 32767, 65533, 65534, 65535})
            QVERIFY(!wrapper.AddPacket(data.constData(), static_cast<unsigned short>(length)));
        QVERIFY(wrapper.AddPacket(data.constData(), 32754));
        QVERIFY(!wrapper.AddPacket("", 0));
        QCOMPARE(GetBytes(wrapper), MakePacket({data.left(32754)}));
        QCOMPARE(Walk(ReadExactly(GetBytes(wrapper))), TRecords{data.left(32754)});
    }

    void refusedSizes()
    {
        for (const int size : {0, 1, HEADER_SIZE - 1, 32768, 65535}) {
            CPacketLayerWrapper wrapper = ReadExactly(MakePacket({}).replace(ucPacketSizePos, 2, Number(size)));
            QVERIFY(!wrapper.GetPacket() && !wrapper.GetPacketSize() && wrapper.GetGroup().isEmpty());
            QVERIFY(!wrapper.GetModuleID() && !wrapper.GetTargetID() && !wrapper.AddPacket("TAG1", 4));
            QCOMPARE(Walk(wrapper), TRecords());
        }
    }

    // The packet as it is; then cut at each byte behind its header, and with any number there, be it a length or not.
    void walk()
    {
        const QByteArray zeroInTag("AB\0DE", 5);
        const QByteArray likeRecords = QByteArray::fromHex("0200 0300 54 0100 0000 0400 0200");
        for (const TRecords &records : {TRecords(), TRecords{"TAG1", "TAG2abcdef"}, TRecords{"", "TAG2", ""},
                                        TRecords{"T", zeroInTag, "TAG"}, TRecords{"", likeRecords, "TAG3"}}) {
            const QByteArray packet = MakePacket(records);
            QCOMPARE(Walk(ReadExactly(packet)), records);
            for (int offset = HEADER_SIZE; offset + 2 <= packet.size(); ++offset) {
                const QByteArray cut = packet.left(offset + 1).replace(ucPacketSizePos, 2, Number(offset + 1));
                QCOMPARE(Walk(ReadExactly(cut)), GetWholeRecords(cut));
                for (int i = 0; i < 3 * 256; ++i) {
                    const QByteArray damaged =
                        QByteArray(packet).replace(offset, 2, Number(i < 512 ? i : (i - 512) * 256));
                    QCOMPARE(Walk(ReadExactly(damaged)), GetWholeRecords(damaged));
                }
            }
        }
    }

    void copies()
    {
        const QByteArray packet = MakePacket({"TAG1"});
        CPacketLayerWrapper original("ABCD", 7, 0x01020304);
        QVERIFY(original.AddPacket("TAG1", 4));
        CPacketLayerWrapper copy(original);
        CPacketLayerWrapper assigned("WXYZ", 3, 4);
        assigned = copy;
        *original.GetPacket() = 'x';
        QCOMPARE(GetBytes(copy), packet);
        QCOMPARE(GetBytes(assigned), packet);
        QCOMPARE(assigned.GetPayloadTag(), "TAG1"_s); // the cursor is copied, too

        CPacketLayerWrapper moved(std::move(copy));
        QCOMPARE(GetBytes(moved), packet);
        // Empty, but still usable. NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
        QVERIFY(!copy.GetPacket() && !copy.AddPacket("TAG1", 4));
        copy.SetPacket(packet.constData());
        QCOMPARE(Walk(copy), TRecords{"TAG1"});
        copy.SetPacket(nullptr);
        QVERIFY(!copy.GetPacket());
    }

    void ownBytes()
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

QTEST_GUILESS_MAIN(tst_PacketLayerWrapper)
#include "tst_packetlayerwrapper.moc"
