#include "LobbyProtocol.h"

#include <plugin/PacketLayerWrapper.h>

#include <QtEndian>

namespace {

constexpr int TAG_SIZE = 4;
constexpr int GAME_CODE_SIZE = 4;
constexpr int COUNTS_IN_A_RECORD = 1000; // 6000 bytes

template <typename Number>
void Append(QByteArray &bytes, Number value)
{
    char number[sizeof value];
    qToLittleEndian(value, number);
    bytes.append(number, sizeof number);
}

/// The one place where bytes of a payload are read. A read past the end gives zero or nothing, and so does each one
/// after it; IsComplete() tells at the end whether all of them were good.
class CPayloadReader
{
public:
    CPayloadReader(const QByteArray &payload, const char *tag)
        : m_payload(payload)
    {
        m_bGood = TakeBytes(TAG_SIZE) == tag;
    }

    bool IsAtEnd() const { return m_iPosition == m_payload.size(); }
    bool IsGood() const { return m_bGood; }
    bool IsComplete() const { return m_bGood && IsAtEnd(); }

    QByteArray TakeBytes(int length)
    {
        m_bGood = m_bGood && length <= m_payload.size() - m_iPosition;
        if (!m_bGood)
            return QByteArray();
        m_iPosition += length;
        return m_payload.mid(m_iPosition - length, length);
    }

    template <typename Number>
    Number TakeNumber()
    {
        const QByteArray bytes = TakeBytes(sizeof(Number));
        return m_bGood ? qFromLittleEndian<Number>(bytes.constData()) : Number(0);
    }

    char TakeLetter() { return static_cast<char>(TakeNumber<quint8>()); }
    QString TakeText() { return QString::fromUtf8(TakeBytes(TakeNumber<quint16>())); }

private:
    const QByteArray m_payload;
    int m_iPosition = 0;
    bool m_bGood = true;
};

bool Add(CPacketLayerWrapper &packet, const QByteArray &payload)
{
    return packet.AddPacket(payload.constData(), static_cast<unsigned short>(payload.size()));
}

} // namespace

namespace LobbyProtocol {

QByteArray EncodeGetList()
{
    return QByteArray(GET_LIST);
}

QByteArray EncodeTable(const STable &table)
{
    const QByteArray name = table.strName.left(MAX_NAME_LENGTH).toUtf8();
    QByteArray game(GAME_CODE_SIZE, '\0');
    Globals::GetGameType(table.eGame, game.data());

    QByteArray payload(TABLE);
    Append(payload, table.uiID);
    Append(payload, static_cast<quint16>(name.size()));
    payload += name;
    payload += static_cast<char>(table.eType);
    payload += game;
    payload += static_cast<char>(table.eLimit);
    payload += static_cast<char>(table.eMoney);
    Append(payload, table.mvLow);
    Append(payload, table.mvHigh);
    Append(payload, table.usPlaces);
    Append(payload, table.usPlayers);
    Append(payload, table.uiStart);
    return payload;
}

QByteArray EncodeListEnd(quint32 count)
{
    QByteArray payload(LIST_END);
    Append(payload, count);
    return payload;
}

QVector<QByteArray> EncodePlayerCounts(const QVector<SPlayerCount> &counts)
{
    QVector<QByteArray> payloads;
    for (int i = 0; i < counts.size(); ++i) {
        if (i % COUNTS_IN_A_RECORD == 0)
            payloads.append(QByteArray(PLAYER_COUNTS));
        Append(payloads.last(), counts.at(i).uiTableID);
        Append(payloads.last(), counts.at(i).usPlayers);
    }
    return payloads;
}

bool DecodeTable(const QByteArray &payload, STable &table)
{
    CPayloadReader reader(payload, TABLE);
    STable read;
    read.uiID = reader.TakeNumber<quint32>();
    read.strName = reader.TakeText();
    read.eType = Globals::GetTableType(reader.TakeLetter());
    read.eGame = Globals::GetGameType(QString::fromLatin1(reader.TakeBytes(GAME_CODE_SIZE)));
    read.eLimit = Globals::GetLimitType(reader.TakeLetter());
    read.eMoney = Globals::GetMoneyType(reader.TakeLetter());
    read.mvLow = reader.TakeNumber<quint32>();
    read.mvHigh = reader.TakeNumber<quint32>();
    read.usPlaces = reader.TakeNumber<quint16>();
    read.usPlayers = reader.TakeNumber<quint16>();
    read.uiStart = reader.TakeNumber<quint32>();
    if (!reader.IsComplete())
        return false;
    table = read;
    return true;
}

bool DecodeListEnd(const QByteArray &payload, quint32 &count)
{
    CPayloadReader reader(payload, LIST_END);
    const auto read = reader.TakeNumber<quint32>();
    if (!reader.IsComplete())
        return false;
    count = read;
    return true;
}

bool DecodePlayerCounts(const QByteArray &payload, QVector<SPlayerCount> &counts)
{
    CPayloadReader reader(payload, PLAYER_COUNTS);
    QVector<SPlayerCount> read;
    do {
        SPlayerCount count;
        count.uiTableID = reader.TakeNumber<quint32>();
        count.usPlayers = reader.TakeNumber<quint16>();
        read.append(count);
    } while (reader.IsGood() && !reader.IsAtEnd());
    if (!reader.IsGood())
        return false;
    counts = read;
    return true;
}

QByteArray ToPackets(const QVector<QByteArray> &payloads)
{
    QByteArray bytes;
    CPacketLayerWrapper packet(GROUP, 0, 0);
    for (const QByteArray &payload : payloads) {
        if (Add(packet, payload))
            continue;
        bytes.append(packet.GetPacket(), packet.GetPacketSize());
        packet = CPacketLayerWrapper(GROUP, 0, 0);
        Add(packet, payload);
    }
    return bytes.append(packet.GetPacket(), packet.GetPacketSize());
}

} // namespace LobbyProtocol
