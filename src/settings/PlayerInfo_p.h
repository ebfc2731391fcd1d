#pragma once

#include <settings/PlayerInfo.h>

#include <QSqlQuery>

namespace PlayerInfo {

/// InsertPlayerInfo() for many elements, which prepares its statement once. Lives within one transaction.
class CPlayerInfoInserter
{
public:
    CPlayerInfoInserter();

    bool Insert(const SPlayerInfoSyncElement &element);

private:
    QSqlQuery m_query;
};

} // namespace PlayerInfo
