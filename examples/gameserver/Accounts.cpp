#include "Accounts.h"

#include "JsonRows.h"
#include "Passwords.h"

#include <limits>

using AccountProtocol::SAccount;

namespace {

constexpr int MAX_ACCOUNTS = 10000;
constexpr int MAX_HASH_LENGTH = 127;
constexpr quint32 MAX_MONEY = std::numeric_limits<quint32>::max();
const QLatin1String KEY_NICKNAME("nickname");
const QLatin1String KEY_PASSWORD("password");

QString TakeNickname(CJsonRow &row)
{
    if (!row.Has(KEY_NICKNAME))
        return QString();
    const QString nickname = row.TakeText(KEY_NICKNAME, 1, AccountProtocol::MAX_NICKNAME_LENGTH);
    row.Check(AccountProtocol::IsNickname(nickname), KEY_NICKNAME, QStringLiteral("a nickname that may be chosen"));
    return nickname;
}

QString TakeHash(CJsonRow &row)
{
    const QString text = row.TakeText(KEY_PASSWORD, 0, MAX_HASH_LENGTH);
    row.Check(Passwords::IsHash(text), KEY_PASSWORD, QStringLiteral("a hash that gameserver --hash-password prints"));
    return text;
}

} // namespace

bool CAccounts::Load(const QString &fileName, QString &error)
{
    const auto read = [this](CJsonRow &row) {
        SEntry entry;
        entry.account.strNickname = TakeNickname(row);
        entry.strHash = TakeHash(row);
        entry.account.eCurrency = row.TakeLetter(QLatin1String("currency"), &Globals::GetMoneyType);
        entry.account.mvReal = row.TakeNumber(QLatin1String("real"), 0, MAX_MONEY);
        entry.account.mvPlay = row.TakeNumber(QLatin1String("play"), 0, MAX_MONEY);
        const QString fault = row.GetFault();
        return fault.isEmpty() ? AddEntry(entry) : fault;
    };
    return ReadJsonRows(fileName, MAX_ACCOUNTS, read, error);
}

QString CAccounts::AddEntry(const SEntry &entry)
{
    const QString nickname = entry.account.strNickname.toLower();
    if (nickname.isEmpty() ? m_newcomer.has_value() : m_entries.contains(nickname))
        return QStringLiteral("nickname \"%1\" is another row's already").arg(entry.account.strNickname);
    if (nickname.isEmpty())
        m_newcomer = entry;
    else
        m_entries.insert(nickname, entry);
    return QString();
}

std::optional<AccountProtocol::ERefusal> CAccounts::Find(const QString &nickname, SAccount &account) const
{
    if (!AccountProtocol::IsNickname(nickname))
        return AccountProtocol::RF_BAD_NICKNAME;
    const std::optional<SEntry> found = FindEntry(nickname);
    if (!found)
        return AccountProtocol::RF_NO_ACCOUNT;
    account = found->account;
    return std::nullopt;
}

SAccount CAccounts::GetAccount(const QString &nickname) const
{
    const std::optional<SEntry> found = FindEntry(nickname);
    return found ? found->account : SAccount();
}

QString CAccounts::GetHash(const QString &nickname) const
{
    const std::optional<SEntry> found = FindEntry(nickname);
    return found ? found->strHash : QString();
}

// The account of a newcomer gets the nickname.
std::optional<CAccounts::SEntry> CAccounts::FindEntry(const QString &nickname) const
{
    const auto known = m_entries.constFind(nickname.toLower());
    if (known != m_entries.constEnd())
        return *known;
    std::optional<SEntry> entry = m_newcomer;
    if (entry)
        entry->account.strNickname = nickname;
    return entry;
}
