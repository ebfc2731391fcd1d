#include "StyleSheet.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QTextStream>

namespace {

// A few files, each of which includes the next one twice, would fill any memory and take any time.
constexpr int MAX_LENGTH = 16 << 20;
constexpr int MAX_FILES = 1000;
constexpr int MAX_DEPTH = 64; // each level looks at all that it includes once more

const QLatin1String INCLUDE("#include");
constexpr char COMMENT_BEGIN[] = "/*";
constexpr char COMMENT_END[] = "*/";
constexpr char HERE[] = "./";
constexpr int PAIR_SIZE = 2;

// Where two characters stand next to each other, -1 if nowhere. Qt looks for a single character at many places at
// once, but for a text at one after the other.
int FindPair(const QString &text, const char (&pair)[PAIR_SIZE + 1], int from = 0)
{
    const QLatin1Char first(pair[0]);
    const QLatin1Char second(pair[1]);
    int at = text.indexOf(first, from);
    while (at >= 0 && (at + 1 == text.size() || text.at(at + 1) != second))
        at = text.indexOf(first, at + 1);
    return at;
}

QString ToFileName(QString include)
{
    for (const char sign : {';', '{', '}', '"', '\''})
        include.remove(QLatin1Char(sign));
    return include;
}

// False if one is left open, or closed without being opened.
bool RemoveComments(QString &text)
{
    QString rest;
    int kept = 0;
    for (int begin = 0; (begin = FindPair(text, COMMENT_BEGIN, kept)) >= 0;) {
        const int end = FindPair(text, COMMENT_END, begin + PAIR_SIZE);
        if (end < 0)
            return false;
        rest += text.midRef(kept, begin - kept);
        kept = end + PAIR_SIZE;
    }
    rest += text.midRef(kept);
    text = rest;
    return FindPair(text, COMMENT_BEGIN) < 0 && FindPair(text, COMMENT_END) < 0;
}

bool IsBlank(QChar character)
{
    return character == QLatin1Char('\n') || character == QLatin1Char(' ') || character == QLatin1Char('\t');
}

// Whether each brace has its counterpart and each block a selector.
bool AreBlocksSound(const QString &text)
{
    int depth = 0;
    bool hasSelector = false;
    int start = 0; // of what may be a selector
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('{')) {
            if (depth == 0) {
                hasSelector = !text.midRef(start, i - start).trimmed().isEmpty();
                start = i + 1;
            }
            ++depth;
        } else if (text.at(i) == QLatin1Char('}')) {
            if (depth == 0)
                return false;
            --depth;
            if (depth == 0 && !hasSelector)
                return false;
            while (i + 1 < text.size() && IsBlank(text.at(i + 1)))
                ++i;
            hasSelector = false;
            start = i + 1;
        }
    }
    return depth == 0;
}

// Appends a line with its relative paths replaced. False if the text would become longer than it may be.
bool AppendLine(QString &text, const QString &line, const QString &directory, int maxLength)
{
    int copied = 0;
    for (int i = FindPair(line, HERE); i >= 0; i = FindPair(line, HERE, i)) {
        const bool isParent = i > 0 && line.at(i - 1) == QLatin1Char('.'); // "../"
        const int begin = isParent ? i - 1 : i;
        if (begin - copied > maxLength - text.size() - directory.size())
            return false;
        text += line.midRef(copied, begin - copied);
        text += directory;
        copied = begin;
        const int end = line.indexOf(QLatin1Char(';'), i);
        i = end < 0 ? line.size() : end;
    }
    if (line.size() - copied > maxLength - text.size())
        return false;
    text += line.midRef(copied);
    return true;
}

struct SProgress
{
    QStringList beingRead;  // includes lead from the first to the last
    int iFiles = 0;         // that were opened
    int iRoom = MAX_LENGTH; // for characters, besides those of the files that are being read
};

bool ReadStyleSheet(const QString &path, SProgress &progress, QString &contents);

bool AppendInclude(QString &text, const QString &path, SProgress &progress)
{
    progress.iRoom -= text.size();
    QString included;
    if (!ReadStyleSheet(path, progress, included))
        return false;
    progress.iRoom += text.size();
    if (included.size() > progress.iRoom - text.size())
        return false;
    text += included;
    return true;
}

bool ReadStyleSheet(const QString &path, SProgress &progress, QString &contents)
{
    QFile file(path);
    const QString canonicalPath = QFileInfo(path).canonicalFilePath();
    if (progress.beingRead.contains(canonicalPath) || ++progress.iFiles > MAX_FILES ||
        progress.beingRead.size() >= MAX_DEPTH || !file.open(QIODevice::ReadOnly))
        return false;
    progress.beingRead.append(canonicalPath);
    const QString directory = path.left(path.lastIndexOf(QLatin1Char('/')) + 1);
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    QString text;
    QString line;
    while (stream.readLineInto(&line, MAX_LENGTH + 1)) {
        line = line.trimmed();
        if (line.startsWith(INCLUDE)) {
            const QString name = ToFileName(line.mid(INCLUDE.size()).trimmed());
            if (!AppendInclude(text, directory + name, progress))
                return false;
        } else if (!line.isEmpty()) {
            line += QLatin1Char('\n');
            if (!AppendLine(text, line, directory, progress.iRoom))
                return false;
        }
    }
    progress.beingRead.removeLast();
    if (!RemoveComments(text) || !AreBlocksSound(text))
        return false;
    contents = text;
    return true;
}

} // namespace

bool Globals::GetCssContents(const QString &path, QString &contents)
{
    SProgress progress;
    return ReadStyleSheet(path, progress, contents);
}

QString Globals::ReplaceStylePath(QString line, const QString &directory)
{
    QString replaced;
    return AppendLine(replaced, line, directory, MAX_LENGTH) ? replaced : line;
}
