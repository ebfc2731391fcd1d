#pragma once

#include <QSqlError>

/// Why SQLite has refused a statement, as far as it matters what to do next.
namespace SqliteResult {

/// Whether another connection keeps the file locked; SQLite has waited for it.
bool IsLocked(const QSqlError &error);

/// Whether the same statement may succeed later: the file is locked, its disk full, not writable or failing. False
/// where there is no error.
bool IsPassing(const QSqlError &error);

} // namespace SqliteResult
