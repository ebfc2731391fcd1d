#include "FileFunctions.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <QtTest/qtestsystem.h>

#include <cerrno>
#include <cstdio>

namespace {

constexpr int MAX_ATTEMPTS = 10;
constexpr int RETRY_WAIT_MS = 200;

const QLatin1String SKIPPED_SUFFIX(".svn");

QFileInfoList ListEntries(const QString &directory)
{
    return QDir(directory).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                         QDir::DirsFirst);
}

// QFile::rename() writes through a link whose target doesn't exist. To another disk it copies, and removes the source
// before the end of the copy is written, although the disk may be full.
bool TryRename(const QString &first, const QString &second)
{
    const QFileInfo place(second);
    if (place.isSymLink())
        return false;
#if defined(Q_OS_UNIX)
    if (!place.exists() && QFile::exists(first)) {
        const QByteArray from = QFile::encodeName(first);
        const QByteArray to = QFile::encodeName(second);
        if (std::rename(from.constData(), to.constData()) == 0)
            return true;
        if (errno != EXDEV || !QFile::copy(first, second))
            return false;
        if (QFile::remove(first))
            return true;
        QFile::remove(second);
        return false;
    }
#endif
    return QFile::rename(first, second);
}

bool TryAction(FileFunctions::FileAction action, const QString &first, const QString &second)
{
    switch (action) {
    case FileFunctions::FA_RemoveFile:
        return QFile::remove(first);
    case FileFunctions::FA_RemoveDir:
        return QDir(first).rmdir(first);
    case FileFunctions::FA_MakePath:
        return QDir(first).mkpath(first);
    case FileFunctions::FA_Rename:
        return TryRename(first, second);
    case FileFunctions::FA_Copy:
        return QFile::copy(first, second);
    }
    return false;
}

// opened holds the canonical paths of the directories that are being listed. Following a link back into one of them
// would never end.
void AppendFilePaths(const QString &path, QStringList &opened, QStringList &paths)
{
    if (path.isEmpty() || path.endsWith(SKIPPED_SUFFIX))
        return;
    const QFileInfo directory(path);
    const QString canonicalPath = directory.canonicalFilePath();
    if (!directory.isDir() || opened.contains(canonicalPath))
        return;

    opened.append(canonicalPath);
    const QFileInfoList entries = ListEntries(path);
    for (const QFileInfo &entry : entries) {
        const QString entryPath = entry.absoluteFilePath();
        if (entryPath.endsWith(SKIPPED_SUFFIX))
            continue;
        paths.append(entryPath);
        if (entry.isDir())
            AppendFilePaths(entryPath, opened, paths);
    }
    opened.removeLast();
}

bool IsFile(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isDir();
}

template <typename TStep>
bool Retry(const TStep &step)
{
    for (int attempt = 1;; ++attempt) {
        if (step())
            return true;
        if (attempt == MAX_ATTEMPTS)
            return false;
        QTest::qSleep(RETRY_WAIT_MS);
    }
}

// Returns where something created at a path would be: the canonical path of the existing part, followed by the rest.
QString ToCanonicalPath(const QString &path)
{
    const QString absolute = QDir::cleanPath(QDir().absoluteFilePath(path));
    for (auto end = absolute.size(); end > 0; end = absolute.lastIndexOf(QLatin1Char('/'), end - 1)) {
        const QString existing = QFileInfo(absolute.left(end)).canonicalFilePath();
        if (!existing.isEmpty())
            return QDir::cleanPath(existing + absolute.mid(end));
    }
    return absolute;
}

// Returns whether a path is within a directory, which is within itself.
bool IsWithin(const QString &path, const QString &directory)
{
    QString outer = ToCanonicalPath(directory);
    if (!outer.endsWith(QLatin1Char('/')))
        outer += QLatin1Char('/');
    return (ToCanonicalPath(path) + QLatin1Char('/')).startsWith(outer);
}

// Returns the place of a name: that of a link itself, not of its target.
QString ToPlace(const QString &path)
{
    const QFileInfo info(path);
    return QDir(QFileInfo(info.path()).canonicalFilePath()).filePath(info.fileName());
}

