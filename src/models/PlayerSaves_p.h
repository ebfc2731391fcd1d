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

/// The players whose changes wait to be stored. They share one timer, because thousands may wait at the same time,
/// for example after a load, and each further timer would make all of them slower. Due players are written in slices,
/// and the event loop runs between the slices.
///
/// The shared CUserInfo owns this object and writes all changes when a login ends. When the object is destroyed, it
/// writes what it can. Main thread.
class CPlayerSaves : public QObject
{
public:
    /// Returns the object of the shared CUserInfo; null while there is none, because then nobody's changes could be
    /// stored.
    static CPlayerSaves *Get();
    ~CPlayerSaves() override;

    /// Returns the nickname of the logged-in user, who makes the changes; empty if nobody is logged in.
    static QString GetUser();

    /// While it exists, changes to the model count as loaded from the store, not as made by the user.
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

    /// Schedules the player to be stored 3 s from now, even if it is waiting already. \a key is the nickname under
    /// which CPlayerModel's table holds the model; without a key it is never stored. \a change marks a change by the
    /// user that other machines have to learn of; changes from a load and changes that stay on this machine are
    /// stored as well.
    void Restart(CPlayerModel *model, const QString &key, bool change);
    void Forget(const CPlayerModel *model);
    bool IsWaiting(const CPlayerModel *model) const { return m_places.contains(model); }
    /// Makes the player no longer a buddy, as part of a load and not for the user.
    void LoadNoBuddy(CPlayerModel *model, const QString &key);
    /// Numbers the waiting changes again, including those of kept rows, because the times of the stored rows don't
    /// cover them.
    void NumberUnwrittenChanges() const;
    /// Stores the players once more, with a new time, except for those that are waiting already.
    void SaveAgain(const QStringList &nicknames);

    /// Stores all waiting changes immediately, while their user is still logged in. Rows that can't be written are
    /// kept for that user, no matter who logs in meanwhile.
    void WriteAll();
    /// Calls WriteAll() at the end of a login and forgets the numbers of the user's changes.
    void EndLogin();
    /// A row of a user who logged out before the file could be written.
    struct SKept
    {
        QVariantList row; ///< In the order of PlayerInfo::CSaver::GetRow().
        bool bChange;     ///< Whether the row has changes that other machines have to learn of.
    };
    /// Returns the kept rows of the user, oldest first.
    QList<SKept> GetKept(const QString &user) const;

private:
    struct SSave
    {
        CPlayerModel *pModel;
        QString strKey;
        qint64 iDue; // in milliseconds of m_clock
        bool bChange;
        QString strUser; // who was logged in at the last change; if empty, nothing is stored
    };

    explicit CPlayerSaves(QObject *owner);

    static bool IsStorable(const SSave &save);
    bool WriteKept(int most);
    void WriteDue();
    bool WriteSlice();
    bool Write(const QList<SSave> &saves);
    void RunTimer();

    // Sorted by the time of the restart and thereby by due time, because the delay is the same for all.
    std::list<SSave> m_waiting;
    QHash<const CPlayerModel *, std::list<SSave>::iterator> m_places;
    QList<SKept> m_kept;
    QVector<const CPlayerModel *> m_loading;
    int m_iPauseMs = 0; // pause before the next attempt to write, while the file can't be used
    QTimer m_timer;
    QElapsedTimer m_clock;
};
