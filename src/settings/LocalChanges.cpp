#include "LocalChanges_p.h"

namespace {

CLocalChanges *currentChanges = nullptr;

} // namespace

CLocalChanges::CLocalChanges()
{
    currentChanges = this;
}

CLocalChanges::~CLocalChanges()
{
    if (currentChanges == this)
        currentChanges = nullptr;
}

CLocalChanges *CLocalChanges::Get()
{
    return currentChanges;
}

void CLocalChanges::AddSetting(const QString &user, const QString &key)
{
    Add(m_settings, user, key.toLower());
}

void CLocalChanges::AddPlayer(const QString &user, const QString &nickname)
{
    Add(m_players, user, nickname);
}

bool CLocalChanges::IsSettingLater(const QString &user, const QString &key, quint64 number) const
{
    return IsLater(m_settings, user, key.toLower(), number);
}

bool CLocalChanges::IsPlayerLater(const QString &user, const QString &nickname, quint64 number) const
{
    return IsLater(m_players, user, nickname, number);
}

QStringList CLocalChanges::GetLaterSettings(const QString &user, quint64 number) const
{
    return GetLater(m_settings, user, number);
}

QStringList CLocalChanges::GetLaterPlayers(const QString &user, quint64 number) const
{
    return GetLater(m_players, user, number);
}

void CLocalChanges::Forget()
{
    ++m_iEndedLogins;
    m_strUser.clear();
    m_settings.clear();
    m_players.clear();
}

void CLocalChanges::Add(TNumbers &numbers, const QString &user, const QString &name)
{
    if (user.isEmpty())
        return;
    if (user != m_strUser) {
        m_strUser = user;
        m_settings.clear();
        m_players.clear();
    }
    numbers.insert(name, ++m_iLast);
}

bool CLocalChanges::IsLater(const TNumbers &numbers, const QString &user, const QString &name, quint64 number) const
{
    return user == m_strUser && numbers.value(name) > number;
}

QStringList CLocalChanges::GetLater(const TNumbers &numbers, const QString &user, quint64 number) const
{
    QStringList names;
    for (auto entry = numbers.cbegin(); user == m_strUser && entry != numbers.cend(); ++entry) {
        if (entry.value() > number)
            names.append(entry.key());
    }
    return names;
}