// Returns whether the file to be replaced is the one that replaces it.
bool IsOwnPlace(const QString &from, const QString &to)
{
    const QString place = ToPlace(to);
    return ToPlace(from) == place || QFileInfo(from).canonicalFilePath() == place;
}

// Returns an unused path next to a file, or an empty one if nothing can be created or removed there.
QString FindPathBeside(const QString &path)
{
    QTemporaryFile file(QFileInfo(path).path() + QLatin1String("/.XXXXXX.tmp"));
    return file.open() ? file.fileName() : QString();
}

bool TryOverwrite(const QString &from, const QString &to)
{
#if defined(Q_OS_WIN) // rename() replaces no file
    return (!QFile::exists(to) || QFile::remove(to)) && QFile::rename(from, to);
#else
    if (std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0)
        return false;
    QFile::remove(from); // rename() does nothing if both are hard links to the same file
    return true;
#endif
}

enum class EPut {
    Done,
    NotRemoved, // the existing file
    NotPlaced,
};

// Copies or renames a file. An existing file is removed only for one that is ready next to it.
EPut Put(FileFunctions::FileAction action, const QString &from, const QString &to)
{
    if (!QFile::exists(to) || IsOwnPlace(from, to)) // DoAction() fails for the latter
        return FileFunctions::DoAction(action, from, to) ? EPut::Done : EPut::NotPlaced;
    QString beside;
    const auto isReplaceable = [&] {
        const QFileInfo old(to);
        beside = old.isDir() && !old.isSymLink() ? QString() : FindPathBeside(to);
        return !beside.isEmpty();
    };
    if (!Retry(isReplaceable))
        return EPut::NotRemoved;
    if (!FileFunctions::DoAction(action, from, beside))
        return EPut::NotPlaced;
    if (Retry([&] { return TryOverwrite(beside, to); }))
        return EPut::Done;
    if (action == FileFunctions::FA_Rename)
        FileFunctions::DoAction(FileFunctions::FA_Rename, beside, from);
    else
        QFile::remove(beside);
    return EPut::NotRemoved;
}

QString RenameError(const QString &from, const QString &to)
{
    return QLatin1String("move: failed to rename: ") + from + QLatin1String(" to ") + to;
}

// Returns whether no file would end up within the tree itself, which is removed afterwards.
bool IsMovedOut(const QString &source, const QString &target, QString &error)
{
    if (!QFileInfo(source).isDir())
        return true; // there is nothing to move
    if (IsWithin(target, source)) {
        error = RenameError(source, target);
        return false;
    }
    QString passed;
    const QStringList paths = FileFunctions::GetFilePaths(source);
    for (const QString &path : paths) {
        const QString destination = QString(path).replace(source, target);
        const QString directory = QFileInfo(destination).absolutePath();
        if (directory != passed && IsWithin(directory, source)) {
            error = RenameError(path, destination);
            return false;
        }
        passed = directory;
    }
    return true;
}

// "link/" and "link/." refer to the target of the link.
QString WithoutTail(QString path)
{
    while (path.size() > 1 && (path.endsWith(QLatin1Char('/')) || path.endsWith(QLatin1String("/."))))
        path.chop(1);
    return path;
}

// After a link, ".." leads elsewhere than in the absolute path.
QString ToAbsolutePath(const QString &path)
{
    QString absolute = QDir::cleanPath(QDir().absoluteFilePath(path));
    QString canonical = QFileInfo(path).canonicalFilePath();
    return QFileInfo(absolute).canonicalFilePath() == canonical ? absolute : canonical;
}

bool RemoveFile(const QString &path, QString &error)
{
    if (FileFunctions::DoAction(FileFunctions::FA_RemoveFile, path, QString()))
        return true;
    error = QLatin1String("remove: failed to remove file: ") + path;
    return false;
}

bool IsReplaceable(const QString &path)
{
    if (!IsFile(path))
        return true;
    QFile file(path);
    return file.open(QIODevice::Append);
}

} // namespace

