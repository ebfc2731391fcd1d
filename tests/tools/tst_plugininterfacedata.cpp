// The tool that makes the data files of an installation: the real program on real files, whose results the library
// reads.

#include <database/ConfigDB.h>
#include <database/TranslationDB.h>
#include <settings/Config.h>
#include <support/InstallationTree.h>

#include <QtTest>

namespace {

QString operator""_s(const char *text, std::size_t size)
{
    return QString::fromUtf8(text, static_cast<int>(size));
}

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

// A command in words, then file names as they are.
SResult Run(const QString &command, const QStringList &files = {})
{
    QProcess tool;
    tool.start(QStringLiteral(TOOL_PATH), command.split(" "_s, Qt::SkipEmptyParts) + files);
    const bool ended = tool.waitForFinished(30000) && tool.exitStatus() == QProcess::NormalExit;
    return {ended ? tool.exitCode() : -1, QString::fromUtf8(tool.readAllStandardOutput()),
            QString::fromUtf8(tool.readAllStandardError())};
}

QByteArray Contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "can't be read";
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
           QByteArray::number(id) + "\\n\"\n\"X-Language-Name: Language\\n\"\n\n" + entries;
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
    void config_data();
    void config();
    void configOfExample();
    void outputRefused();
    void dumpOfOthersFiles();
    void keys();
    void languagesOfExample();
    void languages_data();
    void languages();
    void usage();
};

void tst_plugininterfacedata::config_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<QString>("findings");
    QTest::addColumn<QString>("dumped"); // empty if the JSON is refused

    const auto row = [](const char *name, const char *json, const char *findings, const char *dumped = "") {
        QTest::newRow(name) << QString::fromUtf8(json) << QString::fromUtf8(findings) << QString::fromUtf8(dumped);
    };
    row("each type", R"({"productname": "Köln's", "casinoid": -7, "mybesthand": false, "subskin": 2.0})", "",
        R"({"casinoid":-7,"mybesthand":false,"productname":"Köln's","subskin":2})");
    row("other case", R"({"LINK_Cashier": "x"})", "", R"({"link_cashier":"x"})");
    row("emptied", R"({"pokerlobbytype": ""})", "", R"({"pokerlobbytype":""})");
    row("default", "{\"casinoid\":\n1, \"subskin\": 2}",
        "1: note: \"casinoid\" is left out of the file, since this is its built-in value", R"({"subskin":2})");
    row("keys",
        "{\"casinoid\": 2,\n\"subskin\": 2, \"link_cahsier\": \"x\",\n\"casinoi\\u0064\": 2,\n\"SUBSKIN\": 3}",
        "2: unknown key \"link_cahsier\", the nearest is \"link_cashier\"\n"
        "3: \"casinoid\" is in line 1 already\n4: \"SUBSKIN\" is in line 2 already");
    row("types",
        "{\"theme_chips\": {\"subskin\": \"\\\"}\\n\"},\n\n\"casinoid\": 2.5, \"subskin\": \"2\", \"mybesthand\": 1}",
        "1: \"theme_chips\" wants a text in double quotes\n"
        "3: \"casinoid\" wants a whole number from -2147483648 to 2147483647\n"
        "3: \"subskin\" wants a whole number from -2147483648 to 2147483647\n3: \"mybesthand\" wants true or false");
    row("too large", R"({"casinoid": 2147483648})",
        "1: \"casinoid\" wants a whole number from -2147483648 to 2147483647");
    row("broken", "{\"casinoid\": 2,\n\"subskin\" 2}", "2: missing name separator");
}

void tst_plugininterfacedata::config()
{
    QFETCH(QString, json);
    QFETCH(QString, dumped);
    const CInstallationTree tree;
    const QString path = tree.WriteFile("Resources/config.json"_s, json.toUtf8());
    const QString out = tree.WriteFile("Resources/config.sqlite"_s, "old");

    const SResult built = Run("config build"_s, {path, out});

    QTEST(built.GetFindings(path), "findings");
    QCOMPARE(built.iExitCode, dumped.isEmpty() ? 1 : 0);
    QCOMPARE(Files(tree.GetPath("Resources"_s)), "config.json config.sqlite"_s);
    if (dumped.isEmpty()) {
        QCOMPARE(Contents(out), QByteArray("old"));
        return;
    }
    const SResult dump = Run("config dump"_s, {out});
    QCOMPARE(dump.iExitCode, 0);
    QCOMPARE(QJsonDocument::fromJson(dump.strOut.toUtf8()).toJson(QJsonDocument::Compact), dumped.toUtf8());
}

