#pragma once

#include <Export.h>

#include <QObject>
#include <QSharedPointer>
#include <QString>

/// The client's five sound channels, which obey the user's switches: no sound starts while its category is off, nor,
/// except for samples, while the user has turned off all sounds. A sound that is already playing continues.
///
/// The channels are created with this object and follow the setting `volume`. For files see CSoundPlayer. CSettings'
/// databases must be initialised. Main thread.
class PLUGININTERFACE_EXPORT CSoundManager : public QObject
{
    Q_OBJECT

public:
    CSoundManager();
    ~CSoundManager() override;

    /// Returns the object, creating it on first use; the library owns it.
    static CSoundManager *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the object at the next turn of the event loop; the channels are kept.
    static void DestroyInstance();

    /// Plays an effect and cuts off the one before; \a queued makes no difference.
    void PlayEffect(QString file, bool queued);
    /// Plays the file after those already playing or queued if \a queued, otherwise in their place.
    /// @{
    void PlaySpeech(QString file, bool queued);
    void PlayWarning(QString file, bool queued);
    void PlayWinning(QString file, bool queued);
    /// @}
    /// Plays a sample to let the user hear \a volume, at most 100, regardless of the switches. The channel keeps this
    /// volume until the user's volume changes.
    void PlaySample(unsigned char volume, const QString &file);

    /// Sets the volume of all channels to the user's volume.
    void LoadSettings();

private Q_SLOTS:
    void slot_VolumeChanged();

private:
    static QSharedPointer<CSoundManager> m_Instance;
};
