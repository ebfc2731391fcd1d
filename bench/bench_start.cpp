// The start of a host: from main() until the objects exist that it creates before its plugins, with files that an
// earlier start has created. Each start is a process of its own, running this program again; the floor opens the same
// files and reads from each one once. strace tells which files are opened.

#include "support.h"

#include <database/ConfigDB.h>
#include <database/HandHistoryDB.h>
#include <database/LobbyListDB.h>
#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <database/TranslationDB.h>
#include <files/Console.h>
#include <files/Pathes.h>
#include <models/CasinoInfo.h>
#include <models/UserInfo.h>
#include <network/ApplicationProxy.h>
#include <plugin/GlobalDefines.h>
#include <settings/Config.h>
#include <settings/Settings.h>
#include <support/InstallationTree.h>

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTextStream>

#include <sqlite3.h>

namespace {

using Bench::Require;

const QString FONT_KEY = QStringLiteral("defaultfontfamily"); // set by the operator
const QString FONT = QStringLiteral("Serif");
const QString TAB_KEY = QStringLiteral("designertab"); // a setting of the installation
const QString TAB = QStringLiteral("Colours");

// The statements that SQLite has begun in this process, on all connections.
QStringList statements;

int RecordStatement(unsigned int, void *, void *statement, void *)
{
    char *text = sqlite3_expanded_sql(static_cast<sqlite3_stmt *>(statement));
    sqlite3 *connection = sqlite3_db_handle(static_cast<sqlite3_stmt *>(statement));
    statements.append(QString::number(quintptr(connection)) + QString::fromUtf8(text));
    sqlite3_free(text);
    return 0;
}

int RecordConnection(sqlite3 *connection, char **, const sqlite3_api_routines *)
{
    return sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, RecordStatement, nullptr);
}

QStringList LibraryStart()
{
    GlobalDefines::RegisterQML();
    CConsole::GetInstance();
    CConfigDB::GetInstance()->Init();
    CTranslationDB::GetInstance()->Init();
    CSettingsDB::GetInstance()->Init();
    CPlayerInfoDB::GetInstance()->Init();
    CLobbyListDB::GetInstance()->Init();
    CHandHistoryDB::GetInstance()->Init();
    CConfig::GetInstance();
    CUserInfo::GetInstance();
    CSettings::GetInstance();
    CCasinoInfo::GetInstance()->InitCasinoInfo();
    Globals::SetApplicationProxy();
    return {CConfig::GetInstance()->GetDefaultFontFamily(), CSettings::GetInstance()->GetDesignerTab()};
}

QString ReadOne(const QString &file, const QString &sql, const QString &key = QString())
{
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), file);
    database.setDatabaseName(file);
    QSqlQuery query(database);
    query.setForwardOnly(true);
    Require(database.open() && query.exec(sql), "a file of the floor");
    QString value;
    while (query.next())
        if (query.value(0).toString() == key)
            value = query.value(1).toString();
    return value;
}

QStringList FloorStart()
{
    const QString version = QStringLiteral("SELECT * FROM tbl_dbinfo");
    for (const QString &file : {Pathes::PlayerInfoDB(), Pathes::LobbyListDB(), Pathes::HandHistoryDB()})
        ReadOne(file, version);
    ReadOne(Pathes::LanguageDB(), QStringLiteral("SELECT * FROM tbl_availablelanguages"));
    return {ReadOne(Pathes::ConfigDB(), QStringLiteral("SELECT COV_cKey, COV_cValue FROM tbl_config"), FONT_KEY),
            ReadOne(Pathes::SettingsDB(), QStringLiteral("SELECT URS_cKey, URS_cValue FROM tbl_settings"), TAB_KEY)};
}

// The process that starts: prints its time, the number of its statements and of repeated ones, and the values that it
// has read.
int Start(const QElapsedTimer &clock, bool library)
{
    const QStringList read = library ? LibraryStart() : FloorStart();
    const qint64 time = clock.nsecsElapsed();
    const QSet<QString> different(statements.cbegin(), statements.cend());
    QTextStream(stdout) << time << '\n'
                        << statements.size() << '\n'
                        << statements.size() - different.size() << '\n'
                        << read.join(QLatin1Char('|'));
    return 0;
}

