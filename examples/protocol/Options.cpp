#include "Options.h"

QCommandLineOption Options::Make(const char *name, const char *meaning, const char *value, const char *byDefault)
{
    return {QString::fromLatin1(name), QString::fromLatin1(meaning), QString::fromLatin1(value),
            QString::fromLatin1(byDefault)};
}

bool Options::ReadNumber(const QCommandLineParser &parser, const QCommandLineOption &option, quint32 least,
                         quint32 most, quint32 &number, QString &error)
{
    bool good = false;
    number = parser.value(option).toUInt(&good);
    if (good && number >= least && number <= most)
        return true;
    error = QStringLiteral("--%1 takes a number from %2 to %3").arg(option.names().constFirst()).arg(least).arg(most);
    return false;
}
