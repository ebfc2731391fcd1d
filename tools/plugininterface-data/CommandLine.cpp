#include "CommandLine.h"

#include "Nearest.h"
#include "Report.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace {

constexpr int WRONG_USAGE = 2;

const QLatin1String DESCRIPTION("Makes the two data files of an installation: config.sqlite, the operator's\n"
                                "configuration, from JSON, and language.sqlite, the texts of all languages, from\n"
                                "PO files. A file that exists is replaced in one step, and only when all is well.\n");
const QLatin1String
    EXIT_CODES("\nFindings go to stderr as FILE:LINE: text. Exit codes: 0 all is well, 1 something is "
               "wrong\nin the data, 2 wrong usage.");
const QLatin1String HELP("help");

QString Synopsis(const SCommand &command)
{
    QString text = command.strName;
    for (const SArgument &argument : command.arguments)
        text += QLatin1Char(' ') + argument.strName;
    for (const QCommandLineOption &option : command.options) {
        const QStringList words{QLatin1String("--") + option.names().constFirst(), option.valueName()};
        text += QLatin1String(" [") + words.join(QLatin1Char(' ')).trimmed() + QLatin1Char(']');
    }
    return text;
}

QString Help(const QVector<SCommand> &commands)
{
    QString text = QLatin1String("Usage: ") + CommandLine::GetProgram() + QLatin1String(" COMMAND ...\n") +
                   DESCRIPTION + QLatin1String("\nCommands, each with a --help of its own:\n");
    for (const SCommand &command : commands)
        text += QLatin1String("  ") + Synopsis(command) + QLatin1Char('\n');
    return text + QLatin1String("  help [COMMAND]\n  --version\n") + EXIT_CODES;
}

// Breaks a text into lines of at most 80 characters.
QString Wrapped(const QString &text)
{
    static const QRegularExpression line(QStringLiteral("(.{1,80})(?:\\s+|$)"));
    return QString(text).replace(line, QStringLiteral("\\1\n"));
}

int Print(const QString &text)
{
    CReport report;
    report.Print(text);
    return report.GetExitCode();
}

int RefuseUsage(const QString &text, const QString &command = {})
{
    const QString help = CommandLine::GetProgram() + QLatin1Char(' ') + command;
    CReport().Error(CommandLine::GetProgram(), 0,
                    text + QLatin1String(" (see ") + help.trimmed() + QLatin1String(" --help)"));
    return WRONG_USAGE;
}

QVector<SCommand> OfGroup(const QVector<SCommand> &commands, const QString &group)
{
    QVector<SCommand> found;
    for (const SCommand &command : commands) {
        if (command.GetGroup() == group)
            found.append(command);
    }
    return found;
}

// Refuses words that name no command.
int RefuseCommand(const QVector<SCommand> &commands, const QStringList &words)
{
    static const QRegularExpression noOption(QStringLiteral("^[^-]"));
    const QString name = words.filter(noOption).mid(0, 2).join(QLatin1Char(' '));
    if (name.isEmpty())
        return RefuseUsage(words.isEmpty() ? QStringLiteral("a command is missing")
                                           : QLatin1String("unknown option ") + words.constFirst());
    QStringList verbs;
    QStringList names{HELP};
    for (const SCommand &command : commands) {
        names += {command.strName, command.GetGroup()};
        if (command.GetGroup() == name)
            verbs.append(command.GetVerb());
    }
    return RefuseUsage(verbs.isEmpty() ? QLatin1String("unknown command ") + name + Nearest::Suggest(name, names)
                                       : name + QLatin1String(" wants one of: ") + verbs.join(QLatin1String(", ")));
}

int RunCommand(const SCommand &command, const QStringList &words)
{
    const QString name = CommandLine::GetProgram() + QLatin1Char(' ') + command.strName;
    const QCommandLineOption help({QStringLiteral("h"), HELP}, QStringLiteral("Show this help."));
    QCommandLineParser parser;
    parser.setApplicationDescription(Wrapped(command.strDescription) + EXIT_CODES);
    parser.addOption(help);
    parser.addOptions(command.options);
    for (const SArgument &argument : command.arguments)
        parser.addPositionalArgument(argument.strName, argument.strDescription);
    const bool parsed = parser.parse(QStringList(name) + words);
    if (parsed && parser.isSet(help)) {
        QString text = parser.helpText();
        const QString path = QCoreApplication::arguments().constFirst(); // in the first line
        return Print(text.replace(text.indexOf(path), path.size(), name).trimmed());
    }
    if (!parsed)
        return RefuseUsage(parser.errorText().remove(QRegularExpression(QStringLiteral("\\.$"))), command.strName);
    if (parser.positionalArguments().size() != command.arguments.size())
        return RefuseUsage(QLatin1String("wants: ") + Synopsis(command), command.strName);
    return command.run(parser.positionalArguments(), parser);
}

// Returns the words with "help" or an option in front of a command behind it: "help config" is "config --help".
QStringList WithHelpBehind(const QStringList &words)
{
    const bool help = words.value(0) == HELP || words.value(0) == QLatin1String("-h");
    return help ? words.mid(1) + QStringList(QLatin1String("--") + HELP) : words;
}

} // namespace

QString CommandLine::GetProgram()
{
    return QFileInfo(QCoreApplication::applicationFilePath()).fileName();
}

int CommandLine::Run(const QVector<SCommand> &commands, const QStringList &words)
{
    const QStringList behind = WithHelpBehind(words);
    const QString first = behind.value(0);
    const bool onlyHelp = QStringList({QStringLiteral("--help"), QStringLiteral("-h")}).contains(behind.value(1));
    if (first == QLatin1String("--help"))
        return Print(Help(commands));
    if (first == QLatin1String("--version") || first == QLatin1String("-v"))
        return Print(GetProgram() + QLatin1Char(' ') + QCoreApplication::applicationVersion());
    const QVector<SCommand> group = OfGroup(commands, first);
    if (onlyHelp && !group.isEmpty())
        return Print(Help(group));
    const auto command = std::find_if(group.begin(), group.end(), [&](const SCommand &candidate) {
        return candidate.GetVerb() == behind.value(1);
    });
    return command == group.end() ? RefuseCommand(commands, behind) : RunCommand(*command, behind.mid(2));
}
