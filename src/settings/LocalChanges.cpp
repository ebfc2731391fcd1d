#include "LocalChanges_p.h"

#include <QSet>

namespace {

QString notedUser;      // empty while nothing is noted
QSet<QString> settings; // lower-case keys
QSet<QString> players;

bool IsNoted(const QString &user)
{
    return !user.isEmpty() && user == notedUser;
}

} // namespace

void CLocalChanges::Begin(const QString &user)
{
    End();
    notedUser = user;
}

void CLocalChanges::End()
{
    notedUser.clear();
    settings.clear();
    players.clear();
}

void CLocalChanges::AddSetting(const QString &user, const QString &key)
{
    if (IsNoted(user))
        settings.insert(key.toLower());
}

void CLocalChanges::AddPlayer(const QString &user, const QString &nickname)
{
    if (IsNoted(user))
        players.insert(nickname);
}

bool CLocalChanges::HasSetting(const QString &user, const QString &key)
{
    return IsNoted(user) && settings.contains(key.toLower());
}

bool CLocalChanges::HasPlayer(const QString &user, const QString &nickname)
{
    return IsNoted(user) && players.contains(nickname);
}
