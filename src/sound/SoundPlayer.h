#pragma once

#include <Export.h>

#include <QHash>
#include <QObject>
#include <QSharedPointer>
#include <QString>

class QMediaPlayer;
class QMediaPlaylist;

/// A channel on which one sound is heard at a time, with those that wait behind it. Channels sound independently of
/// each other.
///
/// Files lie on disk, not in a resource. One that isn't there is passed over without a word; of one that can't be
/// played the system's own log tells, and what waits behind it may be lost with it. Volumes are 0 to 100; a channel
/// begins with the user's. CSettings' databases have to be initialised. Main thread.
class PLUGININTERFACE_EXPORT CSoundPlayer : public QObject
{
    Q_OBJECT

public:
    /// Makes a channel that isn't in the table; GetInstance() makes those that are.
    explicit CSoundPlayer(const QString &name);
    ~CSoundPlayer() override;

    /// The channel of that name, created if there is none; the table of channels owns it.
    static CSoundPlayer *GetInstance(QString name);
    /// Whether the table has it; creates none.
    /// @{
    static bool IsExisting(QString name);
    static bool IsExisting(CSoundPlayer *player);
    /// @}
    /// A channel leaves the table at once and ends at the next turn of the event loop.
    /// @{
    static void DestroyInstance(QString name);
    static void DestroyInstance(CSoundPlayer *player);
    static void DestroyInstances();
    /// @}

    /// Of the channels in the table.
    static void SetVolumeForAllChannels(unsigned char volume);
    /// What is above 100 is 100.
    void SetVolume(unsigned char volume);

    /// Cuts off what the channel plays, and all that waits.
    void PlaySoundInstant(const QString &file);
    /// Plays it behind what waits, at once if nothing is playing.
    void PlaySoundQueued(const QString &file);
    /// Cuts off what the channel plays, and forgets all that waits.
    void StopPlaying();

private:
    QMediaPlayer *m_pPlayer;     // child
    QMediaPlaylist *m_pPlaylist; // without a parent, owned
    QString m_strName;

    static QHash<QString, QSharedPointer<CSoundPlayer>> m_Instances;
};
