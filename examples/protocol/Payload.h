#pragma once

#include <plugin/GlobalDefines.h>

#include <QByteArray>
#include <QString>
#include <QVector>
#include <QtEndian>

#include <tuple>
#include <type_traits>
#include <utility>

/// Encodes and decodes records. A record is a structure with a TAG, and with Fields(), which lists its members for
/// both directions. Its payload is the tag and the fields: numbers are little-endian, a text is a 16-bit count of
/// bytes and UTF-8, an enumeration is one letter or, for a game, four; an unknown letter of the library's
/// enumerations decodes to what Globals::GetTableType() and the like return for it. A vector is one or more records
/// up to the payload's end.
namespace Payload {

/// A text field with its limits in UTF-16 code units. Encoding cuts a longer text; a payload with a longer or shorter
/// one doesn't decode.
struct SText
{
    QString &strText;
    int iMost;
    int iLeast = 0;
};

/// Returns the fields as Fields() has to return them.
template <typename... TFields>
std::tuple<TFields...> List(TFields &&...fields)
{
    return {std::forward<TFields>(fields)...};
}

class CWriter
{
public:
    QByteArray m_payload;

    template <typename Record>
    void Add(Record &record)
    {
        std::apply([&](const auto &...field) { (Write(field), ...); }, record.Fields());
    }

private:
    void Write(const SText &field);
    void Write(GlobalDefines::GameType game);
    template <typename Record>
    void Write(const QVector<Record> &records)
    {
        for (Record record : records)
            Add(record);
    }
    template <typename Number>
    void Write(Number value)
    {
        if constexpr (std::is_enum_v<Number>) {
            m_payload += static_cast<char>(value);
        } else {
            char bytes[sizeof value];
            qToLittleEndian(value, bytes);
            m_payload.append(bytes, sizeof bytes);
        }
    }
};

/// Reads the bytes of a payload; nothing else does. A read past the end returns zero or nothing, and so does each
/// read after it or after an invalid text; IsComplete() tells at the end whether all reads succeeded.
class CReader
{
public:
    CReader(const QByteArray &payload, const char *tag);

    bool IsComplete() const { return m_bGood && m_iPosition == m_payload.size(); }

    template <typename Record>
    void Take(Record &record)
    {
        std::apply([&](auto &&...field) { (Read(field), ...); }, record.Fields());
    }

private:
    QByteArray Bytes(int length);
    char Letter() { return Bytes(1).isEmpty() ? '\0' : m_payload.at(m_iPosition - 1); }
    void Read(SText &field);
    void Read(GlobalDefines::TableType &type) { type = Globals::GetTableType(Letter()); }
    void Read(GlobalDefines::LimitType &limit) { limit = Globals::GetLimitType(Letter()); }
    void Read(GlobalDefines::MoneyType &money) { money = Globals::GetMoneyType(Letter()); }
    void Read(GlobalDefines::GameType &game) { game = Globals::GetGameType(QString::fromLatin1(Bytes(4))); }
    template <typename Record>
    void Read(QVector<Record> &records)
    {
        do {
            records.append(Record());
            Take(records.last());
        } while (m_bGood && m_iPosition < m_payload.size());
    }
    template <typename Number>
    void Read(Number &value)
    {
        if constexpr (std::is_enum_v<Number>) {
            value = static_cast<Number>(Letter());
        } else {
            const QByteArray bytes = Bytes(sizeof value);
            value = m_bGood ? qFromLittleEndian<Number>(bytes.constData()) : Number();
        }
    }

    const QByteArray m_payload;
    QByteArray::size_type m_iPosition = 0;
    bool m_bGood = true;
};

/// Encodes a record with \a tag instead of its own, for kinds of records with the same fields.
template <typename Record>
QByteArray Encode(Record record, const char *tag = Record::TAG)
{
    CWriter writer{tag};
    writer.Add(record);
    return writer.m_payload;
}

/// Decodes a payload. Returns false, and leaves \a record unchanged, unless the payload has the tag and the fields
/// fill it exactly.
template <typename Record>
bool Decode(const QByteArray &payload, Record &record, const char *tag = Record::TAG)
{
    CReader reader(payload, tag);
    Record read{};
    reader.Take(read);
    if (reader.IsComplete())
        record = read;
    return reader.IsComplete();
}

/// Frames the payloads in as few packets of the group as hold them, and returns the packets one after the other.
QByteArray ToPackets(const char *group, const QVector<QByteArray> &payloads);

} // namespace Payload
