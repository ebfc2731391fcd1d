#pragma once

#include <QByteArray>
#include <QtEndian>

/// Functions for settings that hold a structure as the Base64 text of its bytes. Numbers have 32 bits and are
/// little-endian. A bool is one byte, followed by three bytes without meaning.
namespace PackedSetting {

inline void Append(QByteArray &bytes, bool value)
{
    bytes.append(value ? 1 : 0);
    bytes.append(3, 0);
}

template <typename Number>
void Append(QByteArray &bytes, Number value)
{
    static_assert(sizeof value == 4);
    const Number stored = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char *>(&stored), sizeof stored);
}

inline void Take(const char *&bytes, bool &value)
{
    value = *bytes != 0;
    bytes += 4;
}

template <typename Number>
void Take(const char *&bytes, Number &value)
{
    static_assert(sizeof value == 4);
    value = qFromLittleEndian<Number>(bytes);
    bytes += sizeof value;
}

template <typename... Fields>
QByteArray Pack(const Fields &...fields)
{
    QByteArray bytes;
    (Append(bytes, fields), ...);
    return bytes.toBase64();
}

/// Returns false and changes nothing unless the text holds exactly as many bytes as the fields need.
template <typename... Fields>
bool Unpack(const QByteArray &text, Fields &...fields)
{
    const QByteArray bytes = QByteArray::fromBase64(text);
    if (bytes.size() != int(4 * sizeof...(fields)))
        return false;
    const char *next = bytes.constData();
    (Take(next, fields), ...);
    return true;
}

} // namespace PackedSetting
