#include "LobbyProtocol.h"

namespace LobbyProtocol {

namespace {

constexpr int COUNTS_IN_A_RECORD = 1000; // 6000 bytes

} // namespace

QByteArray GetGameCode(GlobalDefines::GameType game)
{
    QByteArray code(GAME_CODE_SIZE, '\0');
    Globals::GetGameType(game, code.data());
    return code;
}

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

QVector<QByteArray> EncodePlayerCounts(const QVector<SPlayerCount> &counts)
{
    QVector<QByteArray> payloads;
    for (int i = 0; i < counts.size(); i += COUNTS_IN_A_RECORD)
        payloads.append(Payload::Encode(SPlayerCounts{counts.mid(i, COUNTS_IN_A_RECORD)}));
    return payloads;
}

} // namespace LobbyProtocol
