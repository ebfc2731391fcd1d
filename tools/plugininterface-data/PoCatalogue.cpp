#include "PoCatalogue.h"

#include <QDir>
#include <QHash>
#include <QRegularExpression>

#include <algorithm>

namespace {

const QLatin1String FIELD_SHORT("Language");
const QLatin1String FIELD_ID("X-Language-Id");
const QLatin1String FIELD_LONG("X-Language-Name");
const QLatin1String ID_WANTED(", a whole number from 0 to 2147483647");

// Returns the menus of an entry. The developer's comment names each: "An entry of the menu MENU_OPTIONS."
QStringList FindMenus(const QString &comments)
{
    static const QRegularExpression name(QStringLiteral("\\bof\\s+the\\s+menu\\s+([A-Z][A-Z0-9_]*)\\b"));
    QStringList menus;
    auto match = name.globalMatch(comments);
    while (match.hasNext())
        menus.append(match.next().captured(1));
    return menus;
}

class CCatalogueReader
{
public:
    CCatalogueReader(const QString &path, CReport &report)
        : m_report(report)
    {
        m_catalogue.strFile = path;
    }

    SPoCatalogue Read(SPoFile &po)
    {
        if (!PoFile::Read(m_catalogue.strFile, po, m_report))
            return m_catalogue;
        ReadHeader(po);
        for (const SPoFile::SEntry &entry : qAsConst(po.entries))
            AddEntry(entry);
        m_catalogue.iObsolete = po.iObsolete;
        return m_catalogue;
    }

private:
    void ReadHeader(const SPoFile &po)
    {
        for (const QLatin1String &name : {FIELD_SHORT, FIELD_ID, FIELD_LONG}) {
            if (po.CountFields(name) > 1)
                Error(po.GetFieldLine(name), QLatin1String("its header has more than one ") + name);
        }
        ReadNames(po);
        ReadID(po);
    }

    void ReadNames(const SPoFile &po)
    {
        m_catalogue.iShortLine = po.GetFieldLine(FIELD_SHORT);
        m_catalogue.strShort = po.GetField(FIELD_SHORT);
        if (m_catalogue.strShort.isEmpty())
            m_catalogue.strShort = QFileInfo(m_catalogue.strFile).completeBaseName();
        if (m_catalogue.strShort.contains(QLatin1Char('_')))
            m_report.Note(m_catalogue.strFile, m_catalogue.iShortLine,
                          m_catalogue.strShort + QLatin1String(" is no system's language: clients compare the part "
                                                               "before the underscore of the system's locale"));
        m_catalogue.iLongLine = po.GetFieldLine(FIELD_LONG);
        m_catalogue.strLong = po.GetField(FIELD_LONG);
        if (m_catalogue.strLong.isEmpty())
            Error(m_catalogue.iLongLine,
                  QLatin1String("its header lacks ") + FIELD_LONG + QLatin1String(", its own name"));
    }

    void ReadID(const SPoFile &po)
    {
        static const QRegularExpression digits(QStringLiteral("^[0-9]+$"));
        const QString text = po.GetField(FIELD_ID);
        bool number = false;
        const int id = text.toInt(&number);
        m_catalogue.iIDLine = po.GetFieldLine(FIELD_ID);
        if (number && digits.match(text).hasMatch())
            m_catalogue.iID = id;
        else if (po.CountFields(FIELD_ID) == 0)
            Error(m_catalogue.iIDLine, QLatin1String("its header lacks ") + FIELD_ID + ID_WANTED);
        else
            Error(m_catalogue.iIDLine,
                  FIELD_ID + QLatin1String(" is \"") + text + QLatin1String("\", but has to be") + ID_WANTED.mid(1));
    }

    void AddEntry(const SPoFile::SEntry &entry)
    {
        SPoCatalogue::SText text;
        text.strArea = entry.strContext;
        text.strKey = entry.strID;
        text.strText = entry.strText;
        text.iLine = entry.place.iLine;
        text.bFuzzy = entry.bFuzzy;
        text.bEmptyOnPurpose = text.strText.isEmpty() && PoCatalogues::SaysEmptyOnPurpose(entry.strComments);
        text.menus = FindMenus(entry.strExtracted);
        const int first = m_lines.value(text.GetLookupKey());
        if (text.strArea.isEmpty())
            Error(text.iLine, text.strKey + QLatin1String(" has no msgctxt, which is its area"));
        else if (text.strKey.isEmpty())
            Error(text.iLine, QStringLiteral("has an empty msgid, which is the key"));
        else if (text.HasBlankEnd())
            Error(text.iLine, QLatin1Char('"') + text.GetName() +
                                  QLatin1String("\" has a blank at an end of its msgctxt or msgid"));
        else if (entry.bPlural)
            Error(text.iLine, text.GetName() + QLatin1String(" has plural forms, which clients don't know"));
        else if (first > 0)
            Error(text.iLine, text.GetName() + QLatin1String(" is in line ") + QString::number(first) +
                                  QLatin1String(" already"));
        else
            m_catalogue.texts.append(text);
        m_lines.insert(text.GetLookupKey(), text.iLine);
    }

