#include "ConfigCommands.h"
#include "LanguageCheck.h"
#include "LanguageCommands.h"
#include "Report.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>
#include <functional>

namespace {

constexpr int WRONG_USAGE = 2;

const QLatin1String PROGRAM("plugininterface-data");
const QLatin1String DESCRIPTION("Makes the two data files of an installation: config.sqlite, the operator's\n"
                                "configuration, from JSON, and language.sqlite, the texts of all languages, from\n"
                                "PO files. A file that exists is replaced in one step, and only when all is well.\n");
const QLatin1String
    EXIT_CODES("\nFindings go to stderr as FILE:LINE: text. Exit codes: 0 all is well, 1 something is "
               "wrong\nin the data, 2 wrong usage.");

struct SArgument
{
    QString strName;
    QString strDescription;
};

struct SCommand
{
    QString strName; // two words
    QString strDescription;
    QVector<SArgument> arguments;
    QList<QCommandLineOption> options;
    std::function<int(const QStringList &arguments, const QCommandLineParser &parser)> run;
};

QString L(const char *text)
{
    return QString::fromLatin1(text);
}

QVector<SCommand> ConfigCommandTable()
{
    return {
        {L("config build"),
         L("Makes a configuration file. The JSON is one object of keys and values. Every key has to be one that "
           "clients know, in any case, with a value of its type; values that equal the built-in ones are left out. "
           "All that is wrong is told at once."),
         {{L("FILE.json"), L("The configuration.")}, {L("OUT.sqlite"), L("The file to make.")}},
         {},
         [](const auto &arguments, const auto &) { return ConfigCommands::Build(arguments.at(0), arguments.at(1)); }},
        {L("config dump"),
         L("Prints a configuration file as the JSON that \"config build\" takes. Keys that no client knows and "
           "values "
           "of a wrong type are told."),
         {{L("FILE.sqlite"), L("The configuration file, which is only read.")}},
         {},
         [](const auto &arguments, const auto &) { return ConfigCommands::Dump(arguments.at(0)); }},
        {L("config keys"),
         L("Prints all keys with type, built-in value, property and readers as a Markdown page."),
         {},
         {{L("json"), L("Print them as JSON.")}},
         [](const auto &, const auto &parser) { return ConfigCommands::Keys(parser.isSet(L("json"))); }},
    };
}

QVector<SCommand> LanguageCommandTable()
{
    return {
        {L("language build"),
         L("Makes a language file from all *.po of a folder. An entry's msgctxt is the area of the text, its msgid "
           "the key. The header names the language under Language (its short form, \"de\"; else the file's name "
           "counts), X-Language-Id (a number of its own) and X-Language-Name. Fuzzy, untranslated and obsolete "
           "entries are left out. A text that is to be empty bears the comment \"# empty on purpose\"."),
         {{L("DIR"), L("The folder of the PO files.")}, {L("OUT.sqlite"), L("The file to make.")}},
         {},
         [](const auto &arguments, const auto &) {
             return LanguageCommands::Build(arguments.at(0), arguments.at(1));
         }},
        {L("language export"),
         L("Writes the PO files, one a language, from which \"language build\" makes the same texts. With --like "
           "each "
           "keeps the order and the comments of another file, so that they differ little; texts that it lacks come "
           "at "
           "the end. Of the file's own language, unfinished and obsolete entries are kept as well."),
         {{L("FILE.sqlite"), L("The language file, which is only read.")}, {L("DIR"), L("The folder to write to.")}},
         {{L("force"), L("Replace PO files that are there already.")},
          {L("like"),
           L("A file whose order and comments the new ones have. If it is given several times, the one of the same "
             "language counts, else the first."),
           L("FILE.po")}},
         [](const auto &arguments, const auto &parser) {
             return LanguageCommands::Export(arguments.at(0), arguments.at(1),
                                             {parser.isSet(L("force")), parser.values(L("like"))});
         }},
        {L("language check"),
         L("Compares the PO files of a folder: keys that a language lacks, #markers# that a translation has lost or "
           "invented, fuzzy and empty texts, entries of one menu with the same letter after &, and what is wrong in "
           "the files themselves. A developer's comment names the menu of an entry, as in \"#. An entry of the menu "
           "MENU_OPTIONS.\"; the titles of the library's own menus are entries of MENU_BAR."),
         {{L("DIR"), L("The folder of the PO files.")}},
         {{L("reference"),
           L("The language whose markers count, by its short form; without it the one with the lowest id."),
           L("SHORT")}},
         [](const auto &arguments, const auto &parser) {
             return LanguageCheck::Run(arguments.at(0), parser.value(L("reference")));
         }},
    };
}

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
    QString text = QLatin1String("Usage: ") + PROGRAM + QLatin1String(" COMMAND ...\n") + DESCRIPTION +
                   QLatin1String("\nCommands, each with a --help of its own:\n");
    for (const SCommand &command : commands)
        text += QLatin1String("  ") + Synopsis(command) + QLatin1Char('\n');
    return text + EXIT_CODES;
}

int RefuseUsage(const QString &text, const QString &help)
{
    CReport().Error(PROGRAM, 0, text + QLatin1String(" (see ") + help + QLatin1String(" --help)"));
    return WRONG_USAGE;
}

int RunCommand(const SCommand &command, const QStringList &words)
{
    const QString name = PROGRAM + QLatin1Char(' ') + command.strName;
    const QCommandLineOption help({L("h"), L("help")}, L("Show this help."));
    QCommandLineParser parser;
    parser.setApplicationDescription(command.strDescription + QLatin1Char('\n') + EXIT_CODES);
    parser.addOption(help);
    parser.addOptions(command.options);
    for (const SArgument &argument : command.arguments)
        parser.addPositionalArgument(argument.strName, argument.strDescription);
    const bool parsed = parser.parse(QStringList(name) + words);
    if (parsed && parser.isSet(help)) {
        QString text = parser.helpText();
        CReport().Print(text.replace(QCoreApplication::arguments().constFirst(), name).trimmed());
        return 0;
    }
    if (!parsed)
        return RefuseUsage(parser.errorText().remove(QRegularExpression(L("\\.$"))), name);
    if (parser.positionalArguments().size() != command.arguments.size())
        return RefuseUsage(QLatin1String("wants: ") + Synopsis(command), name);
    return command.run(parser.positionalArguments(), parser);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QVector<SCommand> commands = ConfigCommandTable() + LanguageCommandTable();
    const QStringList words = QCoreApplication::arguments().mid(1);
    if (words.value(0) == QLatin1String("--help") || words.value(0) == QLatin1String("-h")) {
        CReport().Print(Help(commands));
        return 0;
    }
    const QString name = QStringList(words.mid(0, 2)).join(QLatin1Char(' '));
    const auto command = std::find_if(commands.begin(), commands.end(),
                                      [&](const SCommand &candidate) { return candidate.strName == name; });
    if (command == commands.end())
        return RefuseUsage(name.isEmpty() ? L("a command is missing") : L("unknown command ") + name, PROGRAM);
    return RunCommand(*command, words.mid(2));
}
