#pragma once

#include <Export.h>

#include <QString>
#include <QStringList>

/// Operations on files and directory trees that survive a file being held open for a moment by another program.
///
/// Each single step is tried up to ten times, with 200 ms between two attempts; a step that keeps failing blocks the
/// calling thread for 1.8 s. The first failure ends an operation, and what was done until then stays done. An
/// operation with an `error` argument puts the failed step there, in English; all but CopyFile() empty it first.
/// Paths are absolute. No state, any thread.
///
/// A file that is replaced stays until the new one lies beside it, as a hidden file whose name ends in ".tmp", and
/// can take its place; the disk needs room for both. A link is replaced itself, not what it leads to.
namespace FileFunctions {

/// The steps that are tried again.
enum FileAction {
    FA_RemoveFile = 0,
    FA_RemoveDir = 1, ///< Of an empty directory.
    FA_MakePath = 2,  ///< A directory with all above it.
    FA_Rename = 3,    ///< From the first path to the second, at which nothing lies; a file also to another disk.
    FA_Copy = 4,      ///< From the first path to the second, which must not exist.
};

/// Does one step; \a second is used by the last two alone.
PLUGININTERFACE_EXPORT bool DoAction(FileAction action, QString first, QString second);

/// Absolute paths of all that lies below a directory, hidden entries included: each directory before its contents,
/// the directories of a level before its files. Names that end in ".svn" are left out, with what lies below them.
/// Links to directories are followed, but not back into a directory that is being listed.
PLUGININTERFACE_EXPORT QStringList GetFilePaths(const QString &path);

/// Checks ahead of a move that everything to be moved is there and everything to be replaced can be written. Changes
/// nothing.
PLUGININTERFACE_EXPORT bool IsMoveAbleDir(const QString &from, const QString &to, QString &error);

/// Copies, or with \a move moves, the files of a tree over another one and replaces those that exist there.
/// Directories come to exist with the files below them, so empty ones are not made. It fails at a file that would
/// replace itself. Of a directory that isn't there nothing is copied, and that is true.
PLUGININTERFACE_EXPORT bool CopyDir(const QString &from, const QString &to, QString &error, bool move);

/// Copies a file over another one, which stays if it can't be replaced, and is not replaced by itself.
PLUGININTERFACE_EXPORT bool CopyFile(const QString &from, const QString &to, QString &error);

/// Moves the files of a tree over another one, then removes the first, with the ".svn" and empty directories that
/// were not moved. Fails before anything is moved if a file would come to lie within the source, links considered.
PLUGININTERFACE_EXPORT bool MoveDir(const QString &from, const QString &to, QString &error);

/// Removes a tree, ".svn" included. Links are removed, not followed, also where \a path is one, with or without a "/"
/// or "/." behind it. True if there is nothing at \a path.
PLUGININTERFACE_EXPORT bool RemoveDir(const QString &path, QString &error);

} // namespace FileFunctions
