#include "LocalChanges_p.h"

#include <QSet>

namespace {

bool noting = false;
QSet<QString> settings; // lower-case keys
QSet<QString> players;

} // namespace

void CLocalChanges::Begin()
{
    End();
    noting = true;
}

void CLocalChanges::End()
{
    noting = false;
    settings.clear();
    players.clear();
}

void CLocalChanges::AddSetting(const QString &key)
{
    if (noting)
        settings.insert(key.toLower());
}

void CLocalChanges::AddPlayer(const QString &nickname)
{
    if (noting)
        players.insert(nickname);
}

bool CLocalChanges::HasSetting(const QString &key)
{
    return settings.contains(key.toLower());
}

bool CLocalChanges::HasPlayer(const QString &nickname)
{
    return players.contains(nickname);
}
