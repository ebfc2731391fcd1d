#include "SqliteResult_p.h"

namespace {

enum EResultCode {
    RC_BUSY = 5,
    RC_READONLY = 8,
    RC_IOERR = 10,
    RC_FULL = 13,
    RC_CANTOPEN = 14,
};

// The lowest byte of an extended code is the basic code.
int GetCode(const QSqlError &error)
{
    return error.nativeErrorCode().toInt() & 0xff;
}

} // namespace

bool SqliteResult::IsLocked(const QSqlError &error)
{
    return GetCode(error) == RC_BUSY;
}

bool SqliteResult::IsPassing(const QSqlError &error)
{
    switch (GetCode(error)) {
    case RC_BUSY:
    case RC_READONLY:
    case RC_IOERR:
    case RC_FULL:
    case RC_CANTOPEN:
        return true;
    default:
        return false;
    }
}
