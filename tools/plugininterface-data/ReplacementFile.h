#pragma once

#include <QString>
#include <QTemporaryFile>

/// A new file that takes the place of an old one in one step, when it is whole.
///
/// It is written beside the old one, under a name of its own. Unless Commit() is called and succeeds, the old file
/// stays as it was and the new one is removed.
class CReplacementFile
{
public:
    /// A \a path that is a symbolic link stands for the file that the link names.
    explicit CReplacementFile(const QString &path);

    /// Makes the new file, empty and closed. If it fails, GetError() says why.
    bool Open();
    /// Where to write.
    QString GetTemporaryPath() const { return m_strTemporaryPath; }
    bool Commit();

    QString GetError() const { return m_strError; }

private:
    QString m_strPath;
    QTemporaryFile m_file;
    QString m_strTemporaryPath;
    QString m_strError;
};
