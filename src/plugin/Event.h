#pragma once

#include <Export.h>

#include <QByteArray>
#include <QMetaType>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <cstring>

/// An event on the bus between a plugin and the host. It is passed by value; copies share the payload.
///
/// The fields correspond to those of a server packet: `tag1` is the packet's group, `tag2` the tag of a record, and
/// `data` the record's payload. A tag is four bytes in reading order, without a terminator. Tags are compared byte by
/// byte.
struct PLUGININTERFACE_EXPORT CEvent
{
    char tag1[4] = {};          ///< The address: "P2ME" for the host, "M2PE" for plugins, or another group.
    char tag2[4] = {};          ///< The event code within `tag1`.
    unsigned char moduleID = 0; ///< The module number; 0 in events that the library creates.
    unsigned int targetID = 0;  ///< The target number; 0 in events that the library creates.
    QByteArray data;            ///< The payload, in the layout that the event code requires.
    QPointer<QWidget> widget;   ///< Not owned; null once the widget is destroyed.

    /// Returns an event with both tags set and all other fields empty. A tag is the first four bytes of the text in
    /// Latin-1. A shorter text is padded with zero bytes and equals no tag that a receiver can ask for.
    static CEvent Create(const QString &tag1, const QString &tag2);

    /// Returns whether the event has the tags that are given as literals of four letters.
    /// @{
    bool HasTag1(const char (&first)[5]) const { return std::memcmp(tag1, first, sizeof tag1) == 0; }
    bool HasTags(const char (&first)[5], const char (&second)[5]) const
    {
        return HasTag1(first) && std::memcmp(tag2, second, sizeof tag2) == 0;
    }
    /// @}
};

Q_DECLARE_METATYPE(CEvent)
