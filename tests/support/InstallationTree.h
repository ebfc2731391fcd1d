#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

/// An installation in a temporary folder. While it lives, its client folder is the process's current directory.
///
/// Names are relative to Contents, as in "Resources/brand/Qt/style.css". What can't be made ends the program.
class CInstallationTree
{
public:
    CInstallationTree()
    {
        MakeDir(QStringLiteral("Resources"));
        MakeDir(QStringLiteral("Tmp"));
        const QString client = MakeDir(QStringLiteral("Client"));
        Require(QDir::setCurrent(client), "enter", client);
    }
    ~CInstallationTree() { QDir::setCurrent(m_strFormerDir); }
    Q_DISABLE_COPY_MOVE(CInstallationTree)

    QString GetPath(const QString &name) const { return m_dir.path() + QLatin1String("/Contents/") + name; }
    /// Writes a file with the directories above it; answers its path.
    QString WriteFile(const QString &name, const QByteArray &contents = QByteArrayLiteral("contents")) const
    {
        const QString path = GetPath(name);
        Require(QDir().mkpath(QFileInfo(path).path()), "make the folder of", path);
        QFile file(path);
        Require(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size(), "write", path);
        return path;
    }
    QString MakeDir(const QString &name) const
    {
        const QString path = GetPath(name);
        Require(QDir().mkpath(path), "make", path);
        return path;
    }

private:
    static void Require(bool done, const char *what, const QString &path)
    {
        if (!done)
            qFatal("installation tree: can't %s %s", what, qUtf8Printable(path));
    }

    QTemporaryDir m_dir;
    QString m_strFormerDir = QDir::currentPath();
};

/// What a file holds, or a text that says that it can't be read.
inline QByteArray ReadFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "can't be read";
}
