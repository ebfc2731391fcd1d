#pragma once

#include <models/PlayerModel.h>

#include <QList>
#include <QSharedPointer>

/// The user's buddy list.
///
/// The list doesn't own its models and doesn't notice when one is destroyed: remove a model from the list first.
/// Nothing checks whether a model is already on the list; one that is on it twice counts twice. A copy shares the
/// models. Main thread.
class PLUGININTERFACE_EXPORT CPlayerLists
{
public:
    /// Returns the object, creating it on first use; the library owns it.
    static CPlayerLists *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Deletes the object at once; the models are kept.
    static void DestroyInstance();

    /// Returns the model of any player, buddy or not; creates it if there is none.
    CPlayerModel *GetPlayerModel(const QString &nickname);

    /// Appends the model and makes the player a buddy.
    void AddNewBuddy(CPlayerModel *model);
    /// Appends the model without changing it, for a player who is known to be a buddy.
    void AddToBuddyList(CPlayerModel *model);
    /// Removes the models with this nickname, whose players are no longer buddies. Of two adjacent entries one is
    /// kept.
    void RemoveFromBuddyList(const QString &nickname);
    /// Returns the list itself, not a copy. It may contain null.
    QList<CPlayerModel *> *GetBuddyList();
    /// Counts the online or offline buddies by walking over the list; null is ignored.
    /// @{
    int GetOnlineBuddiesCount() const;
    int GetOfflineBuddiesCount() const;
    /// @}
    /// Empties the list without changing the models. Their waiting changes are stored first.
    void ResetBuddyList();

private:
    int CountBuddies(bool online) const;

    QList<CPlayerModel *> m_lBuddyList;

    static QSharedPointer<CPlayerLists> m_Instance;
};
