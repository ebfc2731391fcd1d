#include "NewFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr int MAX_NAMES = 1000;
constexpr int MAX_NAME_LENGTH = 80; // in UTF-16 code units: 240 bytes at most, of the 255 that a name may have
constexpr int MAX_ENDING_LENGTH = 16;
const QString NAMELESS = QStringLiteral("download");

// Removes what would hide the file, or lead to another folder on some system.
QString MakeVisible(const QString &name)
{
    QString visible;
    for (const QChar character : name) {
        if (character == QLatin1Char('/') || character == QLatin1Char('\\'))
            visible.clear();
        else if (character.isPrint() && !QStringLiteral(":*?\"<>|").contains(character))
            visible += character;
    }
    while (visible.startsWith(QLatin1Char('.')) || visible.startsWith(QLatin1Char(' ')))
        visible.remove(0, 1);
    return visible.isEmpty() ? NAMELESS : visible;
}

QString MakeNumbered(const QString &name, int number)
{
    const auto dot = name.lastIndexOf(QLatin1Char('.'));
    const QString ending = dot > 0 && name.size() - dot <= MAX_ENDING_LENGTH ? name.mid(dot) : QString();
    const QString mark = number == 0 ? QString() : QStringLiteral(" (%1)").arg(number);
    const auto room = qMin(name.size(), MAX_NAME_LENGTH - mark.size()) - ending.size(); // in front of both
    return name.left(room) + mark + ending;
}

} // namespace

QString WriteNewFile(const QString &folder, const QString &name, const QByteArray &contents)
{
    if (!QDir().mkpath(folder))
        return QString();
    const QString visible = MakeVisible(name);
    for (int number = 0; number < MAX_NAMES; ++number) {
        QFile file(QDir(folder).filePath(MakeNumbered(visible, number)));
        const QFileInfo taken(file.fileName());
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
            if (taken.exists() || taken.isSymLink())
                continue;
            return QString();
        }
        if (file.write(contents) == contents.size() && file.flush())
            return file.fileName();
        file.remove();
        return QString();
    }
    return QString();
}
