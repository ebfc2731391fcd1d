#include "PoCatalogue.h"

#include "PoFile.h"

#include <QDir>
#include <QHash>

#include <algorithm>

namespace {

const QLatin1String FIELD_SHORT("Language");
const QLatin1String FIELD_ID("X-Language-Id");
const QLatin1String FIELD_LONG("X-Language-Name");
const QLatin1String EMPTY_ON_PURPOSE("empty on purpose");

bool SaysEmptyOnPurpose(const QString &comments)
{
    const QStringList lines = comments.split(QLatin1Char('\n'));
    return std::any_of(lines.begin(), lines.end(),
                       [](const QString &line) { return line.trimmed() == EMPTY_ON_PURPOSE; });
}

class CCatalogueReader
{
public:
    CCatalogueReader(const QString &path, CReport &report)
        : m_report(report)
    {
        m_catalogue.strFile = path;
    }

    SPoCatalogue Read()
    {
        SPoFile po;
        if (!PoFile::Read(m_catalogue.strFile, po, m_report))
            return m_catalogue;
        ReadHeader(po);
        for (const SPoFile::SEntry &entry : qAsConst(po.entries)) {
            if (entry.bObsolete)
                ++m_catalogue.iObsolete;
            else
                AddEntry(entry);
        }
        return m_catalogue;
    }

private:
    void ReadHeader(const SPoFile &po)
    {
        m_catalogue.strShort = po.GetField(FIELD_SHORT);
        if (m_catalogue.strShort.isEmpty())
            m_catalogue.strShort = QFileInfo(m_catalogue.strFile).completeBaseName();
        if (m_catalogue.strShort.contains(QLatin1Char('_')))
            m_report.Note(m_catalogue.strFile, po.iHeaderLine,
                          m_catalogue.strShort + QLatin1String(" is no system's language: clients compare the part "
                                                               "before the underscore of the system's locale"));
        m_catalogue.strLong = po.GetField(FIELD_LONG);
        if (m_catalogue.strLong.isEmpty())
            Error(po.iHeaderLine, QLatin1String("its header lacks ") + FIELD_LONG + QLatin1String(", its own name"));
        bool number = false;
        m_catalogue.iID = po.GetField(FIELD_ID).toInt(&number);
        if (!number || m_catalogue.iID < 0)
            Error(po.iHeaderLine, QLatin1String("its header lacks ") + FIELD_ID +
                                      QLatin1String(", a whole number "
                                                    "from 0 on"));
    }

    void AddEntry(const SPoFile::SEntry &entry)
    {
        const SPoCatalogue::SText text{
            entry.strContext, entry.strID,  entry.strText,
            entry.iLine,      entry.bFuzzy, entry.strText.isEmpty() && SaysEmptyOnPurpose(entry.strComments)};
        const int first = m_lines.value(text.GetLookupKey());
        if (text.strArea.isEmpty())
            Error(entry.iLine, entry.strID + QLatin1String(" has no msgctxt, which is its area"));
        else if (text.strKey.isEmpty())
            Error(entry.iLine, QStringLiteral("has an empty msgid, which is the key"));
        else if (entry.bPlural)
            Error(entry.iLine, text.GetName() + QLatin1String(" has plural forms, which clients don't know"));
        else if (first > 0)
            Error(entry.iLine, text.GetName() + QLatin1String(" is in line ") + QString::number(first) +
                                   QLatin1String(" already"));
        else
            m_catalogue.texts.append(text);
        m_lines.insert(text.GetLookupKey(), entry.iLine);
    }

    void Error(int line, const QString &text) { m_report.Error(m_catalogue.strFile, line, text); }

    CReport &m_report;
    SPoCatalogue m_catalogue;
    QHash<QPair<QString, QString>, int> m_lines;
};

void CheckIDs(const QVector<SPoCatalogue> &sorted, CReport &report)
{
    for (int i = 1; i < sorted.size(); ++i) {
        if (sorted.at(i).iID >= 0 && sorted.at(i).iID == sorted.at(i - 1).iID)
            report.Error(sorted.at(i).strFile, 0,
                         FIELD_ID + QLatin1Char(' ') + QString::number(sorted.at(i).iID) +
                             QLatin1String(" is that of ") + sorted.at(i - 1).strFile);
    }
}

} // namespace

QVector<SPoCatalogue> PoCatalogues::ReadFolder(const QString &folder, CReport &report)
{
    QVector<SPoCatalogue> catalogues;
    const QStringList names = QDir(folder).entryList({QStringLiteral("*.po")}, QDir::Files, QDir::Name);
    if (names.isEmpty())
        report.Error(folder, 0, QStringLiteral("is no folder with PO files"));
    for (const QString &name : names)
        catalogues.append(CCatalogueReader(QDir(folder).filePath(name), report).Read());
    std::stable_sort(catalogues.begin(), catalogues.end(),
                     [](const SPoCatalogue &left, const SPoCatalogue &right) { return left.iID < right.iID; });
    CheckIDs(catalogues, report);
    return catalogues;
}

bool PoCatalogues::Write(const QString &path, const SPoCatalogue &catalogue, CReport &report)
{
    SPoFile po;
    po.SetField(FIELD_SHORT, catalogue.strShort);
    po.SetField(QStringLiteral("MIME-Version"), QStringLiteral("1.0"));
    po.SetField(QStringLiteral("Content-Type"), QStringLiteral("text/plain; charset=UTF-8"));
    po.SetField(QStringLiteral("Content-Transfer-Encoding"), QStringLiteral("8bit"));
    po.SetField(FIELD_ID, QString::number(catalogue.iID));
    po.SetField(FIELD_LONG, catalogue.strLong);
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
