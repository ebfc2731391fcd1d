#pragma once

#include <QString>
#include <QTemporaryFile>

/// A new file that replaces an old one in one step when it is complete.
///
/// It is written beside the old file, under a temporary name. Unless Commit() is called and succeeds, the old file
/// stays unchanged and the new one is removed.
class CReplacementFile
{
public:
    /// Returns whether two paths lead to the same existing file, also through links.
    static bool IsSame(const QString &left, const QString &right);

    /// Constructs a replacement for \a path, or for the target if \a path is a symbolic link.
    explicit CReplacementFile(const QString &path);

    /// Creates the new file, empty and closed. Returns false, with the reason in GetError(), on failure.
    bool Open();
    /// Returns the path of the file that is replaced.
    QString GetPath() const { return m_strPath; }
    /// Returns the path of the new file.
    QString GetTemporaryPath() const { return m_strTemporaryPath; }
    bool Commit();

    QString GetError() const { return m_strError; }

private:
    QString m_strPath;
    QTemporaryFile m_file;
    QString m_strTemporaryPath;
    QString m_strError;
};
