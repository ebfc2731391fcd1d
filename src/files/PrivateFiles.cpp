#include "PrivateFiles_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#if defined(Q_OS_UNIX)
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

// The mode is given at the creation, so that there is no moment at which others can open the file.
void PrivateFiles::MakeFile(const QString &path)
{
#if defined(Q_OS_UNIX)
    const int file =
        ::open(QFile::encodeName(path).constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file >= 0)
        ::close(file);
#else
    Q_UNUSED(path)
#endif
}

void PrivateFiles::MakeFolder(const QString &path)
{
#if defined(Q_OS_UNIX)
    const QString clean = QDir::cleanPath(path);
    QDir().mkpath(QFileInfo(clean).path());
    ::mkdir(QFile::encodeName(clean).constData(), S_IRWXU);
#else
    QDir().mkpath(path);
#endif
}
