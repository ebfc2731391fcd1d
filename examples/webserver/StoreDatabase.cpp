#include "StoreDatabase.h"

#include "PostgresDatabase.h"
#include "SqliteDatabase.h"

std::unique_ptr<CStoreDatabase> CStoreDatabase::Make(const QString &place)
{
    if (IsAddress(place))
        return std::make_unique<CPostgresDatabase>(place);
    return std::make_unique<CSqliteDatabase>(place);
}

bool CStoreDatabase::IsAddress(const QString &place)
{
    return place.startsWith(QLatin1String("postgres://")) || place.startsWith(QLatin1String("postgresql://"));
}
