#pragma once

#include <Export.h>

#include <QMetaType>
#include <QString>
#include <QtEndian>

#include <algorithm>
#include <vector>

/// Offset of the 16-bit packet size within a packet; whoever reads packets off a byte stream needs these two bytes.
inline constexpr unsigned short ucPacketSizePos = 9;

/// One packet of the game server or the web server: builds it, or walks the records of one that arrived.
///
/// A packet is an 11-byte header (group, module id, target id, packet size) and a chain of records; a record is a
/// 16-bit length that counts itself, and a payload whose first four bytes are its tag. All numbers are little-endian.
/// A packet holds at most 32767 bytes, header included.
///
/// To build: construct with group, module and target, then AddPacket(). The cursor stands on the first record.
/// To read: construct from the bytes, or SetPacket(); then, as long as GetNext() answers true, ask for the payload.
///
/// Bytes from outside are never trusted. A packet size below 11 or above 32767 makes an empty object. A record whose
/// length is below 2 or runs past the packet ends the walk like the end of the packet: it and what lies behind it are
/// not delivered. While the cursor stands on no record there is no payload, and its length is 0.
///
/// Copies are deep; an object that was moved from is empty. Not safe for use by two threads at once.
class PLUGININTERFACE_EXPORT CPacketLayerWrapper
{
public:
    static constexpr unsigned short HEADER_SIZE = 11;        ///< Bytes before the first record.
    static constexpr unsigned short MAX_PACKET_SIZE = 32767; ///< Bytes, header included.
    static constexpr unsigned short RECORD_LENGTH_SIZE = 2;  ///< Bytes of a record's length, which counts itself.

    /// An empty object: no buffer, size 0.
    CPacketLayerWrapper() = default;
    /// Starts a packet. Of \a group four bytes are taken; a shorter one is filled up with zero bytes.
    CPacketLayerWrapper(const char *group, unsigned char moduleID, unsigned int targetID);
    /// The same with the Latin-1 form of \a group.
    CPacketLayerWrapper(const QString &group, unsigned char moduleID, unsigned int targetID);
    /// Reads a copy of \a packet, see SetPacket().
    explicit CPacketLayerWrapper(const char *packet);

    /// Replaces the packet by a copy of \a packet and stands before its first record. The caller's buffer holds at
    /// least the 11 header bytes and is as long as its size field says. Null, or a size that no packet can have,
    /// makes the object empty.
    void SetPacket(const char *packet);

    /// Appends one record with \a length payload bytes. False, with nothing changed, if the object is empty, the
    /// packet would pass 32767 bytes, or \a data is null although \a length is not 0. The cursor doesn't move.
    /// Behind a broken chain of records that was read, the walk doesn't reach the new one.
    bool AddPacket(const char *data, unsigned short length);

    /// Moves to the next record; true if there is one.
    bool GetNext();

    /// The packet's bytes, null if empty. Owned by the object and valid until it is changed.
    char *GetPacket();
    /// The packet size of the header, 0 if empty.
    unsigned short GetPacketSize() const;
    /// The group's letters up to the first zero byte, empty if the object is.
    QString GetGroup() const;
    /// 0 if the object is empty.
    unsigned char GetModuleID() const;
    /// 0 if the object is empty.
    unsigned int GetTargetID() const;

    /// Payload of the current record, tag included; null if there is none. Valid until the object is changed.
    char *GetPayload();
    /// Bytes of the current payload, 0 if there is none.
    unsigned short GetPayloadLength() const;
    /// The first four bytes of the current payload, or fewer where it is shorter, up to the first zero byte.
    QString GetPayloadTag() const;

private:
    int GetRecordLength() const;

    std::vector<char> m_buffer;    // always exactly the packet
    unsigned short m_usCursor = 0; // offset of the current record; 0 is before the first
};

// A walk's steps are inline, calls would take several times as long.

// The length of the whole record at the cursor, 0 if none lies there. Nothing of a record is read before this check.
inline int CPacketLayerWrapper::GetRecordLength() const
{
    const int available = static_cast<int>(m_buffer.size()) - m_usCursor;
    if (m_usCursor == 0 || available < RECORD_LENGTH_SIZE)
        return 0;
    const int length = qFromLittleEndian<quint16>(m_buffer.data() + m_usCursor);
    return length >= RECORD_LENGTH_SIZE && length <= available ? length : 0;
}

inline bool CPacketLayerWrapper::GetNext()
{
    m_usCursor = m_usCursor == 0 ? HEADER_SIZE : static_cast<unsigned short>(m_usCursor + GetRecordLength());
    if (GetRecordLength() > 0)
        return true;
    m_usCursor = std::max(m_usCursor, static_cast<unsigned short>(m_buffer.size()));
    return false;
}

inline char *CPacketLayerWrapper::GetPayload()
{
    return GetRecordLength() > 0 ? m_buffer.data() + m_usCursor + RECORD_LENGTH_SIZE : nullptr;
}

inline unsigned short CPacketLayerWrapper::GetPayloadLength() const
{
    return static_cast<unsigned short>(std::max(0, GetRecordLength() - RECORD_LENGTH_SIZE));
}

Q_DECLARE_METATYPE(CPacketLayerWrapper)
