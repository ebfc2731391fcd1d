#pragma once

#include <QString>
#include <QVariant>
#include <QVector>

/// The keys of the operator's configuration.
struct SConfigKey
{
    QString strKey; ///< in lower case
    QString strProperty;
    QString strReaders;
    QVariant vDefault; ///< an int, a bool or a QString, as is the key's type

    /// "int", "bool" or "text"
    QString GetTypeName() const;
};

namespace ConfigKeys {

/// In the order of the library's table.
const QVector<SConfigKey> &GetAll();
/// Null if there is no such key; keys match in any case.
const SConfigKey *Find(const QString &key);
/// The key that takes the fewest letters to be added, removed or changed.
const SConfigKey &FindNearest(const QString &key);

} // namespace ConfigKeys
