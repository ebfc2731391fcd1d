#include "Databases.h"

#include <database/ConfigDB.h>
#include <database/HandHistoryDB.h>
#include <database/LobbyListDB.h>
#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <database/TranslationDB.h>
#include <files/Pathes.h>

#include <QDir>

namespace {

struct SDatabase
{
    QString strClass;
    QString strPath;
    CLocalDB *pDatabase;
};

QString Version(CLocalDB &database)
{
    QHash<QString, QVariant> row;
    const bool versioned = database.SelectOne(row, QStringLiteral("tbl_dbinfo"), {QStringLiteral("DBI_cValue")},
                                              {{QStringLiteral("DBI_cKey"), QStringLiteral("version")}});
    return versioned ? QLatin1String("version ") + row.value(QStringLiteral("DBI_cValue")).toString()
                     : QStringLiteral("without a version; comes with an installation");
}

QString Section(const SDatabase &database)
{
    const QString path = QDir(Pathes::Root()).relativeFilePath(database.strPath);
    QString section =
        QStringLiteral("\n## %1\n\n`%2`, %3\n").arg(database.strClass, path, Version(*database.pDatabase));
    QList<QHash<QString, QVariant>> tables;
    database.pDatabase->SelectAll(tables, QStringLiteral("sqlite_master"), {QStringLiteral("sql")},
                                  {{QStringLiteral("type"), QStringLiteral("table")}}, 0);
    for (const auto &table : qAsConst(tables))
        section += QStringLiteral("\n```\n%1\n```\n").arg(table.value(QStringLiteral("sql")).toString());
    return section;
}

} // namespace

QString Databases::Page()
{
    QString page = QStringLiteral(
        "# Databases {#databases}\n\n"
        "The SQLite files of an installation, each with its tables as the file itself has them. The users' "
        "files are made by the library, which climbs from the version of a file to its own when it opens "
        "it; see CLocalDB.\n");
    const SDatabase databases[] = {
        {QStringLiteral("CConfigDB"), Pathes::ConfigDB(), CConfigDB::GetInstance()},
        {QStringLiteral("CTranslationDB"), Pathes::LanguageDB(), CTranslationDB::GetInstance()},
        {QStringLiteral("CSettingsDB"), Pathes::SettingsDB(), CSettingsDB::GetInstance()},
        {QStringLiteral("CPlayerInfoDB"), Pathes::PlayerInfoDB(), CPlayerInfoDB::GetInstance()},
        {QStringLiteral("CLobbyListDB"), Pathes::LobbyListDB(), CLobbyListDB::GetInstance()},
        {QStringLiteral("CHandHistoryDB"), Pathes::HandHistoryDB(), CHandHistoryDB::GetInstance()},
    };
    for (const SDatabase &database : databases) {
        if (!database.pDatabase->Init())
            return QString();
        page += Section(database);
    }
    return page;
}
