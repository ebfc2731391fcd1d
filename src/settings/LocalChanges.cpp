#include "LocalChanges_p.h"

#include <QHash>

namespace {

using TNumbers = QHash<QString, quint64>;

QString owner;
quint64 last = 0;
quint64 endedLogins = 0;
TNumbers settings; // by lower-case keys
TNumbers players;

void Add(TNumbers &numbers, const QString &user, const QString &name)
{
    if (user.isEmpty())
        return;
    if (user != owner) {
        owner = user;
        settings.clear();
        players.clear();
    }
    numbers.insert(name, ++last);
}

bool IsLater(const TNumbers &numbers, const QString &user, const QString &name, quint64 number)
{
    return user == owner && numbers.value(name) > number;
}

QStringList GetLater(const TNumbers &numbers, const QString &user, quint64 number)
{
    QStringList names;
    for (auto entry = numbers.cbegin(); user == owner && entry != numbers.cend(); ++entry) {
        if (entry.value() > number)
            names.append(entry.key());
    }
    return names;
}

} // namespace

void CLocalChanges::AddSetting(const QString &user, const QString &key)
{
    Add(settings, user, key.toLower());
}

void CLocalChanges::AddPlayer(const QString &user, const QString &nickname)
{
    Add(players, user, nickname);
}

quint64 CLocalChanges::GetLast()
{
    return last;
}

bool CLocalChanges::IsSettingLater(const QString &user, const QString &key, quint64 number)
{
    return IsLater(settings, user, key.toLower(), number);
}

bool CLocalChanges::IsPlayerLater(const QString &user, const QString &nickname, quint64 number)
{
    return IsLater(players, user, nickname, number);
}

QStringList CLocalChanges::GetLaterSettings(const QString &user, quint64 number)
{
    return GetLater(settings, user, number);
}

QStringList CLocalChanges::GetLaterPlayers(const QString &user, quint64 number)
{
    return GetLater(players, user, number);
}

quint64 CLocalChanges::GetEndedLogins()
{
    return endedLogins;
}

void CLocalChanges::Forget()
{
    ++endedLogins;
    owner.clear();
    settings.clear();
    players.clear();
}
