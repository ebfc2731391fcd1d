#include <plugin/PacketLayerWrapper.h>

#include <QtEndian>
#include <QtTest>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>

namespace {

constexpr int HEADER_SIZE = 11;

void SetNumber(QByteArray &packet, int offset, int number)
{
    qToLittleEndian(static_cast<quint16>(number), packet.data() + offset);
}

// A packet of these records, built by hand.
QByteArray MakePacket(const QList<QByteArray> &records)
{
    QByteArray packet = QByteArray::fromHex("41424344"
                                            "07"
                                            "04030201"
                                            "0000");
    for (const QByteArray &record : records) {
        packet.append("\0\0", 2);
        SetNumber(packet, packet.size() - 2, record.size() + 2);
        packet += record;
    }
    SetNumber(packet, ucPacketSizePos, packet.size());
    return packet;
}

// A wrapper that was given the bytes in a heap block of exactly their size, so that a read behind them shows.
CPacketLayerWrapper ReadExactly(const QByteArray &packet)
{
    const auto size = static_cast<size_t>(packet.size());
    const std::unique_ptr<char[]> block(new char[size]);
    std::memcpy(block.get(), packet.constData(), size);
    return CPacketLayerWrapper(block.get());
}

QByteArray GetBytes(CPacketLayerWrapper &wrapper)
{
    return QByteArray(wrapper.GetPacket(), wrapper.GetPacketSize());
}

// The payloads that a walk delivers; it is cut off when there are more than a packet can hold.
QList<QByteArray> Walk(CPacketLayerWrapper &wrapper)
{
    QList<QByteArray> payloads;
    while (payloads.size() <= wrapper.GetPacketSize() && wrapper.GetNext()) {
        payloads << QByteArray(wrapper.GetPayload(), wrapper.GetPayloadLength());
        const QByteArray tag = payloads.last().left(4);
        if (wrapper.GetPayloadTag() != QString::fromLatin1(tag.constData()))
            payloads.last() = "wrong tag";
    }
    if (wrapper.GetNext() || wrapper.GetPayload() || wrapper.GetPayloadLength() || !wrapper.GetPayloadTag().isEmpty())
        payloads << "no end";
    return payloads;
}

// What it should deliver: whole records up to the first that has no length or doesn't fit.
QList<QByteArray> GetWholeRecords(const QByteArray &packet)
{
    QList<QByteArray> payloads;
    for (int offset = HEADER_SIZE; offset + 2 <= packet.size();) {
        const int length = qFromLittleEndian<quint16>(packet.constData() + offset);
        if (length < 2 || offset + length > packet.size())
            break;
        payloads << packet.mid(offset + 2, length - 2);
        offset += length;
    }
    return payloads;
}

const QList<QByteArray> NO_RECORDS;

} // namespace

// Building and walking packets, and what becomes of bytes that no sender of good will would send.
class tst_PacketLayerWrapper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void build();
    void group_data();
    void group();
    void walk_data();
    void walk();
    void walkWhileBuilding();
    void empty();
    void largestPacket();
    void refusedSize_data();
    void refusedSize();
    void damagedRecords_data();
    void damagedRecords();
    void randomPackets();
    void copies();
    void ownBytes();
};

void tst_PacketLayerWrapper::build()
{
    CPacketLayerWrapper wrapper("ABCD", 7, 0x01020304);
    QCOMPARE(GetBytes(wrapper).toHex(' '), QByteArray("41 42 43 44 07 04 03 02 01 0b 00"));
    QVERIFY(wrapper.AddPacket("TAG1\x05\x06", 6));
    QCOMPARE(GetBytes(wrapper).toHex(' '), QByteArray("41 42 43 44 07 04 03 02 01 13 00 08 00 54 41 47 31 05 06"));
    QVERIFY(!wrapper.AddPacket(nullptr, 1));
    QVERIFY(wrapper.AddPacket(nullptr, 0));
    QCOMPARE(GetBytes(wrapper), MakePacket({"TAG1\x05\x06", ""}));

    CPacketLayerWrapper read = ReadExactly(GetBytes(wrapper));
    QCOMPARE(read.GetGroup(), QStringLiteral("ABCD"));
    QCOMPARE(int(read.GetModuleID()), 7);
    QCOMPARE(read.GetTargetID(), 0x01020304u);
}

void tst_PacketLayerWrapper::group_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("short") << "AB" << QByteArray("AB\0\0", 4);
    QTest::newRow("long") << "ABCDE" << QByteArray("ABCD");
    QTest::newRow("empty") << "" << QByteArray(4, '\0');
    QTest::newRow("outside ASCII") << QString::fromUtf8("\u00c4BCD")
                                   << QByteArray("\xc4"
                                                 "BCD");
}

