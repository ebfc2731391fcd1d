#pragma once

#include "PoFile.h"
#include "Report.h"

#include <QStringList>
#include <QVector>

/// The texts of one language from its PO file: the context of an entry is the text's area, its msgid the key.
struct SPoCatalogue
{
    struct SText
    {
        QString strArea;
        QString strKey;
        QString strText;
        int iLine = 0; ///< from 1; 0 if it is unknown
        bool bFuzzy = false;
        /// An empty text counts as untranslated unless its comment says that it is empty on purpose.
        bool bEmptyOnPurpose = false;

        QStringList menus; ///< the menus that it is an entry of

        bool IsTranslated() const { return !bFuzzy && (!strText.isEmpty() || bEmptyOnPurpose); }
        /// Returns whether area or key has white space at an end, which no program's key has.
        bool HasBlankEnd() const { return strArea != strArea.trimmed() || strKey != strKey.trimmed(); }
        /// Returns area and key in lower case, as the library looks them up.
        QPair<QString, QString> GetLookupKey() const { return {strArea.toLower(), strKey.toLower()}; }
        /// Returns area and key for messages.
        QString GetName() const { return strArea + QLatin1Char('/') + strKey; }
    };

    QString strFile;
    int iID = -1;
    int iIDLine = 0; ///< from 1; 0 if it is unknown
    QString strShort;
    int iShortLine = 0;
    QString strLong;
    int iLongLine = 0;
    QVector<SText> texts; ///< without obsolete ones
    int iObsolete = 0;
};

namespace PoCatalogues {

/// The comment of a text that is empty on purpose.
inline const QLatin1String EMPTY_ON_PURPOSE("empty on purpose");

/// Returns whether comments, each a line, say that a text is empty on purpose.
bool SaysEmptyOnPurpose(const QString &comments);

/// Reads a PO file; \a file is its contents as they are.
SPoCatalogue ReadFile(const QString &path, SPoFile &file, CReport &report);

/// Reads all PO files of a folder, in the order of the languages' ids. If the report has no errors, each of them is
/// well-formed, each id and name occurs once, and so does each key of a language.
QVector<SPoCatalogue> ReadFolder(const QString &folder, CReport &report);

/// Sets the fields of a header that name the language.
void SetLanguage(SPoFile &file, const SPoCatalogue &catalogue);

/// Writes a catalogue to \a path; the report names the catalogue's file.
bool Write(const QString &path, const SPoCatalogue &catalogue, CReport &report);

} // namespace PoCatalogues
