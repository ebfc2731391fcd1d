#include "FileHelpers.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include <algorithm>

bool Globals::GetContents(const QString &path, QByteArray &contents)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    contents = file.readAll();
    return true;
}

bool Globals::WriteToFile(const QString &path, const QByteArray &data, int position, int length)
{
    const auto directoryLength = path.lastIndexOf(QLatin1Char('/'));
    if (directoryLength > 0 && !QDir().mkpath(path.left(directoryLength)))
        return false;

    QByteArray bytes = position >= 0 ? data.mid(position) : data;
    if (length >= 0)
        bytes.truncate(length);

    QByteArray present;
    if (QFile::exists(path) && GetContents(path, present) && present == bytes)
        return true;

    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(bytes);
    file.close();
    return true;
}

QString Globals::GetMD5(const QByteArray &data)
{
    return QString::fromLatin1(QCryptographicHash::hash(data, QCryptographicHash::Md5).toHex());
}

QString Globals::GetFileMD5(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    QCryptographicHash hash(QCryptographicHash::Md5);
    if (!hash.addData(&file))
        return QString();
    return QString::fromLatin1(hash.result().toHex());
}

bool Globals::GetBetween(const QByteArray &data, int from, QByteArray begin, QByteArray end, QByteArray &result,
                         int &next)
{
    const auto beginAt = data.indexOf(begin, std::max(from, 0));
    if (beginAt < 1)
        return false;
    const auto resultAt = beginAt + begin.size();
    const auto endAt = data.indexOf(end, resultAt);
    if (endAt < 0)
        return false;
    result = data.mid(resultAt, endAt - resultAt);
    next = static_cast<int>(endAt + end.size());
    return true;
}

bool Globals::ToBool(const QString &text, bool defaultValue)
{
    const QString word = text.toUpper();
    const auto isOneOf = [&word](std::initializer_list<QLatin1String> words) {
        return std::find(words.begin(), words.end(), word) != words.end();
    };
    if (defaultValue)
        return !isOneOf({QLatin1String("FALSE"), QLatin1String("OFF"), QLatin1String("NO"), QLatin1String("0")});
    return isOneOf({QLatin1String("TRUE"), QLatin1String("ON"), QLatin1String("YES"), QLatin1String("1")});
}
