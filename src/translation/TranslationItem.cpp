#include "TranslationItem.h"

#include <translation/Translation.h>

CTranslationItem::CTranslationItem() = default;

CTranslationItem::CTranslationItem(const CTranslationItem &other) = default;

CTranslationItem::~CTranslationItem() = default;

CTranslationItem &CTranslationItem::operator=(const CTranslationItem &other)
{
    m_strTranslationKey = other.m_strTranslationKey;
    m_strTranslationArea = other.m_strTranslationArea;
    m_strText = other.m_strText;
    m_strTranslatedText = other.m_strTranslatedText;
    m_hashPlaceholders = other.m_hashPlaceholders;
    m_hashItems = other.m_hashItems;
    ReplacePlaceholders();
    return *this;
}

void CTranslationItem::SetItem(const CTranslationItem &other)
{
    CTranslationItem::operator=(other);
}

bool CTranslationItem::SetTranslationKey(const QString &key, const QString &area)
{
    if (key == m_strTranslationKey && area == m_strTranslationArea)
        return false;
    m_strTranslationKey = key;
    m_strTranslationArea = area;
    ReTranslate();
    return true;
}

bool CTranslationItem::SetText(const QString &text)
{
    m_strText = text;
    m_strTranslationKey = QLatin1String("");
    m_strTranslationArea = QLatin1String("");
    ReplacePlaceholders();
    return true;
}

bool CTranslationItem::SetPlaceholder(const QString &marker, const QVariant &value)
{
    if (marker.isEmpty())
        return false;
    m_hashPlaceholders.insert(marker, value);
    m_hashItems.remove(marker);
    ReTranslate();
    return true;
}

bool CTranslationItem::SetPlaceholder(const QString &marker, const CTranslationItem &item)
{
    if (marker.isEmpty())
        return false;
    // The item may be this object, which must not contain itself.
    const CTranslationItem copy(item); // NOLINT(performance-unnecessary-copy-initialization): that is the purpose
    m_hashItems[marker].SetItem(copy);
    m_hashPlaceholders.remove(marker);
    ReTranslate();
    return true;
}

bool CTranslationItem::SetPlaceholder(const QString &marker, const QString &key, const QString &area)
{
    if (marker.isEmpty())
        return false;
    CTranslationItem item;
    item.SetTranslationKey(key, area);
    return SetPlaceholder(marker, item);
}

const QVariant &CTranslationItem::GetPlaceholder(const QString &marker)
{
    return m_hashPlaceholders[marker];
}

void CTranslationItem::ReTranslate()
{
    for (CTranslationItem &item : m_hashItems)
        item.ReTranslate();
    if (!m_strTranslationKey.isEmpty())
        m_strText = CTranslation::GetInstance()->GetTranslatedString(m_strTranslationKey, m_strTranslationArea, -1);
    ReplacePlaceholders();
}

void CTranslationItem::Clear()
{
    m_hashPlaceholders.clear();
    m_hashItems.clear();
    m_strTranslationKey = QLatin1String("");
    m_strTranslationArea = QLatin1String("");
    m_strText = QLatin1String("");
    m_strTranslatedText = QLatin1String("");
}

const QString &CTranslationItem::GetTranslationKey() const
{
    return m_strTranslationKey;
}

const QString &CTranslationItem::GetTranslationArea() const
{
    return m_strTranslationArea;
}

const QString &CTranslationItem::GetText() const
{
    return m_strText;
}

const QString &CTranslationItem::GetTranslatedText() const
{
    return m_strTranslatedText;
}

const QHash<QString, QVariant> &CTranslationItem::GetPlaceholders() const
{
    return m_hashPlaceholders;
}

void CTranslationItem::TranslationChanged() {}

// An empty marker would match between any two letters. Only GetPlaceholder() can store one.
void CTranslationItem::ReplacePlaceholders()
{
    QString text = m_strText;
    for (auto value = m_hashPlaceholders.cbegin(); value != m_hashPlaceholders.cend(); ++value) {
        if (!value.key().isEmpty())
            text.replace(value.key(), value->toString());
    }
    for (auto item = m_hashItems.cbegin(); item != m_hashItems.cend(); ++item)
        text.replace(item.key(), item->m_strTranslatedText);
    text = text.trimmed();
    text.replace(QLatin1String("  "), QLatin1String(" "));
    text.replace(QLatin1String(" ."), QLatin1String("."));
    m_strTranslatedText = text.trimmed();
    TranslationChanged();
}
