#include "PoLike.h"

#include <QMap>

namespace {

QByteArray Quoted(const QString &text)
{
    static const QVector<QPair<QByteArray, QByteArray>> escapes{{"\\", "\\\\"}, {"\"", "\\\""}, {"\a", "\\a"},
                                                                {"\b", "\\b"},  {"\f", "\\f"},  {"\n", "\\n"},
                                                                {"\r", "\\r"},  {"\t", "\\t"},  {"\v", "\\v"}};
    QByteArray bytes = text.toUtf8();
    for (const auto &[plain, escaped] : escapes)
        bytes.replace(plain, escaped);
    return '"' + bytes + '"';
}

// Returns a keyword and its text, which takes several lines if it has line breaks within.
QByteArray Statement(const QByteArray &keyword, const QString &text)
{
    const auto first = text.indexOf(QLatin1Char('\n'));
    if (first < 0 || first == text.size() - 1)
        return keyword + ' ' + Quoted(text);
    QByteArray statement = keyword + " \"\"";
    for (decltype(text.size()) begin = 0; begin < text.size();) {
        const auto found = text.indexOf(QLatin1Char('\n'), begin);
        const auto end = found < 0 ? text.size() : found + 1;
        statement += '\n' + Quoted(text.mid(begin, end - begin));
        begin = end;
    }
    return statement;
}

// Returns the line of flags without "fuzzy"; empty if no flag is left.
QByteArray WithoutFuzzy(const QByteArray &line)
{
    QByteArrayList flags;
    const QByteArrayList all = line.mid(2).split(',');
    for (const QByteArray &flag : all) {
        if (flag.trimmed() != "fuzzy")
            flags.append(flag.trimmed());
    }
    return flags.isEmpty() ? QByteArray() : "#, " + flags.join(", ");
}

QByteArray EmptyOnPurpose()
{
    return QByteArray("# ") + PoCatalogues::EMPTY_ON_PURPOSE.latin1() + '\n';
}

class CRenderer
{
public:
    CRenderer(const SPoPattern &pattern, const SPoCatalogue &catalogue)
        : m_file(pattern.file)
        , m_pattern(pattern.catalogue)
        , m_catalogue(catalogue)
        , m_bSameLanguage(pattern.catalogue.iID == catalogue.iID)
        , m_text(m_bSameLanguage ? pattern.file.baText : pattern.file.baActive)
    {
        for (const SPoCatalogue::SText &text : catalogue.texts)
            m_missing.insert(text.GetLookupKey(), text);
    }

    QByteArray Render()
    {
        bool header = true; // which may have any place
        for (int i = 0; i < m_file.entries.size(); ++i) {
            const SPoFile::SPlace &place = m_file.entries.at(i).place;
            if (header && m_file.headerPlace.iBegin < place.iBegin) {
                AddHeader();
                header = false;
            }
            AddEntry(m_file.entries.at(i), m_pattern.texts.at(i));
        }
        if (header)
            AddHeader();
        for (const SPoCatalogue::SText &text : m_catalogue.texts) {
            if (m_missing.contains(text.GetLookupKey()))
                AddMissing(text);
        }
        const QByteArray rest = Gap(m_text.size());
        m_result += m_bSameLanguage ? rest : "\n" + rest.mid(1).trimmed();
        return WithLineEnds();
    }

private:
    // Returns what is between the last entry and a position: blank lines, and obsolete entries of the same language.
    QByteArray Gap(QByteArray::size_type end) const
    {
        const QByteArray gap = m_text.mid(m_iEnd, end - m_iEnd);
        if (m_bSameLanguage)
            return gap;
        return m_iEnd == 0 ? gap.trimmed() : "\n\n" + gap.trimmed();
    }

    QByteArray Part(QByteArray::size_type begin, QByteArray::size_type end) const
    {
        return m_text.mid(begin, end - begin);
    }

