#include "Payload.h"

#include <plugin/PacketLayerWrapper.h>

namespace {

constexpr int TAG_SIZE = 4;

bool Add(CPacketLayerWrapper &packet, const QByteArray &payload)
{
    return packet.AddPacket(payload.constData(), static_cast<unsigned short>(payload.size()));
}

} // namespace

void CPayloadWriter::Text(const QString &text, int most)
{
    const QByteArray bytes = text.left(most).toUtf8();
    Number(static_cast<quint16>(bytes.size()));
    m_payload += bytes;
}

CPayloadReader::CPayloadReader(const QByteArray &payload, const char *tag)
    : m_payload(payload)
{
    QByteArray read;
    Bytes(read, TAG_SIZE);
    m_bGood = m_bGood && read == tag;
}

void CPayloadReader::Bytes(QByteArray &bytes, int length)
{
    m_bGood = m_bGood && length <= m_payload.size() - m_iPosition;
    bytes = m_bGood ? m_payload.mid(m_iPosition, length) : QByteArray();
    m_iPosition += bytes.size();
}

void CPayloadReader::Text(QString &text, int most)
{
    quint16 length = 0;
    Number(length);
    QByteArray bytes;
    Bytes(bytes, length);
    text = QString::fromUtf8(bytes);
    m_bGood = m_bGood && text.size() <= most;
}

QByteArray Payload::ToPackets(const char *group, const QVector<QByteArray> &payloads)
{
    QByteArray bytes;
    CPacketLayerWrapper packet(group, 0, 0);
    for (const QByteArray &payload : payloads) {
        if (Add(packet, payload))
            continue;
        bytes.append(packet.GetPacket(), packet.GetPacketSize());
        packet = CPacketLayerWrapper(group, 0, 0);
        Add(packet, payload);
    }
    return bytes.append(packet.GetPacket(), packet.GetPacketSize());
}
