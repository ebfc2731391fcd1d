#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>

class CPlayerModel;

/// A player who waits to be stored.
struct SPlayerSave
{
    CPlayerModel *pModel;
    qint64 iDue;     // milliseconds of CPlayerSaves' clock
    bool bChange;    // by the user, of something that travels
    QString strUser; // who was logged in at the last change; empty for nobody, for whom nothing is stored
};

/// The players whose changes wait to be stored, all behind one timer: thousands may wait at the same time, as after a
/// load, and a timer each would cost more the more there are. What is due is written in slices, between which the
/// event loop turns. Main thread.
class CPlayerSaves
{
public:
    /// The player is stored 3 s from now, also one that waits already. \a change: for a change of the user's that
    /// other machines are to hear of; what a load has changed, or what stays on the machine, is stored as well.
    static void Restart(CPlayerModel *model, bool change);
    static void Forget(CPlayerModel *model);
    static bool IsWaiting(const CPlayerModel &model);
    /// The player is no buddy any more, by what was loaded and not by the user.
    static void LoadNoBuddy(CPlayerModel *model);
    /// Numbers the changes that wait anew, those of kept rows too: the times of the stored rows tell nothing of them.
    static void NumberUnwrittenChanges();
    /// Stores the players once more, with a new time, those that don't wait already.
    static void SaveAgain(const QStringList &nicknames);

    /// Stores all that waits, at once, while its user is still logged in. What can't be written then is kept as a row
    /// of that user, whoever is logged in meanwhile, and is lost only with the process.
    static void WriteAll();
    /// The same for the end of the login.
    static void EndLogin();
    /// The kept rows of the user, oldest first, in the order of PlayerInfo::CSaver::GetRow().
    static QList<QVariantList> GetKept(const QString &user);

    /// Who is logged in, and so makes the changes; empty for nobody.
    static QString GetUser();
    /// The nickname under which CPlayerModel's table holds the model, also where it has been renamed; empty for a
    /// model that isn't in the table, which is never stored.
    static QString GetKey(const CPlayerModel &model);

private:
    static bool WriteKept(int most);
    static void WriteDue();
    static bool Write(const QList<SPlayerSave> &saves);
    static void RunTimer();
};
