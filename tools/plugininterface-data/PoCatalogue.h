#pragma once

#include "Report.h"

#include <QString>
#include <QVector>

/// The texts of one language, as its PO file holds them: the context of an entry is the text's area, its msgid the
/// key.
struct SPoCatalogue
{
    struct SText
    {
        QString strArea;
        QString strKey;
        QString strText;
        int iLine = 0; ///< from 1; 0 if it is unknown
        bool bFuzzy = false;
        /// An empty text is one that nobody has translated, unless the translator says that it is meant to be empty.
        bool bEmptyOnPurpose = false;

        bool IsTranslated() const { return !bFuzzy && (!strText.isEmpty() || bEmptyOnPurpose); }
        /// The key as the library looks for it, which ignores case.
        QPair<QString, QString> GetLookupKey() const { return {strArea.toLower(), strKey.toLower()}; }
        /// For messages: area and key.
        QString GetName() const { return strArea + QLatin1Char('/') + strKey; }
    };

    QString strFile;
    int iID = -1;
    QString strShort;
    QString strLong;
    QVector<SText> texts; ///< without obsolete ones
    int iObsolete = 0;
};

namespace PoCatalogues {

/// All PO files of a folder, in the order of the languages' ids. Without errors in the report every one is well
/// formed, each id is there once, and so is each key of a language.
QVector<SPoCatalogue> ReadFolder(const QString &folder, CReport &report);

/// Writes to \a path; the report speaks of the catalogue's file.
bool Write(const QString &path, const SPoCatalogue &catalogue, CReport &report);

} // namespace PoCatalogues
