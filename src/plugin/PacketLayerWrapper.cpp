#include "PacketLayerWrapper.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

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
    // The bytes may be this object's own, so the old buffer lives until they are copied.
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

    // The payload may lie in this object's own buffer, which growing would pull away from under it.
    const std::vector<char> payload(data, data + length);
    const size_t oldSize = m_buffer.size();
    m_buffer.resize(oldSize + recordLength);
    qToLittleEndian(static_cast<quint16>(recordLength), m_buffer.data() + oldSize);
    std::copy(payload.begin(), payload.end(),
              m_buffer.begin() + static_cast<std::ptrdiff_t>(oldSize + RECORD_LENGTH_SIZE));
    qToLittleEndian(static_cast<quint16>(m_buffer.size()), m_buffer.data() + ucPacketSizePos);
    return true;
}

bool CPacketLayerWrapper::GetNext()
{
    if (m_usCursor == 0)
        m_usCursor = HEADER_SIZE;
    else if (IsOnRecord())
        m_usCursor = static_cast<unsigned short>(m_usCursor + RECORD_LENGTH_SIZE + GetPayloadLength());

    if (IsOnRecord())
        return true;
    m_usCursor = std::max(m_usCursor, static_cast<unsigned short>(m_buffer.size()));
    return false;
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

char *CPacketLayerWrapper::GetPayload()
{
    return IsOnRecord() ? m_buffer.data() + m_usCursor + RECORD_LENGTH_SIZE : nullptr;
}

unsigned short CPacketLayerWrapper::GetPayloadLength() const
{
    if (!IsOnRecord())
        return 0;
    const auto recordLength = qFromLittleEndian<quint16>(m_buffer.data() + m_usCursor);
    return static_cast<unsigned short>(recordLength - RECORD_LENGTH_SIZE);
}

QString CPacketLayerWrapper::GetPayloadTag() const
{
    if (!IsOnRecord())
        return QString();
    return TextUpToZero(m_buffer.data() + m_usCursor + RECORD_LENGTH_SIZE,
                        std::min<size_t>(GetPayloadLength(), TAG_SIZE));
}

// Whether a whole record lies at the cursor: nothing of the buffer is read before its length was checked here.
bool CPacketLayerWrapper::IsOnRecord() const
{
    if (m_usCursor == 0 || m_usCursor >= m_buffer.size())
        return false;
    const size_t available = m_buffer.size() - m_usCursor;
    if (available < RECORD_LENGTH_SIZE)
        return false;
    const auto recordLength = qFromLittleEndian<quint16>(m_buffer.data() + m_usCursor);
    return recordLength >= RECORD_LENGTH_SIZE && recordLength <= available;
}
