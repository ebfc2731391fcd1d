#include "LanguageCommands.h"

#include "DataFile.h"
#include "PoLike.h"

#include <database/TranslationDB.h>

#include <QDir>
#include <QMap>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace {

// The numbers for the summary.
struct SCounts
{
    int iTexts = 0;
    int iFuzzy = 0;
    int iUntranslated = 0;
    int iObsolete = 0;
};

// The number column can be compared with the decimal text for which the library searches, and uses the key. Texts lie
// in the order of the key, so that finding one is one search.
QStringList CreateStatements()
{
    const QString languages = CTranslationDB::strTableNameAvailLanguages;
    const QString texts = CTranslationDB::strTableNameTranslations;
    return {QLatin1String("CREATE TABLE ") + languages +
                QLatin1String(" (AVL_iID INTEGER PRIMARY KEY, AVL_cShort TEXT NOT NULL, AVL_cLong TEXT NOT NULL)"),
            QLatin1String("CREATE TABLE ") + texts +
                QLatin1String(" (TRL_AVL_iID INTEGER NOT NULL, TRL_cArea TEXT NOT NULL, TRL_cKey TEXT NOT NULL, "
                              "TRL_cTranslation TEXT NOT NULL,"
                              " PRIMARY KEY (TRL_AVL_iID, TRL_cArea, TRL_cKey)) WITHOUT ROWID")};
}

QVector<QVariantList> LanguageRows(const QVector<SPoCatalogue> &catalogues)
{
    QVector<QVariantList> rows;
    for (const SPoCatalogue &catalogue : catalogues)
        rows.append({catalogue.iID, catalogue.strShort, catalogue.strLong});
    return rows;
}

// The rows are in the order of the keys, so that moving an entry in its PO file changes nothing.
QVector<QVariantList> TextRows(const SPoCatalogue &catalogue, SCounts &counts)
{
    QMap<QPair<QString, QString>, QString> texts;
    for (const SPoCatalogue::SText &text : catalogue.texts) {
        if (text.IsTranslated())
            texts.insert(text.GetLookupKey(), text.strText);
        else
            ++(text.bFuzzy ? counts.iFuzzy : counts.iUntranslated);
    }
    counts.iTexts += static_cast<int>(texts.size());
    counts.iObsolete += catalogue.iObsolete;

    QVector<QVariantList> rows;
    for (auto text = texts.cbegin(); text != texts.cend(); ++text)
        rows.append({catalogue.iID, text.key().first, text.key().second, text.value()});
    return rows;
}

bool Write(CDataFile &file, const QVector<SPoCatalogue> &catalogues, SCounts &counts)
{
    if (!file.Open())
        return false;
    const QStringList statements = CreateStatements();
    for (const QString &sql : statements)
        file.Exec(sql);
    file.Insert(QLatin1String("INSERT INTO ") + CTranslationDB::strTableNameAvailLanguages +
                    QLatin1String(" VALUES (?, ?, ?)"),
                LanguageRows(catalogues));
    for (const SPoCatalogue &catalogue : catalogues)
        file.Insert(QLatin1String("INSERT INTO ") + CTranslationDB::strTableNameTranslations +
                        QLatin1String(" VALUES (?, ?, ?, ?)"),
                    TextRows(catalogue, counts));
    return file.Commit();
}

// Returns the key in capitals, unless the library would read it back as another key.
QString Capitals(const QString &key)
{
    return key.toUpper().toLower() == key ? key.toUpper() : key;
}

class CExporter
{
public:
    CExporter(const QString &path, CReport &report)
        : m_strPath(path)
        , m_report(report)
    {
    }

    /// Returns false if the file can't be read. Invalid rows are reported and left out.
    bool Read()
    {
        CDataReader file(m_strPath);
        const QString languages = CTranslationDB::strTableNameAvailLanguages;
        const QString texts = CTranslationDB::strTableNameTranslations;
        if (file.Open({languages, texts})) {
            AddLanguages(file.Select(QLatin1String("SELECT AVL_iID, AVL_cShort, AVL_cLong FROM ") + languages));
            AddTexts(file.Select(QLatin1String("SELECT TRL_AVL_iID, TRL_cArea, TRL_cKey, TRL_cTranslation FROM ") +
                                 texts + QLatin1String(" ORDER BY TRL_cArea, TRL_cKey")));
        }
        if (!file.GetError().isEmpty())
            m_report.Error(m_strPath, 0, file.GetError());
        return file.GetError().isEmpty();
    }

    /// Returns the languages by their ids.
    QMap<int, SPoCatalogue> GetCatalogues() const { return m_catalogues; }

private:
    void AddLanguages(const QVector<QVariantList> &rows)
    {
        for (const QVariantList &row : rows) {
            SPoCatalogue catalogue;
            catalogue.iID = row.at(0).toInt();
            catalogue.strShort = row.at(1).toString().simplified();
            catalogue.strLong = row.at(2).toString().simplified();
            m_catalogues.insert(catalogue.iID, catalogue);
        }
    }

    void AddTexts(const QVector<QVariantList> &rows)
    {
        for (const QVariantList &row : rows) {
            SPoCatalogue::SText text;
            text.strArea = Capitals(row.at(1).toString());
            text.strKey = Capitals(row.at(2).toString());
            text.strText = row.at(3).toString();
            text.bEmptyOnPurpose = text.strText.isEmpty();
            const auto catalogue = m_catalogues.find(row.at(0).toInt());
            if (text.strArea.isEmpty() || text.strKey.isEmpty() || text.HasBlankEnd())
                m_report.Error(m_strPath, 0,
                               QLatin1String("left out, since nobody can ask for it: ") + text.GetName());
            else if (catalogue == m_catalogues.end())
                m_report.Error(m_strPath, 0,
                               QLatin1String("left out, since language ") + row.at(0).toString() +
                                   QLatin1String(" isn't listed: ") + text.GetName());
            else
                catalogue->texts.append(text);
        }
    }

