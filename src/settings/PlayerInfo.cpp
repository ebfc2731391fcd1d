#include "PlayerInfo_p.h"

#include <database/BoundText_p.h>
#include <database/PlayerInfoDB.h>
#include <models/PlayerLists.h>
#include <models/PlayerSaves_p.h>
#include <models/UserInfo.h>
#include <settings/LocalChanges_p.h>
#include <settings/Settings.h>
#include <settings/SettingsSync.h>
#include <time/CasinoTime.h>

#include <QHash>
#include <QSet>
#include <QVector>

#include <algorithm>

namespace {

using PlayerInfo::GetUser;

const QString PIN_USER = QStringLiteral("PIN_cUser");
const QString PIN_PLAYER = QStringLiteral("PIN_cPlayer");
const QString PIN_NOTE = QStringLiteral("PIN_cNote");
const QString PIN_TAG = QStringLiteral("PIN_iTagID");
const QString PIN_FLAGS = QStringLiteral("PIN_iPlayerFlags");
const QString PIN_RATING = QStringLiteral("PIN_iRating");
const QString PIN_AVATAR = QStringLiteral("PIN_iCustomAvatar");
const QString PIN_TIMESTAMP = QStringLiteral("PIN_iTimestamp");

constexpr unsigned int FLAG_BUDDY = 1;
constexpr unsigned int FLAG_BUDDY_BLOCKED = 4;
constexpr unsigned int FLAG_CHAT_BLOCKED = 8;

struct SLoaded
{
    QString strPlayer;
    QString strNote;
    unsigned int ulTagID;
    unsigned int ulFlags;
    unsigned char ucRating;
    unsigned int ulCustomAvatar;
    unsigned int ulTimestamp;
};

// The columns that are written, in the order of CSaver::GetRow(): user and player first, the time last.
const QStringList SAVED_COLUMNS{PIN_USER,  PIN_PLAYER, PIN_NOTE,   PIN_TAG,
                                PIN_FLAGS, PIN_RATING, PIN_AVATAR, PIN_TIMESTAMP};

unsigned int ToNumber(const QVariant &stored)
{
    return static_cast<unsigned int>(stored.toLongLong());
}

using TBuddies = QSet<const CPlayerModel *>;

TBuddies GetBuddies()
{
    const QList<CPlayerModel *> &buddies = *CPlayerLists::GetInstance()->GetBuddyList();
    return TBuddies(buddies.cbegin(), buddies.cend());
}

// A buddy from an earlier run is only in the list; the model doesn't know it.
unsigned int GetFlags(const CPlayerModel &model, const TBuddies &buddies)
{
    return (model.GetBuddy() || buddies.contains(&model) ? FLAG_BUDDY : 0U) |
           (model.GetBuddyBlocked() ? FLAG_BUDDY_BLOCKED : 0U) | (model.GetChatBlock() ? FLAG_CHAT_BLOCKED : 0U);
}

bool IsOpen()
{
    return CPlayerInfoDB::GetInstance()->IsOpen();
}

// Prepares an INSERT, which becomes an UPDATE if the user already has a row of the player. The values are bound in
// the order of the columns, the first two of which are the key.
QSqlQuery PrepareUpsert(const QStringList &columns, PlayerInfo::ERows rows = PlayerInfo::All)
{
    if (!IsOpen())
        return QSqlQuery();
    QStringList values;
    for (int column = 0; column < columns.size(); ++column)
        values.append(QStringLiteral("?"));
    QStringList updates;
    const bool own = rows == PlayerInfo::OwnFields;
    for (const QString &column : own ? QStringList{PIN_RATING, PIN_AVATAR} : columns.mid(2))
        updates.append(column + QLatin1String(" = excluded.") + column);
    QString sql = QStringLiteral("INSERT INTO %1 (%2) VALUES (%3) ON CONFLICT (%4, %5) DO UPDATE SET %6")
                      .arg(CPlayerInfoDB::strTableNameInfo, columns.join(QLatin1Char(',')),
                           values.join(QLatin1Char(',')), PIN_USER, PIN_PLAYER, updates.join(QLatin1Char(',')));
    if (rows == PlayerInfo::NotOlder)
        sql += QStringLiteral(" WHERE excluded.%1 = 0 OR excluded.%1 >= ifnull(%2.%1, 0)")
                   .arg(PIN_TIMESTAMP, CPlayerInfoDB::strTableNameInfo);
    QSqlQuery query = CPlayerInfoDB::GetInstance()->GetQuery();
    query.prepare(sql);
    return query;
}

SLoaded ToLoaded(const QVariantList &saved)
{
    return {saved.at(1).toString(),
            saved.at(2).toString(),
            ToNumber(saved.at(3)),
            ToNumber(saved.at(4)),
            static_cast<unsigned char>(ToNumber(saved.at(5))),
            ToNumber(saved.at(6)),
            ToNumber(saved.at(7))};
}

// Overrides stored rows with those that a locked file or a full disk has kept from being stored.
void OverrideByUnwritten(QVector<SLoaded> &rows, const QString &user)
{
    const CPlayerSaves *saves = CPlayerSaves::Get();
    const QList<CPlayerSaves::SKept> kept = saves ? saves->GetKept(user) : QList<CPlayerSaves::SKept>();
    if (kept.isEmpty())
        return;
    QHash<QString, QVector<SLoaded>::size_type> places;
    for (QVector<SLoaded>::size_type place = 0; place < rows.size(); ++place)
        places.insert(rows.at(place).strPlayer, place);
    for (const CPlayerSaves::SKept &entry : kept) {
        const SLoaded row = ToLoaded(entry.row);
        const auto place = places.constFind(row.strPlayer);
        if (place == places.cend()) {
            places.insert(row.strPlayer, rows.size());
            rows.append(row);
        } else if (!entry.bChange) {
            rows[*place].ucRating = row.ucRating;
            rows[*place].ulCustomAvatar = row.ulCustomAvatar;
        } else if (row.ulTimestamp == 0 || row.ulTimestamp >= rows.at(*place).ulTimestamp) {
            rows[*place] = row;
        }
    }
}

QVector<SLoaded> ReadRows(const QString &user)
{
    if (!IsOpen())
        return {};
    QSqlQuery query = CPlayerInfoDB::GetInstance()->GetQuery();
    query.prepare(QLatin1String("SELECT PIN_cPlayer, PIN_cNote, PIN_iTagID, PIN_iPlayerFlags, PIN_iRating,"
                                " PIN_iCustomAvatar, PIN_iTimestamp FROM ") +
                  CPlayerInfoDB::strTableNameInfo + QLatin1String(" WHERE PIN_cUser = ?"));
    query.addBindValue(BoundText::ToBind(user));
    QVector<SLoaded> rows;
    query.exec();
    while (query.next()) {
        rows.append({query.value(0).toString(), query.value(1).toString(), ToNumber(query.value(2)),
                     ToNumber(query.value(3)), static_cast<unsigned char>(ToNumber(query.value(4))),
                     ToNumber(query.value(5)), ToNumber(query.value(6))});
    }
    OverrideByUnwritten(rows, user);
    return rows;
}

// The user's own picture is a setting and follows the user; the row's picture belongs to this machine.
unsigned int GetAvatar(const SLoaded &row, const QString &user)
{
    return row.strPlayer == user ? static_cast<unsigned int>(CSettings::GetInstance()->GetCustomCurrent())
                                 : row.ulCustomAvatar;
}

void Apply(CPlayerModel *model, const SLoaded &row, unsigned int avatar, unsigned char rating)
{
    model->SetLoadedInfo(row.strNote, row.ulTagID, avatar, rating, (row.ulFlags & FLAG_BUDDY_BLOCKED) != 0,
                         (row.ulFlags & FLAG_CHAT_BLOCKED) != 0);
}

// Calls the operation with each row. All rows are read before the first is applied, because a slot may write to the
// same table.
template <typename Operation>
void ForRows(const QVector<SLoaded> &rows, const QString &user, const Operation &apply)
{
    for (const SLoaded &row : rows) {
        apply(row, CPlayerModel::GetInstance(row.strPlayer));
        if (GetUser() != user)
            break; // a slot has logged the user out; the other rows belong to nobody
    }
}

// Removes those whose rows say that they are no buddies. Returns the remaining buddies.
QSet<CPlayerModel *> RemoveFormerBuddies(const QVector<SLoaded> &rows)
{
    QList<CPlayerModel *> *buddies = CPlayerLists::GetInstance()->GetBuddyList();
    if (buddies->isEmpty())
        return {};
    QSet<CPlayerModel *> leaving;
    for (const SLoaded &row : rows) {
        if ((row.ulFlags & FLAG_BUDDY) == 0 && CPlayerModel::IsExisting(row.strPlayer))
            leaving.insert(CPlayerModel::GetInstance(row.strPlayer));
    }
    buddies->erase(std::remove_if(buddies->begin(), buddies->end(),
                                  [&leaving](CPlayerModel *buddy) { return leaving.contains(buddy); }),
                   buddies->end());
    return QSet<CPlayerModel *>(buddies->cbegin(), buddies->cend());
}

} // namespace

