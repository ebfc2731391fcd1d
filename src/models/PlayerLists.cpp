#include "PlayerLists.h"

#include <Singleton_p.h>
#include <models/PlayerSaves_p.h>

#include <algorithm>

PLUGININTERFACE_DEFINE_SINGLETON(CPlayerLists);

CPlayerModel *CPlayerLists::GetPlayerModel(const QString &nickname)
{
    return CPlayerModel::GetInstance(nickname);
}

void CPlayerLists::AddNewBuddy(CPlayerModel *model)
{
    AddToBuddyList(model);
    if (model)
        model->SetBuddy(true);
}

void CPlayerLists::AddToBuddyList(CPlayerModel *model)
{
    m_lBuddyList.append(model);
}

void CPlayerLists::RemoveFromBuddyList(const QString &nickname)
{
    for (int index = 0; index < m_lBuddyList.size(); ++index) {
        CPlayerModel *model = m_lBuddyList.at(index);
        if (!model || model->GetNickname() != nickname)
            continue;
        m_lBuddyList.removeAt(index);
        model->SetBuddy(false);
        model->SaveLater(true); // a buddy from an earlier run may be on the list without the flag
    }
}

QList<CPlayerModel *> *CPlayerLists::GetBuddyList()
{
    return &m_lBuddyList;
}

int CPlayerLists::GetOnlineBuddiesCount() const
{
    return CountBuddies(true);
}

int CPlayerLists::GetOfflineBuddiesCount() const
{
    return CountBuddies(false);
}

void CPlayerLists::ResetBuddyList()
{
    if (CPlayerSaves *saves = CPlayerSaves::Get())
        saves->WriteAll(); // while the list still tells who is a buddy
    m_lBuddyList.clear();
}

int CPlayerLists::CountBuddies(bool online) const
{
    return static_cast<int>(
        std::count_if(m_lBuddyList.begin(), m_lBuddyList.end(),
                      [online](const CPlayerModel *model) { return model && model->GetOnline() == online; }));
}
