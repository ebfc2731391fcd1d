#include "AccountProtocol.h"

#include <QCryptographicHash>

#include <algorithm>

namespace AccountProtocol {

bool IsNickname(const QString &text)
{
    return !text.isEmpty() && text.size() <= MAX_NICKNAME_LENGTH && text == text.trimmed() &&
           std::all_of(text.begin(), text.end(), [](QChar character) { return character.isPrint(); });
}

QString HashPassword(const QString &password)
{
    const QByteArray hash = QCryptographicHash::hash(password.toUtf8(), QCryptographicHash::Sha256);
    return QString::fromLatin1(hash.toHex());
}

} // namespace AccountProtocol
