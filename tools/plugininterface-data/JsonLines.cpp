#include "JsonLines.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

// Returns the position after the closing quote of the string that begins at \a begin.
int StringEnd(const QByteArray &json, int begin)
{
    int end = begin + 1;
    while (end < json.size() && json.at(end) != '"')
        end += json.at(end) == '\\' ? 2 : 1;
    return end + 1;
}

QString Unescaped(const QByteArray &string)
{
    return QJsonDocument::fromJson('[' + string + ']').array().first().toString();
}

} // namespace

QVector<JsonLines::SMember> JsonLines::FindMembers(const QByteArray &json)
{
    QVector<SMember> members;
    int depth = 0;
    int line = 1;
    SMember string{QString(), 0}; // the last one, which is a name if a colon follows
    for (int i = 0; i < json.size(); ++i) {
        switch (json.at(i)) {
        case '\n':
            ++line;
            break;
        case '{':
        case '[':
            ++depth;
            break;
        case '}':
        case ']':
            --depth;
            break;
        case ':':
            if (depth == 1)
                members.append(string);
            break;
        case '"': {
            const int end = StringEnd(json, i);
            if (depth == 1)
                string = {Unescaped(json.mid(i, end - i)), line};
            i = end - 1;
            break;
        }
        default:
            break;
        }
    }
    return members;
}

int JsonLines::LineAt(const QByteArray &text, int offset)
{
    return 1 + static_cast<int>(text.left(offset).count('\n'));
}
