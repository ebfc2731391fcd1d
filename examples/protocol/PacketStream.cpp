#include "PacketStream.h"

#include <QtEndian>

namespace {

bool IsFilledByRecords(CPacketLayerWrapper packet)
{
    int bytes = CPacketLayerWrapper::HEADER_SIZE;
    while (packet.GetNext())
        bytes += CPacketLayerWrapper::RECORD_LENGTH_SIZE + packet.GetPayloadLength();
    return bytes == packet.GetPacketSize();
}

} // namespace

void CPacketStream::Append(const QByteArray &bytes)
{
    if (m_bBroken)
        return;
    // The packets that were taken are dropped here, once for each arrival and not for each of its many packets.
    m_buffer.remove(0, m_iConsumed);
    m_iConsumed = 0;
    m_buffer.append(bytes);
}

bool CPacketStream::TakePacket(CPacketLayerWrapper &packet)
{
    const auto available = m_buffer.size() - m_iConsumed;
    if (m_bBroken || available < CPacketLayerWrapper::HEADER_SIZE)
        return false;

    const char *bytes = m_buffer.constData() + m_iConsumed;
    const auto size = qFromLittleEndian<quint16>(bytes + ucPacketSizePos);
    if (size < CPacketLayerWrapper::HEADER_SIZE || size > CPacketLayerWrapper::MAX_PACKET_SIZE)
        return Break();
    if (available < size)
        return false;

    CPacketLayerWrapper candidate(bytes);
    if (!IsFilledByRecords(candidate))
        return Break();
    packet = std::move(candidate);
    m_iConsumed += size;
    return true;
}

bool CPacketStream::Break()
{
    Reset();
    m_bBroken = true;
    return false;
}

void CPacketStream::Reset()
{
    m_buffer.clear();
    m_iConsumed = 0;
    m_bBroken = false;
}
