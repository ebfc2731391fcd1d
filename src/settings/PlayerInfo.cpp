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

#include <QVector>

#include <algorithm>

namespace {

const QString COLUMN_USER = QStringLiteral("PIN_cUser");
const QString COLUMN_PLAYER = QStringLiteral("PIN_cPlayer");
const QString COLUMN_NOTE = QStringLiteral("PIN_cNote");
const QString COLUMN_TAG = QStringLiteral("PIN_iTagID");
const QString COLUMN_FLAGS = QStringLiteral("PIN_iPlayerFlags");
const QString COLUMN_RATING = QStringLiteral("PIN_iRating");
const QString COLUMN_AVATAR = QStringLiteral("PIN_iCustomAvatar");
const QString COLUMN_TIMESTAMP = QStringLiteral("PIN_iTimestamp");

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
};

QString GetUser()
{
    return CUserInfo::GetInstance()->GetNickname();
}

unsigned int ToNumber(const QVariant &stored)
{
    return static_cast<unsigned int>(stored.toLongLong());
}

// A buddy of an earlier run is one by the list alone.
bool IsBuddy(const CPlayerModel &model)
{
    const QList<CPlayerModel *> &buddies = *CPlayerLists::GetInstance()->GetBuddyList();
    return model.GetBuddy() || std::find(buddies.cbegin(), buddies.cend(), &model) != buddies.cend();
}

unsigned int GetFlags(const CPlayerModel &model)
{
    return (IsBuddy(model) ? FLAG_BUDDY : 0U) | (model.GetBuddyBlocked() ? FLAG_BUDDY_BLOCKED : 0U) |
           (model.GetChatBlock() ? FLAG_CHAT_BLOCKED : 0U);
}

bool IsOpen()
{
    return CPlayerInfoDB::GetInstance()->IsOpen();
}

// INSERT, or where the user has a row of the player already, UPDATE; the values are bound in the order of the
// columns, the first two of which are the key.
QSqlQuery PrepareUpsert(const QStringList &columns)
{
    if (!IsOpen())
        return QSqlQuery();
    QStringList values;
    QStringList updates;
    for (const QString &column : columns) {
        values.append(QStringLiteral("?"));
        updates.append(column + QLatin1String(" = excluded.") + column);
    }
    QSqlQuery query = CPlayerInfoDB::GetInstance()->GetQuery();
    query.prepare(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3) ON CONFLICT (%4, %5) DO UPDATE SET %6")
                      .arg(CPlayerInfoDB::strTableNameInfo, columns.join(QLatin1Char(',')),
                           values.join(QLatin1Char(',')), COLUMN_USER, COLUMN_PLAYER,
                           updates.mid(2).join(QLatin1Char(','))));
    return query;
}

QVector<SLoaded> ReadRows(const QString &user)
{
    if (!IsOpen())
        return {};
    QSqlQuery query = CPlayerInfoDB::GetInstance()->GetQuery();
    query.prepare(QLatin1String("SELECT PIN_cPlayer, PIN_cNote, PIN_iTagID, PIN_iPlayerFlags, PIN_iRating,"
                                " PIN_iCustomAvatar FROM ") +
                  CPlayerInfoDB::strTableNameInfo + QLatin1String(" WHERE PIN_cUser = ?"));
    query.addBindValue(BoundText::ToBind(user));
    QVector<SLoaded> rows;
    query.exec();
    while (query.next()) {
        rows.append({query.value(0).toString(), query.value(1).toString(), ToNumber(query.value(2)),
                     ToNumber(query.value(3)), static_cast<unsigned char>(ToNumber(query.value(4))),
                     ToNumber(query.value(5))});
    }
    return rows;
}

} // namespace

bool PlayerInfo::LoadInfo()
{
    return LoadRows(false);
}

