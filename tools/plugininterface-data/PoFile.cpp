#include "PoFile.h"

#include <QFile>
#include <QTemporaryFile>

#include <gettext-po.h>

#include <algorithm>
#include <csetjmp>
#include <cstdlib>
#include <memory>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>

// The library's parser leaks the strings of each entry that it reads. The function is exported because the sanitizer
// is a library, too.
__attribute__((visibility("default"))) const char *__lsan_default_suppressions()
{
    return "leak:libgettextpo";
}
#endif

namespace {

const QLatin1String FIELD_TYPE("Content-Type");

struct SFree
{
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): the library's malloc()
    void operator()(char *text) const { std::free(text); }
    void operator()(po_file_t file) const { po_file_free(file); }
    void operator()(po_message_iterator_t iterator) const { po_message_iterator_free(iterator); }
};
template <typename Type>
using TOwned = std::unique_ptr<Type, SFree>;

// gettext-po passes no pointer of the caller to its handlers. The library and this tool have one thread.
struct SSink
{
    CReport &report;
    QString strFile;
    bool bFailed = false;
    std::jmp_buf afterFatal;
};
SSink *g_pSink = nullptr;

void Tell(int severity, const char *file, std::size_t line, const char *text)
{
    const bool known = file && line != static_cast<std::size_t>(-1);
    const int number = known ? static_cast<int>(line) : 0;
    const QString message = QString::fromUtf8(text).simplified();
    if (severity == PO_SEVERITY_WARNING) {
        g_pSink->report.Note(g_pSink->strFile, number, message);
    } else {
        g_pSink->report.Error(g_pSink->strFile, number, message);
        g_pSink->bFailed = true;
    }
}

// The library's error handler must not return after a fatal error. Only the library's C functions are between here
// and the setjmp(): they leak the memory that they hold, and an exception can't pass them.
// NOLINTBEGIN(cert-err52-cpp)
void LeaveIfFatal(int severity)
{
    if (severity == PO_SEVERITY_FATAL_ERROR)
        std::longjmp(g_pSink->afterFatal, 1);
}

void OnError(int severity, po_message_t, const char *file, std::size_t line, std::size_t, int, const char *text)
{
    Tell(severity, file, line, text);
    LeaveIfFatal(severity);
}

void OnDoubleError(int severity, po_message_t, const char *file1, std::size_t line1, std::size_t, int,
                   const char *text1, po_message_t, const char *file2, std::size_t line2, std::size_t, int,
                   const char *text2)
{
    Tell(severity, file1, line1, text1);
    if (file2)
        Tell(severity, file2, line2, text2);
    LeaveIfFatal(severity);
}

const po_xerror_handler HANDLER{&OnError, &OnDoubleError};

po_file_t ReadGuarded(const char *path)
{
    if (setjmp(g_pSink->afterFatal) != 0)
        return nullptr;
    return po_file_read(path, &HANDLER);
}

bool WriteGuarded(po_file_t file, const char *path)
{
    if (setjmp(g_pSink->afterFatal) != 0)
        return false;
    return po_file_write(file, path, &HANDLER) != nullptr;
}
// NOLINTEND(cert-err52-cpp)

const char *const BYTE_ORDER_MARK = "\xEF\xBB\xBF";

// Replaces obsolete entries and their comments by spaces, so that the others keep their places, and returns how many
// there were. The library would refuse an entry with an obsolete twin, which remains of a text that was taken out and
// put back later.
int BlankObsolete(QByteArray &text)
{
    int count = 0;
    QByteArray::size_type comments = -1; // where those of the next entry begin
    QByteArray::size_type end = 0;
    for (QByteArray::size_type begin = 0; begin < text.size(); begin = end + 1) {
        end = text.indexOf('\n', begin);
        end = end < 0 ? text.size() : end;
        const QByteArray line = text.mid(begin, end - begin).trimmed();
        if (line.startsWith("#~")) {
            const QByteArray rest = line.mid(2).trimmed();
            count += rest.startsWith("msgid") && !rest.startsWith("msgid_plural") ? 1 : 0;
            const auto from = text.begin() + (comments < 0 ? begin : comments);
            std::replace_if(
                from, text.begin() + end, [](char c) { return c != '\n'; }, ' ');
            comments = -1;
        } else if (line.startsWith('#')) {
            comments = comments < 0 ? begin : comments;
        } else if (!line.isEmpty()) {
            comments = -1;
        }
    }
    return count;
}

// Finds the places of the entries, which the library doesn't tell. The library returns the entries in the order of
// the file.
class CEntryLines
{
public:
    explicit CEntryLines(const QByteArray &text)
        : m_text(text)
    {
        while (m_iPosition < m_text.size())
            Step();
    }

