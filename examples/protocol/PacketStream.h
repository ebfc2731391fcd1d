#pragma once

#include <plugin/PacketLayerWrapper.h>

#include <QByteArray>

/// Splits a byte stream into packets by their size field, however TCP has split and joined them.
///
/// The stream has no marks by which the next packet could be found. If a size field has an impossible value, or the
/// records of a packet don't fill it exactly, the rest of the stream is meaningless: the stream is broken, and its
/// connection has to be closed.
class CPacketStream
{
public:
    void Append(const QByteArray &bytes);
    /// Takes the next whole packet from the stream. Returns false if it isn't complete yet or the stream is broken.
    bool TakePacket(CPacketLayerWrapper &packet);
    bool IsBroken() const { return m_bBroken; }
    /// Returns whether the stream ends with part of a packet.
    bool HasPartialPacket() const { return m_iConsumed < m_buffer.size(); }
    /// Empties the stream for a new connection.
    void Reset();

private:
    bool Break();

    QByteArray m_buffer;
    QByteArray::size_type m_iConsumed = 0; // bytes of the buffer that have been taken
    bool m_bBroken = false;
};
