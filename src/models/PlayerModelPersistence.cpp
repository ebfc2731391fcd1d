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

// A player's ties to the store, to the picture server, and to the user's settings.

namespace {

constexpr unsigned int PICTURES_PER_FOLDER = 1000;

// Whole or not at all: what is torn would pass for a picture that is there. False if it isn't on the disk.
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

// The own consequences of a change come before those of any listener.
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
        SaveLater(false); // it stays on the machine
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
    // Also where the number has been this one all the time: what it stands for is there only now.
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

// \a travels: whether other machines are to hear of the change. A load stores once it is whole.
void CPlayerModel::SaveLater(bool travels)
{
    CPlayerSaves *saves = CPlayerSaves::Get();
    if (!saves || saves->IsLoading(this))
        return;
    saves->Restart(this, GetKey(), travels);
    CLocalChanges *changes = travels ? CLocalChanges::Get() : nullptr;
    if (changes)
        changes->AddPlayer(CPlayerSaves::GetUser(), GetKey());
}

// The nickname under which the table holds the model, also where it has been renamed; empty for a model that isn't in
// the table, which is never stored.
QString CPlayerModel::GetKey() const
{
    auto entry = m_Instances.constFind(GetNickname());
    const bool found = entry != m_Instances.cend() && entry->data() == this;
    if (!found && m_bRenamed)
        entry = std::find(m_Instances.cbegin(), m_Instances.cend(), this);
    return found || (m_bRenamed && entry != m_Instances.cend()) ? entry.key() : QString();
}

// The own player's nickname is that of the user who has noted all that waits.
void CPlayerModel::StoreBeforeEnd(const CPlayerModel *model)
{
    if (model && model->IsOwn())
        CPlayerSaves::Get()->EndLogin();
}

bool CPlayerModel::IsOwn() const
{
    return CUserInfo::IsExisting() && CUserInfo::GetInstance()->GetPlayerModel() == this;
}

// Takes a picture that is there, or begins to fetch one.
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
    m_pDownload->Stop(); // or one that hasn't begun yet would begin before it goes
    m_pDownload->deleteLater();
    m_pDownload = nullptr;
}
