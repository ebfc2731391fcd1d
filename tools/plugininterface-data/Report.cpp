#include "Report.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace {

// Returns false, with the reason in errno, on failure.
bool WriteLine(std::FILE *stream, const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    const auto size = static_cast<std::size_t>(bytes.size());
    return std::fwrite(bytes.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
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
    if (!WriteLine(stdout, text))
        Error(QStringLiteral("standard output"), 0, QString::fromStdString(std::generic_category().message(errno)));
}
