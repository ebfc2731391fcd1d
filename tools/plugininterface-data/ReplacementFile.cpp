#include "ReplacementFile.h"

#include <QFileInfo>

#include <filesystem>
#include <system_error>

namespace {

QString Target(const QString &path)
{
    const QFileInfo info(path);
    if (!info.isSymLink())
        return path;
    return info.exists() ? info.canonicalFilePath() : info.symLinkTarget();
}

// Returns the permissions of an existing file; a new one is readable for everybody, as the data of an installation
// is.
QFile::Permissions Permissions(const QString &path)
{
    return QFile::exists(path) ? QFile::permissions(path)
                               : QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther;
}

} // namespace

bool CReplacementFile::IsSame(const QString &left, const QString &right)
{
    std::error_code error; // of a file that doesn't exist, which is none of the others
    return std::filesystem::equivalent(left.toStdWString(), right.toStdWString(), error);
}

CReplacementFile::CReplacementFile(const QString &path)
    : m_strPath(Target(path))
    , m_file(m_strPath + QLatin1String(".XXXXXX.tmp"))
{
}

bool CReplacementFile::Open()
{
    if (!m_file.open()) {
        m_strError = QLatin1String("can't write in its folder: ") + m_file.errorString();
        return false;
    }
    // A temporary file may only have a name while it is open. It is closed for the sake of locks: a process loses all
    // its locks on a file when it closes one handle.
    m_strTemporaryPath = m_file.fileName();
    m_file.close();
    return true;
}

bool CReplacementFile::Commit()
{
    QFile::setPermissions(m_strTemporaryPath, Permissions(m_strPath));
    std::error_code error;
    std::filesystem::rename(m_strTemporaryPath.toStdWString(), m_strPath.toStdWString(), error);
    if (error) {
        m_strError = QLatin1String("can't take its place: ") + QString::fromStdString(error.message());
        return false;
    }
    m_file.setAutoRemove(false);
    return true;
}