void tst_PacketLayerWrapper::group()
{
    QFETCH(QString, group);
    QFETCH(QByteArray, bytes);

    CPacketLayerWrapper fromText(group, 0, 0);
    CPacketLayerWrapper fromBytes(group.toLatin1().constData(), 0, 0);
    QCOMPARE(GetBytes(fromText).left(4), bytes);
    QCOMPARE(GetBytes(fromBytes), GetBytes(fromText));
    QCOMPARE(fromText.GetGroup(), group.left(4));
}

void tst_PacketLayerWrapper::walk_data()
{
    QTest::addColumn<QList<QByteArray>>("records");

    QTest::newRow("none") << NO_RECORDS;
    QTest::newRow("two") << QList<QByteArray>{"TAG1", "TAG2abcdef"};
    QTest::newRow("no payload") << QList<QByteArray>{"", "TAG2", ""};
    QTest::newRow("payloads shorter than a tag") << QList<QByteArray>{"T", "TAG"};
    QTest::newRow("zero byte in the tag") << QList<QByteArray>{QByteArray("AB\0DE", 5)};
}

void tst_PacketLayerWrapper::walk()
{
    QFETCH(QList<QByteArray>, records);
    const QByteArray packet = MakePacket(records);

    CPacketLayerWrapper wrapper = ReadExactly(packet);
    QCOMPARE(int(wrapper.GetPacketSize()), packet.size());
    QVERIFY(!wrapper.GetPayload()); // before the first record
    QCOMPARE(Walk(wrapper), records);

    const QByteArray smaller = MakePacket({"NEXT"});
    wrapper.SetPacket(smaller.constData());
    QCOMPARE(Walk(wrapper), QList<QByteArray>{"NEXT"});
}

// The cursor of a packet that is being built stands on its first record.
void tst_PacketLayerWrapper::walkWhileBuilding()
{
    CPacketLayerWrapper wrapper("ABCD", 0, 0);
    QVERIFY(!wrapper.GetPayload());
    QVERIFY(wrapper.AddPacket("TAG1abcd", 8));
    QVERIFY(wrapper.AddPacket("TAG2", 4));
    QCOMPARE(wrapper.GetPayloadTag(), QStringLiteral("TAG1"));
    QCOMPARE(int(wrapper.GetPayloadLength()), 8);
    QCOMPARE(Walk(wrapper), QList<QByteArray>{"TAG2"});
}

void tst_PacketLayerWrapper::empty()
{
    CPacketLayerWrapper wrapper;
    QVERIFY(!wrapper.AddPacket("TAG1", 4));
    QCOMPARE(Walk(wrapper), NO_RECORDS);
    QVERIFY(!wrapper.GetPacket());
    QCOMPARE(int(wrapper.GetPacketSize()), 0);
    QCOMPARE(wrapper.GetGroup(), QString());
    QCOMPARE(int(wrapper.GetModuleID()), 0);
    QCOMPARE(wrapper.GetTargetID(), 0u);

    CPacketLayerWrapper full("ABCD", 1, 1);
    full.SetPacket(nullptr);
    QVERIFY(!full.GetPacket());
}

void tst_PacketLayerWrapper::largestPacket()
{
    const QByteArray data(65535, 'x');
    CPacketLayerWrapper wrapper("ABCD", 7, 0x01020304);
    for (const int length : {32755, 32767, 65533, 65534, 65535})
        QVERIFY(!wrapper.AddPacket(data.constData(), static_cast<unsigned short>(length)));
    QCOMPARE(int(wrapper.GetPacketSize()), HEADER_SIZE);

    QVERIFY(wrapper.AddPacket(data.constData(), 32754));
    QCOMPARE(int(wrapper.GetPacketSize()), 32767);
    QVERIFY(!wrapper.AddPacket("", 0));
    QCOMPARE(GetBytes(wrapper), MakePacket({data.left(32754)}));

    CPacketLayerWrapper read = ReadExactly(GetBytes(wrapper));
    QCOMPARE(Walk(read), QList<QByteArray>{data.left(32754)});
}

void tst_PacketLayerWrapper::refusedSize_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {0, 1, HEADER_SIZE - 1, 32768, 65535})
        QTest::addRow("%d", size) << size;
}

void tst_PacketLayerWrapper::refusedSize()
{
    QFETCH(int, size);
    QByteArray packet = MakePacket({});
    SetNumber(packet, ucPacketSizePos, size);
    CPacketLayerWrapper wrapper = ReadExactly(packet);
    QVERIFY(!wrapper.GetPacket());
    QCOMPARE(int(wrapper.GetPacketSize()), 0);
    QCOMPARE(Walk(wrapper), NO_RECORDS);
}

