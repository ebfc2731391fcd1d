#include "Tour.h"

#include <files/Pathes.h>

#include <QDir>
#include <QFileInfo>
#include <QtTest>

#include <algorithm>

namespace {

// Who has changed something last is told by whole seconds.
constexpr int ONE_SECOND_MS = 1100;
constexpr int FILE_RATE = 1 << 20; // of the web server, bytes a second

const QString SERVER_FOLDER = "web"_s;
const QString SERVER_FILE = SERVER_FOLDER + QLatin1String("/web.sqlite");
// A setting's key and value, or a note's player and text.
const QString SERVER_ROWS =
    "SELECT coalesce(json_extract(ROW_cKey, '$.key'), json_extract(ROW_cKey, '$.nick')), "
    "coalesce(json_extract(ROW_cContent, '$.value'), json_extract(ROW_cContent, '$.note')) FROM tbl_row"_s;
const QString SECOND = "second"_s;
const QString THIRD = "third"_s;
constexpr char OWN[] = "Magnolia";
constexpr char OTHER[] = "Robin";
constexpr char OWN_AVATAR[] = "1001";
constexpr char OTHER_AVATAR[] = "1002";

constexpr char FIRST_NOTE[] = "Bluffs on the river|tag 3|buddy";
constexpr char EARLIER_NOTE[] = "Noted earlier|tag 3|buddy";
constexpr char LATER_NOTE[] = "Noted later|tag 3|buddy";
constexpr char LAST_NOTE[] = "Noted last|tag 3|buddy";

QStringList ToStrings(std::initializer_list<const char *> words)
{
    QStringList strings;
    for (const char *word : words)
        strings.append(QString::fromUtf8(word));
    return strings;
}

} // namespace

void CTour::ShowNotes()
{
    QDir(GetFolder(SERVER_FOLDER)).removeRecursively();
    Do({"The user opens the tab of the players", "open players", OWN, "|tag 0|"});
    Do({"And notes something of another player", "note", OTHER, FIRST_NOTE});
    for (const char *language : {"Français", "English", "Deutsch"})
        Do({"All that fits in every language", "language", "", language});
    Do({"The user chooses a filter", "filter", "", "omaha"});
    Do({"And sounds", "sounds", "", "true"});
    MakeRules();
    StartWebServer();
    Do({"The user chooses an own avatar", "choose avatar", OWN, OWN_AVATAR});
    See("The web server has it all"_s, [this] {
        return SeeServerRows({"Robin|Bluffs on the river", "selectedlanguage|3", "ringgamefilter|omaha",
                              "soundsenabled|true", "customcurrent|1001"});
    });
    ShowSecondMachine();
    ShowLostWebServer();
    ShowReturningMachine();
    ShowFreshMachine();
    ShowWhatStays();
    Do({"The user goes back to English", "language", "", "English"});
    Do({"And chooses a picture for another player", "choose avatar", OTHER, OTHER_AVATAR});
    Do({"A picture of the tab of the players", "picture", "", "players"});
    ChooseNextTab();
    Do({"And to no filter", "filter", "", ""});
}

void CTour::ShowSecondMachine()
{
    StartSecondMachine(SECOND, true);
    DoThere({"The user logs in on a machine that has nothing", "log in"});
    DoThere({"The note comes", "open players", OTHER, FIRST_NOTE});
    DoThere({"So does the filter", "see filter", "", "omaha"});
    DoThere({"So do the sounds", "see sounds", "", "true"});
    DoThere({"So does the language", "see language", "", "Deutsch"});
    DoThere({"So does the avatar, and its picture", "see avatar", OWN, OWN_AVATAR});
    DoThere({"Another player's picture comes too", "choose avatar", OTHER, OTHER_AVATAR});
    DoThere({"A picture of that", "picture", "", "players"});
}

// Both change the same note, the second machine later, and each something else.
void CTour::ShowLostWebServer()
{
    m_webServer.Kill();
    Do({"Without the web server this machine changes a note", "note", OTHER, EARLIER_NOTE});
    Do({"Another one", "note", "Fern", "Folds|tag 1|"});
    Do({"And the filter", "filter", "", "stud"});
    QTest::qWait(ONE_SECOND_MS);
    DoThere({"The other one changes the same note later", "note", OTHER, LATER_NOTE});
    DoThere({"Another one", "note", "Old Tom", "Calls|tag 5|"});
    DoThere({"And the sounds", "sounds", "", "false"});
    StartWebServer();
    Do({"What the other machine has changed comes", "see player", "Old Tom", "Calls|tag 5|"});
    Do({"And its sounds", "see sounds", "", "false"});
    Do({"And its later note", "see player", OTHER, LATER_NOTE});
    DoThere({"What the first machine has changed comes", "see player", "Fern", "Folds|tag 1|"});
    DoThere({"And its filter", "see filter", "", "stud"});
    DoThere({"But not its earlier note", "see player", OTHER, LATER_NOTE});
    EndSecondMachine();
}

