#include "StyleSheet.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QTextStream>

namespace {

// Without limits, a few files that each include the next one twice would use up all memory and time.
constexpr int MAX_LENGTH = 16 << 20;
constexpr int MAX_FILES = 1000;
constexpr int MAX_INCLUDE_DEPTH = 64; // each level scans everything that it includes once more

const QLatin1String INCLUDE("#include");
constexpr char COMMENT_BEGIN[] = "/*";
constexpr char COMMENT_END[] = "*/";
constexpr char HERE[] = "./";
constexpr int PAIR_SIZE = 2;

// Returns where two characters stand next to each other, -1 if nowhere. Qt searches for a single character at many
// places at once, but for a text at one place after the other.
QString::size_type FindPair(const QString &text, const char (&pair)[PAIR_SIZE + 1], QString::size_type from = 0)
{
    const QLatin1Char first(pair[0]);
    const QLatin1Char second(pair[1]);
    auto at = text.indexOf(first, from);
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

// Returns false if a comment isn't closed, or closed without being opened.
bool RemoveComments(QString &text)
{
    QString rest;
    QString::size_type kept = 0;
    for (QString::size_type begin = 0; (begin = FindPair(text, COMMENT_BEGIN, kept)) >= 0;) {
        const auto end = FindPair(text, COMMENT_END, begin + PAIR_SIZE);
        if (end < 0)
            return false;
        rest.append(text.constData() + kept, begin - kept);
        kept = end + PAIR_SIZE;
    }
    rest.append(text.constData() + kept, text.size() - kept);
    text = rest;
    return FindPair(text, COMMENT_BEGIN) < 0 && FindPair(text, COMMENT_END) < 0;
}

bool IsBlank(QChar character)
{
    return character == QLatin1Char('\n') || character == QLatin1Char(' ') || character == QLatin1Char('\t');
}

// Returns whether each brace has its counterpart and each block has a selector.
bool AreBlocksSound(const QString &text)
{
    int depth = 0;
    bool hasSelector = false;
    QString::size_type start = 0; // start of a possible selector
    for (QString::size_type i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('{')) {
            if (depth == 0) {
                hasSelector = !QStringView(text).mid(start, i - start).trimmed().isEmpty();
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

// Appends a line with its relative paths replaced. Returns false if the text would exceed \a maxLength.
bool AppendLine(QString &text, const QString &line, const QString &directory, QString::size_type maxLength)
{
    QString::size_type copied = 0;
    for (auto i = FindPair(line, HERE); i >= 0; i = FindPair(line, HERE, i)) {
        const bool isParent = i > 0 && line.at(i - 1) == QLatin1Char('.'); // "../"
        const auto begin = isParent ? i - 1 : i;
        if (begin - copied > maxLength - text.size() - directory.size())
            return false;
        text.append(line.constData() + copied, begin - copied);
        text += directory;
        copied = begin;
        const auto end = line.indexOf(QLatin1Char(';'), i);
        i = end < 0 ? line.size() : end;
    }
    if (line.size() - copied > maxLength - text.size())
        return false;
    text.append(line.constData() + copied, line.size() - copied);
    return true;
}

struct SProgress
{
    QStringList beingRead;                 // the chain of includes, outermost first
    int iFiles = 0;                        // number of files read so far
    QString::size_type iRoom = MAX_LENGTH; // characters left, besides those of the files being read
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
        progress.beingRead.size() >= MAX_INCLUDE_DEPTH || !file.open(QIODevice::ReadOnly))
        return false;
    progress.beingRead.append(canonicalPath);
    const QString directory = path.left(path.lastIndexOf(QLatin1Char('/')) + 1);
    QTextStream stream(&file);
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0) // whose default it isn't
    stream.setCodec("UTF-8");
#endif
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
