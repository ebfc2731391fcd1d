#pragma once

#include <QSqlError>

/// Determines why SQLite refused a statement, as far as it decides what to do next.
namespace SqliteResult {

/// Returns whether another connection keeps the file locked. SQLite has already waited for it.
bool IsLocked(const QSqlError &error);

/// Returns whether the same statement may succeed later: the file is locked, not writable or failing, or its disk is
/// full. False if there is no error.
bool IsPassing(const QSqlError &error);

} // namespace SqliteResult
