#include "Payload.h"

#include <plugin/PacketLayerWrapper.h>

namespace Payload {

namespace {

constexpr int TAG_SIZE = 4;

bool AddRecord(CPacketLayerWrapper &packet, const QByteArray &payload)
{
    return packet.AddPacket(payload.constData(), static_cast<unsigned short>(payload.size()));
}

} // namespace

void CWriter::Write(const SText &field)
{
    const QByteArray bytes = field.strText.left(field.iMost).toUtf8();
    Write(static_cast<quint16>(bytes.size()));
    m_payload += bytes;
}

void CWriter::Write(GlobalDefines::GameType game)
{
    char code[4] = {};
    Globals::GetGameType(game, code);
    m_payload.append(code, sizeof code);
}

CReader::CReader(const QByteArray &payload, const char *tag)
    : m_payload(payload)
{
    m_bGood = Bytes(TAG_SIZE) == tag;
}

QByteArray CReader::Bytes(int length)
{
    m_bGood = m_bGood && length <= m_payload.size() - m_iPosition;
    const QByteArray bytes = m_bGood ? m_payload.mid(m_iPosition, length) : QByteArray();
    m_iPosition += bytes.size();
    return bytes;
}

void CReader::Read(SText &field)
{
    quint16 length = 0;
    Read(length);
    field.strText = QString::fromUtf8(Bytes(length));
    m_bGood = m_bGood && field.strText.size() >= field.iLeast && field.strText.size() <= field.iMost;
}

QByteArray ToPackets(const char *group, const QVector<QByteArray> &payloads)
{
    QByteArray bytes;
    CPacketLayerWrapper packet(group, 0, 0);
    for (const QByteArray &payload : payloads) {
        if (AddRecord(packet, payload))
            continue;
        bytes.append(packet.GetPacket(), packet.GetPacketSize());
        packet = CPacketLayerWrapper(group, 0, 0);
        AddRecord(packet, payload);
    }
    return bytes.append(packet.GetPacket(), packet.GetPacketSize());
}

} // namespace Payload