void tst_PacketLayerWrapper::damagedRecords_data()
{
    walk_data();
}

void tst_PacketLayerWrapper::damagedRecords()
{
    QFETCH(QList<QByteArray>, records);
    const QByteArray packet = MakePacket(records);

    for (int size = HEADER_SIZE; size < packet.size(); ++size) {
        QByteArray cut = packet.left(size);
        SetNumber(cut, ucPacketSizePos, size);
        CPacketLayerWrapper wrapper = ReadExactly(cut);
        QCOMPARE(Walk(wrapper), GetWholeRecords(cut));
    }

    int offset = HEADER_SIZE;
    for (const QByteArray &record : qAsConst(records)) {
        for (int length = 0; length <= 65535; ++length) {
            QByteArray damaged = packet;
            SetNumber(damaged, offset, length);
            CPacketLayerWrapper wrapper = ReadExactly(damaged);
            QCOMPARE(Walk(wrapper), GetWholeRecords(damaged));
        }
        offset += 2 + record.size();
    }
}

void tst_PacketLayerWrapper::randomPackets()
{
    std::mt19937 random(20240501);
    int delivered = 0;
    for (int i = 0; i < 20000; ++i) {
        QByteArray packet(HEADER_SIZE + int(random() % 120), '\0');
        for (char &byte : packet)
            byte = static_cast<char>(random() % 256);
        // A chain of lengths, of which one in eight is any number.
        for (int offset = HEADER_SIZE; offset + 2 <= packet.size();) {
            const int length = static_cast<int>(random() % (random() % 8 ? 20 : 65536));
            SetNumber(packet, offset, length);
            offset += std::max(length, 2);
        }
        SetNumber(packet, ucPacketSizePos, packet.size());
        CPacketLayerWrapper wrapper = ReadExactly(packet);
        const QList<QByteArray> payloads = Walk(wrapper);
        QCOMPARE(payloads, GetWholeRecords(packet));
        delivered += payloads.size();
    }
    QVERIFY2(delivered > 20000, qPrintable(QString::number(delivered))); // else these walks would show little
}

void tst_PacketLayerWrapper::copies()
{
    CPacketLayerWrapper original("ABCD", 1, 2);
    QVERIFY(original.AddPacket("TAG1", 4));
    const QByteArray packet = GetBytes(original);

    CPacketLayerWrapper copy(original);
    CPacketLayerWrapper assigned("WXYZ", 3, 4);
    assigned = copy;
    QVERIFY(original.AddPacket("TAG2", 4));
    *original.GetPacket() = 'x';
    QCOMPARE(GetBytes(copy), packet);
    QCOMPARE(GetBytes(assigned), packet);
    QCOMPARE(assigned.GetPayloadTag(), QStringLiteral("TAG1")); // the cursor is copied, too

    CPacketLayerWrapper &same = assigned;
    assigned = same;
    QCOMPARE(GetBytes(assigned), packet);

    CPacketLayerWrapper moved(std::move(copy));
    QCOMPARE(GetBytes(moved), packet);
    QVERIFY(!copy.GetPacket() && !copy.AddPacket("TAG1", 4)); // empty, but still usable
    assigned = std::move(moved);
    QCOMPARE(GetBytes(assigned), packet);
    copy.SetPacket(packet.constData());
    QCOMPARE(Walk(copy), QList<QByteArray>{"TAG1"});
}

void tst_PacketLayerWrapper::ownBytes()
{
    CPacketLayerWrapper wrapper("ABCD", 0, 0);
    QVERIFY(wrapper.AddPacket("TAG1abcdefgh", 12));
    QVERIFY(wrapper.AddPacket(wrapper.GetPayload(), wrapper.GetPayloadLength()));
    wrapper.SetPacket(wrapper.GetPacket());
    QCOMPARE(Walk(wrapper), (QList<QByteArray>{"TAG1abcdefgh", "TAG1abcdefgh"}));

    // A packet within a packet.
    const QByteArray inner = MakePacket({"TAG2"});
    wrapper = CPacketLayerWrapper("ABCD", 0, 0);
    QVERIFY(wrapper.AddPacket(inner.constData(), static_cast<unsigned short>(inner.size())));
    wrapper.SetPacket(wrapper.GetPayload());
    QCOMPARE(GetBytes(wrapper), inner);
}

QTEST_GUILESS_MAIN(tst_PacketLayerWrapper)
#include "tst_packetlayerwrapper.moc"
