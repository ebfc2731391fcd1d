#pragma once

class CPlayerModel;

/// The players whose changes wait to be stored, all behind one timer: thousands may wait at the same time, as after a
/// load, and a timer each would cost more the more there are. What is due is written in slices, between which the
/// event loop turns. Main thread.
class CPlayerSaves
{
public:
    /// The player is stored 3 s from now, also one that waits already.
    static void Restart(CPlayerModel *model);
    static void Forget(CPlayerModel *model);
    /// Stores all that wait, at once, while somebody is logged in.
    static void WriteAll();

private:
    static void WriteDue();
    static CPlayerModel *TakeFirst();
    static void RunTimer();
};
