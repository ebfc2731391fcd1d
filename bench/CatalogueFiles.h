#pragma once

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>
#include <QMap>
#include <QString>

// The files in which the peers of the catalogue keep their texts, as their own tools would write them.

namespace CatalogueFiles {

using TTexts = QMap<QByteArray, QString>; // by key; sorted by bytes, as gettext searches them

// Returns the hash of a key in QTranslator's files, that of the object format ELF.
inline quint32 HashKey(const QByteArray &key)
{
    quint32 hash = 0;
    for (const char letter : key) {
        hash = (hash << 4) + uchar(letter);
        hash = (hash ^ (hash & 0xf0000000) >> 24) & 0x0fffffff;
    }
    return qMax(hash, 1U);
}

// Returns a file for QTranslator, with all texts in one context: a table of hashes, and the texts with their keys.
inline QByteArray MakeTranslatorFile(const TTexts &texts, const QByteArray &context)
{
    enum ETag : quint8 {
        End = 1,
        Translation = 3,
        Source = 6,
        Context = 7,
        Comment = 8,
        Hashes = 0x42,
        Messages = 0x69
    };
    QByteArray messages;
    QDataStream messageStream(&messages, QIODevice::WriteOnly);
    QMultiMap<quint32, quint32> offsets; // by hash
    for (auto text = texts.begin(); text != texts.end(); ++text) {
        offsets.insert(HashKey(text.key()), quint32(messages.size()));
        messageStream << quint8(Translation) << *text << quint8(Comment) << QByteArray("") << quint8(Source)
                      << text.key() << quint8(Context) << context << quint8(End);
    }
    QByteArray hashes;
    QDataStream hashStream(&hashes, QIODevice::WriteOnly);
    for (auto offset = offsets.cbegin(); offset != offsets.cend(); ++offset)
        hashStream << offset.key() << *offset;
    QByteArray file = QByteArray::fromHex("3cb86418caef9c95cd211cbf60a1bddd");
    QDataStream(&file, QIODevice::Append) << quint8(Hashes) << hashes << quint8(Messages) << messages;
    return file;
}

// Returns a file for gettext. It lacks the table of hashes, which is optional: the C library remembers each text that
// it has found, so that only the first search for it differs.
inline QByteArray MakeGettextFile(const TTexts &texts)
{
    constexpr quint32 MAGIC = 0x950412de;
    constexpr quint32 VERSION = 0;
    constexpr quint32 HEADER = 7 * sizeof(quint32);
    const auto count = quint32(texts.size());
    const quint32 table = count * 2 * quint32(sizeof(quint32)); // a length and an offset for each string
    QByteArray strings;
    QByteArray tables;
    QDataStream stream(&tables, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    const auto add = [&](const QByteArray &string) {
        stream << quint32(string.size()) << HEADER + 2 * table + quint32(strings.size());
        strings.append(string).append('\0');
    };
    stream << MAGIC << VERSION << count << HEADER << HEADER + table << quint32(0) << HEADER + 2 * table;
    for (auto text = texts.begin(); text != texts.end(); ++text)
        add(text.key());
    for (const QString &text : texts)
        add(text.toUtf8());
    return tables + strings;
}

} // namespace CatalogueFiles
