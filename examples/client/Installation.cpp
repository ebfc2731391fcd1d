#include "Installation.h"

#include "Look.h"
#include "PluginManager.h"

#include <common/Texts.h>
#include <database/ConfigDB.h>
#include <database/HandHistoryDB.h>
#include <database/LobbyListDB.h>
#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <database/TranslationDB.h>
#include <files/Pathes.h>
#include <settings/Config.h>

#include <QCoreApplication>
#include <QDir>
#include <QMessageBox>
#include <QPushButton>
#include <QSqlDatabase>

#include <algorithm>

namespace {

// Returns the text, or plain English: the catalogue may be what is missing.
QString GetCatalogueText(const char *key, const char *english)
{
    const QString text = Texts::Get(key);
    const bool isKnown = !text.isEmpty() && !text.contains(QLatin1String("NOT IN TRANSLATION"));
    return isKnown ? text : QString::fromLatin1(english);
}

QString GetFileText(const char *key, const char *english, const QString &file)
{
    const QString path = QDir::cleanPath(QDir().absoluteFilePath(file));
    return GetCatalogueText(key, english).replace(QLatin1String("#file#"), QDir::toNativeSeparators(path));
}

// Returns whether Qt has plugins of a kind, without loading them.
bool HasQtPlugins(const QString &kind)
{
    const QStringList folders = QCoreApplication::libraryPaths();
    return std::any_of(folders.begin(), folders.end(), [&](const QString &folder) {
        return !QDir(folder + QLatin1Char('/') + kind).isEmpty(QDir::Files);
    });
}

// A damaged file opens, too, but has no table.
bool HasTable(CLocalDB *database, const QString &table)
{
    QList<QHash<QString, QVariant>> rows;
    return database->SelectAll(rows, QStringLiteral("sqlite_master"), {}, {{QStringLiteral("name"), table}}, 1);
}

void FindDatabaseProblems(QVector<Installation::SProblem> &problems)
{
    if (!HasTable(CConfigDB::GetInstance(), CConfigDB::strTableName))
        problems.append(
            {GetFileText("PROBLEM_CONFIG", "#file# is missing or damaged: the client works with its defaults.",
                         Pathes::ConfigDB())});
    if (!HasTable(CTranslationDB::GetInstance(), CTranslationDB::strTableNameTranslations))
        problems.append(
            {GetFileText("", "#file# is missing or damaged: texts are shown by their names.", Pathes::LanguageDB())});
    for (const auto &[database, file] :
         {std::pair<CLocalDB *, QString>{CSettingsDB::GetInstance(), Pathes::SettingsDB()},
          {CPlayerInfoDB::GetInstance(), Pathes::PlayerInfoDB()},
          {CLobbyListDB::GetInstance(), Pathes::LobbyListDB()},
          {CHandHistoryDB::GetInstance(), Pathes::HandHistoryDB()}}) {
        if (!database->IsOpen())
            problems.append(
                {GetFileText("PROBLEM_USER_FILE", "#file# can't be used: what you do now will be forgotten.", file),
                 true});
    }
}

void FindPluginProblems(const CPluginManager &plugins, QVector<Installation::SProblem> &problems)
{
    for (const QString &file : plugins.GetUnusableFiles())
        problems.append(
            {GetFileText("PROBLEM_PLUGIN", "#file# can't be used: the client works without this plugin.", file)});
    if (plugins.GetPlugins().isEmpty())
        problems.append(
            {GetFileText("PROBLEM_NO_PLUGINS", "#file# is missing or has no plugin: there is nothing to show.",
                         Pathes::Plugins()),
             false, true});
}

} // namespace

