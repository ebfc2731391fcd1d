#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariantList>
#include <QVector>

#include <list>

class CPlayerModel;

/// The players whose changes wait to be stored, all behind one timer: thousands may wait at the same time, as after a
/// load, and a timer each would cost more the more there are. What is due is written in slices, between which the
/// event loop turns.
///
/// It belongs to the shared CUserInfo, whose end of a login writes all, and ends with it; what it can write then
/// isn't lost. Main thread.
class CPlayerSaves : public QObject
{
public:
    /// That of the shared CUserInfo; null while there is none, and so nobody whose changes could be stored.
    static CPlayerSaves *Get();
    ~CPlayerSaves() override;

    /// Who is logged in, and so makes the changes; empty for nobody.
    static QString GetUser();

    /// As long as it lives, what changes of the model is the store's and not the user's.
    class CLoading
    {
    public:
        explicit CLoading(const CPlayerModel *model);
        ~CLoading();
        CLoading(const CLoading &) = delete;
        CLoading &operator=(const CLoading &) = delete;

    private:
        const CPlayerModel *m_pModel;
    };
    bool IsLoading(const CPlayerModel *model) const { return m_loading.contains(model); }

    /// Stores the player 3 s from now, also one that waits already. \a key is the nickname under which CPlayerModel's
    /// table holds the model; without one it is never stored. \a change: for a change of the user's that other
    /// machines are to hear of; what a load has changed, or what stays on the machine, is stored as well.
    void Restart(CPlayerModel *model, const QString &key, bool change);
    void Forget(const CPlayerModel *model);
    bool IsWaiting(const CPlayerModel *model) const { return m_places.contains(model); }
    /// Makes the player no buddy any more, by what was loaded and not by the user.
    void LoadNoBuddy(CPlayerModel *model, const QString &key);
    /// Numbers the changes that wait anew, those of kept rows too: the times of the stored rows tell nothing of them.
    void NumberUnwrittenChanges() const;
    /// Stores the players once more, with a new time, those that don't wait already.
    void SaveAgain(const QStringList &nicknames);

    /// Stores all that waits, at once, while its user is still logged in. What can't be written then is kept as a row
    /// of that user, whoever is logged in meanwhile.
    void WriteAll();
    /// Does the same for the end of the login.
    void EndLogin();
    /// A row of a user who has logged out before the file could be written.
    struct SKept
    {
        QVariantList row; ///< In the order of PlayerInfo::CSaver::GetRow().
        bool bChange;     ///< Else of what the user has changed only what stays on the machine is in it.
    };
    /// The kept rows of the user, oldest first.
    QList<SKept> GetKept(const QString &user) const;

private:
    struct SSave
    {
        CPlayerModel *pModel;
        QString strKey;
        qint64 iDue; // milliseconds of m_clock
        bool bChange;
        QString strUser; // who was logged in at the last change; empty for nobody, for whom nothing is stored
    };

    explicit CPlayerSaves(QObject *owner);

    static bool IsStorable(const SSave &save);
    bool WriteKept(int most);
    void WriteDue();
    bool Write(const QList<SSave> &saves);
    void RunTimer();

    // The delay is the same for all, so that the order of their restarts is that in which they are due.
    std::list<SSave> m_waiting;
    QHash<const CPlayerModel *, std::list<SSave>::iterator> m_places;
    QList<SKept> m_kept;
    QVector<const CPlayerModel *> m_loading;
    int m_iPauseMs = 0; // until the next attempt to write, while the file can't be used
    QTimer m_timer;
    QElapsedTimer m_clock;
};