    // Returns the places of all entries.
    QVector<SPoFile::SPlace> Get() const { return m_places; }

private:
    void Step()
    {
        const char c = m_text.at(m_iPosition);
        if (c == '#') {
            m_iComments = m_iComments < 0 ? m_iPosition : m_iComments;
            SkipComment();
        } else if (c == '"') {
            SkipString();
        } else if (IsLetter(m_iPosition)) {
            TakeWord();
        } else {
            m_iLine += c == '\n' ? 1 : 0;
            ++m_iPosition;
        }
    }

    void SkipComment()
    {
        const auto end = m_text.indexOf('\n', m_iPosition);
        m_iPosition = end < 0 ? m_text.size() : end;
    }

    void SkipString()
    {
        ++m_iPosition;
        while (m_iPosition < m_text.size() && m_text.at(m_iPosition) != '"')
            m_iPosition += m_text.at(m_iPosition) == '\\' ? 2 : 1;
        ++m_iPosition;
        m_place.iEnd = std::min(m_iPosition, m_text.size());
        m_iComments = -1;
        if (!m_places.isEmpty() && m_place.iText > 0)
            m_places.last() = m_place;
    }

    void TakeWord()
    {
        const auto begin = m_iPosition;
        while (m_iPosition < m_text.size() && IsLetter(m_iPosition))
            ++m_iPosition;
        const QByteArray word = m_text.mid(begin, m_iPosition - begin);
        if (word == "msgctxt" || (word == "msgid" && m_lastWord != "msgctxt"))
            m_place = {0, m_iComments < 0 ? begin : m_iComments, begin, 0, 0};
        if (word == "msgid") {
            m_place.iLine = m_iLine;
            m_places.append(m_place);
        } else if (word == "msgstr") {
            m_place.iText = begin;
        }
        m_lastWord = word;
    }

    bool IsLetter(QByteArray::size_type position) const
    {
        const char c = m_text.at(position);
        return (c >= 'a' && c <= 'z') || c == '_';
    }

    const QByteArray m_text;
    QByteArray::size_type m_iPosition = 0;
    int m_iLine = 1;
    QByteArray m_lastWord;
    QByteArray::size_type m_iComments = -1; // where those of the next entry begin
    SPoFile::SPlace m_place;
    QVector<SPoFile::SPlace> m_places;
};

SPoFile::SEntry ReadEntry(po_message_t message)
{
    SPoFile::SEntry entry;
    entry.strContext = QString::fromUtf8(po_message_msgctxt(message));
    entry.strID = QString::fromUtf8(po_message_msgid(message));
    entry.strText = QString::fromUtf8(po_message_msgstr(message));
    entry.strComments = QString::fromUtf8(po_message_comments(message));
    entry.strExtracted = QString::fromUtf8(po_message_extracted_comments(message));
    entry.bFuzzy = po_message_is_fuzzy(message) != 0;
    entry.bPlural = po_message_msgid_plural(message) != nullptr;
    return entry;
}

// Returns false if there is no header.
bool TakeEntries(po_file_t file, SPoFile &po)
{
    const TOwned<struct po_message_iterator> iterator(po_message_iterator(file, nullptr));
    QVector<SPoFile::SEntry> entries;
    while (po_message_t message = po_next_message(iterator.get()))
        entries.append(ReadEntry(message));
    const QVector<SPoFile::SPlace> places = CEntryLines(po.baActive).Get();
    bool header = false;
    for (int i = 0; i < entries.size(); ++i) {
        SPoFile::SEntry &entry = entries[i];
        if (places.size() == entries.size())
            entry.place = places.at(i);
        if (entry.strContext.isNull() && entry.strID.isEmpty()) {
            po.strHeader = entry.strText;
            po.headerPlace = entry.place;
            header = true;
        } else {
            po.entries.append(entry);
        }
    }
    return header;
}

bool CheckWhole(po_file_t file, const QString &path, const SPoFile &po, CReport &report)
{
    int domains = 0;
    for (const char *const *domain = po_file_domains(file); *domain; ++domain)
        ++domains;
    if (domains > 1)
        report.Error(path, 0, QStringLiteral("a file of several domains can't be used"));
    const QString type = po.GetField(FIELD_TYPE);
    const bool utf8 = type.contains(QLatin1String("charset=utf-8"), Qt::CaseInsensitive);
    if (!utf8)
        report.Error(path, po.GetFieldLine(FIELD_TYPE),
                     QStringLiteral("its header has to say charset=UTF-8 under Content-Type"));
    return domains <= 1 && utf8;
}

