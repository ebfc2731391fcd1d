#include "SoundQueue_p.h"

#include <QMediaPlayer>
#include <QUrl>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)

#include <QMediaPlaylist>

CSoundQueue::CSoundQueue(QMediaPlayer *player)
    : m_pPlayer(player)
    , m_pPlaylist(new QMediaPlaylist)
{
    m_pPlayer->setPlaylist(m_pPlaylist);
}

CSoundQueue::~CSoundQueue()
{
    m_pPlaylist->deleteLater();
}

void CSoundQueue::SetVolume(int volume)
{
    m_pPlayer->setVolume(volume);
}

void CSoundQueue::Add(const QUrl &file)
{
    m_pPlaylist->addMedia(file);
    if (!IsPlaying())
        m_pPlayer->play();
}

void CSoundQueue::Stop()
{
    m_pPlayer->stop();
    m_pPlaylist->clear();
}

bool CSoundQueue::IsPlaying() const
{
    return m_pPlayer->state() == QMediaPlayer::PlayingState;
}

#else

#include <QAudioOutput>

CSoundQueue::CSoundQueue(QMediaPlayer *player)
    : m_pPlayer(player)
{
    const auto follow = [this](QMediaPlayer::MediaStatus status) {
        if (status == QMediaPlayer::EndOfMedia || status == QMediaPlayer::InvalidMedia)
            PlayNext();
    };
    // The player is still busy with the sound whose end it signals.
    connect(m_pPlayer, &QMediaPlayer::mediaStatusChanged, this, follow, Qt::QueuedConnection);
}

CSoundQueue::~CSoundQueue() = default;

void CSoundQueue::SetVolume(int volume)
{
    m_fVolume = static_cast<float>(qMin(volume, 100)) / 100;
    if (QAudioOutput *output = m_pPlayer->audioOutput())
        output->setVolume(m_fVolume);
}

void CSoundQueue::Add(const QUrl &file)
{
    if (!m_pPlayer->audioOutput()) {
        auto *output = new QAudioOutput(m_pPlayer);
        output->setVolume(m_fVolume);
        m_pPlayer->setAudioOutput(output);
    }
    m_waiting.append(file);
    if (!IsPlaying())
        PlayNext();
}

void CSoundQueue::Stop()
{
    m_waiting.clear();
    m_pPlayer->stop();
    m_pPlayer->setSource(QUrl());
}

bool CSoundQueue::IsPlaying() const
{
    return m_pPlayer->playbackState() == QMediaPlayer::PlayingState;
}

void CSoundQueue::PlayNext()
{
    if (m_waiting.isEmpty() || IsPlaying()) // a sound may have been added after the signal
        return;
    m_pPlayer->setSource(QUrl()); // or the same file would not be played once more
    m_pPlayer->setSource(m_waiting.takeFirst());
    m_pPlayer->play();
}

#endif
