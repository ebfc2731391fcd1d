// The tool that makes the data files of an installation: the real program on real files, whose results the library
// reads.

#include <database/ConfigDB.h>
#include <database/TranslationDB.h>
#include <settings/Config.h>
#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>

#include <QtTest>

namespace {

const QString EXAMPLE_CONFIG = QStringLiteral(EXAMPLE_DATA "/config.json");
const QString EXAMPLE_TEXTS = QStringLiteral(EXAMPLE_DATA "/language");

struct SResult
{
    int iExitCode;
    QString strOut;
    QString strError;

    // What it says of a file, without the file's name, one a line.
    QString GetFindings(const QString &path) const
    {
        QStringList findings =
            strError.split("\n"_s).filter(QRegularExpression("^"_s + QRegularExpression::escape(path)));
        return findings.replaceInStrings(path + ":"_s, QString()).join("\n"_s);
    }
};

// A command in words, then file names as they are; \a output is a file for what it prints.
SResult Run(const QString &command, const QStringList &files = {}, const QString &output = {})
{
    QProcess tool;
    if (!output.isEmpty())
        tool.setStandardOutputFile(output);
    tool.start(QStringLiteral(TOOL_PATH), command.split(" "_s, Qt::SkipEmptyParts) + files);
    const bool ended = tool.waitForFinished(30000) && tool.exitStatus() == QProcess::NormalExit;
    return {ended ? tool.exitCode() : -1, QString::fromUtf8(tool.readAllStandardOutput()),
            QString::fromUtf8(tool.readAllStandardError())};
}

// The names in a folder, one after the other.
QString Files(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).join(" "_s);
}

// A PO file without short form; the entries begin in line 7.
QByteArray Po(int id, const QByteArray &entries)
{
    return "msgid \"\"\nmsgstr \"\"\n\"Content-Type: text/plain; charset=UTF-8\\n\"\n\"X-Language-Id: " +
           QByteArray::number(id) + "\\n\"\n\"X-Language-Name: Language " + QByteArray::number(id) + "\\n\"\n\n" +
           entries;
}

QByteArray Entry(const char *key, const char *text)
{
    return QByteArray("msgctxt \"CORE\"\nmsgid \"") + key + "\"\nmsgstr \"" + text + "\"\n";
}

} // namespace

