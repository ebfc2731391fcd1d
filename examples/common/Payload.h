#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>
#include <QtEndian>

/// Builds a payload, which is its tag and its fields: numbers are little-endian, a letter is one byte, a text is a
/// 16-bit count of bytes and UTF-8.
class CPayloadWriter
{
public:
    explicit CPayloadWriter(const char *tag)
        : m_payload(tag)
    {
    }

    const QByteArray &GetPayload() const { return m_payload; }

    // What only a reader needs has no name here.
    void Bytes(const QByteArray &bytes, int) { m_payload += bytes; }
    template <typename Type>
    void Number(Type value)
    {
        char bytes[sizeof value];
        qToLittleEndian(value, bytes);
        m_payload.append(bytes, sizeof bytes);
    }
    template <typename Enum>
    void Letter(Enum value, Enum (*)(char))
    {
        m_payload += static_cast<char>(value);
    }
    /// Cuts the text to \a most UTF-16 code units.
    void Text(const QString &text, int most);
    template <typename Record>
    void List(QVector<Record> &records)
    {
        for (Record &record : records)
            record.Fields(*this);
    }
    void Require(bool) {}

private:
    QByteArray m_payload;
};

/// The one place where bytes of a payload are read, with the same operations as the writer. A read past the end gives
/// zero or nothing, and so does each one after it and after a text of more than \a most units; IsComplete() tells at
/// the end whether all of them were good.
class CPayloadReader
{
public:
    CPayloadReader(const QByteArray &payload, const char *tag);

    bool IsAtEnd() const { return m_iPosition == m_payload.size(); }
    bool IsComplete() const { return m_bGood && IsAtEnd(); }

    void Bytes(QByteArray &bytes, int length);
    template <typename Type>
    void Number(Type &value)
    {
        QByteArray bytes;
        Bytes(bytes, sizeof value);
        value = m_bGood ? qFromLittleEndian<Type>(bytes.constData()) : Type(0);
    }
    template <typename Enum>
    void Letter(Enum &value, Enum (*decode)(char))
    {
        quint8 letter = 0;
        Number(letter);
        value = decode(static_cast<char>(letter));
    }
    void Text(QString &text, int most);
    /// One or more records, to the end.
    template <typename Record>
    void List(QVector<Record> &records)
    {
        do {
            records.append(Record());
            records.last().Fields(*this);
        } while (m_bGood && !IsAtEnd());
    }
    /// For values that a field may not have.
    void Require(bool condition) { m_bGood = m_bGood && condition; }

private:
    const QByteArray m_payload;
    int m_iPosition = 0;
    bool m_bGood = true;
};

/// A record is a structure with its GROUP and TAG, and its fields as one list that serves both ways: a template
/// `Fields` that takes a writer or reader.
namespace Payload {

/// With \a tag where several kinds of record have the same fields.
template <typename Record>
QByteArray Encode(Record record, const char *tag = Record::TAG)
{
    CPayloadWriter writer(tag);
    record.Fields(writer);
    return writer.GetPayload();
}

/// False, with \a record unchanged, unless the payload has that tag and the fields fill it exactly.
template <typename Record>
bool Decode(const QByteArray &payload, Record &record, const char *tag = Record::TAG)
{
    CPayloadReader reader(payload, tag);
    Record read{};
    read.Fields(reader);
    if (reader.IsComplete())
        record = read;
    return reader.IsComplete();
}

/// The payloads in as few packets of the group as hold them, back to back as they go over the wire.
QByteArray ToPackets(const char *group, const QVector<QByteArray> &payloads);

/// A packet with this one record.
template <typename Record>
QByteArray ToPacket(const Record &record)
{
    return ToPackets(Record::GROUP, {Encode(record)});
}

} // namespace Payload
