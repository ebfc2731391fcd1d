#pragma once

#include <QStringList>
#include <QVariant>
#include <QVector>

/// A key of the operator's configuration.
struct SConfigKey
{
    QString strKey; ///< in lower case
    QString strProperty;
    QString strReaders;
    QVariant vDefault; ///< an int, a bool or a QString; its type is the key's type

    /// Returns "int", "bool" or "text".
    QString GetTypeName() const;
};

namespace ConfigKeys {

/// Returns all keys in the order of the library's table.
const QVector<SConfigKey> &GetAll();
/// Returns a key in any case; null if it doesn't exist.
const SConfigKey *Find(const QString &key);
/// Returns the names of all keys.
QStringList GetNames();

} // namespace ConfigKeys
