#include "Report.h"

#include <cstdio>

namespace {

void WriteLine(std::FILE *stream, const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
}

QString Place(const QString &file, int line)
{
    return line > 0 ? file + QLatin1Char(':') + QString::number(line) : file;
}

} // namespace

void CReport::Error(const QString &file, int line, const QString &text)
{
    ++m_iErrors;
    WriteLine(stderr, Place(file, line) + QLatin1String(": ") + text);
}

void CReport::Note(const QString &file, int line, const QString &text)
{
    WriteLine(stderr, Place(file, line) + QLatin1String(": note: ") + text);
}

void CReport::Print(const QString &text)
{
    WriteLine(stdout, text);
}
