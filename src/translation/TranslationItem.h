#pragma once

#include <Export.h>

#include <QHash>
#include <QString>
#include <QVariant>

/// A text for the user that remembers its source: a key and an area of CTranslation, or a literal text, and the
/// values and further items that replace its markers. So it can be built again when the language or a value changes.
///
/// This is a value type: a copy is independent, and an item that is placed in another one is copied, too. It doesn't
/// follow the language by itself; its owner calls ReTranslate(), or derives from this class as CTranslationObject
/// does. A marker may be any text and is matched exactly; by convention it is enclosed in hashes, as in "#min#".
///
/// The finished text has no white space at its ends, no double space where a marker was replaced by nothing, and no
/// space before a full stop.
class PLUGININTERFACE_EXPORT CTranslationItem
{
public:
    CTranslationItem();
    /// Copies the contents of \a other without building the text; of a derived object only the item.
    CTranslationItem(const CTranslationItem &other);
    virtual ~CTranslationItem();

    /// Copies the contents of \a other and builds the text.
    CTranslationItem &operator=(const CTranslationItem &other);
    /// Copies the contents of \a other and builds the text, like the assignment operator.
    void SetItem(const CTranslationItem &other);

    /// Takes the template from the catalogue. Returns false if key and area are the same as before.
    bool SetTranslationKey(const QString &key, const QString &area);
    /// Sets a literal template and keeps the placeholders. Always returns true.
    bool SetText(const QString &text);

    /// Replaces \a marker, which is case-sensitive, with a value, another item or a text of the catalogue. Returns
    /// false if \a marker is empty. Each call looks the texts up again.
    /// @{
    bool SetPlaceholder(const QString &marker, const QVariant &value);
    bool SetPlaceholder(const QString &marker, const CTranslationItem &item);
    bool SetPlaceholder(const QString &marker, const QString &key, const QString &area);
    /// @}
    /// Returns the value of \a marker. A marker without a value is given an invalid one, which yields empty text. The
    /// reference is valid until the next change.
    const QVariant &GetPlaceholder(const QString &marker);

    /// Looks up the texts of this item and of all items within it, and builds the finished text.
    void ReTranslate();
    /// Clears the item without calling TranslationChanged().
    void Clear();

    /// Returns where the template comes from; empty for a literal template.
    /// @{
    const QString &GetTranslationKey() const;
    const QString &GetTranslationArea() const;
    /// @}
    /// Returns the template.
    const QString &GetText() const;
    /// Returns the finished text.
    const QString &GetTranslatedText() const;
    /// Returns the values by their markers, without items and texts of the catalogue.
    const QHash<QString, QVariant> &GetPlaceholders() const;

protected:
    /// Called when the finished text was built again, whether or not it differs.
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