bool PlayerInfo::LoadInfo()
{
    const QString user = GetUser();
    if (user.isEmpty())
        return false;
    const QVector<SLoaded> rows = ReadRows(user);
    ForRows(rows, user, [&user](const SLoaded &row, CPlayerModel *model) {
        if ((row.ulFlags & FLAG_BUDDY) != 0)
            CPlayerLists::GetInstance()->AddToBuddyList(model);
        Apply(model, row, GetAvatar(row, user), row.ucRating);
    });
    return !rows.isEmpty();
}

void PlayerInfo::LoadAnswered(quint64 known)
{
    const QString user = GetUser();
    CPlayerSaves *saves = CPlayerSaves::Get();
    const CLocalChanges *changes = CLocalChanges::Get();
    QVector<SLoaded> rows = ReadRows(user);
    // The user has changed these players since, so their models are newer than the rows.
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                              [&user, known, changes](const SLoaded &row) {
                                  return changes && changes->IsPlayerLater(user, row.strPlayer, known);
                              }),
               rows.end());
    const QSet<CPlayerModel *> listed = RemoveFormerBuddies(rows);
    ForRows(rows, user, [&user, &listed, saves](const SLoaded &row, CPlayerModel *model) {
        if ((row.ulFlags & FLAG_BUDDY) == 0)
            saves->LoadNoBuddy(model, row.strPlayer);
        else if (!listed.contains(model))
            CPlayerLists::GetInstance()->AddToBuddyList(model);
        const bool waits = saves->IsWaiting(model);
        Apply(model, row, waits ? model->GetCustomAvatar() : GetAvatar(row, user),
              waits ? model->GetRating() : row.ucRating);
    });
}

