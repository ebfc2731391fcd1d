// The stream of the game server, split anywhere, and the records of its packets.

#include "Fuzz.h"

#include <protocol/PacketStream.h>

namespace {

QByteArrayList TakeAll(CPacketStream &stream)
{
    QByteArrayList packets;
    CPacketLayerWrapper packet;
    while (stream.TakePacket(packet))
        packets.append(QByteArray(packet.GetPacket(), packet.GetPacketSize()));
    return packets;
}

// Builds the same packet from its records, if all of them can be read.
void Rebuild(const QByteArray &bytes)
{
    CPacketLayerWrapper packet(bytes.constData());
    CPacketLayerWrapper copy(bytes.left(4).constData(), packet.GetModuleID(), packet.GetTargetID());
    while (packet.GetNext()) {
        const QByteArray payload(packet.GetPayload(), packet.GetPayloadLength());
        Fuzz::Require(payload.startsWith(packet.GetPayloadTag().toLatin1()), "the tag is the payload's front");
        Fuzz::Require(copy.AddPacket(payload.constData(), packet.GetPayloadLength()), "a record fits into its copy");
    }
    Fuzz::Require(packet.GetPayload() == nullptr && packet.GetPayloadLength() == 0, "no payload behind the end");
    Fuzz::Require(copy.GetPacketSize() <= packet.GetPacketSize(), "the records fit into their packet");
    if (copy.GetPacketSize() == packet.GetPacketSize()) // letters of the group after a zero byte may differ
        Fuzz::Require(bytes.mid(4) == QByteArray(copy.GetPacket(), copy.GetPacketSize()).mid(4), "the same packet");
}

} // namespace

void FuzzOne(QByteArray bytes)
{
    const int piece = 1 + Fuzz::TakeByte(bytes);
    CPacketStream whole;
    whole.Append(bytes);
    const QByteArrayList packets = TakeAll(whole);
    CPacketStream cut;
    QByteArrayList cutPackets;
    for (int begin = 0; begin < bytes.size(); begin += piece) {
        cut.Append(bytes.mid(begin, piece));
        cutPackets += TakeAll(cut);
    }
    Fuzz::Require(packets == cutPackets && whole.IsBroken() == cut.IsBroken(), "cuts change nothing");
    for (const QByteArray &packet : packets)
        Rebuild(packet);

    // A packet whose records nobody has read yet, as a plugin gets it.
    const int size = qMin<int>(bytes.size(), CPacketLayerWrapper::MAX_PACKET_SIZE);
    if (size < CPacketLayerWrapper::HEADER_SIZE)
        return;
    bytes.truncate(size);
    bytes[ucPacketSizePos] = static_cast<char>(size & 0xff);
    bytes[ucPacketSizePos + 1] = static_cast<char>(size >> 8);
    Rebuild(bytes);
}
