#pragma once

#include <Export.h>

#include <QHash>
#include <QObject>
#include <QSharedPointer>
#include <QString>

/// What chat views share: the user's chat settings, and which picture stands for a typed smiley.
///
/// The settings are the user's and stored in the setting `chatoptions`. Where the operator leaves no choice of the
/// chat of observers, `optionobserverchat` decides. Needs the databases of CSettings. Main thread.
class PLUGININTERFACE_EXPORT CChatModel : public QObject
{
    Q_OBJECT

public:
    /// What the user has chosen for chats.
    struct SSettings
    {
        bool bOption = false;   ///< The views', opaque here.
        int iObserverLevel = 3; ///< 3 with the chat of observers, 2 without, 1 less than that.
        int iLevel = 3;         ///< The views', opaque here.

        /// All three alike.
        bool operator==(const SSettings &other) const
        {
            return bOption == other.bOption && iObserverLevel == other.iObserverLevel && iLevel == other.iLevel;
        }
    };

    /// The picture of a smiley.
    struct SSmiley
    {
        QString strFile;       ///< Path of a picture that was there when the list was read.
        bool bAnimate = false; ///< Whether it moves.
    };

    CChatModel();
    ~CChatModel() override;

    /// Creates the object on first use; the library owns it.
    static CChatModel *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop.
    static void DestroyInstance();

    /// Those in force, the operator's rule applied.
    CChatModel::SSettings GetSettings() const;
    /// Stores and signals settings that differ, once the operator's rule is applied to them.
    void SetSettings(CChatModel::SSettings settings);

    /// From the text as it is typed to its picture.
    QHash<QString, CChatModel::SSmiley> GetSmileyMappings() const;
    /// Replaces the smileys by those of an XML file. A picture that isn't there is left out, and so is an empty text;
    /// of a text that comes twice the last counts. A file that can't be used leaves no smileys, and no signal tells.
    /// So does one of more than 1 MiB, with more than 100 elements within each other, with a tag, comment or text of
    /// more than 4 KiB, or whose document type defines something.
    ///
    /// The root is `<smileyconfig version="1.0">`. It holds `<smiley src="./smile.gif" animate="yes">`, whose path is
    /// relative to the file only if it begins with "./" or "../", with one `<placeholder text=":-)"/>` for each text.
    void LoadSmileyConfig(const QString &file);

Q_SIGNALS:
    /// A list of smileys was read.
    void signal_SmileysChanged();
    /// Settings that differ are in force, set or loaded.
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
