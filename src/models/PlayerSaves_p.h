#pragma once

#include <QList>
#include <QString>

class CPlayerModel;

/// A player who waits to be stored.
struct SPlayerSave
{
    CPlayerModel *pModel;
    qint64 iDue; // milliseconds of CPlayerSaves' clock
    bool bByUser;
};

/// The players whose changes wait to be stored, all behind one timer: thousands may wait at the same time, as after a
/// load, and a timer each would cost more the more there are. What is due is written in slices, between which the
/// event loop turns. Main thread.
class CPlayerSaves
{
public:
    /// The player is stored 3 s from now, also one that waits already. \a byUser: for a change of the user's; what a
    /// load has changed is stored as well.
    static void Restart(CPlayerModel *model, bool byUser);
    static void Forget(CPlayerModel *model);
    /// Stores all that wait, at once, while somebody is logged in. What can't be written then waits on as a row of
    /// that user, whoever is logged in meanwhile, and is lost only with the process.
    static void WriteAll();
    /// The same with those alone that the user has changed. What can't be written then waits anew, and counts to
    /// CLocalChanges as changed just now.
    static void WriteChanges();

    /// The nickname under which CPlayerModel's table holds the model, also where it has been renamed; empty for a
    /// model that isn't in the table, which is never stored.
    static QString GetKey(const CPlayerModel &model);

private:
    static bool WriteLeft();
    static void WriteDue();
    static bool Write(const QList<CPlayerModel *> &models);
    static void RunTimer();
};
