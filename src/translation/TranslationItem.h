#pragma once

#include <Export.h>

#include <QHash>
#include <QString>
#include <QVariant>

/// A text for the user that remembers where it comes from: a key and an area of CTranslation, or a literal text, with
/// values and further items to put in place of markers. So it can be built again when the language or a value
/// changes.
///
/// A value type: a copy is independent, and an item put into another one is a copy, too. It follows no change of the
/// language by itself; its owner calls ReTranslate(), or derives from it as CTranslationObject does. A marker is any
/// piece of text and stands in the template to the letter; by convention it is put between hashes, as in "#min#".
///
/// The finished text has no white space at its ends, no pair of blanks where a marker was replaced by nothing, and no
/// blank before a point.
class PLUGININTERFACE_EXPORT CTranslationItem
{
public:
    CTranslationItem();
    /// Copies what \a other holds and builds nothing; of a derived object the item alone.
    CTranslationItem(const CTranslationItem &other);
    virtual ~CTranslationItem();

    /// Takes over all that \a other holds and builds the text.
    CTranslationItem &operator=(const CTranslationItem &other);
    /// The same as the assignment.
    void SetItem(const CTranslationItem &other);

    /// Takes the template from the catalogue. False if it is the same key and area as before.
    bool SetTranslationKey(const QString &key, const QString &area);
    /// Takes a literal template; the placeholders stay. Always true.
    bool SetText(const QString &text);

    /// Puts a value, another item or a text of the catalogue in place of \a marker, in capitals and small letters as
    /// it stands. False if \a marker is empty. Each call looks the texts up again.
    /// @{
    bool SetPlaceholder(const QString &marker, const QVariant &value);
    bool SetPlaceholder(const QString &marker, const CTranslationItem &item);
    bool SetPlaceholder(const QString &marker, const QString &key, const QString &area);
    /// @}
    /// The value of a marker. One that has none gets an invalid value, which reads as an empty text; the reference
    /// lasts until the next change.
    const QVariant &GetPlaceholder(const QString &marker);

    /// Looks up the texts of this item and of all within it, and builds the finished text.
    void ReTranslate();
    /// Empties the item, without TranslationChanged().
    void Clear();

    /// Where the template comes from; empty for a literal one.
    /// @{
    const QString &GetTranslationKey() const;
    const QString &GetTranslationArea() const;
    /// @}
    /// The template.
    const QString &GetText() const;
    /// The finished text.
    const QString &GetTranslatedText() const;
    /// The values by their markers; items and texts of the catalogue are not among them.
    const QHash<QString, QVariant> &GetPlaceholders() const;

protected:
    /// The finished text was built anew, to the same letters or not.
    virtual void TranslationChanged();

private:
    void ReplacePlaceholders();

    QString m_strTranslationKey;
    QString m_strTranslationArea;
    QString m_strText;
    QString m_strTranslatedText;
    QHash<QString, QVariant> m_hashPlaceholders;
    QHash<QString, CTranslationItem> m_hashItems;
};