QStringList RunStart(const QString &side, const QStringList &tracer = {})
{
    QStringList command =
        tracer + QStringList{QCoreApplication::applicationFilePath(), QStringLiteral("--start"), side};
    const QString program = command.takeFirst();
    QProcess process;
    process.start(program, command, QIODevice::ReadOnly);
    Require(process.waitForFinished(60000) && process.exitCode() == 0, "a start");
    return QString::fromUtf8(process.readAll()).split(QLatin1Char('\n'));
}

// Counts the files that a start opens, and the installation's and user's files that it opens more than once.
void CountOpens(const QString &side)
{
    const QString trace = QStringLiteral("trace.txt");
    RunStart(side, {QStringLiteral("strace"), QStringLiteral("-f"), QStringLiteral("-qq"), QStringLiteral("-e"),
                    QStringLiteral("trace=open,openat"), QStringLiteral("-o"), trace});
    const QRegularExpression opened(QStringLiteral("open(?:at)?\\(.*\"(.+)\".* = [0-9]+$"));
    int opens = 0;
    QStringList data;
    const QStringList lines = QString::fromUtf8(ReadFile(trace)).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const QRegularExpressionMatch match = opened.match(line);
        opens += match.hasMatch() ? 1 : 0;
        if (match.captured(1).endsWith(QLatin1String(".sqlite")))
            data.append(match.captured(1));
    }
    Require(data.size() >= 6, "the trace of the files");
    Bench::Count("files_opened", opens);
    Bench::Count("data_files_opened_again", double(data.size() - QSet<QString>(data.cbegin(), data.cend()).size()));
}

void AddSide(Bench::SRow<QString> row, const char *name)
{
    const QString side = QString::fromLatin1(name);
    const auto work = [side](int) {
        QElapsedTimer clock;
        clock.start();
        const QStringList told = RunStart(side);
        Bench::idleSeconds = double(clock.nsecsElapsed() - told.at(0).toLongLong()) / 1e9;
        return told;
    };
    const auto tell = [side](const QStringList &told) {
        Bench::Count("statements", told.at(1).toDouble());
        Bench::Count("statements_repeated", told.at(2).toDouble());
        CountOpens(side);
        return told.at(3);
    };
    row.Side(name, work, tell);
}

// Creates the operator's files, and those that an earlier start would have left.
void MakeFiles(const CInstallationTree &installation)
{
    for (const char *file : {"Resources/config.sqlite", "Resources/language.sqlite"})
        installation.WriteFile(QString::fromLatin1(file), QByteArray());
    QDir().mkpath(Pathes::Tmp());
    RunStart(QStringLiteral("library"));
    CConfigDB *config = CConfigDB::GetInstance();
    CTranslationDB *translation = CTranslationDB::GetInstance();
    CSettingsDB *settings = CSettingsDB::GetInstance();
    Require(config->Init() && translation->Init() && settings->Init(), "the databases");
    Require(config->Exec(QStringLiteral("CREATE TABLE tbl_config (COV_cKey TEXT PRIMARY KEY, COV_cValue TEXT)")) &&
                config->Insert(CConfigDB::strTableName,
                               {{QStringLiteral("COV_cKey"), FONT_KEY}, {QStringLiteral("COV_cValue"), FONT}}) &&
                translation->Exec(QStringLiteral("CREATE TABLE tbl_availablelanguages (AVL_iID INTEGER PRIMARY KEY, "
                                                 "AVL_cShort TEXT, AVL_cLong TEXT)")) &&
                settings->Insert(CSettingsDB::strTableName, {{QStringLiteral("URS_cUser"), QString()},
                                                             {QStringLiteral("URS_cArea"), QStringLiteral("client")},
                                                             {QStringLiteral("URS_cKey"), TAB_KEY},
                                                             {QStringLiteral("URS_cValue"), TAB}}),
            "the rows");
}

} // namespace

int main(int argc, char **argv)
{
    QElapsedTimer clock;
    clock.start();
    const bool start = argc > 2 && QByteArray(argv[1]) == "--start";
    if (start)
        sqlite3_auto_extension(reinterpret_cast<void (*)()>(RecordConnection));
    const QCoreApplication application(argc, argv);
    if (start)
        return Start(clock, QByteArray(argv[2]) == "library");
    const CInstallationTree installation;
    MakeFiles(installation);
    Bench::SRow<QString> row{"start", {1}};
    row.Prepare = [](int) {};
    row.iIterations = 5;
    AddSide(row, "library");
    AddSide(row, "floor");
    return Bench::RunRows(argc, argv);
}