void tst_plugininterfacedata::configOfExample()
{
    const CInstallationTree tree;
    const QString path = tree.GetPath("Resources/config.sqlite"_s);
    QCOMPARE(Run("config build"_s, {EXAMPLE_CONFIG, path}).iExitCode, 0);
    const QByteArray bytes = Contents(path);
    const QString dump = tree.WriteFile("Tmp/dump"_s, Run("config dump"_s, {path}).strOut.toUtf8());
    QCOMPARE(Run("config build"_s, {dump, path}).iExitCode, 0);
    QCOMPARE(Contents(path), bytes);

    QVERIFY(CConfigDB::GetInstance()->Init());
    const CConfig *config = CConfig::GetInstance();
    QCOMPARE(config->GetProductname(), "Example Card Room"_s);
    QCOMPARE(config->GetMoneyType(), 2);
    QVERIFY(config->GetDisplayBadBeatJackpot() && config->GetPokerPoints() && !config->GetOptionDealerSound());
}

void tst_plugininterfacedata::outputRefused()
{
    const CInstallationTree tree;
    tree.WriteFile("Resources/busy.sqlite-journal"_s); // another program writes to it
    for (const QString &name : {"nowhere/config.sqlite"_s, "Tmp"_s, "Resources/busy.sqlite"_s}) {
        const SResult result = Run("config build"_s, {EXAMPLE_CONFIG, tree.GetPath(name)});
        QCOMPARE(result.iExitCode, 1);
        QVERIFY2(!result.GetFindings(tree.GetPath(name)).isEmpty(), qPrintable(result.strError));
    }
    QCOMPARE(Files(tree.GetPath(QString())), "Client Resources Tmp"_s);
    QCOMPARE(Files(tree.GetPath("Resources"_s)), "busy.sqlite-journal"_s);
}

void tst_plugininterfacedata::dumpOfOthersFiles()
{
    const CInstallationTree tree;
    CLocalDB(tree.GetPath("Tmp/empty"_s), false, false).Init();
    CLocalDB rows(tree.GetPath("Tmp/rows"_s), false, true);
    QVERIFY(rows.Init() &&
            rows.Exec("CREATE TABLE tbl_config AS SELECT 'pokerpoints' AS COV_cKey, 1 AS COV_cValue UNION "
                      "ALL SELECT 'no', 1 UNION ALL SELECT 'PokerPoints', 'true'"_s));
    const QPair<QString, QString> findings[] = {
        {tree.GetPath("Tmp/missing"_s), " no such file"_s},
        {tree.WriteFile("Tmp/junk"_s, QByteArray(4096, 'x')), " file is not a database"_s},
        {tree.GetPath("Tmp/empty"_s), " has no table tbl_config"_s},
        {tree.GetPath("Tmp/rows"_s), " \"pokerpoints\" is \"1\", but wants true or false\n"
                                     " unknown key \"no\"\n has more than one \"pokerpoints\""_s}};
    for (const auto &[path, text] : findings) {
        const SResult result = Run("config dump"_s, {path});
        QCOMPARE(result.GetFindings(path), text);
        QCOMPARE(result.iExitCode, 1);
    }
}

void tst_plugininterfacedata::keys()
{
    QCOMPARE(Run("config keys"_s).strOut.toUtf8(), Contents(QStringLiteral(KEYS_PAGE)));
    const QJsonArray keys = QJsonDocument::fromJson(Run("config keys --json"_s).strOut.toUtf8()).array();
    QCOMPARE(keys.size(), 207);
    QCOMPARE(keys.first().toObject().value("default"_s), QJsonValue(600000));
}

void tst_plugininterfacedata::languagesOfExample()
{
    const CInstallationTree tree;
    const QString path = tree.GetPath("Resources/language.sqlite"_s);
    QCOMPARE(Run("language check"_s, {EXAMPLE_TEXTS}).iExitCode, 0);
    QCOMPARE(Run("language build"_s, {EXAMPLE_TEXTS, path}).iExitCode, 0);

    QVERIFY(CTranslationDB::GetInstance()->Init());
    QSqlQuery query = CTranslationDB::GetInstance()->GetQuery();
    const QString lookUp =
        "SELECT TRL_cTranslation FROM 'tbl_translations' WHERE TRL_cArea='core' AND TRL_cKey='march' "
        "AND TRL_AVL_iID='3' LIMIT 1"_s;
    QVERIFY(query.exec(lookUp) && query.next());
    QCOMPARE(query.value(0).toString(), "März"_s);
    QVERIFY(query.exec("EXPLAIN QUERY PLAN "_s + lookUp) && query.next());
    QVERIFY(query.value(3).toString().contains("(TRL_AVL_iID=? AND TRL_cArea=? AND TRL_cKey=?)"_s));

    const QString exported = tree.GetPath("Tmp/po"_s);
    const QString again = tree.GetPath("Tmp/again.sqlite"_s);
    QCOMPARE(Run("language export"_s, {path, exported}).iExitCode, 0);
    QCOMPARE(Files(exported), "de.po en.po fr.po"_s);
    QCOMPARE(Run("language export"_s, {path, exported}).iExitCode, 1); // would lose the translators' comments
    QCOMPARE(Run("language build"_s, {exported, again}).iExitCode, 0);
    QCOMPARE(Contents(again), Contents(path));
}

