#pragma once

#include <Export.h>

#include <QObject>
#include <QSharedPointer>
#include <QString>

/// The client's five channels of sound, each behind the user's switches: nothing is heard of a category that is off
/// when it is to be played, nor of any but the samples while the user wants no sounds at all. A sound that is playing
/// goes on.
///
/// The channels begin with this object and follow the setting `volume`. For files see CSoundPlayer. CSettings'
/// databases have to be initialised. Main thread.
class PLUGININTERFACE_EXPORT CSoundManager : public QObject
{
    Q_OBJECT

public:
    CSoundManager();
    ~CSoundManager() override;

    /// Creates the object on first use; the library owns it.
    static CSoundManager *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop; the channels stay.
    static void DestroyInstance();

    /// Always cuts off the effect before; \a queued makes no difference.
    void PlayEffect(QString file, bool queued);
    /// Behind what the channel plays if \a queued, else in its place.
    /// @{
    void PlaySpeech(QString file, bool queued);
    void PlayWarning(QString file, bool queued);
    void PlayWinning(QString file, bool queued);
    /// @}
    /// Lets the user hear a volume, up to 100, whatever the switches say. The channel keeps it until the next change
    /// of the user's volume.
    void PlaySample(unsigned char volume, const QString &file);

    /// Gives all channels the user's volume.
    void LoadSettings();

private Q_SLOTS:
    void slot_VolumeChanged();

private:
    static QSharedPointer<CSoundManager> m_Instance;
};