class tst_plugininterfacedata : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Nothing is dumped of JSON that is refused.
    void Config_data()
    {
        AddRows<QByteArray, QString, QByteArray>(
            {"json", "findings", "dumped"},
            {{"good", "{\"LINK_Cashier\": \"'ö'\", \"mybesthand\": false, \"subskin\": -2.0,\n\"casinoid\": 1}",
              "2: note: \"casinoid\" is left out of the file, since this is its built-in value"_s,
              R"({"link_cashier":"'ö'","mybesthand":false,"subskin":-2})"},
             {"unknown and double keys",
              "{\"casinoid\": 2,\n\"subskin\": 2, \"link_cahsier\": \"x\", \"xyzzy\": 1,\n\"casinoi\\u0064\": "
              "2,\n\"SUBSKIN\": 3}",
              "2: unknown key \"link_cahsier\", did you mean \"link_cashier\"?\n2: unknown key \"xyzzy\"\n"
              "3: \"casinoid\" is in line 1 already\n4: \"SUBSKIN\" is in line 2 already"_s,
              {}},
             {"values of another type",
              "{\"theme_chips\": {\"subskin\": \"\\\"}\\n\"},\n\n\"casinoid\": 2.5, \"moneytype\": 2147483648,\n"
              "\"mybesthand\": 1}",
              "1: \"theme_chips\" wants a text in double quotes\n"
              "3: \"casinoid\" wants a whole number from -2147483648 to 2147483647\n"
              "3: \"moneytype\" wants a whole number from -2147483648 to 2147483647\n"
              "4: \"mybesthand\" wants true or false"_s,
              {}},
             {"objects and their texts",
              "{\"playertags\": {\"10\": {\"c\": \"red\", \"n\": \"ö\"}},\n\"avatardisplaymode\": \"Custom, "
              "noavatar\",\n\"proxysettings\": \"{\\\"host\\\": \\\"h\\\", \\\"port\\\": 1}\"}",
              {},
              R"({"avatardisplaymode":"Custom, noavatar","playertags":{"10":{"c":"red","n":"ö"}},)"
              R"("proxysettings":{"host":"h","port":1}})"},
             {"proxy",
              R"({"proxysettings": {"host": "", "prt": 1, "type": "sock5"}})",
              "1: \"proxysettings\" has an unknown member \"prt\", did you mean \"port\"?\n"
              "1: \"proxysettings\" has an empty \"host\"\n1: \"proxysettings\" wants a \"type\" of default, "
              "socks5, http, httpcaching, ftpcaching\n"
              "1: note: \"proxysettings\" is ignored unless the client brings a \"port\" along"_s,
              {}},
             {"proxy's port",
              R"({"proxysettings": {"host": "h", "port": 65536}})",
              "1: \"proxysettings\" wants a whole number from 1 to 65535 for \"port\""_s,
              {}},
             {"tags",
              R"({"playertags": {"1": 2, "2": {"c": "grenn", "n": 1}, "11": {}}})",
              "1: \"playertags\" wants an object with \"c\" and \"n\" for tag \"1\"\n"
              "1: \"playertags\" has a tag \"11\", but the tags are \"1\" to \"10\"\n"
              "1: \"playertags\" wants a colour such as \"#c0c0c0\" for \"c\" of tag \"2\"\n"
              "1: \"playertags\" wants a text for \"n\" of tag \"2\""_s,
              {}},
             {"ratings and avatars",
              "{\"tablerating\": \"0,(0,256),0,(0,5),6,(1,1)\",\n\"tablerating_warning\": \"0,(0)\",\n"
              "\"avatardisplaymode\": \"cartooncustom\"}",
              "1: \"tablerating\" has a number 256, but the largest is 255\n"
              "1: \"tablerating\" has more than one rating 0\n"
              "1: \"tablerating\" has a rating 6, but ratings are 0 to 5\n"
              "2: \"tablerating_warning\" wants ratings with two numbers each, such as \"0,(0,5),1,(1,4)\"\n"
              "3: \"avatardisplaymode\" has an unknown word \"cartooncustom\", but wants cartoon, custom, noavatar, "
              "with a comma between them"_s,
              {}},
             {"no JSON", "{\"casinoid\": 2,\n\"subskin\" 2}", "2: missing name separator"_s, {}}});
    }
    void Config()
    {
        QFETCH(QByteArray, json);
        QFETCH(QByteArray, dumped);
        const CInstallationTree tree;
        const QString path = tree.WriteFile("Resources/config.json"_s, json);
        const QString out = tree.WriteFile("Resources/config.sqlite"_s, {});
        const SResult built = Run("config build"_s, {path, out});
        QTEST(built.GetFindings(path), "findings");
        QCOMPARE(built.iExitCode, dumped.isEmpty() ? 1 : 0);
        QCOMPARE(Files(tree.GetPath("Resources"_s)), "config.json config.sqlite"_s);
        QCOMPARE(ReadFile(out).isEmpty(), dumped.isEmpty());
        const QByteArray dump = Run("config dump"_s, {out}).strOut.toUtf8();
        QCOMPARE(QJsonDocument::fromJson(dump).toJson(QJsonDocument::Compact), dumped);
    }

    void ConfigOfExample()
    {
        const CInstallationTree tree;
        const QString path = tree.GetPath("Resources/config.sqlite"_s);
        QCOMPARE(Run("config build"_s, {EXAMPLE_CONFIG, path}).iExitCode, 0);
        const QByteArray bytes = ReadFile(path);
        const QString dump = tree.WriteFile("Tmp/dump"_s, Run("config dump"_s, {path}).strOut.toUtf8());
        QCOMPARE(Run("config build"_s, {dump, path}).iExitCode, 0);
        QCOMPARE(ReadFile(path), bytes);

        QVERIFY(CConfigDB::GetInstance()->Init());
        const CConfig *config = CConfig::GetInstance();
        QCOMPARE(std::tuple(config->GetProductname(), config->GetMoneyType(), config->GetOptionDealerSound()),
                 std::tuple("Example Card Room"_s, 2, false));
    }

    // Each row is a command in a folder with what those before it have made.
    void Certificates()
    {
        const CInstallationTree tree;
        const QString folder = tree.GetPath("keys"_s);
        const auto make = [&](const QString &options) { return Run("certificate make "_s + options, {folder}); };
        const auto verify = [&](const QString &host) {
            return QProcess::execute("openssl"_s, {"verify"_s, "-CAfile"_s, folder + "/authority.pem"_s,
                                                   "-verify_hostname"_s, host, folder + "/server.pem"_s});
        };
        QCOMPARE(make({}).GetFindings(folder), " needs a host, as in --host lobby.example.org"_s);
        QCOMPARE(make("--host a,DNS:b"_s).GetFindings(folder),
                 " \"a,DNS:b\" is neither a name of a host nor an address"_s);
        QVERIFY(!QFile::exists(folder));
        const SResult made = make("--host lobby.example.org --host ::1"_s);
        QVERIFY2(made.iExitCode == 0 && made.strOut.contains("::1, lobby.example.org\n"_s),
                 qPrintable(made.strError + made.strOut));
        QCOMPARE(Files(folder), "authority.key authority.pem server.key server.pem"_s);
        for (const QString &key : {"authority.key"_s, "server.key"_s})
            QCOMPARE(QFile::permissions(folder + u'/' + key), QFile::Permissions(0x6600));
        QCOMPARE(verify("lobby.example.org"_s), 0);
        const QByteArray authority = ReadFile(folder + "/authority.pem"_s);
        QVERIFY(make("--host new.example.org"_s).GetFindings(folder).contains("--force replaces it"_s));
        QCOMPARE(make("--force --host new.example.org"_s).iExitCode, 0);
        QVERIFY(verify("new.example.org"_s) == 0 && verify("lobby.example.org"_s) != 0);
        QCOMPARE(ReadFile(folder + "/authority.pem"_s), authority);
        QVERIFY(QFile::remove(folder + "/authority.key"_s));
        QVERIFY(make("--force --host new.example.org"_s).GetFindings(folder).contains("belong together"_s));
        QCOMPARE(Run("certificate show"_s, {folder + "/server.key"_s}).GetFindings(folder + "/server.key"_s),
                 " has no certificate in PEM form"_s);
    }

    void OutputRefused_data()
    {
        AddRows<QString, QString, QString, QString>(
            {"command", "source", "output", "finding"},
            {{"no folder", "config"_s, "config.json"_s, "none/config.sqlite"_s,
              " can't write in its folder: No such file or directory"_s},
             {"languages, no folder",
              "language"_s,
              {},
              "none/language.sqlite"_s,
              " can't write in its folder: No such file or directory"_s},
             {"a folder", "config"_s, "config.json"_s, {}, " is there already, and isn't a file"_s},
             {"another program writes to it", "config"_s, "config.json"_s, "busy.sqlite"_s,
              " in use, or left half-written, by another program: "_s},
             {"another file", "config"_s, "config.json"_s, "a.po"_s,
              " is there already, and isn't an SQLite file; it was left unchanged"_s},
             {"a link to the source", "config"_s, "config.json"_s, "link.sqlite"_s,
              " is the source itself; name another file to make"_s},
             {"one of the sources",
              "language"_s,
              {},
              "../Resources/a.po"_s,
              " is one of the sources; name another file to make"_s}});
    }
    void OutputRefused()
    {
        QFETCH(QString, command);
        QFETCH(QString, source);
        QFETCH(QString, output);
        QFETCH(QString, finding);
        const CInstallationTree tree;
        const QString folder = tree.GetPath("Resources/"_s);
        const QByteArray po = Po(1, Entry("DAY", "day"));
        tree.WriteFile("Resources/a.po"_s, po);
        tree.WriteFile("Resources/busy.sqlite-journal"_s);
        tree.WriteFile("Resources/config.json"_s, "{}");
        QVERIFY(QFile::link("config.json"_s, folder + "link.sqlite"_s));
        const SResult result = Run(command + " build"_s, {folder + source, folder + output});
        QCOMPARE(result.iExitCode, 1);
        QCOMPARE(result.GetFindings(folder + output).left(finding.size()), finding);
        QCOMPARE(Files(folder), "a.po busy.sqlite-journal config.json link.sqlite"_s);
        QCOMPARE(ReadFile(folder + "a.po"_s), po);
        QCOMPARE(ReadFile(folder + "config.json"_s), "{}");
    }

    void DumpOfOthersFiles_data()
    {
        AddRows<QString>({"findings"}, {{"empty", " has no table tbl_config"_s},
                                        {"rows", " \"pokerpoints\" is \"1\", but wants true or false\n"
                                                 " unknown key \"no\"\n has more than one \"pokerpoints\"\n"
                                                 " \"playertags\" has to be a JSON object"_s}});
    }
    void DumpOfOthersFiles()
    {
        const CInstallationTree tree;
        CLocalDB(tree.GetPath("Tmp/empty"_s), false, false).Init();
        CLocalDB rows(tree.GetPath("Tmp/rows"_s), false, true);
        QVERIFY(rows.Init());
        QVERIFY(rows.Exec(
            "CREATE TABLE tbl_config AS SELECT 'pokerpoints' AS COV_cKey, 1 AS COV_cValue UNION "
            "ALL SELECT 'no', 1 UNION ALL SELECT 'PokerPoints', 'true' UNION ALL SELECT 'playertags', '[]'"_s));
        const QString path = tree.GetPath("Tmp/"_s + QString::fromLatin1(QTest::currentDataTag()));
        const SResult result = Run("config dump"_s, {path});
        QTEST(result.GetFindings(path), "findings");
        QCOMPARE(result.iExitCode, 1);
    }

    void LanguagesOfExample()
    {
        const CInstallationTree tree;
        const QString path = tree.GetPath("Resources/language.sqlite"_s);
        QCOMPARE(Run("language check"_s, {EXAMPLE_TEXTS}).iExitCode, 0);
        QCOMPARE(Run("language build"_s, {EXAMPLE_TEXTS, path}).iExitCode, 0);

        QVERIFY(CTranslationDB::GetInstance()->Init());
        QSqlQuery query = CTranslationDB::GetInstance()->GetQuery();
        const QString lookUp = "SELECT TRL_cTranslation FROM 'tbl_translations' WHERE TRL_cArea='core' AND "
                               "TRL_cKey='march' AND TRL_AVL_iID='3' LIMIT 1"_s;
        QVERIFY(query.exec(lookUp) && query.next());
        QCOMPARE(query.value(0).toString(), "März"_s);
        QVERIFY(query.exec("EXPLAIN QUERY PLAN "_s + lookUp) && query.next());
        QVERIFY(query.value(3).toString().contains("(TRL_AVL_iID=? AND TRL_cArea=? AND TRL_cKey=?)"_s));

        const QString exported = tree.GetPath("Tmp/po"_s);
        const QString again = tree.GetPath("Tmp/again.sqlite"_s);
        QCOMPARE(Run("language export"_s, {path, exported}).iExitCode, 0);
        QCOMPARE(Files(exported), Files(EXAMPLE_TEXTS));
        QCOMPARE(Run("language export"_s, {path, exported}).iExitCode, 1); // would lose the translators' comments
        QCOMPARE(Run("language build"_s, {exported, again}).iExitCode, 0);
        QCOMPARE(ReadFile(again), ReadFile(path));
    }

    // A German file beside an English one with DAY and LEFT. The summary counts what is built, which is nothing if
    // the folder is refused.
    void Languages_data()
    {
        const QByteArray day = Entry("DAY", "Tag");
        const QByteArray left = Entry("LEFT", "#d# T. #h# Std.");
        const QByteArray menu = "#. An entry of the menu MENU.\n";
        const QString whole = "4 texts; left out: 0 fuzzy, 0 untranslated, 0 obsolete"_s;
        const QString three = "3 texts; left out: 0 fuzzy, 0 untranslated"_s;
        AddRows<QByteArray, QString, QString>(
            {"german", "finding", "built"},
            {{"text missing", Po(2, left), " CORE/DAY is missing, "_s, three},
             {"placeholder lost", Po(2, day + Entry("LEFT", "#d# T.")), "11: CORE/LEFT has lost #h# of "_s, whole},
             {"fuzzy", Po(2, "#, fuzzy\n#| msgid \"DATE\"\n" + day + left), "10: CORE/DAY is fuzzy"_s,
              "3 texts; left out: 1"_s},
             {"empty on purpose", Po(2, left + "# empty on purpose\n" + Entry("DAY", "")), {}, whole},
             {"there already", Po(2, day + left + Entry("day", "T")), "14: CORE/day is in line 8 already"_s, {}},
             {"other encoding", Po(2, day).replace("UTF-8", "ASCII"), "3: its header has to say "_s, {}},
             {"letter of another entry",
              Po(2, menu + Entry("DAY", "&Tag") + menu + Entry("LEFT", "#d# & #h# &&&tage")),
              "13: CORE/LEFT has the letter &t of CORE/DAY in line 9, which is in the menu MENU"_s, whole},
             {"byte order mark", "\xEF\xBB\xBF" + Po(2, day + left), {}, whole},
             {"obsolete twin",
              Po(2, day + left) + "# empty on purpose\n#~ " + Entry("DAY", "").replace("\nm", "\n#~ m"),
              {},
              "4 texts; left out: 0 fuzzy, 0 untranslated, 1 obsolete"_s},
             {"blank in a key", Po(2, Entry("DAY ", "Tag") + left), "8: \"CORE/DAY \" has a blank at an end "_s, {}},
             {"no header", day + left, "1: has no header, "_s, {}},
             {"odd id", Po(2, day).replace("Id: 2", "Id: 2x"), "4: X-Language-Id is \"2x\", but has to be a "_s, {}},
             {"two ids", Po(2, day).replace("Name:", "Id:"), "4: its header has more than one X-Language-Id"_s, {}},
             {"id of the other", Po(1, day).replace("Language 1", "L"), "4: X-Language-Id 1 is that of "_s, {}},
             {"name of the other",
              Po(2, day).replace("Language 2", "language 1"),
              "5: X-Language-Name Language 1 is that of "_s,
              {}},
             {"no PO file", Po(2, day + "msgstr oops\n"), "10: "_s, {}}});
    }
    void Languages()
    {
        QFETCH(QByteArray, german);
        QFETCH(QString, finding);
        QFETCH(QString, built);
        const CInstallationTree tree;
        tree.WriteFile("po/a.po"_s, Po(1, Entry("DAY", "day") + Entry("LEFT", "#h# h of #d# d")));
        const QString path = tree.WriteFile("po/b.po"_s, german);
        const QString out = tree.WriteFile("Resources/language.sqlite"_s, {});

        const SResult check = Run("language check"_s, {tree.GetPath("po"_s)});
        QCOMPARE(check.iExitCode, finding.isEmpty() ? 0 : 1);
        QCOMPARE(check.GetFindings(path).left(qMax(1, finding.size())), finding);

        const SResult build = Run("language build"_s, {tree.GetPath("po"_s), out});
        QCOMPARE(build.iExitCode, built.isEmpty() ? 1 : 0);
        QVERIFY2(build.strOut.contains(built), qPrintable(build.strOut));
        QCOMPARE(ReadFile(out).isEmpty(), built.isEmpty());
        QCOMPARE(Files(tree.GetPath("Resources"_s)), "language.sqlite"_s);
    }

    // The German texts are DAY and TWO, in this order.
    void ExportLike_data()
    {
        const QByteArray day = Entry("DAY", "Tag");
        const QByteArray two =
            "# Mine.\n#. Yours.\n#: file:1\n" + Entry("TWO", "").replace("\"\"", "\"\"\n\"a\\n\"\n\"b\"");
        const QByteArray open = "# Which?\n#, fuzzy\n" + Entry("OPEN", "?") + '\n' + Entry("NEW", "");
        const QByteArray obsolete = "\n# Why?\n#~ " + Entry("DAY", "Dag").replace("\nm", "\n#~ m");
        AddRows<QByteArray, QByteArray>(
            {"pattern", "expected"},
            {{"same", "# Head.\n" + Po(2, two + "\n\n" + day), "# Head.\n" + Po(2, two + "\n\n" + day)},
             {"line ends", Po(2, two + day).replace('\n', "\r\n"), Po(2, two + day).replace('\n', "\r\n")},
             {"other text", Po(2, "# A.\n#, fuzzy, c-format\n#| msgid \"D\"\n" + Entry("day", "Dag") + two),
              Po(2, "# A.\n#, c-format\n" + Entry("day", "Tag") + two)},
             {"missing and unknown texts", Po(2, Entry("GONE", "x") + "\n" + day + obsolete),
              Po(2, day + "\n" + two.mid(two.indexOf("msgctxt")) + obsolete)},
             {"unfinished and obsolete", Po(2, day + two + open + obsolete), Po(2, day + two + open + obsolete)},
             {"other language", Po(1, day + "\n" + open + obsolete + "\n" + two),
              Po(2, day + "\n" + two).replace("e 2\\n\"\n", "e 2\\n\"\n\"Language: b\\n\"\n")}});
    }
    void ExportLike()
    {
        QFETCH(QByteArray, pattern);
        const CInstallationTree tree;
        tree.WriteFile("po/b.po"_s, Po(2, Entry("DAY", "Tag") + Entry("TWO", "a\\nb")));
        const QString built = tree.GetPath("Tmp/built.sqlite"_s);
        QCOMPARE(Run("language build"_s, {tree.GetPath("po"_s), built}).iExitCode, 0);
        const QString folder = tree.GetPath("Tmp/po"_s);
        const SResult result =
            Run("language export --like"_s, {tree.WriteFile("Tmp/b.po"_s, pattern), built, folder});
        QVERIFY2(result.iExitCode == 0, qPrintable(result.strError));
        QTEST(ReadFile(folder + "/b.po"_s), "expected");
        const QString again = tree.GetPath("Tmp/again.sqlite"_s);
        QCOMPARE(Run("language build"_s, {folder, again}).iExitCode, 0);
        QCOMPARE(ReadFile(again), ReadFile(built));
    }

    void Keys()
    {
        const QString row = "\n| `activitytimertimeout` | int | `600000` | `activitytimertimeout` | CUserInfo |\n"_s;
        QVERIFY(Run("config keys"_s).strOut.contains(row));
        QVERIFY(Run("config keys --json"_s).strOut.contains("\"default\": 600000"_s));
    }

    void Usage_data()
    {
        AddRows<QString, int, QString>(
            {"command", "exitCode", "text"},
            {{"nothing", {}, 2, "a command is missing"_s},
             {"unknown", "config bulid a b"_s, 2, "unknown command config bulid, did you mean \"config build\"?"_s},
             {"nothing near", "frob"_s, 2, "unknown command frob (see"_s},
             {"group", "config"_s, 2, "config wants one of: build, dump, keys"_s},
             {"help", "help"_s, 0, "language export FILE.sqlite DIR [--force] [--like FILE.po]"_s},
             {"help on a command", "help config build"_s, 0, "FILE.json   The configuration."_s},
             {"help behind a group", "language --help"_s, 0, "language check DIR"_s},
             {"version", "--version"_s, 0, " " TOOL_VERSION "\n"_s}});
    }
    void Usage()
    {
        QFETCH(QString, command);
        QFETCH(QString, text);
        const SResult result = Run(command);
        QTEST(result.iExitCode, "exitCode");
        QVERIFY2(result.strError.contains(text) || result.strOut.contains(text), qPrintable(result.strError));
    }

    void ResultNotPrinted()
    {
        const SResult result = Run("config keys"_s, {}, "/dev/full"_s);
        QCOMPARE(result.iExitCode, 1);
        QCOMPARE(result.strError, "standard output: No space left on device\n"_s);
    }

    void Completion_data()
    {
        AddRows<QString, QString>({"words", "replies"},
                                  {{"group", "lang"_s, "language"_s},
                                   {"command", "config "_s, "build dump keys --help"_s},
                                   {"file", "config build "_s, "folder a.json"_s},
                                   {"second file", "config build a.json "_s, "folder b.sqlite"_s},
                                   {"folder", "language export --force b.sqlite "_s, "folder"_s},
                                   {"option", "language export --"_s, "--force --like --help"_s},
                                   {"file of an option", "language export --like "_s, "folder c.po"_s},
                                   {"after an option's value", "language check --reference de "_s, "folder"_s}});
    }
    void Completion()
    {
        QFETCH(QString, words);
        const CInstallationTree tree; // its client folder is the current one
        for (const QString &file : {"a.json"_s, "b.sqlite"_s, "c.po"_s, "folder/d"_s})
            tree.WriteFile("Client/"_s + file);
        const QString script = "source <(\"$0\" completion bash)\n"
                               "COMP_WORDS=(\"$0\" \"$@\") COMP_CWORD=$#\n"
                               "\"_$(basename \"$0\" | tr -c '[:alnum:]\\n' _)\" \"$0\" \"${@: -1}\" "
                               "\"${COMP_WORDS[$# - 1]}\"\n"
                               "echo \"${COMPREPLY[*]}\""_s;
        QProcess bash;
        bash.start("bash"_s, QStringList{"-c"_s, script, QStringLiteral(TOOL_PATH)} + words.split(" "_s));
        QVERIFY(bash.waitForFinished());
        QTEST(QString::fromUtf8(bash.readAllStandardOutput()).trimmed(), "replies");
    }
};

QTEST_GUILESS_MAIN(tst_plugininterfacedata)
#include "tst_plugininterfacedata.moc"