bool PlayerInfo::SaveInfo(const QString &nickname)
{
    return !nickname.isEmpty() && !GetUser().isEmpty() &&
           CSaver().SaveOf(GetUser(), nickname, *CPlayerLists::GetInstance()->GetPlayerModel(nickname));
}

bool PlayerInfo::UpdateInfo(const QString &nickname)
{
    return !GetUser().isEmpty() && UpdateRow(nickname, *CPlayerLists::GetInstance()->GetPlayerModel(nickname));
}

bool PlayerInfo::UpdateRow(const QString &player, const CPlayerModel &model)
{
    return CPlayerInfoDB::GetInstance()->Update(CPlayerInfoDB::strTableNameInfo,
                                                {{PIN_NOTE, model.GetNotes()},
                                                 {PIN_FLAGS, GetFlags(model, GetBuddies())},
                                                 {PIN_RATING, model.GetRating()},
                                                 {PIN_AVATAR, model.GetCustomAvatar()}},
                                                {{PIN_USER, GetUser()}, {PIN_PLAYER, player}});
}

unsigned int PlayerInfo::GetLastTimestamp(const QString &user)
{
    const QString newest = QStringLiteral("MAX(PIN_iTimestamp)");
    QHash<QString, QVariant> row;
    CPlayerInfoDB::GetInstance()->SelectOne(row, CPlayerInfoDB::strTableNameInfo, {newest}, {{PIN_USER, user}});
    return ToNumber(row.value(newest));
}

