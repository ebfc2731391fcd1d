#pragma once

#include <Export.h>
#include <translation/TranslationItem.h>

#include <QColor>
#include <QIcon>
#include <QObject>
#include <QSharedPointer>
#include <QString>

#include <array>

/// The ten coloured tags with which the user marks other players. CPlayerModel::GetTagID() is an index into them; 0
/// means no tag.
///
/// The tags are stored in the user's setting `playertags`; if that is empty, the operator's `playertags` apply. Each
/// login discards the tags of the previous user and loads those of the new one. Without a login the tags are hidden
/// and can't be changed. In a model created before the first login a tag has no colour until it is loaded or set, or
/// the tags are stored. The databases of CSettings and CTranslation must be initialised. Main thread.
class PLUGININTERFACE_EXPORT CPlayerTaggingModel : public QObject
{
    Q_OBJECT

public:
    static constexpr unsigned int ulMaxPlayerTags = 11; ///< The number of entries, including that of index 0.

    CPlayerTaggingModel();
    ~CPlayerTaggingModel() override;

    /// Returns the object, creating it on first use; the library owns it.
    static CPlayerTaggingModel *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the object at the next turn of the event loop.
    static void DestroyInstance();

    /// Returns whether somebody is logged in and the index is valid, 0 included.
    bool IsAvailable(unsigned int index) const;
    /// Returns the user's own text, or else the text of the catalogue; empty if the tag isn't available.
    QString GetText(unsigned int index);
    /// Returns the background colour; invalid if the tag isn't available, and always for index 0.
    QColor GetBackgroundColor(unsigned int index) const;
    /// Returns a text colour that reads well on the background; invalid if the tag isn't available.
    QColor GetTextColor(unsigned int index) const;
    /// Returns the background colour, whether or not anyone is logged in. \a index must be below ulMaxPlayerTags.
    QColor GetColor(unsigned int index) const;
    /// Returns the icon of the tag; null if the tag isn't available.
    QIcon GetIcon(unsigned int index) const;
    /// Returns the icon that a tag of this colour has.
    QIcon GetIcon(QColor color) const;

    /// Changes a tag from index 1 on, in memory only; Save() stores it and emits the signal. Does nothing without a
    /// login.
    /// @{
    void SetColor(unsigned int index, const QColor &color);
    void SetText(unsigned int index, const QString &text);
    /// @}

    /// Merges stored tags into the current ones: the user's, or the operator's if there are none or without
    /// \a fromSettings. Values that aren't stored stay as they are. Text that can't be parsed changes nothing.
    void Load(bool fromSettings);
    /// Stores all tags in the user's settings. Does nothing without a login.
    void Save();
    /// Restores the built-in tags, merges the operator's tags into them, and stores the result.
    void RestoreDefault();

Q_SIGNALS:
    /// Emitted when tags were loaded, stored or reset, but not by SetColor() or SetText().
    void signal_PlayerTagsChanged();

private Q_SLOTS:
    void slot_PlayerTagsChanged();
    void slot_TranslationChanged();

private:
    struct SPlayerTag
    {
        CTranslationItem itmText; // from the catalogue
        QColor colBackground;
        QColor colText;
        QString strCustomText; // empty if the catalogue's text applies
        QIcon icnIcon;
    };

    bool IsChangeable(unsigned int index) const;
    bool HasColors() const;
    static void Paint(SPlayerTag &tag, const QColor &color);
    void SetDefaultColors();
    void AddMissingColors();
    void ClearTexts();
    bool LayOver(const QString &text);
    void FollowUser();
    void LoadOfUser();

    std::array<SPlayerTag, ulMaxPlayerTags> m_aPlayerTags;

    static QSharedPointer<CPlayerTaggingModel> m_Instance;
};
