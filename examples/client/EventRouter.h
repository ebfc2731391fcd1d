#pragma once

#include <plugin/PluginInterface.h>

#include <QHash>
#include <QPointer>
#include <QVector>

/// Knows which plugin wants which events, and delivers them.
class CEventRouter
{
public:
    /// An empty \a tag2 stands for every code of \a tag1. The first four characters of a tag count.
    void Register(CPluginInterface *plugin, const QString &tag1, const QString &tag2);
    void Unregister(CPluginInterface *plugin);
    /// Delivers to each plugin that registered for the event, once, in the order of registration; those that asked
    /// for just this code come first. Plugins may come and go in the middle of it.
    void Deliver(const CEvent &event) const;

private:
    using TReceivers = QVector<QPointer<CPluginInterface>>;

    QHash<QByteArray, TReceivers> m_receivers; // by both tags, eight bytes; four zero bytes for every code
};