void tst_plugininterfacedata::languages_data()
{
    QTest::addColumn<QByteArray>("german"); // beside an English file with DAY and LEFT
    QTest::addColumn<QString>("finding");
    QTest::addColumn<QString>("built"); // what the summary counts; empty if the folder is refused

    const QByteArray day = Entry("DAY", "Tag");
    const QByteArray left = Entry("LEFT", "#d# T. #h# Std.");
    const char *whole = "4 texts; left out: 0 fuzzy, 0 untranslated, 0 obsolete";
    const auto row = [](const char *name, const QByteArray &german, const char *finding, const char *built = "") {
        QTest::newRow(name) << german << QString::fromUtf8(finding) << QString::fromUtf8(built);
    };
    row("good", Po(2, day + left), "", whole);
    row("missing", Po(2, left), " CORE/DAY is missing, ", "3 texts; left out: 0 fuzzy, 0 untranslated");
    row("lost", Po(2, day + Entry("LEFT", "#d# T.")), "11: CORE/LEFT has lost #h# of ", whole);
    row("invented", Po(2, left + Entry("DAY", "#n# T.")), "11: CORE/DAY has invented #n#, ", whole);
    row("fuzzy", Po(2, "#, fuzzy\n#| msgid \"DATE\"\n" + day + left), "10: CORE/DAY is fuzzy",
        "3 texts; left out: 1");
    row("empty", Po(2, left + Entry("DAY", "")), "11: CORE/DAY is not translated", "0 fuzzy, 1 untranslated");
    row("meant empty", Po(2, left + "# empty on purpose\n" + Entry("DAY", "")), "", whole);
    row("obsolete", Po(2, day + "#~ msgctxt \"CORE\"\n#~ msgid \"OLD\"\n#~ msgstr \"alt\"\n\n" + left), "",
        "1 obsolete");
    row("twice", Po(2, day + left + Entry("day", "T")), "14: CORE/day is in line 8 already");
    row("no area", Po(2, day + "msgid \"LEFT\"\nmsgstr \"\"\n"), "10: LEFT has no msgctxt");
    row("other's id", Po(1, day + left), " X-Language-Id 1 is that of ");
    row("no id", Po(2, day).replace("X-Language-Id", "X"), "1: its header lacks X-Language-Id");
    row("charset", Po(2, day).replace("UTF-8", "ASCII"), "1: its header has to say ");
    row("broken", Po(2, day + "msgstr oops\n"), "10: ");
}

void tst_plugininterfacedata::languages()
{
    QFETCH(QString, finding);
    QFETCH(QString, built);
    QFETCH(QByteArray, german);
    const CInstallationTree tree;
    tree.WriteFile("po/a.po"_s, Po(1, Entry("DAY", "day") + Entry("LEFT", "#h# h of #d# d")));
    const QString path = tree.WriteFile("po/b.po"_s, german);
    const QString out = tree.WriteFile("Resources/language.sqlite"_s, "old");

    const SResult check = Run("language check"_s, {tree.GetPath("po"_s)});
    QCOMPARE(check.iExitCode, finding.isEmpty() ? 0 : 1);
    const QString findings = check.GetFindings(path);
    QVERIFY2(finding.isEmpty() ? findings.isEmpty() : findings.startsWith(finding), qPrintable(check.strError));

    const SResult build = Run("language build"_s, {tree.GetPath("po"_s), out});
    QCOMPARE(build.iExitCode, built.isEmpty() ? 1 : 0);
    QVERIFY2(built.isEmpty() || build.strOut.contains(built), qPrintable(build.strOut));
    QCOMPARE(Contents(out) == "old", built.isEmpty());
    QCOMPARE(Files(tree.GetPath("Resources"_s)), "language.sqlite"_s);
}

void tst_plugininterfacedata::usage()
{
    for (const QString &wrong : {QString(), "config bulid a b"_s, "config build a"_s, "config keys --xml"_s})
        QCOMPARE(Run(wrong).iExitCode, 2);
    QVERIFY(Run("config bulid"_s).strError.contains("unknown command config bulid"_s));
    const QString help = Run("--help"_s).strOut;
    QCOMPARE(help.count(QRegularExpression("\n  (config|language) "_s)), 6);
    QVERIFY(Run("language check --help"_s).strOut.contains("--reference <SHORT>"_s));
}

QTEST_GUILESS_MAIN(tst_plugininterfacedata)
#include "tst_plugininterfacedata.moc"