bool FileFunctions::DoAction(FileAction action, QString first, QString second)
{
    return Retry([&] { return TryAction(action, first, second); });
}

QStringList FileFunctions::GetFilePaths(const QString &path)
{
    QStringList paths;
    QStringList opened;
    AppendFilePaths(path, opened, paths);
    return paths;
}

bool FileFunctions::IsMoveAbleDir(const QString &from, const QString &to, QString &error)
{
    error.clear();
    const QString source = QDir::cleanPath(from);
    const QString target = QDir::cleanPath(to);
    const QStringList paths = GetFilePaths(source);

    if (!IsReplaceable(target)) {
        error = QLatin1String("move: not writeable: ") + target;
        return false;
    }
    for (const QString &path : paths) {
        const QFileInfo entry(path);
        if (!entry.exists()) {
            error = QLatin1String("move: from not found: ") + path + QLatin1String(" - permissions ") +
                    QString::number(int(entry.permissions()));
            return false;
        }
        const QString destination = QString(path).replace(source, target);
        if (!IsReplaceable(destination)) {
            error = QLatin1String("move: not writeable: ") + destination;
            return false;
        }
    }
    return true;
}

bool FileFunctions::CopyDir(const QString &from, const QString &to, QString &error, bool move)
{
    error.clear();
    const QString source = QDir::cleanPath(from);
    const QString target = QDir::cleanPath(to);

    const QStringList paths = GetFilePaths(source);
    for (const QString &path : paths) {
        const QString destination = QString(path).replace(source, target);
        const QFileInfo destinationInfo(destination);
        const QString directory =
            destinationInfo.isDir() ? destinationInfo.absoluteFilePath() : destinationInfo.absolutePath();
        if (!DoAction(FA_MakePath, directory, QString())) {
            error = QLatin1String("copy: failed to create path: ") + directory;
            return false;
        }
        if (QFileInfo(path).isDir())
            continue;
        switch (Put(move ? FA_Rename : FA_Copy, path, destination)) {
        case EPut::Done:
            continue;
        case EPut::NotRemoved:
            error = QLatin1String("copy: failed to remove: ") + destination;
            return false;
        case EPut::NotPlaced:
            error = move ? RenameError(path, destination)
                         : QLatin1String("copy: failed to copy: ") + path + QLatin1String(" to ") + destination;
            return false;
        }
    }
    return true;
}

bool FileFunctions::CopyFile(const QString &from, const QString &to, QString &error)
{
    switch (Put(FA_Copy, from, to)) {
    case EPut::Done:
        return true;
    case EPut::NotRemoved:
        error = QLatin1String("copy: failed to remove file: ") + to;
        break;
    case EPut::NotPlaced:
        error = QLatin1String("copy: failed to copy file: ") + from + QLatin1String(" to ") + to;
        break;
    }
    return false;
}

bool FileFunctions::MoveDir(const QString &from, const QString &to, QString &error)
{
    const QString source = QDir::cleanPath(from);
    const QString target = QDir::cleanPath(to);
    return IsMovedOut(source, target, error) && CopyDir(source, target, error, true) && RemoveDir(source, error);
}

bool FileFunctions::RemoveDir(const QString &path, QString &error)
{
    error.clear();
    const QFileInfo info(WithoutTail(path));
    if (info.isSymLink())
        return RemoveFile(info.filePath(), error);
    if (!info.exists())
        return true;

    const QString directory = ToAbsolutePath(path);
    const QFileInfoList entries = ListEntries(directory);
    for (const QFileInfo &entry : entries) {
        const QString entryPath = entry.absoluteFilePath();
        if (entry.isDir() && !entry.isSymLink()) {
            if (!RemoveDir(entryPath, error))
                return false;
        } else if (!RemoveFile(entryPath, error)) {
            return false;
        }
    }
    if (!DoAction(FA_RemoveDir, directory, QString())) {
        error = QLatin1String("remove: failed to remove dir: ") + path;
        return false;
    }
    return true;
}