// All rows are read before the first is applied: whoever hears of a change may write to the same table.
bool PlayerInfo::LoadRows(bool keepChanges)
{
    const QString user = GetUser();
    if (user.isEmpty())
        return false;
    const QVector<SLoaded> rows = ReadRows(user);
    for (const SLoaded &row : rows) {
        if (keepChanges && CLocalChanges::HasPlayer(user, row.strPlayer))
            continue; // the model is ahead of its row
        CPlayerModel *model = CPlayerModel::GetInstance(row.strPlayer);
        if ((row.ulFlags & FLAG_BUDDY) != 0)
            CPlayerLists::GetInstance()->AddToBuddyList(model);
        // The own picture is a setting, which follows the user; the row's is of this machine.
        const unsigned int avatar = row.strPlayer == user
                                        ? static_cast<unsigned int>(CSettings::GetInstance()->GetCustomCurrent())
                                        : row.ulCustomAvatar;
        model->SetLoadedInfo(row.strNote, row.ulTagID, avatar, row.ucRating, (row.ulFlags & FLAG_BUDDY_BLOCKED) != 0,
                             (row.ulFlags & FLAG_CHAT_BLOCKED) != 0);
        if (GetUser() != user)
            break; // whoever heard of it has ended the login; the rest is nobody's
    }
    return !rows.isEmpty();
}

bool PlayerInfo::SaveInfo(const QString &nickname)
{
    return !nickname.isEmpty() && !GetUser().isEmpty() &&
           CSaver().Save(*CPlayerLists::GetInstance()->GetPlayerModel(nickname));
}

bool PlayerInfo::UpdateInfo(const QString &nickname)
{
    return !GetUser().isEmpty() && UpdateRow(nickname, *CPlayerLists::GetInstance()->GetPlayerModel(nickname));
}

bool PlayerInfo::UpdateRow(const QString &player, const CPlayerModel &model)
{
    return CPlayerInfoDB::GetInstance()->Update(CPlayerInfoDB::strTableNameInfo,
                                                {{COLUMN_NOTE, model.GetNotes()},
                                                 {COLUMN_FLAGS, GetFlags(model)},
                                                 {COLUMN_RATING, model.GetRating()},
                                                 {COLUMN_AVATAR, model.GetCustomAvatar()}},
                                                {{COLUMN_USER, GetUser()}, {COLUMN_PLAYER, player}});
}

unsigned int PlayerInfo::GetLastTimestamp(const QString &user)
{
    const QString newest = QStringLiteral("MAX(PIN_iTimestamp)");
    QHash<QString, QVariant> row;
    CPlayerInfoDB::GetInstance()->SelectOne(row, CPlayerInfoDB::strTableNameInfo, {newest}, {{COLUMN_USER, user}});
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

PlayerInfo::CSaver::CSaver()
    : m_query(PrepareUpsert({COLUMN_USER, COLUMN_PLAYER, COLUMN_NOTE, COLUMN_TAG, COLUMN_FLAGS, COLUMN_RATING,
                             COLUMN_AVATAR, COLUMN_TIMESTAMP}))
{
}

bool PlayerInfo::CSaver::Save(const CPlayerModel &model)
{
    const QVariantList row = GetRow(model);
    return !row.isEmpty() && Write(row);
}

QVariantList PlayerInfo::CSaver::GetRow(const CPlayerModel &model)
{
    const QString user = GetUser();
    const QString player = CPlayerSaves::GetKey(model);
    if (user.isEmpty() || player.isEmpty())
        return {};
    return {BoundText::ToBind(user),
            BoundText::ToBind(player),
            BoundText::ToBind(model.GetNotes()),
            model.GetTagID(),
            GetFlags(model),
            model.GetRating(),
            model.GetCustomAvatar(),
            CCasinoTime::GetInstance()->GetTimeUTCServer()};
}

bool PlayerInfo::CSaver::Write(const QVariantList &row)
{
    for (int column = 0; column < row.size(); ++column)
        m_query.bindValue(column, row.at(column));
    const bool written = IsOpen() && m_query.exec();
    CSettingsSync::GetInstance()->StartSyncTimer();
    return written;
}

PlayerInfo::CInserter::CInserter()
    : m_query(PrepareUpsert({COLUMN_USER, COLUMN_PLAYER, COLUMN_NOTE, COLUMN_TAG, COLUMN_FLAGS, COLUMN_TIMESTAMP}))
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
    return IsOpen() && m_query.exec();
}
