#include "ConfigKeys.h"

#include <settings/ConfigTable.h>

#include <QHash>

QString SConfigKey::GetTypeName() const
{
    switch (vDefault.userType()) {
    case QMetaType::Int:
        return QStringLiteral("int");
    case QMetaType::Bool:
        return QStringLiteral("bool");
    default:
        return QStringLiteral("text");
    }
}

const QVector<SConfigKey> &ConfigKeys::GetAll()
{
    static const QVector<SConfigKey> keys{
#define CONFIG_KEY(type, Name, key, defaultValue, property, readers) \
    {QStringLiteral(#key), QStringLiteral(#property), QLatin1String(readers), QVariant(type(defaultValue))},
        CONFIG_TABLE(CONFIG_KEY)
#undef CONFIG_KEY
    };
    return keys;
}

const SConfigKey *ConfigKeys::Find(const QString &key)
{
    static const auto index = [] {
        QHash<QString, const SConfigKey *> keys;
        for (const SConfigKey &row : GetAll())
            keys.insert(row.strKey, &row);
        return keys;
    }();
    return index.value(key.toLower());
}

QStringList ConfigKeys::GetNames()
{
    QStringList names;
    for (const SConfigKey &key : GetAll())
        names.append(key.strKey);
    return names;
}
