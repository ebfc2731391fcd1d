#include "LoginGuard.h"

#include <algorithm>

namespace {

constexpr int FREE_TRIES = 3;
constexpr int MOST_AT_ONCE = 30; // of all users: each costs a processor a tenth of a second, or two
constexpr qint64 FIRST_PAUSE_MS = 1000;
constexpr qint64 LONGEST_PAUSE_MS = 60000;
constexpr qint64 MEMORY_MS = 900000;
constexpr int FEW_NICKNAMES = 1000;

} // namespace

std::optional<AccountProtocol::ERefusal> CLoginGuard::Begin(const QString &nickname)
{
    if (m_iBegun >= MOST_AT_ONCE)
        return AccountProtocol::RF_BUSY;
    if (m_tries.size() >= m_iForgetAt)
        ForgetOld();
    STries &tries = m_tries[nickname.toLower()];
    if (tries.iBegun == 0 && tries.memory.hasExpired())
        tries.iWrong = 0;
    // Those that have begun may all be wrong.
    const bool isFree = tries.iWrong + tries.iBegun < FREE_TRIES;
    if (!isFree && (tries.iBegun > 0 || !tries.pause.hasExpired()))
        return AccountProtocol::RF_TOO_MANY;
    ++tries.iBegun;
    ++m_iBegun;
    return std::nullopt;
}

void CLoginGuard::End(const QString &nickname, std::optional<bool> isRight)
{
    STries &tries = m_tries[nickname.toLower()];
    --tries.iBegun;
    --m_iBegun;
    if (!isRight)
        return;
    tries.iWrong = *isRight ? 0 : tries.iWrong + 1;
    tries.memory.setRemainingTime(MEMORY_MS);
    if (tries.iWrong >= FREE_TRIES) {
        const qint64 doubled = FIRST_PAUSE_MS << std::min(tries.iWrong - FREE_TRIES, 10);
        tries.pause.setRemainingTime(std::min(doubled, LONGEST_PAUSE_MS));
    }
}

void CLoginGuard::ForgetOld()
{
    for (auto tries = m_tries.begin(); tries != m_tries.end();) {
        const bool isOld = tries->iBegun == 0 && (tries->iWrong == 0 || tries->memory.hasExpired());
        tries = isOld ? m_tries.erase(tries) : std::next(tries);
    }
    m_iForgetAt = std::max(FEW_NICKNAMES, 2 * int(m_tries.size())); // so that it costs little for each nickname
}
