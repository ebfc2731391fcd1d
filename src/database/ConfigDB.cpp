#include "ConfigDB.h"

#include <Singleton_p.h>
#include <files/Pathes.h>

PLUGININTERFACE_DEFINE_SINGLETON(CConfigDB);

const QString CConfigDB::strTableName = QStringLiteral("tbl_config");

CConfigDB::CConfigDB()
    : CLocalDB(Pathes::ConfigDB(), true, true)
{
}