    QString m_strPath;
    CReport &m_report;
    QMap<int, SPoCatalogue> m_catalogues;
};

// Names each file after the language's short form if that makes a valid, unique name.
void NameFiles(QMap<int, SPoCatalogue> &catalogues, const QString &folder)
{
    static const QRegularExpression good(QStringLiteral("^\\w[\\w@.-]*$"));
    QSet<QString> taken;
    for (SPoCatalogue &catalogue : catalogues) {
        QString name = catalogue.strShort;
        if (!good.match(name).hasMatch() || taken.contains(name.toLower()))
            name = QLatin1String("language-") + QString::number(catalogue.iID);
        taken.insert(name.toLower());
        catalogue.strFile = QDir(folder).filePath(name + QLatin1String(".po"));
    }
}

bool MakeFolder(const QString &folder, CReport &report)
{
    std::error_code error;
    std::filesystem::create_directories(folder.toStdWString(), error);
    if (error)
        report.Error(folder, 0, QLatin1String("can't be made: ") + QString::fromStdString(error.message()));
    return !error;
}

// Returns whether all files may be written; reports those that may not. The language file is \a source.
bool CanWrite(const QMap<int, SPoCatalogue> &catalogues, const QString &source, bool force, CReport &report)
{
    bool can = true;
    QStringList taken{source};
    for (const SPoCatalogue &catalogue : catalogues) {
        const QString &path = catalogue.strFile;
        const auto same = std::find_if(taken.cbegin(), taken.cend(),
                                       [&](const QString &other) { return CReplacementFile::IsSame(path, other); });
        // Only the existing files contain the translators' comments and unfinished texts.
        const bool refused = QFile::exists(path) && !force;
        if (same != taken.cend())
            report.Error(path, 0, QLatin1String("is the same file as ") + *same);
        else if (refused)
            report.Error(path, 0, QStringLiteral("is there already; --force replaces it"));
        can = can && same == taken.cend() && !refused;
        taken.append(path);
    }
    return can;
}

// Reads the files whose order and comments the new ones are to have.
QVector<SPoPattern> ReadPatterns(const QStringList &paths, CReport &report)
{
    QVector<SPoPattern> patterns;
    for (const QString &path : paths) {
        SPoPattern pattern;
        PoLike::Read(path, pattern, report);
        patterns.append(pattern);
    }
    return patterns;
}

bool WriteLike(const QString &path, const SPoCatalogue &catalogue, const QVector<SPoPattern> &patterns,
               CReport &report)
{
    const auto sameLanguage = std::find_if(patterns.begin(), patterns.end(), [&](const SPoPattern &pattern) {
        return pattern.catalogue.iID == catalogue.iID;
    });
    const QByteArray bytes =
        PoLike::Render(sameLanguage == patterns.end() ? patterns.first() : *sameLanguage, catalogue);
    QFile file(path);
    const bool done = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
    if (!done)
        report.Error(catalogue.strFile, 0, file.errorString());
    return done;
}

void WriteCatalogue(const SPoCatalogue &catalogue, const QVector<SPoPattern> &patterns, CReport &report)
{
    CReplacementFile file(catalogue.strFile);
    if (!file.Open()) {
        report.Error(catalogue.strFile, 0, file.GetError());
        return;
    }
    const QString path = file.GetTemporaryPath();
    const bool written = patterns.isEmpty() ? PoCatalogues::Write(path, catalogue, report)
                                            : WriteLike(path, catalogue, patterns, report);
    if (written && !file.Commit())
        report.Error(catalogue.strFile, 0, file.GetError());
}

} // namespace

int LanguageCommands::Build(const QString &folder, const QString &out)
{
    CReport report;
    const auto catalogues = PoCatalogues::ReadFolder(folder, report);
    if (report.HasErrors())
        return report.GetExitCode();
    const auto isOut = [&](const SPoCatalogue &catalogue) {
        return CReplacementFile::IsSame(catalogue.strFile, out);
    };
    if (std::any_of(catalogues.begin(), catalogues.end(), isOut)) {
        report.Error(out, 0, QStringLiteral("is one of the sources; name another file to make"));
        return report.GetExitCode();
    }
    CDataFile file(out);
    SCounts counts;
    if (!Write(file, catalogues, counts))
        report.Error(out, 0, file.GetError());
    else
        report.Print(QStringLiteral("%1: %2 languages, %3 texts; left out: %4 fuzzy, %5 untranslated, %6 obsolete")
                         .arg(out, QString::number(catalogues.size()), QString::number(counts.iTexts),
                              QString::number(counts.iFuzzy), QString::number(counts.iUntranslated),
                              QString::number(counts.iObsolete)));
    return report.GetExitCode();
}

int LanguageCommands::Export(const QString &path, const QString &folder, const SExportOptions &options)
{
    CReport report;
    const QVector<SPoPattern> patterns = ReadPatterns(options.patterns, report);
    if (report.HasErrors())
        return report.GetExitCode();
    CExporter exporter(path, report);
    if (!exporter.Read())
        return report.GetExitCode();
    QMap<int, SPoCatalogue> catalogues = exporter.GetCatalogues();
    NameFiles(catalogues, folder);
    if (!CanWrite(catalogues, path, options.bForce, report) || !MakeFolder(folder, report))
        return report.GetExitCode();
    for (const SPoCatalogue &catalogue : qAsConst(catalogues))
        WriteCatalogue(catalogue, patterns, report);
    report.Print(QStringLiteral("%1: %2 languages").arg(folder).arg(catalogues.size()));
    return report.GetExitCode();
}
