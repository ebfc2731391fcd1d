#pragma once

#include <Export.h>

#include <QMetaType>
#include <QString>
#include <QtEndian>

#include <algorithm>
#include <vector>

/// The offset of the 16-bit packet size within a packet. Code that splits a byte stream into packets reads it there.
inline constexpr unsigned short ucPacketSizePos = 9;

/// Builds a packet for the game server or the web server, or reads the records of a received one.
///
/// A packet is an 11-byte header (group, module id, target id, packet size) followed by records. A record is a 16-bit
/// length, which counts itself, and a payload whose first four bytes are its tag. All numbers are little-endian. A
/// packet has at most 32767 bytes, including the header.
///
/// To build a packet, construct it with group, module and target, then call AddPacket(). The cursor is at the first
/// record. To read a packet, construct it from the bytes or call SetPacket(), then read the payload as long as
/// GetNext() returns true.
///
/// Bytes from outside are never trusted. A packet size below 11 or above 32767 makes the object empty. A record whose
/// length is below 2 or exceeds the packet counts as the end of the packet: this record and everything after it are
/// not returned. While the cursor is at no record, there is no payload and its length is 0.
///
/// Copies are deep. A moved-from object is empty. Two threads must not use an object at the same time.
class PLUGININTERFACE_EXPORT CPacketLayerWrapper
{
public:
    static constexpr unsigned short HEADER_SIZE = 11;        ///< The size of the header in bytes.
    static constexpr unsigned short MAX_PACKET_SIZE = 32767; ///< The largest packet in bytes, header included.
    static constexpr unsigned short RECORD_LENGTH_SIZE = 2;  ///< The size of a record's length, in bytes.

    /// Creates an empty object, with no buffer and size 0.
    CPacketLayerWrapper() = default;
    /// Starts a packet. Uses the first four bytes of \a group; a shorter one is padded with zero bytes.
    CPacketLayerWrapper(const char *group, unsigned char moduleID, unsigned int targetID);
    /// Starts a packet. Uses the first four bytes of \a group in Latin-1; a shorter one is padded with zero bytes.
    CPacketLayerWrapper(const QString &group, unsigned char moduleID, unsigned int targetID);
    /// Creates an object that reads a copy of \a packet, see SetPacket().
    explicit CPacketLayerWrapper(const char *packet);

    /// Replaces the packet with a copy of \a packet and sets the cursor before its first record. The caller's buffer
    /// holds at least the 11 bytes of the header and is as long as its size field says. If \a packet is null or has
    /// an invalid size, the object becomes empty.
    void SetPacket(const char *packet);

    /// Appends a record with a payload of \a length bytes. Returns false and changes nothing if the object is empty,
    /// if the packet would exceed 32767 bytes, or if \a data is null although \a length is not 0. The cursor doesn't
    /// move. If the packet was read and contains an invalid record, GetNext() doesn't reach the new one.
    bool AddPacket(const char *data, unsigned short length);

    /// Moves the cursor to the next record. Returns whether there is one.
    bool GetNext();

    /// Returns the bytes of the packet, or null if the object is empty. The object owns them; they are valid until it
    /// is changed.
    char *GetPacket();
    /// Returns the packet size from the header, or 0 if the object is empty.
    unsigned short GetPacketSize() const;
    /// Returns the letters of the group up to the first zero byte, or an empty string if the object is empty.
    QString GetGroup() const;
    /// Returns the module id, or 0 if the object is empty.
    unsigned char GetModuleID() const;
    /// Returns the target id, or 0 if the object is empty.
    unsigned int GetTargetID() const;

    /// Returns the payload of the current record, including the tag, or null if there is none. Valid until the object
    /// is changed.
    char *GetPayload();
    /// Returns the length of the current payload in bytes, or 0 if there is none.
    unsigned short GetPayloadLength() const;
    /// Returns the tag of the current payload: its first four bytes, or fewer if it is shorter, up to the first zero
    /// byte.
    QString GetPayloadTag() const;

private:
    int GetRecordLength() const;

    std::vector<char> m_buffer;    // exactly the bytes of the packet
    unsigned short m_usCursor = 0; // offset of the current record, or 0 before the first one
};

// The functions that read a packet are inline because calls would take several times as long.

// Returns the length of the whole record at the cursor, or 0 if there is none. Nothing of a record is read before
// this check.
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
