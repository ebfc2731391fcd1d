#pragma once

#include <files/Console.h>
#include <plugin/PluginInterface.h>

#include <QMap>
#include <QString>

/// Addresses of what host and plugins have to share, by name, as the including module sees them. A new singleton is
/// one more row.
inline QMap<QString, quint64> GetSharedAddresses()
{
    const auto address = [](const void *object) { return quint64(quintptr(object)); };
    return {
        {QStringLiteral("CConsole"), address(CConsole::GetInstance())},
        {QStringLiteral("meta-object of CPluginInterface"), address(&CPluginInterface::staticMetaObject)},
    };
}
