#pragma once

#include <Export.h>

#include <QString>
#include <QStringList>

/// Functions for files and directory trees that work even if another program holds a file open for a moment.
///
/// Each step is tried up to ten times, with 200 ms between two attempts. A step that keeps failing blocks the calling
/// thread for 1.8 s. A function ends at the first failure, and what it has done until then isn't undone. A function
/// with an `error` argument sets it to the failed step, in English; all except CopyFile() clear it first. Paths are
/// absolute. The functions have no state and may be called from any thread.
///
/// When a file is replaced, it is kept until the new file is next to it, as a hidden file whose name ends in ".tmp",
/// and can take its place. The disk needs room for both. If the file is a link, the link is replaced, not its target.
namespace FileFunctions {

/// The steps that are retried.
enum FileAction {
    FA_RemoveFile = 0,
    FA_RemoveDir = 1, ///< Removes an empty directory.
    FA_MakePath = 2,  ///< Creates a directory and all its parents.
    FA_Rename = 3,    ///< Moves the first path to the second, an unused one; a file also to another disk.
    FA_Copy = 4,      ///< Copies the first path to the second, which must not exist.
};

/// Performs one step. Only the last two actions use \a second.
PLUGININTERFACE_EXPORT bool DoAction(FileAction action, QString first, QString second);

/// Returns the absolute paths of everything in a directory tree, including hidden entries. Each directory comes
/// before its contents, and the directories of a level before its files. Skips names that end in ".svn" and
/// everything below them. Follows links to directories, but not back into a directory that is being listed.
PLUGININTERFACE_EXPORT QStringList GetFilePaths(const QString &path);

/// Checks before a move that all sources exist and all files to be replaced are writable. Changes nothing.
PLUGININTERFACE_EXPORT bool IsMoveAbleDir(const QString &from, const QString &to, QString &error);

/// Copies the files of a tree over another tree, or moves them if \a move is true. Existing files are replaced.
/// Directories are created for the files in them, so empty ones are not created. Fails at a file that would replace
/// itself. If the source directory doesn't exist, copies nothing and returns true.
PLUGININTERFACE_EXPORT bool CopyDir(const QString &from, const QString &to, QString &error, bool move);

/// Copies a file over another one, which is kept if it can't be replaced. A file isn't replaced by itself.
PLUGININTERFACE_EXPORT bool CopyFile(const QString &from, const QString &to, QString &error);

/// Moves the files of a tree over another tree, then removes the first with the ".svn" and empty directories that
/// were not moved. Fails before anything is moved if a file would end up within the source, taking links into
/// account.
PLUGININTERFACE_EXPORT bool MoveDir(const QString &from, const QString &to, QString &error);

/// Removes a tree, including ".svn". Links are removed, not followed, even if \a path itself is a link, with or
/// without "/" or "/." at the end. Returns true if nothing exists at \a path.
PLUGININTERFACE_EXPORT bool RemoveDir(const QString &path, QString &error);

} // namespace FileFunctions
