#pragma once

#include "support.h"

#include <database/ConfigDB.h>
#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <files/Pathes.h>
#include <models/PlayerLists.h>
#include <models/UserInfo.h>
#include <settings/PlayerInfo.h>
#include <support/InstallationTree.h>
#include <time/CasinoTime.h>

#include <sqlite3.h>

#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QSharedPointer>
#include <QSqlQuery>

#include <malloc.h>

// Notes of one user on many players, through the library and through prepared statements of the SQLite C API on a
// connection of its own.

namespace Notes {

using Bench::Require;

constexpr unsigned int TIME_FOUND = 1000;
constexpr unsigned int TIME_WRITTEN = 2000;
inline const QString USER = QStringLiteral("alice");

inline QString Nickname(int number)
{
    return QStringLiteral("player%1").arg(number);
}

inline QString Note(int number)
{
    return QStringLiteral("raises with nothing before the flop, %1 times seen").arg(number);
}

// Destroys all players, so that the heap is as at the start and new ones don't fill gaps.
inline void ForgetPlayers()
{
    CPlayerModel::DestroyInstances();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    malloc_trim(0);
}

// Returns the flags of a player; one in ten is a buddy.
inline int Flags(int number)
{
    return number % 10 == 0 ? 1 : 0;
}

template <typename Player>
using TPlayers = QHash<QString, QSharedPointer<Player>>;

/// The library's files in an installation, and the C API's connection to the notes.
class CFile
{
public:
    CFile()
    {
        CConfigDB::GetInstance()->Init(); // there is no file, so that the defaults are used
        Require(CSettingsDB::GetInstance()->Init() && CPlayerInfoDB::GetInstance()->Init(), "the files");
        Require(sqlite3_open(QFile::encodeName(Pathes::PlayerInfoDB()), &m_pFile) == SQLITE_OK, "the connection");
        Run("PRAGMA synchronous = NORMAL"); // in addition to the write-ahead log that the library has enabled
    }
    ~CFile() { sqlite3_close(m_pFile); }
    Q_DISABLE_COPY_MOVE(CFile)

    void Run(const char *sql) { Require(sqlite3_exec(m_pFile, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql); }

    sqlite3_stmt *Prepare(const char *sql)
    {
        sqlite3_stmt *statement = nullptr;
        Require(sqlite3_prepare_v2(m_pFile, sql, -1, &statement, nullptr) == SQLITE_OK, sql);
        return statement;
    }

    // Fills the file with the given number of notes of the user, who is logged in and whose notes no model has.
    void Fill(int notes)
    {
        CUserInfo *user = CUserInfo::GetInstance();
        user->SetLoggedIn(QString());
        CPlayerLists::GetInstance()->ResetBuddyList();
        ForgetPlayers();
        Run("BEGIN");
        Run("DELETE FROM tbl_playerinfo");
        Write(notes, TIME_FOUND);
        Run("COMMIT");
        Run("PRAGMA wal_checkpoint(TRUNCATE)");
        CCasinoTime::GetInstance()->SetTimeUTCServer(TIME_WRITTEN);
        user->SetLoggedIn(USER);
    }

    // Writes notes; each row is a transaction of its own unless one has been begun.
    int Write(int notes, unsigned int time)
    {
        sqlite3_stmt *insert = Prepare("INSERT INTO tbl_playerinfo (PIN_cUser, PIN_cPlayer, PIN_cNote, PIN_iTagID,"
                                       " PIN_iPlayerFlags, PIN_iTimestamp) VALUES ('alice', ?, ?, 3, ?, ?)"
                                       " ON CONFLICT (PIN_cUser, PIN_cPlayer) DO UPDATE SET"
                                       " PIN_cNote = excluded.PIN_cNote, PIN_iTimestamp = excluded.PIN_iTimestamp");
        for (int note = 0; note < notes; ++note) {
            BindText(insert, 1, Nickname(note));
            BindText(insert, 2, Note(note));
            sqlite3_bind_int(insert, 3, Flags(note));
            sqlite3_bind_int64(insert, 4, time);
            Require(sqlite3_step(insert) == SQLITE_DONE, "an insert");
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
        return notes;
    }

    int Count(unsigned int time)
    {
        sqlite3_stmt *count = Prepare("SELECT COUNT(*) FROM tbl_playerinfo WHERE PIN_iTimestamp = ?");
        sqlite3_bind_int64(count, 1, time);
        Require(sqlite3_step(count) == SQLITE_ROW, "the count");
        const int rows = sqlite3_column_int(count, 0);
        sqlite3_finalize(count);
        return rows;
    }

    static QString Text(sqlite3_stmt *row, int column)
    {
        return QString::fromUtf16(static_cast<const char16_t *>(sqlite3_column_text16(row, column)));
    }

private:
    static void BindText(sqlite3_stmt *statement, int column, const QString &text)
    {
        sqlite3_bind_text16(statement, column, text.utf16(), int(text.size()) * int(sizeof(QChar)), SQLITE_TRANSIENT);
    }

    sqlite3 *m_pFile = nullptr;
};

// Loads all notes into new players with a QSqlQuery.
inline int LoadByHand(TPlayers<CPlayerDataModel> &players)
{
    QSqlQuery query = CPlayerInfoDB::GetInstance()->GetQuery();
    Require(query.exec(QStringLiteral("SELECT PIN_cPlayer, PIN_cNote, PIN_iTagID, PIN_iPlayerFlags, PIN_iRating,"
                                      " PIN_iCustomAvatar FROM tbl_playerinfo WHERE PIN_cUser = 'alice'")),
            "a select");
    while (query.next()) {
        const QSharedPointer<CPlayerDataModel> player(new CPlayerDataModel);
        player->SetNickname(query.value(0).toString());
        player->SetNotes(query.value(1).toString());
        player->SetTagID(query.value(2).toUInt());
        player->SetBuddy(query.value(3).toUInt() != 0);
        player->SetRating(static_cast<unsigned char>(query.value(4).toUInt()));
        player->SetCustomAvatar(query.value(5).toUInt());
        players.insert(player->GetNickname(), player);
    }
    return int(players.size());
}

// Loads all notes into new players with the C API, but only the columns that this benchmark fills.
inline int LoadBySQLite(CFile &file, TPlayers<CPlayerDataModel> &players)
{
    sqlite3_stmt *select =
        file.Prepare("SELECT PIN_cPlayer, PIN_cNote, PIN_iTagID FROM tbl_playerinfo WHERE PIN_cUser = 'alice'");
    while (sqlite3_step(select) == SQLITE_ROW) {
        const QSharedPointer<CPlayerDataModel> player(new CPlayerDataModel);
        player->SetNickname(CFile::Text(select, 0));
        player->SetNotes(CFile::Text(select, 1));
        player->SetTagID(static_cast<unsigned int>(sqlite3_column_int(select, 2)));
        players.insert(player->GetNickname(), player);
    }
    sqlite3_finalize(select);
    return int(players.size());
}

} // namespace Notes