QList<PlayerInfo::SPlayerInfoSyncElement> PlayerInfo::GetSyncList(const QString &user, unsigned int timestamp)
{
    if (!IsOpen())
        return {};
    QSqlQuery query = CPlayerInfoDB::GetInstance()->GetQuery();
    query.prepare(QLatin1String("SELECT PIN_cPlayer, PIN_cNote, PIN_iTagID, PIN_iPlayerFlags, PIN_iTimestamp FROM ") +
                  CPlayerInfoDB::strTableNameInfo + QLatin1String(" WHERE PIN_cUser = ? AND PIN_iTimestamp > ?"));
    query.addBindValue(BoundText::ToBind(user));
    query.addBindValue(timestamp);
    QList<SPlayerInfoSyncElement> elements;
    query.exec();
    while (query.next()) {
        elements.append({user, query.value(0).toString(), query.value(1).toString(), ToNumber(query.value(2)),
                         ToNumber(query.value(3)), ToNumber(query.value(4))});
    }
    return elements;
}

bool PlayerInfo::InsertPlayerInfo(const PlayerInfo::SPlayerInfoSyncElement &element)
{
    return CInserter().Insert(element);
}

PlayerInfo::CSaver::CSaver(ERows rows)
    : m_query(PrepareUpsert(SAVED_COLUMNS, rows))
    , m_buddies(GetBuddies())
{
}

bool PlayerInfo::CSaver::SaveOf(const QString &user, const QString &player, const CPlayerModel &model)
{
    const QVariantList row = GetRow(user, player, model);
    return !row.isEmpty() && Write(row);
}

QVariantList PlayerInfo::CSaver::GetRow(const QString &user, const QString &player, const CPlayerModel &model) const
{
    if (user.isEmpty() || player.isEmpty())
        return {};
    return {user,
            player,
            model.GetNotes(),
            model.GetTagID(),
            GetFlags(model, m_buddies),
            model.GetRating(),
            model.GetCustomAvatar(),
            CCasinoTime::GetInstance()->GetTimeUTCServer()};
}

bool PlayerInfo::CSaver::Write(const QVariantList &row)
{
    for (int column = 0; column < row.size(); ++column) {
        const QVariant &value = row.at(column);
        m_query.bindValue(column,
                          value.userType() == QMetaType::QString ? BoundText::ToBind(value.toString()) : value);
    }
    const bool written = IsOpen() && m_query.exec();
    CSettingsSync::GetInstance()->StartSyncTimer();
    return written;
}

PlayerInfo::CInserter::CInserter(ERows rows)
    : m_query(PrepareUpsert({PIN_USER, PIN_PLAYER, PIN_NOTE, PIN_TAG, PIN_FLAGS, PIN_TIMESTAMP}, rows))
{
}

bool PlayerInfo::CInserter::Insert(const SPlayerInfoSyncElement &element)
{
    m_query.bindValue(0, BoundText::ToBind(element.strUser));
    m_query.bindValue(1, BoundText::ToBind(element.strPlayer));
    m_query.bindValue(2, BoundText::ToBind(element.strNote));
    m_query.bindValue(3, element.ulTagID);
    m_query.bindValue(4, element.ulPlayerFlags);
    m_query.bindValue(5, element.ulTimestamp);
    return IsOpen() && m_query.exec() && m_query.numRowsAffected() > 0;
}
