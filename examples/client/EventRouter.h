#pragma once

#include <plugin/PluginInterface.h>

#include <QHash>
#include <QPointer>
#include <QVector>

/// Stores which plugin has registered for which events, and delivers events.
class CEventRouter
{
public:
    /// Registers \a plugin for an event. An empty \a tag2 stands for all events with \a tag1. Only the first four
    /// characters of a tag count.
    void Register(CPluginInterface *plugin, const QString &tag1, const QString &tag2);
    void Unregister(CPluginInterface *plugin);
    /// Delivers the event once to each plugin that has registered for it, in the order of registration; plugins that
    /// have registered for both tags come first. Plugins may be added and removed during the delivery.
    void Deliver(const CEvent &event) const;

private:
    using TReceivers = QVector<QPointer<CPluginInterface>>;

    QHash<QByteArray, TReceivers> m_receivers; // by both tags, eight bytes; zeros stand for any second tag
};