    void Error(int line, const QString &text) { m_report.Error(m_catalogue.strFile, line, text); }

    CReport &m_report;
    SPoCatalogue m_catalogue;
    QHash<QPair<QString, QString>, int> m_lines;
};

void CheckUnique(const QVector<SPoCatalogue> &sorted, CReport &report)
{
    for (auto catalogue = sorted.begin(); catalogue != sorted.end(); ++catalogue) {
        const auto find = [&](const auto &isLike) { return std::find_if(sorted.begin(), catalogue, isLike); };
        const auto findText = [&](QString SPoCatalogue::*text) {
            return find([&](const SPoCatalogue &other) {
                return !(other.*text).isEmpty() &&
                       (other.*text).compare((*catalogue).*text, Qt::CaseInsensitive) == 0;
            });
        };
        const auto id =
            find([&](const SPoCatalogue &other) { return other.iID >= 0 && other.iID == catalogue->iID; });
        if (id != catalogue)
            report.Error(catalogue->strFile, catalogue->iIDLine,
                         FIELD_ID + QLatin1Char(' ') + QString::number(id->iID) + QLatin1String(" is that of ") +
                             id->strFile);
        const auto name = findText(&SPoCatalogue::strLong);
        if (name != catalogue)
            report.Error(catalogue->strFile, catalogue->iLongLine,
                         FIELD_LONG + QLatin1Char(' ') + name->strLong + QLatin1String(" is that of ") +
                             name->strFile);
        const auto shortForm = findText(&SPoCatalogue::strShort);
        if (shortForm != catalogue)
            report.Note(catalogue->strFile, catalogue->iShortLine,
                        FIELD_SHORT + QLatin1Char(' ') + shortForm->strShort + QLatin1String(" is that of ") +
                            shortForm->strFile + QLatin1String(", which users get whose system has this language"));
    }
}

} // namespace

bool PoCatalogues::SaysEmptyOnPurpose(const QString &comments)
{
    const QStringList lines = comments.split(QLatin1Char('\n'));
    return std::any_of(lines.begin(), lines.end(),
                       [](const QString &line) { return line.trimmed() == EMPTY_ON_PURPOSE; });
}

SPoCatalogue PoCatalogues::ReadFile(const QString &path, SPoFile &file, CReport &report)
{
    return CCatalogueReader(path, report).Read(file);
}

QVector<SPoCatalogue> PoCatalogues::ReadFolder(const QString &folder, CReport &report)
{
    QVector<SPoCatalogue> catalogues;
    const QStringList names = QDir(folder).entryList({QStringLiteral("*.po")}, QDir::Files, QDir::Name);
    if (names.isEmpty())
        report.Error(folder, 0, QStringLiteral("is no folder with PO files"));
    for (const QString &name : names) {
        SPoFile file;
        catalogues.append(ReadFile(QDir(folder).filePath(name), file, report));
    }
    std::stable_sort(catalogues.begin(), catalogues.end(),
                     [](const SPoCatalogue &left, const SPoCatalogue &right) { return left.iID < right.iID; });
    CheckUnique(catalogues, report);
    return catalogues;
}

void PoCatalogues::SetLanguage(SPoFile &file, const SPoCatalogue &catalogue)
{
    file.SetField(FIELD_SHORT, catalogue.strShort);
    file.SetField(FIELD_ID, QString::number(catalogue.iID));
    file.SetField(FIELD_LONG, catalogue.strLong);
}

bool PoCatalogues::Write(const QString &path, const SPoCatalogue &catalogue, CReport &report)
{
    SPoFile po;
    po.SetField(FIELD_SHORT, catalogue.strShort);
    po.SetField(QStringLiteral("MIME-Version"), QStringLiteral("1.0"));
    po.SetField(QStringLiteral("Content-Type"), QStringLiteral("text/plain; charset=UTF-8"));
    po.SetField(QStringLiteral("Content-Transfer-Encoding"), QStringLiteral("8bit"));
    SetLanguage(po, catalogue);
    for (const SPoCatalogue::SText &text : catalogue.texts) {
        SPoFile::SEntry entry;
        entry.strContext = text.strArea;
        entry.strID = text.strKey;
        entry.strText = text.strText;
        if (text.bEmptyOnPurpose)
            entry.strComments = EMPTY_ON_PURPOSE + QLatin1Char('\n');
        po.entries.append(entry);
    }
    return PoFile::Write(path, catalogue.strFile, po, report);
}
