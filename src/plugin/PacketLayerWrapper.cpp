#include "PacketLayerWrapper.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <functional>

namespace {

constexpr size_t GROUP_SIZE = 4;
constexpr size_t MODULE_POS = 4;
constexpr size_t TARGET_POS = 5;
constexpr size_t TAG_SIZE = 4;

QString TextUpToZero(const char *bytes, size_t length)
{
    return QString::fromLatin1(bytes, static_cast<int>(std::find(bytes, bytes + length, '\0') - bytes));
}

} // namespace

CPacketLayerWrapper::CPacketLayerWrapper(const char *group, unsigned char moduleID, unsigned int targetID)
    : m_buffer(HEADER_SIZE)
    , m_usCursor(HEADER_SIZE)
{
    char *header = m_buffer.data();
    if (group)
        std::memcpy(header, group, qstrnlen(group, GROUP_SIZE));
    header[MODULE_POS] = static_cast<char>(moduleID);
    qToLittleEndian<quint32>(targetID, header + TARGET_POS);
    qToLittleEndian<quint16>(HEADER_SIZE, header + ucPacketSizePos);
}

CPacketLayerWrapper::CPacketLayerWrapper(const QString &group, unsigned char moduleID, unsigned int targetID)
    : CPacketLayerWrapper(group.toLatin1().constData(), moduleID, targetID)
{
}

CPacketLayerWrapper::CPacketLayerWrapper(const char *packet)
{
    SetPacket(packet);
}

void CPacketLayerWrapper::SetPacket(const char *packet)
{
    // The bytes may belong to this object, so the old buffer is kept until they are copied.
    std::vector<char> bytes;
    if (packet) {
        const auto size = qFromLittleEndian<quint16>(packet + ucPacketSizePos);
        if (size >= HEADER_SIZE && size <= MAX_PACKET_SIZE)
            bytes.assign(packet, packet + size);
    }
    m_buffer = std::move(bytes);
    m_usCursor = 0;
}

bool CPacketLayerWrapper::AddPacket(const char *data, unsigned short length)
{
    if (m_buffer.empty() || (!data && length > 0))
        return false;
    const size_t recordLength = length + RECORD_LENGTH_SIZE;
    if (m_buffer.size() + recordLength > MAX_PACKET_SIZE)
        return false;

    const size_t oldSize = m_buffer.size();
    const char *buffer = m_buffer.data();
    if (std::less_equal<>()(buffer, data) && std::less<>()(data, buffer + oldSize)) {
        // Resizing the buffer would invalidate data, which points into it.
        const std::vector<char> payload(data, data + length);
        return AddPacket(payload.data(), length);
    }

    m_buffer.resize(oldSize + recordLength);
    char *record = m_buffer.data() + oldSize;
    qToLittleEndian(static_cast<quint16>(recordLength), record);
    std::copy_n(data, length, record + RECORD_LENGTH_SIZE);
    qToLittleEndian(static_cast<quint16>(m_buffer.size()), m_buffer.data() + ucPacketSizePos);
    return true;
}

char *CPacketLayerWrapper::GetPacket()
{
    return m_buffer.empty() ? nullptr : m_buffer.data();
}

unsigned short CPacketLayerWrapper::GetPacketSize() const
{
    return m_buffer.empty() ? 0 : qFromLittleEndian<quint16>(m_buffer.data() + ucPacketSizePos);
}

QString CPacketLayerWrapper::GetGroup() const
{
    return m_buffer.empty() ? QString() : TextUpToZero(m_buffer.data(), GROUP_SIZE);
}

unsigned char CPacketLayerWrapper::GetModuleID() const
{
    return m_buffer.empty() ? 0 : static_cast<unsigned char>(m_buffer[MODULE_POS]);
}

unsigned int CPacketLayerWrapper::GetTargetID() const
{
    return m_buffer.empty() ? 0 : qFromLittleEndian<quint32>(m_buffer.data() + TARGET_POS);
}

QString CPacketLayerWrapper::GetPayloadTag() const
{
    if (GetRecordLength() == 0)
        return QString();
    return TextUpToZero(m_buffer.data() + m_usCursor + RECORD_LENGTH_SIZE,
                        std::min<size_t>(GetPayloadLength(), TAG_SIZE));
}
