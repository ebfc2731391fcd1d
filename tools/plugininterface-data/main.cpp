#include "CertificateCommands.h"
#include "CommandLine.h"
#include "Completion.h"
#include "ConfigCommands.h"
#include "LanguageCheck.h"
#include "LanguageCommands.h"
#include "Quoting.h"
#include "Report.h"

#include <QCoreApplication>

namespace {

QVector<SCommand> ConfigCommandTable()
{
    return {
        {L("config build"),
         L("Makes a configuration file. The JSON is one object of keys and values. Every key has to be one that "
           "clients know, in any case, with a value of its type and form, where a value that is JSON itself may be "
           "an object; values that equal the built-in ones are left out. All that is wrong is told at once."),
         {{L("FILE.json"), L("The configuration.")}, {L("OUT.sqlite"), L("The file to make.")}},
         {},
         [](const auto &arguments, const auto &) { return ConfigCommands::Build(arguments.at(0), arguments.at(1)); }},
        {L("config dump"),
         L("Prints a configuration file as the JSON that \"config build\" takes. Keys that no client knows and "
           "values of a wrong type or form are told."),
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
           "each keeps the order and the comments of another file, so that they differ little; texts that it lacks "
           "come at the end. Of the file's own language, unfinished and obsolete entries are kept as well."),
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

QVector<SCommand> CertificateCommandTable()
{
    return {
        {L("certificate make"),
         L("Makes what servers and clients need to recognise each other's connections, with the program openssl: "
           "authority.pem, which goes along with the client, server.pem and server.key for the servers, and "
           "authority.key, which stays with the operator. An authority that the folder has already is kept, so that "
           "installed clients trust the new certificate as well. It is valid for 825 days, the authority for 10 "
           "years."),
         {{L("DIR"), L("The folder, which is made if it isn't there.")}},
         {{L("host"),
           L("A name or an address under which clients reach the servers. If it is given several times, the "
             "certificate is for all."),
           L("NAME")},
          {L("force"), L("Replace the server's certificate and key that are there already.")}},
         [](const auto &arguments, const auto &parser) {
             return CertificateCommands::Make(arguments.at(0), parser.values(L("host")), parser.isSet(L("force")));
         }},
        {L("certificate show"),
         L("Prints the certificates of a file: for which hosts and how long they are valid, and their SHA-256."),
         {{L("FILE.pem"), L("The file.")}},
         {},
         [](const auto &arguments, const auto &) { return CertificateCommands::Show(arguments.at(0)); }},
    };
}

QVector<SCommand> AllCommands()
{
    const SCommand completion{L("completion bash"),
                              L("Prints the script that teaches bash to complete commands, options and files. Where "
                                "it isn't installed, add this to ~/.bashrc: source <(%1 completion bash)")
                                  .arg(CommandLine::GetProgram()),
                              {},
                              {},
                              [](const auto &, const auto &) {
                                  CReport report;
                                  report.Print(Completion::MakeBashScript(AllCommands()));
                                  return report.GetExitCode();
                              }};
    return ConfigCommandTable() + LanguageCommandTable() + CertificateCommandTable() + QVector<SCommand>{completion};
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(L(TOOL_VERSION));
    return CommandLine::Run(AllCommands(), QCoreApplication::arguments().mid(1));
}
