#pragma once

#include <Export.h>

#include <QByteArray>
#include <QMetaType>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <cstring>

/// The record of the bus between a plugin and the host. It travels by value; a copy shares the payload.
///
/// The fields mirror those of a server packet: `tag1` is the packet's group, `tag2` the tag of a record, `data` the
/// record's payload. A tag is four bytes in reading order, without a terminator, and compares byte by byte.
struct PLUGININTERFACE_EXPORT CEvent
{
    char tag1[4] = {};          ///< Address: "P2ME" plugin to host, "M2PE" host to plugin, or another group.
    char tag2[4] = {};          ///< Event code within `tag1`.
    unsigned char moduleID = 0; ///< Module number; 0 in events that the library composes.
    unsigned int targetID = 0;  ///< Target number; 0 in events that the library composes.
    QByteArray data;            ///< Payload, laid out as the event code says.
    QPointer<QWidget> widget;   ///< Not owned; null once the widget is gone.

    /// An event with both tags set and all else empty. A tag is the first four bytes of the text's Latin-1 form; a
    /// shorter one is filled up with zero bytes and matches nobody.
    static CEvent Create(const QString &tag1, const QString &tag2);

    /// Whether the event bears these tags, given as literals of four letters.
    /// @{
    bool HasTag1(const char (&first)[5]) const { return std::memcmp(tag1, first, sizeof tag1) == 0; }
    bool HasTags(const char (&first)[5], const char (&second)[5]) const
    {
        return HasTag1(first) && std::memcmp(tag2, second, sizeof tag2) == 0;
    }
    /// @}
};

Q_DECLARE_METATYPE(CEvent)
