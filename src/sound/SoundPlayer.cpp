#include "SoundPlayer.h"

#include <Singleton_p.h>
#include <settings/Settings.h>
#include <sound/SoundQueue_p.h>

#include <QFileInfo>
#include <QMediaPlayer>
#include <QUrl>

#include <algorithm>

QHash<QString, QSharedPointer<CSoundPlayer>> CSoundPlayer::m_Instances;

CSoundPlayer::CSoundPlayer(const QString &name)
    : m_pPlayer(new QMediaPlayer(this))
    , m_pQueue(new CSoundQueue(m_pPlayer))
    , m_strName(name)
{
    SetVolume(static_cast<unsigned char>(CSettings::GetInstance()->GetVolume()));
}

CSoundPlayer::~CSoundPlayer()
{
    delete m_pQueue;
}

CSoundPlayer *CSoundPlayer::GetInstance(QString name)
{
    QSharedPointer<CSoundPlayer> player = m_Instances.value(name);
    if (!player) {
        // A deep copy, because a literal disappears when its plugin is unloaded.
        const QString key(name.constData(), name.size());
        player = Singleton::MakeShared(new CSoundPlayer(key));
        m_Instances.insert(key, player);
    }
    return player.data();
}

bool CSoundPlayer::IsExisting(QString name)
{
    return m_Instances.contains(name);
}

bool CSoundPlayer::IsExisting(CSoundPlayer *player)
{
    return std::find(m_Instances.cbegin(), m_Instances.cend(), player) != m_Instances.cend();
}

void CSoundPlayer::DestroyInstance(QString name)
{
    m_Instances.remove(name);
}

void CSoundPlayer::DestroyInstance(CSoundPlayer *player)
{
    const auto entry = std::find(m_Instances.begin(), m_Instances.end(), player);
    if (entry != m_Instances.end())
        m_Instances.erase(entry);
}

void CSoundPlayer::DestroyInstances()
{
    m_Instances.clear();
}

void CSoundPlayer::SetVolumeForAllChannels(unsigned char volume)
{
    for (const QSharedPointer<CSoundPlayer> &player : qAsConst(m_Instances))
        player->SetVolume(volume);
}

void CSoundPlayer::SetVolume(unsigned char volume)
{
    m_pQueue->SetVolume(volume);
}

void CSoundPlayer::PlaySoundInstant(const QString &file)
{
    StopPlaying();
    PlaySoundQueued(file);
}

void CSoundPlayer::PlaySoundQueued(const QString &file)
{
    // Otherwise the sounds of a queue that has ended would be played again.
    if (!m_pQueue->IsPlaying())
        StopPlaying();
    if (file.isEmpty() || file.startsWith(QLatin1Char(':')) || !QFileInfo::exists(file))
        return;
    m_pQueue->Add(QUrl::fromLocalFile(QFileInfo(file).absoluteFilePath()));
}

void CSoundPlayer::StopPlaying()
{
    m_pQueue->Stop();
}
