#include "BoundText_p.h"

#include <algorithm>

namespace {

constexpr QChar REPLACEMENT = QChar::ReplacementCharacter;
constexpr QChar BYTE_ORDER_MARK = QChar::ByteOrderMark;

bool IsReserved(QChar character)
{
    return character.unicode() >= 0xfffe;
}

bool IsSuspicious(QChar character)
{
    return character.isSurrogate() || IsReserved(character);
}

} // namespace

QString BoundText::Stored(const QString &text)
{
    if (text.isNull())
        return QLatin1String("");
    const QChar *first = std::find_if(text.cbegin(), text.cend(), IsSuspicious);
    if (first == text.cend())
        return text;
    QString stored = text;
    for (int index = int(first - text.cbegin()); index < stored.size(); ++index) {
        const QChar character = stored.at(index);
        if (character.isHighSurrogate() && index + 1 < stored.size() && stored.at(index + 1).isLowSurrogate())
            ++index;
        else if (IsSuspicious(character))
            stored[index] = REPLACEMENT;
    }
    return stored;
}

QString BoundText::ToBind(const QString &text)
{
    const QString stored = Stored(text);
    return stored.startsWith(BYTE_ORDER_MARK) ? BYTE_ORDER_MARK + stored : stored;
}
