#include <plugin/PacketLayerWrapper.h>

#include <QtEndian>
#include <QtTest>

#include <random>
#include <vector>

namespace {

using TRecords = QList<QByteArray>;

constexpr int HEADER_SIZE = 11;

void SetNumber(QByteArray &packet, int offset, int number)
{
    qToLittleEndian(static_cast<quint16>(number), packet.data() + offset);
}

// A packet of these records, built by hand.
QByteArray MakePacket(const TRecords &records)
{
    QByteArray packet = QByteArray::fromHex("41424344 07 04030201 0000");
    for (const QByteArray &record : records) {
        packet += QByteArray(2, '\0') + record;
        SetNumber(packet, packet.size() - record.size() - 2, record.size() + 2);
    }
    SetNumber(packet, ucPacketSizePos, packet.size());
    return packet;
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

// The payloads that a walk delivers; it is cut off when there are more than a packet can hold.
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
        QCOMPARE(wrapper.GetPayloadTag(), QStringLiteral("TAG1")); // the cursor stands on the first record
        QCOMPARE(Walk(wrapper), TRecords{""});

        CPacketLayerWrapper read = ReadExactly(GetBytes(wrapper));
        QVERIFY(!read.GetPayload()); // and here before it
        QCOMPARE(int(read.GetModuleID()), 7);
        QCOMPARE(read.GetTargetID(), 0x01020304u);
    }

    void groups()
    {
        for (const char *group : {"AB", "ABCDE", "\xc4"}) {
            CPacketLayerWrapper fromBytes(group, 0, 0);
            CPacketLayerWrapper fromText(QString::fromLatin1(group), 0, 0);
            QCOMPARE(GetBytes(fromBytes).left(4), QByteArray(group).leftJustified(4, '\0', true));
            QCOMPARE(GetBytes(fromText), GetBytes(fromBytes));
            QCOMPARE(fromText.GetGroup(), QString::fromLatin1(group).left(4));
        }
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
            QByteArray packet = MakePacket({});
            SetNumber(packet, ucPacketSizePos, size);
            CPacketLayerWrapper wrapper = ReadExactly(packet);
            QVERIFY(!wrapper.GetPacket() && !wrapper.GetPacketSize() && wrapper.GetGroup().isEmpty());
            QVERIFY(!wrapper.GetModuleID() && !wrapper.GetTargetID() && !wrapper.AddPacket("TAG1", 4));
            QCOMPARE(Walk(wrapper), TRecords());
        }
    }

    void walk_data()
    {
        QTest::addColumn<TRecords>("records");

        QTest::newRow("none") << TRecords();
        QTest::newRow("two") << TRecords{"TAG1", "TAG2abcdef"};
        QTest::newRow("no payload") << TRecords{"", "TAG2", ""};
        QTest::newRow("payloads shorter than a tag") << TRecords{"T", "TAG"};
        QTest::newRow("zero byte in the tag") << TRecords{QByteArray("AB\0DE", 5)};
    }

    // The packet as it is; then cut at each byte behind its header, and with any number there, be it a length or not.
    void walk()
    {
        QFETCH(TRecords, records);
        const QByteArray packet = MakePacket(records);
        QCOMPARE(Walk(ReadExactly(packet)), records);

        for (int offset = HEADER_SIZE; offset + 2 <= packet.size(); ++offset) {
            QByteArray cut = packet.left(offset + 1);
            SetNumber(cut, ucPacketSizePos, cut.size());
            QCOMPARE(Walk(ReadExactly(cut)), GetWholeRecords(cut));
            for (int i = 0; i < 3 * 256; ++i) {
                QByteArray damaged = packet;
                SetNumber(damaged, offset, i < 512 ? i : (i - 512) * 256);
                QCOMPARE(Walk(ReadExactly(damaged)), GetWholeRecords(damaged));
            }
        }
    }

    void randomPackets()
    {
        std::mt19937 random(20240501);
        int delivered = 0;
        for (int i = 0; i < 20000; ++i) {
            // A chain of lengths, of which one in eight is any number.
            QByteArray packet = MakePacket({QByteArray(int(random() % 120), 'x')});
            for (int offset = HEADER_SIZE; offset + 2 <= packet.size();) {
                const int length = static_cast<int>(random() % (random() % 8 ? 20 : 65536));
                SetNumber(packet, offset, length);
                offset += qMax(length, 2);
            }
            const TRecords payloads = Walk(ReadExactly(packet));
            QCOMPARE(payloads, GetWholeRecords(packet));
            delivered += payloads.size();
        }
        QVERIFY2(delivered > 20000, qPrintable(QString::number(delivered))); // else these walks would show little
    }

    void copies()
    {
        CPacketLayerWrapper original("ABCD", 1, 2);
        QVERIFY(original.AddPacket("TAG1", 4));
        const QByteArray packet = GetBytes(original);

        CPacketLayerWrapper copy(original);
        CPacketLayerWrapper assigned("WXYZ", 3, 4);
        assigned = copy;
        *original.GetPacket() = 'x';
        QCOMPARE(GetBytes(copy), packet);
        QCOMPARE(GetBytes(assigned), packet);
        QCOMPARE(assigned.GetPayloadTag(), QStringLiteral("TAG1")); // the cursor is copied, too

        CPacketLayerWrapper moved(std::move(copy));
        QCOMPARE(GetBytes(moved), packet);
        QVERIFY(!copy.GetPacket() && !copy.AddPacket("TAG1", 4)); // empty, but still usable
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
