#include "SqliteDatabase.h"

#include "StoreTables.h"

#include <algorithm>

namespace {

// A list is called by its user, in lower case since case tells no users apart, and by which it is. The past is what
// rows have been, until they got a later stamp. MAC_bMet is SMachine::bCaughtUp.
const QLatin1String SCHEMA[] = {
    QLatin1String("CREATE TABLE tbl_session (SES_cID TEXT PRIMARY KEY, SES_cRest TEXT, SES_cUser TEXT,\n"
                  "  SES_cMachine TEXT, SES_iExpiry INTEGER)"),
    QLatin1String("CREATE TABLE tbl_machine (MAC_cList TEXT, MAC_cMachine TEXT, MAC_iBase INTEGER,\n"
                  "  MAC_iOffered INTEGER, MAC_bMet INTEGER, PRIMARY KEY(MAC_cList, MAC_cMachine))"),
    QLatin1String("CREATE TABLE tbl_row (ROW_cList TEXT, ROW_cKey TEXT, ROW_cContent TEXT, ROW_iChanged INTEGER,\n"
                  "  ROW_iStamp INTEGER, PRIMARY KEY(ROW_cList, ROW_cKey))"),
    QLatin1String("CREATE INDEX idx_row_stamp ON tbl_row (ROW_cList, ROW_iStamp)"),
    QLatin1String("CREATE TABLE tbl_past (PST_cList TEXT, PST_cKey TEXT, PST_cContent TEXT, PST_iTime INTEGER,\n"
                  "  PST_iUntil INTEGER, PRIMARY KEY(PST_cList, PST_cKey, PST_iTime, PST_cContent))")};

// What a machine may hold of a row: what it has sent, and what it has been offered since, by how far the offer goes.
// In version 2 a row with an offer of 0 says that it may hold none yet.
const QLatin1String HELD_SCHEMA("CREATE TABLE tbl_held (HLD_cList TEXT, HLD_cMachine TEXT, HLD_cKey TEXT,\n"
                                "  HLD_cContent TEXT, HLD_iOffer INTEGER,\n"
                                "  PRIMARY KEY(HLD_cList, HLD_cMachine, HLD_cKey, HLD_cContent))");

// From version 3 on a flag says so, which halves what a new machine costs.
const QLatin1String FLAG_SCHEMA[] = {
    QLatin1String("ALTER TABLE tbl_held RENAME TO tbl_heldbefore"),
    QLatin1String("CREATE TABLE tbl_held (HLD_cList TEXT, HLD_cMachine TEXT, HLD_cKey TEXT, HLD_cContent TEXT,\n"
                  "  HLD_iOffer INTEGER, HLD_bEmpty INTEGER,\n"
                  "  PRIMARY KEY(HLD_cList, HLD_cMachine, HLD_cKey, HLD_cContent)) WITHOUT ROWID"),
    QLatin1String("INSERT INTO tbl_held SELECT HLD_cList, HLD_cMachine, HLD_cKey, HLD_cContent, HLD_iOffer,\n"
                  "  EXISTS (SELECT 1 FROM tbl_heldbefore AS empty WHERE empty.HLD_cList = held.HLD_cList\n"
                  "    AND empty.HLD_cMachine = held.HLD_cMachine AND empty.HLD_cKey = held.HLD_cKey\n"
                  "    AND empty.HLD_iOffer = 0)\n"
                  "  FROM tbl_heldbefore AS held WHERE HLD_iOffer > 0"),
    QLatin1String("DROP TABLE tbl_heldbefore")};

// From version 4 on the sessions are numbered, and what a machine has sent itself has the time with which it did.
const QLatin1String SESSION_SCHEMA[] = {
    QLatin1String("ALTER TABLE tbl_held ADD COLUMN HLD_iSent INTEGER DEFAULT 0"),
    QLatin1String("ALTER TABLE tbl_session RENAME TO tbl_sessionbefore"),
    QLatin1String("CREATE TABLE tbl_session (SES_iNumber INTEGER PRIMARY KEY AUTOINCREMENT, SES_cID TEXT UNIQUE,\n"
                  "  SES_cRest TEXT, SES_cUser TEXT, SES_cMachine TEXT, SES_iExpiry INTEGER)"),
    QLatin1String("INSERT INTO tbl_session SELECT NULL, SES_cID, SES_cRest, SES_cUser, SES_cMachine, SES_iExpiry\n"
                  "  FROM tbl_sessionbefore ORDER BY SES_iExpiry, rowid"),
    QLatin1String("DROP TABLE tbl_sessionbefore"),
    QLatin1String("ALTER TABLE tbl_machine ADD COLUMN MAC_iSession INTEGER DEFAULT 0")};

} // namespace

bool CSqliteDatabase::CFile::CreateDBVersion(unsigned int version)
{
    const auto exec = [this](const auto &sql) { return Exec(sql); };
    if (version == 5)
        return std::all_of(std::begin(StoreTables::SESSION_INDEXES), std::end(StoreTables::SESSION_INDEXES), exec);
    if (version == 4)
        return std::all_of(std::begin(SESSION_SCHEMA), std::end(SESSION_SCHEMA), exec);
    if (version == 3)
        return std::all_of(std::begin(FLAG_SCHEMA), std::end(FLAG_SCHEMA), exec);
    if (version == 2)
        return Exec(HELD_SCHEMA);
    return std::all_of(std::begin(SCHEMA), std::end(SCHEMA), exec);
}

bool CSqliteDatabase::Begin(const QString &, bool &waited, QSqlError &error)
{
    waited = false;
    return Exec("BEGIN IMMEDIATE", error);
}

bool CSqliteDatabase::End(bool commit, QSqlError &error)
{
    if (commit && Exec("COMMIT", error))
        return true;
    QSqlError ignored;
    Exec("ROLLBACK", ignored);
    return false;
}

QString CSqliteDatabase::Adapt(QString sql) const
{
    return sql.remove(QLatin1String("%digest"))
        .replace(QLatin1String("%texts("), QLatin1String("json_each("))
        .replace(QLatin1String("%join"), QLatin1String("CROSS JOIN"))
        .remove(QLatin1String("%end"))
        .replace(QLatin1String("%rows("), QLatin1String("json_each("));
}

bool CSqliteDatabase::Exec(const char *sql, QSqlError &error)
{
    QSqlQuery query = m_file.GetQuery();
    const bool good = query.exec(QString::fromLatin1(sql));
    error = query.lastError();
    return good;
}
