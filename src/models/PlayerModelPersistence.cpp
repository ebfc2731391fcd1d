#include "PlayerModel.h"

#include <files/Pathes.h>
#include <models/PlayerSaves_p.h>
#include <models/UserInfo.h>
#include <network/Download.h>
#include <settings/Config.h>
#include <settings/LocalChanges_p.h>
#include <settings/PlayerInfo_p.h>
#include <settings/Settings.h>

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QSaveFile>

#include <algorithm>

// The connections of a player to the store, to the picture server, and to the user's settings.

namespace {

constexpr unsigned int PICTURES_PER_FOLDER = 1000;

// Stores the picture completely or not at all, because a truncated file would count as an existing picture. Returns
// false if it isn't on the disk.
bool StorePicture(const QString &path, const QByteArray &data)
{
    QDir().mkpath(QFileInfo(path).path());
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.commit();
}

} // namespace

void CPlayerModel::SetNewCustomAvatar(unsigned int id)
{
    if (IsOwn())
        CSettings::GetInstance()->SetCustomCurrent(static_cast<int>(id), this, true);
    ChangeCustomAvatarTo(id);
    SaveLater(false);
}

// The model itself reacts to a change before any connected slot does.
void CPlayerModel::FieldChanged(EField field)
{
    switch (field) {
    case EField::CartoonAvatar:
        slot_CartoonAvatarChanged();
        break;
    case EField::CustomAvatar:
        slot_CustomAvatarChanged();
        break;
    case EField::Buddy:
    case EField::Notes:
    case EField::BuddyBlocked:
    case EField::TagID:
    case EField::ChatBlock:
        SaveLater(true);
        break;
    case EField::Rating:
        SaveLater(false); // ratings stay on this machine
        break;
    case EField::Nickname:
        m_bRenamed = true;
        break;
    case EField::InfoText:
    case EField::Sex:
    case EField::VipLevel:
    case EField::Online:
        break;
    }
}

void CPlayerModel::slot_DownloadCustomAvatarFinished(bool status, QByteArray data)
{
    if (sender() != m_pDownload)
        return;
    m_pDownload->deleteLater();
    m_pDownload = nullptr;
    if (!status || QImage::fromData(data).isNull())
        return;
    const unsigned int id = m_ulPendingCustomAvatar;
    if (!StorePicture(Pathes::CustomAvatar(id), data))
        return;
    m_ulPendingCustomAvatar = 0;
    SetCustomAvatar(id);
    // Needed even if the number was the same all the time, because the picture exists only now.
    FieldChanged(EField::CustomAvatar);
    Q_EMIT signal_CustomAvatarChanged(id);
}

void CPlayerModel::slot_DBSaveTimer()
{
    PlayerInfo::CSaver().SaveOf(CPlayerSaves::GetUser(), GetKey(), *this);
}

void CPlayerModel::slot_DBUpdateTimer()
{
    const QString player = GetKey();
    if (!player.isEmpty() && CUserInfo::GetInstance()->IsLoggedIn())
        PlayerInfo::UpdateRow(player, *this);
}

void CPlayerModel::slot_CartoonAvatarChanged()
{
    if (IsOwn())
        CSettings::GetInstance()->SetCartoonAvatar(GetCartoonAvatar(), this, true);
}

void CPlayerModel::slot_CustomAvatarChanged()
{
    SetNewCustomAvatar(GetCustomAvatar());
}

// \a travels tells whether other machines have to learn of the change. A load schedules the player itself when it is
// complete.
void CPlayerModel::SaveLater(bool travels)
{
    CPlayerSaves *saves = CPlayerSaves::Get();
    if (!saves || saves->IsLoading(this))
        return;
    const QString key = GetKey();
    saves->Restart(this, key, travels);
    CLocalChanges *changes = travels ? CLocalChanges::Get() : nullptr;
    if (changes)
        changes->AddPlayer(CPlayerSaves::GetUser(), key);
}

// Returns the nickname under which the table holds the model, even if it was renamed; empty for a model that isn't in
// the table, which is never stored.
QString CPlayerModel::GetKey() const
{
    auto entry = m_Instances.constFind(GetNickname());
    const bool found = entry != m_Instances.cend() && entry->data() == this;
    if (!found && m_bRenamed)
        entry = std::find(m_Instances.cbegin(), m_Instances.cend(), this);
    return found || (m_bRenamed && entry != m_Instances.cend()) ? entry.key() : QString();
}

// Ends the login if the user's own model is about to be destroyed: its nickname tells whose changes are waiting.
void CPlayerModel::StoreBeforeEnd(const CPlayerModel *model)
{
    if (model && model->IsOwn())
        CPlayerSaves::Get()->EndLogin();
}

bool CPlayerModel::IsOwn() const
{
    return CUserInfo::IsExisting() && CUserInfo::GetInstance()->GetPlayerModel() == this;
}

// Sets a picture that exists, or starts to download it.
void CPlayerModel::ChangeCustomAvatarTo(unsigned int id)
{
    m_ulPendingCustomAvatar = 0;
    AbandonDownload();
    if (id == 0 || QImage().load(Pathes::CustomAvatar(id))) {
        SetCustomAvatar(id);
        return;
    }
    m_ulPendingCustomAvatar = id;
    const QString address = CConfig::GetInstance()->GetLinkPlayerPicture() +
                            QString::number(id / PICTURES_PER_FOLDER) + QLatin1Char('/') + QString::number(id) +
                            QLatin1String(".png");
    m_pDownload = new CDownload(this, address, QByteArray(), false);
    connect(m_pDownload, &CDownload::signal_Finished, this, &CPlayerModel::slot_DownloadCustomAvatarFinished);
    m_pDownload->Start();
}

void CPlayerModel::AbandonDownload()
{
    if (!m_pDownload)
        return;
    m_pDownload->disconnect(this);
    m_pDownload->Stop(); // otherwise a pending download would start before it is deleted
    m_pDownload->deleteLater();
    m_pDownload = nullptr;
}
