#include "FileFunctions.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtTest/qtestsystem.h>

namespace {

constexpr int MAX_ATTEMPTS = 10;
constexpr int RETRY_WAIT_MS = 200;

const QLatin1String SKIPPED_SUFFIX(".svn");

QFileInfoList ListEntries(const QString &directory)
{
    return QDir(directory).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                         QDir::DirsFirst);
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
        return QFile::rename(first, second);
    case FileFunctions::FA_Copy:
        return QFile::copy(first, second);
    }
    return false;
}

// The opened directories are the canonical paths of those that are being listed: a link back into one of them would
// never come to an end.
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

// Whether something would be moved or copied into its own place, where removing the old file removes the new one too.
bool IsSamePlace(const QString &from, const QString &to)
{
    return QFileInfo(from) == QFileInfo(to);
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
    for (int attempt = 1;; ++attempt) {
        if (TryAction(action, first, second))
            return true;
        if (attempt == MAX_ATTEMPTS)
            return false;
        QTest::qSleep(RETRY_WAIT_MS);
    }
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

    const auto copyError = [move](const QString &path, const QString &destination) {
        return (move ? QLatin1String("move: failed to rename: ") : QLatin1String("copy: failed to copy: ")) + path +
               QLatin1String(" to ") + destination;
    };
    if (IsSamePlace(source, target)) {
        error = copyError(source, target);
        return false;
    }

    const QStringList paths = GetFilePaths(source);
    for (const QString &path : paths) {
        const QString destination = QString(path).replace(source, target);
        const QFileInfo destinationInfo(destination);
        const QString directory = destinationInfo.isDir() ? destination : destinationInfo.absolutePath();
        if (!DoAction(FA_MakePath, directory, QString())) {
            error = QLatin1String("copy: failed to create path: ") + directory;
            return false;
        }
        if (QFileInfo(path).isDir())
            continue;
        if (QFile::exists(destination) && !DoAction(FA_RemoveFile, destination, QString())) {
            error = QLatin1String("copy: failed to remove: ") + destination;
            return false;
        }
        if (!DoAction(move ? FA_Rename : FA_Copy, path, destination)) {
            error = copyError(path, destination);
            return false;
        }
    }
    return true;
}

bool FileFunctions::CopyFile(const QString &from, const QString &to, QString &error)
{
    // What is there goes only for something that can take its place.
    const bool replaces = QFile::exists(to) && QFile::exists(from) && !IsSamePlace(from, to);
    if (replaces && !DoAction(FA_RemoveFile, to, QString())) {
        error = QLatin1String("copy: failed to remove file: ") + to;
        return false;
    }
    if (!DoAction(FA_Copy, from, to)) {
        error = QLatin1String("copy: failed to copy file: ") + from + QLatin1String(" to ") + to;
        return false;
    }
    return true;
}

bool FileFunctions::MoveDir(const QString &from, const QString &to, QString &error)
{
    const QString source = QDir::cleanPath(from);
    const QString target = QDir::cleanPath(to);
    if (target.startsWith(source + QLatin1Char('/'))) { // and would be removed with it
        error = QLatin1String("move: failed to rename: ") + source + QLatin1String(" to ") + target;
        return false;
    }
    return CopyDir(source, target, error, true) && RemoveDir(source, error);
}

bool FileFunctions::RemoveDir(const QString &path, QString &error)
{
    error.clear();
    const QFileInfo info(path);
    if (!info.exists())
        return true;
    if (info.isSymLink())
        return RemoveFile(path, error);

    const QFileInfoList entries = ListEntries(path);
    for (const QFileInfo &entry : entries) {
        const QString entryPath = entry.absoluteFilePath();
        if (entry.isDir() && !entry.isSymLink()) {
            if (!RemoveDir(entryPath, error))
                return false;
        } else if (!RemoveFile(entryPath, error)) {
            return false;
        }
    }
    if (!DoAction(FA_RemoveDir, path, QString())) {
        error = QLatin1String("remove: failed to remove dir: ") + path;
        return false;
    }
    return true;
}
