#pragma once

#include <Export.h>
#include <translation/TranslationItem.h>

#include <QColor>
#include <QIcon>
#include <QObject>
#include <QSharedPointer>
#include <QString>

#include <array>

/// The ten coloured tags with which the user marks other players: CPlayerModel::GetTagID() is an index into them, and
/// 0 is no tag.
///
/// They are the user's and stored in the setting `playertags`; where that is empty the operator's `playertags` stand.
/// Each login starts anew, whoever was logged in before, and loads the tags of the user. Without a login all is
/// hidden and nothing can be changed. In a model that is created before the first login a tag has no colour until it
/// is loaded or set, or the tags are stored. Needs the databases of CSettings and CTranslation. Thread of the user
/// interface.
class PLUGININTERFACE_EXPORT CPlayerTaggingModel : public QObject
{
    Q_OBJECT

public:
    static constexpr unsigned int ulMaxPlayerTags = 11; ///< Entries, that of index 0 among them.

    CPlayerTaggingModel();
    ~CPlayerTaggingModel() override;

    /// Creates the object on first use; the library owns it.
    static CPlayerTaggingModel *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop.
    static void DestroyInstance();

    /// Whether somebody is logged in and the index is one, 0 included.
    bool IsAvailable(unsigned int index) const;
    /// The user's own text, else that of the catalogue; empty if the tag isn't available.
    QString GetText(unsigned int index);
    /// Invalid if the tag isn't available, as always that of index 0.
    QColor GetBackgroundColor(unsigned int index) const;
    /// A colour that reads well on the background; invalid if the tag isn't available.
    QColor GetTextColor(unsigned int index) const;
    /// The background, whoever is logged in. \a index is below ulMaxPlayerTags.
    QColor GetColor(unsigned int index) const;
    /// Null if the tag isn't available.
    QIcon GetIcon(unsigned int index) const;
    /// The picture that a tag of this colour has.
    QIcon GetIcon(QColor color) const;

    /// Changes what is in memory of a tag from 1 on; Save() stores it and tells. Does nothing without a login.
    /// @{
    void SetColor(unsigned int index, const QColor &color);
    void SetText(unsigned int index, const QString &text);
    /// @}

    /// Lays the stored tags, or else, or without \a fromSettings, the operator's over those here. What isn't stored
    /// stays. Text that can't be read changes nothing.
    void Load(bool fromSettings);
    /// Stores all tags in the user's settings. Does nothing without a login.
    void Save();
    /// The built-in tags and over them the operator's, stored.
    void RestoreDefault();

Q_SIGNALS:
    /// Tags were loaded, stored or reset; not at a SetColor() or SetText().
    void signal_PlayerTagsChanged();

private Q_SLOTS:
    void slot_PlayerTagsChanged();
    void slot_TranslationChanged();

private:
    struct SPlayerTag
    {
        CTranslationItem itmText; // the catalogue's
        QColor colBackground;
        QColor colText;
        QString strCustomText; // empty where the catalogue's applies
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
