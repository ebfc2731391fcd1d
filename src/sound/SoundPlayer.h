#pragma once

#include <Export.h>

#include <QHash>
#include <QObject>
#include <QSharedPointer>
#include <QString>

class CSoundQueue;
class QMediaPlayer;

/// A channel that plays one sound at a time and queues the others. Channels play independently of each other.
///
/// Files are on disk, not in a resource. A missing file is skipped silently. A file that can't be played is only
/// reported in the system's own log, and the sounds queued after it may be lost. Volumes are 0 to 100; a channel
/// starts with the user's volume. CSettings' databases must be initialised. Main thread.
class PLUGININTERFACE_EXPORT CSoundPlayer : public QObject
{
    Q_OBJECT

public:
    /// Constructs a channel that isn't in the table; GetInstance() creates those that are.
    explicit CSoundPlayer(const QString &name);
    ~CSoundPlayer() override;

    /// Returns the channel with that name; creates it if there is none. The table of channels owns it.
    static CSoundPlayer *GetInstance(QString name);
    /// Returns whether the channel is in the table, without creating one.
    /// @{
    static bool IsExisting(QString name);
    static bool IsExisting(CSoundPlayer *player);
    /// @}
    /// Removes channels from the table at once and destroys them at the next turn of the event loop.
    /// @{
    static void DestroyInstance(QString name);
    static void DestroyInstance(CSoundPlayer *player);
    static void DestroyInstances();
    /// @}

    /// Sets the volume of all channels in the table.
    static void SetVolumeForAllChannels(unsigned char volume);
    /// Sets the volume of the channel; values above 100 count as 100.
    void SetVolume(unsigned char volume);

    /// Plays the file at once; cuts off the current sound and clears the queue.
    void PlaySoundInstant(const QString &file);
    /// Plays the file after the queued sounds, or at once if nothing is playing.
    void PlaySoundQueued(const QString &file);
    /// Cuts off the current sound and clears the queue.
    void StopPlaying();

private:
    QMediaPlayer *m_pPlayer; // child
    CSoundQueue *m_pQueue;   // without a parent, owned
    QString m_strName;

    static QHash<QString, QSharedPointer<CSoundPlayer>> m_Instances;
};
