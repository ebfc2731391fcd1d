#pragma once

#include "Report.h"

#include <QString>
#include <QVector>

/// A PO file as gettext knows it: entries, and a header of fields.
struct SPoFile
{
    struct SEntry
    {
        QString strContext; ///< null if it has none
        QString strID;
        QString strText;
        QString strComments; ///< the translator's, one a line
        int iLine = 0;       ///< of its msgid, from 1; 0 if it is unknown
        bool bFuzzy = false;
        bool bObsolete = false;
        bool bPlural = false;
    };

    QString GetField(const QString &name) const;
    void SetField(const QString &name, const QString &value);

    QString strHeader;
    int iHeaderLine = 0;
    QVector<SEntry> entries; ///< without the header
};

/// Reading and writing through the gettext-po library, in UTF-8. What is wrong goes into the report.
namespace PoFile {

bool Read(const QString &path, SPoFile &po, CReport &report);
/// Writes to \a path; the report speaks of \a name.
bool Write(const QString &path, const QString &name, const SPoFile &po, CReport &report);

} // namespace PoFile
