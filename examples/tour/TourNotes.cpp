#include "Tour.h"

#include <QDir>

#include <algorithm>

namespace {

constexpr int FILE_RATE = 1 << 20; // of the web server, bytes a second

const QString SERVER_FOLDER = "web"_s;
const QString SERVER_FILE = SERVER_FOLDER + QLatin1String("/web.sqlite");
// A setting's key and value, or a note's player and text.
const QString SERVER_ROWS =
    "SELECT coalesce(json_extract(ROW_cKey, '$.key'), json_extract(ROW_cKey, '$.nick')), "
    "coalesce(json_extract(ROW_cContent, '$.value'), json_extract(ROW_cContent, '$.note')) FROM tbl_row"_s;
constexpr char OWN[] = "Magnolia";
constexpr char OTHER[] = "Robin";
constexpr char OWN_AVATAR[] = "1001";
constexpr char OTHER_AVATAR[] = "1002";

constexpr char FIRST_NOTE[] = "Bluffs on the river|tag 3|buddy";

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
    Do({"The user opens the tab of the players", "open players"});
    Do({"The own name is refused", "add player", OWN, "PLAYERS_YOURSELF"});
    Do({"With a message", "answer", "OPTIONS_OK"});
    Do({"The user notes something of another player", "note", OTHER, FIRST_NOTE});
    Do({"And gives stars, first with a key and then with the mouse", "rate", OTHER, "4"});
    Do({"A search for what nobody is called and no note says", "search", "raises", ""});
    Do({"A picture of that", "picture", "", "players-no-match"});
    Do({"A search for a word of a note", "search", " RIVER", OTHER});
    Do({"Without a search all are back", "search", "", OTHER});
    Do({"The row has the tag's colour and the mark of a buddy", "see player", OTHER, FIRST_NOTE});
    for (const char *language : {"Français", "English", "Deutsch"})
        Do({"All that fits in every language", "language", "", language});
    Do({"The user chooses a filter", "filter", "", "omaha"});
    MakeRules();
    StartWebServer();
    Do({"The options offer pictures, which the web server has", "offer pictures", OWN_AVATAR, "options-picture"});
    Do({"The user chooses an own one", "choose avatar", OWN, OWN_AVATAR});
    See("The web server has it all"_s, [this] {
        return SeeServerRows(
            {"Robin|Bluffs on the river", "selectedlanguage|3", "ringgamefilter|omaha", "customcurrent|1001"});
    });
    ShowSecondMachine();
    ShowLostWebServer();
    Do({"The user goes back to English", "language", "", "English"});
    Do({"Another player gets a picture", "choose avatar", OTHER, OTHER_AVATAR});
    Do({"A picture of the tab of the players", "picture", "", "players"});
    ChooseNextTab();
    Do({"And to no filter", "filter", "", ""});
}

void CTour::ShowSecondMachine()
{
    StartSecondMachine("second"_s);
    DoThere({"The user opens the tab of the players on a machine that has nothing", "open players"});
    DoThere({"It says why nobody is there", "see text", "", "PLAYERS_LOG_IN"});
    DoThere({"A picture of that", "picture", "", "players-logged-out"});
    DoThere({"The user logs in", "log in"});
    DoThere({"The note comes", "see player", OTHER, FIRST_NOTE});
    DoThere({"So does the filter", "see filter", "", "omaha"});
    DoThere({"So does the language", "see language", "", "Deutsch"});
    DoThere({"So does the avatar, and its picture", "see avatar", OWN, OWN_AVATAR});
    DoThere({"Another player's picture comes too", "choose avatar", OTHER, OTHER_AVATAR});
    DoThere({"A picture of that", "picture", "", "players"});
}

// Each changes something meanwhile.
void CTour::ShowLostWebServer()
{
    m_webServer.Kill();
    Do({"Without the web server this machine changes a note", "note", "Fern", "Folds|tag 1|"});
    Do({"And the filter", "filter", "", "stud"});
    DoThere({"The other one changes another note", "note", "Old Tom", "Calls|tag 5|buddy"});
    StartWebServer();
    Do({"What the other machine has changed comes", "see player", "Old Tom", "Calls|tag 5|buddy"});
    DoThere({"What the first machine has changed comes", "see player", "Fern", "Folds|tag 1|"});
    DoThere({"And its filter", "see filter", "", "stud"});
    Do({"The user removes a player, and is asked", "remove player", "Fern", "PLAYERS_REMOVE_NOTED"});
    Do({"A picture of that", "picture", "", "players-question"});
    Do({"The user wants it", "answer", "PLAYERS_REMOVE"});
    DoThere({"There the note is gone too", "see player", "Fern", "|tag 0|"});
    Do({"The player isn't back here", "lack player", "Fern"});
    EndSecondMachine();
}

void CTour::StartWebServer()
{
    Step(
        "The web server starts"_s,
        [this] {
            QDir().mkpath(GetFolder(SERVER_FOLDER));
            const QStringList arguments{"--database"_s, GetFolder(SERVER_FILE),
                                        "--pictures"_s, m_options.strPictures,
                                        "--files"_s,    GetFolder("files"_s),
                                        "--rate"_s,     QString::number(FILE_RATE),
                                        "--port"_s,     QString::number(m_options.usWebPort),
                                        "--key"_s,      WEB_KEY};
            m_strServerLine = m_webServer.Start(m_options.strWebServer, arguments + GetKeyArguments());
        },
        [this] { return m_strServerLine; });
}

void CTour::StartSecondMachine(const QString &name)
{
    if (m_bFailed)
        return;
    MakeInstallation(GetFolder(name), m_options.usWebPort, m_options.strKeys);
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
