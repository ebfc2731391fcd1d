#include "ConfigKeys.h"

#include <settings/ConfigTable.h>

#include <QHash>

#include <algorithm>
#include <numeric>

namespace {

// Returns the number of letters to add, remove or change, computed by rows of the usual matrix.
int EditDistance(const QString &from, const QString &to)
{
    QVector<int> row(to.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 0; i < from.size(); ++i) {
        int diagonal = row[0];
        row[0] = i + 1;
        for (int j = 0; j < to.size(); ++j) {
            const int changed = diagonal + (from.at(i) == to.at(j) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.last();
}

} // namespace

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

const SConfigKey &ConfigKeys::FindNearest(const QString &key)
{
    const QString lower = key.toLower();
    const auto &keys = GetAll();
    return *std::min_element(keys.begin(), keys.end(), [&](const SConfigKey &left, const SConfigKey &right) {
        return EditDistance(lower, left.strKey) < EditDistance(lower, right.strKey);
    });
}
