#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// An installation in a temporary folder. While it lives, its client folder is the process's current directory.
///
/// Names are relative to Contents, as in "Resources/brand/Qt/style.css". What can't be made ends the program.
class CInstallationTree
{
public:
    CInstallationTree();
    ~CInstallationTree();

    QString GetPath(const QString &name) const;
    /// Writes a file with the directories above it; answers its path.
    QString WriteFile(const QString &name, const QByteArray &contents = QByteArrayLiteral("contents")) const;
    QString MakeDir(const QString &name) const;

private:
    QTemporaryDir m_dir;
    QString m_strFormerDir;
};

/// What a file holds, or a text that says that it can't be read.
QByteArray ReadFile(const QString &path);
