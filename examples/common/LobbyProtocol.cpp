#include "LobbyProtocol.h"

#include "Payload.h"

namespace LobbyProtocol {

namespace {

constexpr int GAME_CODE_SIZE = 4;
constexpr int COUNTS_IN_A_RECORD = 1000; // 6000 bytes

QByteArray GameCode(GlobalDefines::GameType game)
{
    QByteArray code(GAME_CODE_SIZE, '\0');
    Globals::GetGameType(game, code.data());
    return code;
}

constexpr auto NUMBER = [](auto &payload, quint32 &number) { payload.Number(number); };

constexpr auto TABLE_FIELDS = [](auto &payload, STable &table) {
    payload.Number(table.uiID);
    payload.Text(table.strName, MAX_NAME_LENGTH);
    payload.Letter(table.eType, &Globals::GetTableType);
    QByteArray game = GameCode(table.eGame);
    payload.Bytes(game, GAME_CODE_SIZE);
    table.eGame = Globals::GetGameType(QString::fromLatin1(game));
    payload.Letter(table.eLimit, &Globals::GetLimitType);
    payload.Letter(table.eMoney, &Globals::GetMoneyType);
    payload.Number(table.mvLow);
    payload.Number(table.mvHigh);
    payload.Number(table.usPlaces);
    payload.Number(table.usPlayers);
    payload.Number(table.uiStart);
};

constexpr auto COUNT_FIELDS = [](auto &payload, SPlayerCount &count) {
    payload.Number(count.uiTableID);
    payload.Number(count.usPlayers);
};

ESeatResult ToSeatResult(char letter)
{
    switch (letter) {
    case SR_TAKEN:
    case SR_CLOSED:
    case SR_FULL:
    case SR_NOT_LOGGED_IN:
        return static_cast<ESeatResult>(letter);
    default:
        return SR_UNKNOWN;
    }
}

constexpr auto SEAT_ANSWER_FIELDS = [](auto &payload, SSeatAnswer &answer) {
    payload.Number(answer.uiTableID);
    payload.Letter(answer.eResult, &ToSeatResult);
    payload.Number(answer.usPlace);
};

} // namespace

QByteArray EncodeGetList()
{
    return QByteArray(GET_LIST);
}

QByteArray EncodeTable(const STable &table)
{
    return Payload::Encode(TABLE, table, TABLE_FIELDS);
}

QByteArray EncodeListEnd(quint32 count)
{
    return Payload::Encode(LIST_END, count, NUMBER);
}

QByteArray EncodeSeatRequest(quint32 tableID)
{
    return Payload::Encode(SEAT_REQUEST, tableID, NUMBER);
}

QByteArray EncodeSeatAnswer(const SSeatAnswer &answer)
{
    return Payload::Encode(SEAT_ANSWER, answer, SEAT_ANSWER_FIELDS);
}

QVector<QByteArray> EncodePlayerCounts(const QVector<SPlayerCount> &counts)
{
    QVector<QByteArray> payloads;
    for (int i = 0; i < counts.size(); i += COUNTS_IN_A_RECORD) {
        payloads.append(Payload::Encode(PLAYER_COUNTS, counts.mid(i, COUNTS_IN_A_RECORD),
                                        [](CPayloadWriter &payload, QVector<SPlayerCount> &part) {
                                            for (SPlayerCount &count : part)
                                                COUNT_FIELDS(payload, count);
                                        }));
    }
    return payloads;
}

bool DecodeTable(const QByteArray &payload, STable &table)
{
    return Payload::Decode(TABLE, payload, table, TABLE_FIELDS);
}

bool DecodeListEnd(const QByteArray &payload, quint32 &count)
{
    return Payload::Decode(LIST_END, payload, count, NUMBER);
}

bool DecodeSeatRequest(const QByteArray &payload, quint32 &tableID)
{
    return Payload::Decode(SEAT_REQUEST, payload, tableID, NUMBER);
}

bool DecodeSeatAnswer(const QByteArray &payload, SSeatAnswer &answer)
{
    return Payload::Decode(SEAT_ANSWER, payload, answer, SEAT_ANSWER_FIELDS);
}

bool DecodePlayerCounts(const QByteArray &payload, QVector<SPlayerCount> &counts)
{
    return Payload::Decode(PLAYER_COUNTS, payload, counts, [](CPayloadReader &reader, QVector<SPlayerCount> &read) {
        do {
            read.append(SPlayerCount());
            COUNT_FIELDS(reader, read.last());
        } while (reader.IsGood() && !reader.IsAtEnd());
    });
}

QByteArray ToPackets(const QVector<QByteArray> &payloads)
{
    return Payload::ToPackets(GROUP, payloads);
}

} // namespace LobbyProtocol
