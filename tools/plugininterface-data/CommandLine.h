#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

/// An argument of a command. A name such as "FILE.json" or "OUT.sqlite" stands for a file with this suffix, "DIR" for
/// a folder.
struct SArgument
{
    QString strName;
    QString strDescription;
};

struct SCommand
{
    QString strName; ///< two words, the first of which is that of a group
    QString strDescription;
    QVector<SArgument> arguments;
    QList<QCommandLineOption> options;
    std::function<int(const QStringList &arguments, const QCommandLineParser &parser)> run;

    QString GetGroup() const { return strName.section(QLatin1Char(' '), 0, 0); }
    QString GetVerb() const { return strName.section(QLatin1Char(' '), 1); }
};

namespace CommandLine {

/// Returns the program's name, by which it was built.
QString GetProgram();

/// Runs the command that the words of the command line name, or shows help, and returns the program's exit code: 2 if
/// there is no such command.
int Run(const QVector<SCommand> &commands, const QStringList &words);

} // namespace CommandLine