// Returns whether the library can read a text.
bool CheckBytes(const QByteArray &text, const QString &path, CReport &report)
{
    const auto zero = text.indexOf('\0');
    if (text.startsWith("\xFF\xFE") || text.startsWith("\xFE\xFF"))
        report.Error(path, 0, QStringLiteral("is in UTF-16; save it in UTF-8"));
    else if (zero >= 0) // the library would treat it as the end of a text and drop the rest
        report.Error(path, 1 + static_cast<int>(text.left(zero).count('\n')), QStringLiteral("a zero byte"));
    else
        return true;
    return false;
}

bool Parse(const QString &file, const QString &path, SPoFile &po, CReport &report)
{
    SSink sink{report, path, false, {}};
    g_pSink = &sink;
    const TOwned<struct po_file> parsed(ReadGuarded(QFile::encodeName(file).constData()));
    if (!parsed || sink.bFailed) {
        if (!sink.bFailed)
            report.Error(path, 0, QStringLiteral("can't be read"));
        return false;
    }
    if (TakeEntries(parsed.get(), po))
        return CheckWhole(parsed.get(), path, po, report);
    report.Error(path, 1,
                 QStringLiteral("has no header, which is an entry with an empty msgid and the fields of the language "
                                "in its msgstr"));
    return false;
}

void AddEntry(po_message_iterator_t iterator, const SPoFile::SEntry &entry)
{
    po_message_t message = po_message_create();
    if (!entry.strContext.isNull())
        po_message_set_msgctxt(message, entry.strContext.toUtf8().constData());
    po_message_set_msgid(message, entry.strID.toUtf8().constData());
    po_message_set_msgstr(message, entry.strText.toUtf8().constData());
    po_message_set_comments(message, entry.strComments.toUtf8().constData());
    po_message_set_fuzzy(message, entry.bFuzzy ? 1 : 0);
    po_message_insert(iterator, message);
}

} // namespace

QString SPoFile::GetField(const QString &name) const
{
    const TOwned<char> value(po_header_field(strHeader.toUtf8().constData(), name.toUtf8().constData()));
    return QString::fromUtf8(value.get()).trimmed();
}

void SPoFile::SetField(const QString &name, const QString &value)
{
    const TOwned<char> header(
        po_header_set_field(strHeader.toUtf8().constData(), name.toUtf8().constData(), value.toUtf8().constData()));
    strHeader = QString::fromUtf8(header.get());
}

int SPoFile::GetFieldLine(const QString &name) const
{
    const auto position = baText.indexOf('"' + name.toUtf8() + ':', headerPlace.iText);
    if (position < 0 || position >= headerPlace.iEnd)
        return headerPlace.iLine;
    return 1 + static_cast<int>(baText.left(position).count('\n'));
}

int SPoFile::CountFields(const QString &name) const
{
    const QStringList lines = strHeader.split(QLatin1Char('\n'));
    return static_cast<int>(std::count_if(
        lines.begin(), lines.end(), [&](const QString &line) { return line.startsWith(name + QLatin1Char(':')); }));
}

bool PoFile::Read(const QString &path, SPoFile &po, CReport &report)
{
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly)) {
        report.Error(path, 0, source.errorString());
        return false;
    }
    const QByteArray bytes = source.readAll();
    if (!CheckBytes(bytes, path, report))
        return false;
    po.baText = bytes.startsWith(BYTE_ORDER_MARK) ? bytes.mid(3) : bytes;
    po.baActive = po.baText;
    po.iObsolete = BlankObsolete(po.baActive);
    if (po.baActive == bytes)
        return Parse(path, path, po, report);
    QTemporaryFile copy;
    if (!copy.open() || copy.write(po.baActive) != po.baActive.size() || !copy.flush()) {
        report.Error(path, 0, QLatin1String("can't be copied for reading: ") + copy.errorString());
        return false;
    }
    return Parse(copy.fileName(), path, po, report);
}

bool PoFile::Write(const QString &path, const QString &name, const SPoFile &po, CReport &report)
{
    const TOwned<struct po_file> file(po_file_create());
    const TOwned<struct po_message_iterator> iterator(po_message_iterator(file.get(), nullptr));
    SPoFile::SEntry header;
    header.strText = po.strHeader;
    AddEntry(iterator.get(), header);
    for (const SPoFile::SEntry &entry : po.entries)
        AddEntry(iterator.get(), entry);

    SSink sink{report, name, false, {}};
    g_pSink = &sink;
    const bool done = WriteGuarded(file.get(), QFile::encodeName(path).constData());
    if (!done && !sink.bFailed)
        report.Error(name, 0, QStringLiteral("can't be written"));
    return done && !sink.bFailed;
}
