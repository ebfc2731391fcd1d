#pragma once

#include <models/PlayerModel.h>

#include <QList>
#include <QSharedPointer>

/// The user's buddy list.
///
/// It owns no model and isn't told when one goes: take a model off the list before it is destroyed. Nothing checks
/// whether a model is on the list already; one that is there twice counts twice. A copy shares the models. Main
/// thread.
class PLUGININTERFACE_EXPORT CPlayerLists
{
public:
    /// Creates the object on first use; the library owns it.
    static CPlayerLists *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// Deletes the object at once; the models stay.
    static void DestroyInstance();

    /// The model of any player, buddy or not, created if there is none.
    CPlayerModel *GetPlayerModel(const QString &nickname);

    /// Appends the model and makes it a buddy.
    void AddNewBuddy(CPlayerModel *model);
    /// Appends the model and leaves it as it is: for one that is known as a buddy.
    void AddToBuddyList(CPlayerModel *model);
    /// Removes the models of that nickname, which are buddies no more. Of two that stand side by side one stays.
    void RemoveFromBuddyList(const QString &nickname);
    /// The list itself, not a copy; it may hold null.
    QList<CPlayerModel *> *GetBuddyList();
    /// A walk over the list, which leaves out null.
    /// @{
    int GetOnlineBuddiesCount() const;
    int GetOfflineBuddiesCount() const;
    /// @}
    /// Empties the list and leaves the models as they are; what waits to be stored of them is stored before.
    void ResetBuddyList();

private:
    int CountBuddies(bool online) const;

    QList<CPlayerModel *> m_lBuddyList;

    static QSharedPointer<CPlayerLists> m_Instance;
};
