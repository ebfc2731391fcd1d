#pragma once

#include <plugin/PacketLayerWrapper.h>

#include <QByteArray>

/// Cuts a byte stream back into packets by their size field, however TCP has cut and joined them on the way.
///
/// The stream has no marks to find the next packet by. Once a size field holds what no packet can have, or the
/// records of a packet don't fill it to the byte, all that follows is meaningless: the stream is broken, and its link
/// has to be closed.
class CPacketStream
{
public:
    void Append(const QByteArray &bytes);
    /// Takes the next whole packet off the front. False if it isn't complete yet or the stream is broken.
    bool TakePacket(CPacketLayerWrapper &packet);
    bool IsBroken() const { return m_bBroken; }
    /// Whether the front of a packet waits for its rest.
    bool HasPartialPacket() const { return m_iConsumed < m_buffer.size(); }
    /// Starts anew, for a new link.
    void Reset();

private:
    bool Break();

    QByteArray m_buffer;
    int m_iConsumed = 0; // bytes at the front of the buffer that were taken already
    bool m_bBroken = false;
};