    void Add(const SPoFile::SPlace &place, const QByteArray &entry)
    {
        const QByteArray gap = Gap(place.iBegin);
        if (!entry.isEmpty())
            m_result += gap + entry;
        else if (!gap.trimmed().isEmpty())
            m_result += "\n\n" + gap.trimmed();
        m_iEnd = place.iEnd;
    }

    void AddHeader()
    {
        const SPoFile::SPlace &place = m_file.headerPlace;
        const bool same =
            m_bSameLanguage && m_pattern.strShort == m_catalogue.strShort && m_pattern.strLong == m_catalogue.strLong;
        SPoFile changed = m_file;
        PoCatalogues::SetLanguage(changed, m_catalogue);
        Add(place, same ? Part(place.iBegin, place.iEnd)
                        : Part(place.iBegin, place.iText) + Statement("msgstr", changed.strHeader));
    }

    void AddEntry(const SPoFile::SEntry &entry, const SPoCatalogue::SText &old)
    {
        const SPoFile::SPlace &place = entry.place;
        const QByteArray whole = Part(place.iBegin, place.iEnd);
        if (!m_missing.contains(old.GetLookupKey())) {
            Add(place, m_bSameLanguage && !old.IsTranslated() ? whole : QByteArray());
            return;
        }
        const SPoCatalogue::SText text = m_missing.take(old.GetLookupKey());
        if (old.IsTranslated() && old.strText == text.strText)
            Add(place, whole);
        else
            Add(place, Comments(entry, text) + Part(place.iKeyword, place.iText) + Statement("msgstr", text.strText));
    }

    // Returns the comments of an entry that has another text now, without what told that the old one was unfinished.
    QByteArray Comments(const SPoFile::SEntry &entry, const SPoCatalogue::SText &text) const
    {
        QByteArray comments;
        if (text.strText.isEmpty() && !PoCatalogues::SaysEmptyOnPurpose(entry.strComments))
            comments = EmptyOnPurpose();
        const QByteArrayList lines = Part(entry.place.iBegin, entry.place.iKeyword).split('\n');
        for (const QByteArray &line : lines) {
            const QByteArray kept = line.startsWith("#,") ? WithoutFuzzy(line) : line;
            if (!kept.trimmed().isEmpty() && !kept.startsWith("#|"))
                comments += kept + '\n';
        }
        return comments;
    }

    void AddMissing(const SPoCatalogue::SText &text)
    {
        m_result += "\n\n";
        if (text.strText.isEmpty())
            m_result += EmptyOnPurpose();
        m_result += Statement("msgctxt", text.strArea) + '\n' + Statement("msgid", text.strKey) + '\n' +
                    Statement("msgstr", text.strText);
    }

    // Returns the result with the line ends of the pattern.
    QByteArray WithLineEnds() const
    {
        QByteArray result = m_result;
        result.replace("\r\n", "\n");
        return m_file.baText.contains("\r\n") ? result.replace("\n", "\r\n") : result;
    }

    const SPoFile &m_file;
    const SPoCatalogue &m_pattern;
    const SPoCatalogue &m_catalogue;
    bool m_bSameLanguage;
    const QByteArray &m_text;
    QMap<QPair<QString, QString>, SPoCatalogue::SText> m_missing; // texts of the catalogue that aren't rendered yet
    QByteArray m_result;
    QByteArray::size_type m_iEnd = 0; // of the last entry of the pattern
};

} // namespace

bool PoLike::Read(const QString &path, SPoPattern &pattern, CReport &report)
{
    pattern.catalogue = PoCatalogues::ReadFile(path, pattern.file, report);
    if (report.HasErrors())
        return false;
    if (pattern.file.headerPlace.iEnd == 0)
        report.Error(path, 0, QStringLiteral("can't be a pattern: its entries can't be told apart"));
    return !report.HasErrors();
}

QByteArray PoLike::Render(const SPoPattern &pattern, const SPoCatalogue &catalogue)
{
    return CRenderer(pattern, catalogue).Render();
}
