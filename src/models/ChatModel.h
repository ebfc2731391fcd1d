#pragma once

#include <Export.h>

#include <QHash>
#include <QObject>
#include <QSharedPointer>
#include <QString>

/// The data that chat views share: the user's chat settings, and the pictures that replace typed smileys.
///
/// The settings are stored in the user's setting `chatoptions`. If the operator doesn't let users choose the chat of
/// observers, `optionobserverchat` decides. CSettings' databases must be initialised. Main thread.
class PLUGININTERFACE_EXPORT CChatModel : public QObject
{
    Q_OBJECT

public:
    /// The user's chat settings.
    struct SSettings
    {
        bool bOption = false;   ///< Opaque here; the views interpret it.
        int iObserverLevel = 3; ///< 3 with the chat of observers, 2 without it, 1 for less.
        int iLevel = 3;         ///< Opaque here; the views interpret it.

        /// Returns whether all three fields are equal.
        bool operator==(const SSettings &other) const
        {
            return bOption == other.bOption && iObserverLevel == other.iObserverLevel && iLevel == other.iLevel;
        }
    };

    /// The picture of a smiley.
    struct SSmiley
    {
        QString strFile;       ///< The path of a picture that existed when the list was read.
        bool bAnimate = false; ///< Whether the picture is animated.
    };

    CChatModel();
    ~CChatModel() override;

    /// Returns the object, creating it on first use; the library owns it.
    static CChatModel *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the object at the next turn of the event loop.
    static void DestroyInstance();

    /// Returns the settings in effect, with the operator's rule applied.
    CChatModel::SSettings GetSettings() const;
    /// Applies the operator's rule to the settings. If the result differs, stores it and emits
    /// signal_SettingsChanged().
    void SetSettings(CChatModel::SSettings settings);

    /// Returns the pictures of the smileys by the text as it is typed.
    QHash<QString, CChatModel::SSmiley> GetSmileyMappings() const;
    /// Replaces the smileys with those of an XML file. Pictures that don't exist and empty texts are skipped; if a
    /// text occurs twice, the last one counts. After a file that can't be used there are no smileys, and no signal is
    /// emitted. This includes files larger than 1 MiB, with elements nested more than 100 deep, with a tag, comment
    /// or text of more than 4 KiB, or whose document type defines anything.
    ///
    /// The root is `<smileyconfig version="1.0">`. It contains `<smiley src="./smile.gif" animate="yes">` elements,
    /// each with one `<placeholder text=":-)"/>` per text. The path of a picture is relative to the file only if it
    /// begins with "./" or "../".
    void LoadSmileyConfig(const QString &file);

Q_SIGNALS:
    /// Emitted when a list of smileys was read.
    void signal_SmileysChanged();
    /// Emitted when settings that differ have taken effect, set or loaded.
    void signal_SettingsChanged();

private Q_SLOTS:
    void slot_ChatOptionsChanged();

private:
    void LoadSettings();
    void SaveSettings();

    SSettings m_Settings;
    QHash<QString, SSmiley> m_hSmileys;

    static QSharedPointer<CChatModel> m_Instance;
};
