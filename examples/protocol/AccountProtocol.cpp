#include "AccountProtocol.h"

#include <algorithm>

namespace AccountProtocol {

bool IsNickname(const QString &text)
{
    return !text.isEmpty() && text.size() <= MAX_NICKNAME_LENGTH && text == text.trimmed() &&
           std::all_of(text.begin(), text.end(), [](QChar character) { return character.isPrint(); });
}

} // namespace AccountProtocol
