#include "Texts.h"

#include <QHash>

QString Texts::Area()
{
    return QStringLiteral("EXAMPLE");
}

QString Texts::Get(const QString &key)
{
    return Once(key, [&] { return CTranslation::GetInstance()->GetTranslatedString(key, Area(), -1); });
}

QString Texts::Once(const QString &name, const std::function<QString()> &make)
{
    static QHash<QString, QString> texts;
    static int language = -1;
    if (language != CTranslation::GetInstance()->GetLanguage().iID)
        texts.clear();
    language = CTranslation::GetInstance()->GetLanguage().iID;
    const auto known = texts.constFind(name);
    return known != texts.constEnd() ? *known : *texts.insert(name, make());
}

QString Texts::Get(const char *key, TValues values)
{
    return values.size() == 0 ? Get(QString::fromLatin1(key)) : MakeItem(key, values).GetTranslatedText();
}

// The key is appended last, so that it is looked up once and not for each value.
CTranslationItem Texts::MakeItem(const char *key, TValues values)
{
    CTranslationItem item;
    for (const auto &[marker, value] : values)
        item.SetPlaceholder(QString::fromLatin1(marker), value);
    item.SetTranslationKey(QString::fromLatin1(key), Area());
    return item;
}
