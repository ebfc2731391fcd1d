#include "Completion.h"

#include "Quoting.h"

#include <QRegularExpression>

namespace {

// The names of the program and of its function, the words of the groups, the verbs of each, the options and kinds of
// files of each command, and the options with a value. A kind is a suffix, or "/" for a folder.
const char *const SCRIPT = R"(# Completion of %1 for bash, made by "%1 completion bash".
%2()
{
    local word=$2 before=$3 words='' kind='' position=0 i
    local -a kinds=()
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        words='%3 help --help --version'
    elif ((COMP_CWORD == 2)); then
        case ${COMP_WORDS[1]} in
%4        help) words='%3' ;;
        esac
    else
        case "${COMP_WORDS[1]} ${COMP_WORDS[2]}" in
%5        esac
        for ((i = 3; i < COMP_CWORD; ++i)); do
            case ${COMP_WORDS[i]}/${COMP_WORDS[i - 1]} in
            -* | */%6) ;;
            *) ((++position)) ;;
            esac
        done
        [[ $word == -* ]] || kind=${kinds[position]}
        case $before in
%7        esac
    fi
    if [[ $kind == / ]]; then
        mapfile -t COMPREPLY < <(compgen -d -- "$word")
    elif [[ $kind ]]; then
        mapfile -t COMPREPLY < <(compgen -d -- "$word"; compgen -f -X "!*.$kind" -- "$word")
    else
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    fi
    [[ -z $kind ]] || compopt -o filenames 2>/dev/null
}
complete -F %2 %1)";

// Returns the kind of a file from the name of its argument.
QString Kind(const QString &argument)
{
    return argument == L("DIR") ? L("/") : argument.section(QLatin1Char('.'), 1);
}

QString CommandCase(const SCommand &command)
{
    QStringList options;
    for (const QCommandLineOption &option : command.options)
        options.append(L("--") + option.names().constFirst());
    options.append(L("--help"));
    QStringList kinds;
    for (const SArgument &argument : command.arguments)
        kinds.append(Kind(argument.strName));
    return L("        '%1') words='%2' kinds=(%3) ;;\n")
        .arg(command.strName, options.join(QLatin1Char(' ')), kinds.join(QLatin1Char(' ')));
}

} // namespace

QString Completion::MakeBashScript(const QVector<SCommand> &commands)
{
    QStringList groups;
    QStringList verbs;
    QString commandCases;
    QStringList valued;
    QString valueCases;
    for (const SCommand &command : commands) {
        if (!groups.contains(command.GetGroup())) {
            groups.append(command.GetGroup());
            verbs.append(QString());
        }
        verbs.last() += QLatin1Char(' ') + command.GetVerb();
        commandCases += CommandCase(command);
        for (const QCommandLineOption &option : command.options) {
            if (option.valueName().isEmpty())
                continue;
            valued.append(L("--") + option.names().constFirst());
            valueCases += L("        %1) words='' kind='%2' ;;\n").arg(valued.last(), Kind(option.valueName()));
        }
    }
    QString groupCases;
    for (int i = 0; i < groups.size(); ++i)
        groupCases += L("        %1) words='%2 --help' ;;\n").arg(groups.at(i), verbs.at(i).trimmed());
    const QString program = CommandLine::GetProgram();
    const QString function = L("_") + QString(program).replace(QRegularExpression(L("\\W")), L("_"));
    return L(SCRIPT).arg(program, function, groups.join(QLatin1Char(' ')), groupCases, commandCases,
                         valued.join(L(" | */")), valueCases);
}