void Installation::MakeUserFolder()
{
    const QString folder = Pathes::Tmp();
    if (!QDir(folder).exists() && QDir().mkpath(folder))
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QStringList Installation::FindOpenFiles()
{
    constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    QStringList files{Pathes::SettingsDB(), Pathes::PlayerInfoDB(), Pathes::LobbyListDB(), Pathes::HandHistoryDB()};
    const auto isPrivate = [=](const QString &file) { return !(QFile::permissions(file) & others); };
    files.erase(std::remove_if(files.begin(), files.end(), isPrivate), files.end());
    return files;
}

CServerTrust Installation::ReadTrust(const QString &fileName, QString *error)
{
    CServerTrust trust;
    const QString usual = Pathes::Resources() + QLatin1String("/authority.pem");
    const bool isGiven = !fileName.isEmpty() || QFile::exists(usual);
    if (!isGiven || !trust.AddFile(fileName.isEmpty() ? usual : fileName, QString(), error))
        trust.Add(QSslConfiguration::systemCaCertificates());
    return trust;
}

QVector<CLocalDB *> Installation::GetDatabases()
{
    return {CConfigDB::GetInstance(),     CTranslationDB::GetInstance(), CSettingsDB::GetInstance(),
            CPlayerInfoDB::GetInstance(), CLobbyListDB::GetInstance(),   CHandHistoryDB::GetInstance()};
}

// Plugins of Qt come first: the linker doesn't notice when they are missing.
QVector<Installation::SProblem> Installation::FindProblems(const CPluginManager &plugins, const QString &trustError)
{
    QVector<SProblem> problems;
    if (!HasQtPlugins(QStringLiteral("mediaservice")) && !HasQtPlugins(QStringLiteral("multimedia"))) // 5, and 6
        problems.append(
            {GetCatalogueText("PROBLEM_SOUND", "Qt's multimedia plugins aren't installed: nothing is heard.")});
    if (QSqlDatabase::isDriverAvailable(QStringLiteral("QSQLITE")))
        FindDatabaseProblems(problems);
    else
        problems.append(
            {QStringLiteral("Qt's SQLite driver isn't installed: texts are shown by their names, and what "
                            "you do now will be forgotten.")});
    const QStringList sheets = Look::FindUnreadableSheets();
    for (const QString &sheet : sheets)
        problems.append(
            {GetFileText("PROBLEM_SHEET", "#file# is missing or damaged: the client looks plain.", sheet)});
    if (!trustError.isEmpty())
        problems.append({GetCatalogueText("PROBLEM_AUTHORITY", "Nobody can tell who the servers are: #reason#.")
                             .replace(QLatin1String("#reason#"), trustError),
                         false, true});
    FindPluginProblems(plugins, problems);
    return problems;
}

void Installation::ShowProblems(const QVector<SProblem> &problems, QWidget *window, const std::function<void()> &goOn)
{
    const auto has = [&](const auto &is) { return std::any_of(problems.begin(), problems.end(), is); };
    QStringList lines;
    for (const SProblem &problem : problems)
        lines.append(problem.strText);
    if (has([](const SProblem &problem) { return !problem.bIsOfUser; }))
        lines.append(GetCatalogueText("PROBLEMS_REINSTALL", "Install the client again to repair it."));
    if (has([](const SProblem &problem) { return problem.bIsOfUser; }))
        lines.append(GetCatalogueText("PROBLEMS_STORAGE",
                                      "See that the disk has room, and that you may write to the files' folder."));
    auto *box = new QMessageBox(QMessageBox::Warning, CConfig::GetInstance()->GetProductname(),
                                GetCatalogueText("PROBLEMS_TITLE", "Something is wrong with the client's files."),
                                QMessageBox::NoButton, window);
    box->setObjectName(QStringLiteral("problems"));
    box->setTextFormat(Qt::PlainText);
    box->setInformativeText(lines.join(QLatin1String("\n\n")));
    QPushButton *quit = box->addButton(GetCatalogueText("PROBLEMS_QUIT", "&Quit"), QMessageBox::RejectRole);
    QPushButton *stay = nullptr;
    if (!has([](const SProblem &problem) { return problem.bIsHopeless; }))
        stay = box->addButton(GetCatalogueText("PROBLEMS_GO_ON", "&Go on anyway"), QMessageBox::AcceptRole);
    box->setDefaultButton(quit);
    box->setEscapeButton(quit);
    QObject::connect(box, &QDialog::finished, window, [=] {
        if (box->clickedButton() == stay)
            goOn();
        else
            QCoreApplication::quit();
    });
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}
