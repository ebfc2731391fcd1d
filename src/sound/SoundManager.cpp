#include "SoundManager.h"

#include <Singleton_p.h>
#include <settings/Settings.h>
#include <sound/SoundPlayer.h>

PLUGININTERFACE_DEFINE_SINGLETON(CSoundManager);

namespace {

constexpr unsigned char MAX_VOLUME = 100;

const QString SAMPLE = QStringLiteral("SAMPLE");
const QString WARNING = QStringLiteral("WARNING");
const QString SPEECH = QStringLiteral("SPEECH");
const QString EFFECT = QStringLiteral("EFFECT");
const QString WINNING = QStringLiteral("WINNING");

bool IsAllowed(bool category)
{
    return CSettings::GetInstance()->GetSoundsEnabled() && category;
}

void Play(const QString &channel, const QString &file, bool queued)
{
    CSoundPlayer *player = CSoundPlayer::GetInstance(channel);
    if (queued)
        player->PlaySoundQueued(file);
    else
        player->PlaySoundInstant(file);
}

} // namespace

CSoundManager::CSoundManager()
{
    connect(CSettings::GetInstance(), &CSettings::signal_VolumeChanged, this, &CSoundManager::slot_VolumeChanged);
    for (const QString &channel : {SAMPLE, WARNING, SPEECH, EFFECT, WINNING})
        CSoundPlayer::GetInstance(channel);
    LoadSettings();
}

CSoundManager::~CSoundManager() = default;

void CSoundManager::PlayEffect(QString file, bool)
{
    if (IsAllowed(CSettings::GetInstance()->GetSoundEffects()))
        Play(EFFECT, file, false);
}

void CSoundManager::PlaySpeech(QString file, bool queued)
{
    if (IsAllowed(CSettings::GetInstance()->GetDealerSpeech()))
        Play(SPEECH, file, queued);
}

void CSoundManager::PlayWarning(QString file, bool queued)
{
    if (IsAllowed(CSettings::GetInstance()->GetAlertSounds()))
        Play(WARNING, file, queued);
}

void CSoundManager::PlayWinning(QString file, bool queued)
{
    if (IsAllowed(CSettings::GetInstance()->GetWinningSounds()))
        Play(WINNING, file, queued);
}

void CSoundManager::PlaySample(unsigned char volume, const QString &file)
{
    CSoundPlayer::GetInstance(SAMPLE)->SetVolume(qMin(volume, MAX_VOLUME));
    Play(SAMPLE, file, false);
}

void CSoundManager::LoadSettings()
{
    CSoundPlayer::SetVolumeForAllChannels(static_cast<unsigned char>(CSettings::GetInstance()->GetVolume()));
}

void CSoundManager::slot_VolumeChanged()
{
    if (CSettings::GetInstance()->GetCaller() != this)
        LoadSettings();
}