void CTour::ShowReturningMachine()
{
    Do({"While that machine is away, a note changes", "note", OTHER, LAST_NOTE});
    Do({"And the filter", "filter", "", "omaha"});
    const auto isThere = [this] { return SeeServerRows({"Robin|Noted last", "ringgamefilter|omaha"}); };
    See("The web server has them"_s, isThere);
    StartSecondMachine(SECOND, false);
    DoThere({"It comes back with its old rows", "log in", "", OWN});
    DoThere({"It gets the newer note", "open players", OTHER, LAST_NOTE});
    DoThere({"And the newer filter", "see filter", "", "omaha"});
    DoThere({"And changes something itself", "note", "Old Tom", "Calls|tag 4|"});
    Do({"Which comes", "see player", "Old Tom", "Calls|tag 4|"});
    Do({"But not its old note", "see player", OTHER, LAST_NOTE});
    See("Nor has the web server that"_s, isThere);
    EndSecondMachine();
}

void CTour::ShowFreshMachine()
{
    StartSecondMachine(THIRD, true);
    DoThere({"Another new machine, with a language chosen before the login", "language", "", "Français"});
    DoThere({"The user logs in", "log in"});
    DoThere({"The user's language comes", "see language", "", "Deutsch"});
    Do({"But not that language", "see language", "", "Deutsch"});
    EndSecondMachine();
}

void CTour::ShowWhatStays()
{
    const QString query = "SELECT DISTINCT URS_cUser, URS_cKey FROM tbl_settings WHERE URS_cKey LIKE "
                          "'winpos%' OR URS_cKey = 'lastusername' ORDER BY URS_cKey"_s;
    const QString second =
        GetClientFolder(GetFolder(SECOND)) + QLatin1String("/../Tmp/") + QFileInfo(Pathes::SettingsDB()).fileName();
    const QStringList other{"|lastusername"_s, "|winpos[client]"_s};
    const QStringList own = other + QStringList{"|winpos[table]"_s}; // here alone a table was closed
    See("No window's place and no user's name has left its machine"_s, [&] {
        const QStringList server = QueryDatabase(GetFolder(SERVER_FILE), SERVER_ROWS);
        const bool isSeen = QueryDatabase(Pathes::SettingsDB(), query) == own &&
                            QueryDatabase(second, query) == other && !server.isEmpty() &&
                            server.filter("winpos"_s).isEmpty() && server.filter("lastusername"_s).isEmpty();
        return isSeen ? own.join(", "_s) : QString();
    });
}

void CTour::StartWebServer()
{
    Step(
        "The web server starts"_s,
        [this] {
            QDir().mkpath(GetFolder(SERVER_FOLDER));
            m_strServerLine =
                m_webServer.Start(m_options.strWebServer,
                                  {"--database"_s, GetFolder(SERVER_FILE), "--pictures"_s, m_options.strPictures,
                                   "--files"_s, GetFolder("files"_s), "--rate"_s, QString::number(FILE_RATE),
                                   "--port"_s, QString::number(m_options.usWebPort), "--key"_s, WEB_KEY});
        },
        [this] { return m_strServerLine; });
}

// A machine that isn't new has the installation of its last run.
void CTour::StartSecondMachine(const QString &name, bool isNew)
{
    if (m_bFailed)
        return;
    if (isNew)
        MakeInstallation(GetFolder(name), m_options.usWebPort);
    m_secondMachine.Start(GetFolder(name), m_options.usPort);
    DoThere({"Another client starts and connects", "connect"});
}

void CTour::EndSecondMachine()
{
    See("The other client ends"_s, [this] { return m_secondMachine.End() ? "as it should"_s : QString(); });
}

void CTour::Do(TWords step)
{
    TakeStep(ToStrings(step));
}

void CTour::DoThere(TWords step)
{
    m_bFailed = m_bFailed || !m_secondMachine.Do(ToStrings(step).join(QLatin1Char('\t')));
}

QString CTour::GetFolder(const QString &name) const
{
    return m_options.strOutput + QLatin1Char('/') + name;
}

QString CTour::SeeServerRows(TWords rows)
{
    const QStringList stored = QueryDatabase(GetFolder(SERVER_FILE), SERVER_ROWS);
    const QStringList expected = ToStrings(rows);
    m_strFault = stored.join(QLatin1String(", "));
    const bool isSeen =
        std::all_of(expected.begin(), expected.end(), [&](const QString &row) { return stored.contains(row); });
    return isSeen ? expected.join(QLatin1String(", ")) : QString();
}
