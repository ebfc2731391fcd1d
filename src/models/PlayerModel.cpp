#include "PlayerModel.h"

#include <Singleton_p.h>
#include <models/PlayerSaves_p.h>
#include <models/UserInfo.h>

#include <algorithm>

QHash<QString, QSharedPointer<CPlayerModel>> CPlayerModel::m_Instances;
bool CPlayerModel::m_bRenamed = false;

namespace {

// Forgets the changes of the model that wait to be stored.
void StopWaiting(const CPlayerModel *model)
{
    if (CPlayerSaves *saves = CPlayerSaves::Get())
        saves->Forget(model);
}

} // namespace

CPlayerModel::CPlayerModel(const QString &nickname)
    : CPlayerDataModel(nullptr)
{
    const bool renamed = m_bRenamed;
    SetNickname(nickname);
    m_bRenamed = renamed; // setting the first name isn't a renaming
}

CPlayerModel::~CPlayerModel()
{
    StopWaiting(this);
}

CPlayerModel *CPlayerModel::GetInstance(QString nickname)
{
    const auto found = m_Instances.constFind(nickname);
    if (found != m_Instances.cend())
        return found->data();
    // A deep copy: every later lookup compares the characters, even after the host has unloaded the plugin that
    // contains the literal.
    const QString key(nickname.constData(), nickname.size());
    return m_Instances.insert(key, Singleton::MakeShared(new CPlayerModel(key)))->data();
}

bool CPlayerModel::IsExisting(QString nickname)
{
    return m_Instances.contains(nickname);
}

bool CPlayerModel::IsExisting(CPlayerModel *model)
{
    return std::find(m_Instances.cbegin(), m_Instances.cend(), model) != m_Instances.cend();
}

void CPlayerModel::DestroyInstance(QString nickname)
{
    StoreBeforeEnd(m_Instances.value(nickname).data());
    if (const QSharedPointer<CPlayerModel> model = m_Instances.take(nickname))
        StopWaiting(model.data());
}

void CPlayerModel::DestroyInstance(CPlayerModel *model)
{
    StoreBeforeEnd(IsExisting(model) ? model : nullptr);
    const auto entry = std::find(m_Instances.begin(), m_Instances.end(), model);
    if (entry == m_Instances.end())
        return;
    StopWaiting(model);
    m_Instances.erase(entry);
}

void CPlayerModel::DestroyInstances()
{
    if (CUserInfo::IsExisting())
        StoreBeforeEnd(CUserInfo::GetInstance()->GetPlayerModel());
    for (const QSharedPointer<CPlayerModel> &model : qAsConst(m_Instances))
        StopWaiting(model.data());
    m_Instances.clear();
}

void CPlayerModel::SetLoadedInfo(QString note, unsigned int tagID, unsigned int customAvatar, unsigned char rating,
                                 bool buddyBlocked, bool chatBlock)
{
    const bool differs = note != GetNotes() || tagID != GetTagID() || customAvatar != GetCustomAvatar() ||
                         rating != GetRating() || buddyBlocked != GetBuddyBlocked() || chatBlock != GetChatBlock();
    const QString user = CPlayerSaves::GetUser();
    const CPlayerSaves::CLoading loading(this);
    SetNotes(note);
    SetTagID(tagID);
    SetCustomAvatar(customAvatar);
    SetRating(rating);
    SetBuddyBlocked(buddyBlocked);
    SetChatBlock(chatBlock);
    CPlayerSaves *saves = CPlayerSaves::Get();
    if (saves && differs && user == CPlayerSaves::GetUser()) // otherwise a slot has ended the login
        saves->Restart(this, GetKey(), false);
}
