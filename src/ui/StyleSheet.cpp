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
const QLatin1String COMMENT_BEGIN("/*");
const QLatin1String COMMENT_END("*/");

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
    for (;;) {
        const int begin = text.indexOf(COMMENT_BEGIN, kept);
        const int end = begin < 0 ? -1 : text.indexOf(COMMENT_END, begin + COMMENT_BEGIN.size());
        if (end < 0)
            break;
        rest += text.midRef(kept, begin - kept);
        kept = end + COMMENT_END.size();
    }
    rest += text.midRef(kept);
    text = rest;
    return !text.contains(COMMENT_BEGIN) && !text.contains(COMMENT_END);
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

struct SProgress
{
    QStringList beingRead; // includes lead from the first to the last
    int iFiles = 0;        // that were opened
};

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
            QString included;
            const QString name = ToFileName(line.mid(INCLUDE.size()).trimmed());
            if (!ReadStyleSheet(directory + name, progress, included))
                return false;
            text += included;
        } else if (!line.isEmpty()) {
            text += Globals::ReplaceStylePath(line, directory) + QLatin1Char('\n');
        }
        if (text.size() > MAX_LENGTH)
            return false;
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
    int copied = 0;
    for (int i = 0; i < line.size(); ++i) {
        const QStringRef rest = line.midRef(i);
        if (!rest.startsWith(QLatin1String("../")) && !rest.startsWith(QLatin1String("./")))
            continue;
        replaced += line.midRef(copied, i - copied);
        replaced += directory;
        copied = i;
        const int end = line.indexOf(QLatin1Char(';'), i);
        i = end < 0 ? line.size() : end;
    }
    return replaced + line.midRef(copied);
}
