#include "EventRouter.h"

#include <algorithm>

namespace {

QByteArray Key(const CEvent &event)
{
    return QByteArray(event.tag1, sizeof event.tag1) + QByteArray(event.tag2, sizeof event.tag2);
}

} // namespace

void CEventRouter::Register(CPluginInterface *plugin, const QString &tag1, const QString &tag2)
{
    TReceivers &receivers = m_receivers[Key(CEvent::Create(tag1, tag2))];
    if (!receivers.contains(plugin))
        receivers.append(plugin);
}

void CEventRouter::Unregister(CPluginInterface *plugin)
{
    for (TReceivers &receivers : m_receivers)
        receivers.removeAll(plugin);
}

void CEventRouter::Deliver(const CEvent &event) const
{
    TReceivers receivers = m_receivers.value(Key(event));
    const TReceivers wildcards = m_receivers.value(Key(event).replace(4, 4, QByteArray(4, '\0')));
    std::copy_if(wildcards.begin(), wildcards.end(), std::back_inserter(receivers),
                 [&receivers](const auto &plugin) { return !receivers.contains(plugin); });
    for (const QPointer<CPluginInterface> &plugin : qAsConst(receivers)) {
        if (plugin)
            plugin->emit_ReceiveEvent(event);
    }
}
