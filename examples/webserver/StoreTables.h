#pragma once

#include <QLatin1String>

/// Steps of the tables' versions that are the same for all databases.
namespace StoreTables {

/// From version 5 on sessions are found by their end and by whose they are.
inline const QLatin1String SESSION_INDEXES[] = {
    QLatin1String("CREATE INDEX idx_session_expiry ON tbl_session (SES_iExpiry)"),
    QLatin1String("CREATE INDEX idx_session_owner ON tbl_session (SES_cUser, SES_cMachine)")};

} // namespace StoreTables
