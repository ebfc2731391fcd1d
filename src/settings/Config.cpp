#include "Config.h"

#include <Singleton_p.h>
#include <database/ConfigDB.h>

PLUGININTERFACE_DEFINE_SINGLETON(CConfig);

CConfig::CConfig()
{
    Init();
}

void CConfig::Init()
{
    const QString key = QStringLiteral("COV_cKey");
    const QString value = QStringLiteral("COV_cValue");
    QList<QHash<QString, QVariant>> rows;
    CConfigDB::GetInstance()->SelectAll(rows, CConfigDB::strTableName, {key, value}, {}, 0);

    QHash<QString, QVariant> configs;
    for (const auto &row : qAsConst(rows))
        configs.insert(row.value(key).toString(), row.value(value));
    SetConfigs(configs);
}
