#pragma once

#include <QString>

/// Files and folders of a user that no other user of the machine can read. Where files have no mode, as on Windows,
/// the user's folders are private already.
namespace PrivateFiles {

/// Creates an empty file unless there is one already, which keeps its mode. Whoever opens it finds out whether that
/// has failed.
void MakeFile(const QString &path);

/// Creates a folder, and those above it in the usual way, unless it exists, which keeps its mode.
void MakeFolder(const QString &path);

} // namespace PrivateFiles
