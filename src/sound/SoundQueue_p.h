#pragma once

#include <QObject>
#include <QtGlobal>

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QList>
#include <QUrl>
#endif

class QMediaPlayer;
class QMediaPlaylist;
class QUrl;

/// The sounds that a player plays one after the other: a QMediaPlaylist in Qt 5, and a list of files in Qt 6, which
/// has no playlists. Main thread.
class CSoundQueue : public QObject
{
public:
    /// Constructs an empty queue of the \a player, which has to outlive its use.
    explicit CSoundQueue(QMediaPlayer *player);
    ~CSoundQueue() override;

    /// Sets the volume of the player, 0 to 100.
    void SetVolume(int volume);
    /// Adds a file after the others, and begins to play if nothing is playing.
    void Add(const QUrl &file);
    /// Cuts off the current sound and removes all others.
    void Stop();
    bool IsPlaying() const;

private:
    QMediaPlayer *m_pPlayer;
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QMediaPlaylist *m_pPlaylist; // without a parent, owned
#else
    void PlayNext();

    QList<QUrl> m_waiting; // the current one is the player's
    float m_fVolume = 1;   // until there is an output, which looks for a sound server: not before the first sound
#endif
};
