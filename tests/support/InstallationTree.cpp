#include "InstallationTree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

void Require(bool done, const char *what, const QString &path)
{
    if (!done)
        qFatal("installation tree: can't %s %s", what, qUtf8Printable(path));
}

} // namespace

CInstallationTree::CInstallationTree()
    : m_strFormerDir(QDir::currentPath())
{
    Require(m_dir.isValid(), "make", m_dir.errorString());
    MakeDir(QStringLiteral("Resources"));
    MakeDir(QStringLiteral("Tmp"));
    const QString client = MakeDir(QStringLiteral("Client"));
    Require(QDir::setCurrent(client), "enter", client);
}

CInstallationTree::~CInstallationTree()
{
    QDir::setCurrent(m_strFormerDir);
}

QString CInstallationTree::GetPath(const QString &name) const
{
    return m_dir.path() + QLatin1String("/Contents/") + name;
}

QString CInstallationTree::WriteFile(const QString &name, const QByteArray &contents) const
{
    const QString path = GetPath(name);
    Require(QDir().mkpath(QFileInfo(path).path()), "make the folder of", path);
    QFile file(path);
    Require(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size(), "write", path);
    return path;
}

QString CInstallationTree::MakeDir(const QString &name) const
{
    const QString path = GetPath(name);
    Require(QDir().mkpath(path), "make", path);
    return path;
}

QByteArray ReadFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "can't be read";
}
