#pragma once

#include "Report.h"

#include <QString>
#include <QVector>

/// A PO file as gettext defines it: entries, and a header of fields.
struct SPoFile
{
    struct SEntry
    {
        QString strContext; ///< null if there is none
        QString strID;
        QString strText;
        QString strComments; ///< of the translator, each a line
        int iLine = 0;       ///< the line of its msgid, from 1; 0 if it is unknown
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

/// Reads and writes PO files with the gettext-po library, in UTF-8. Errors are added to the report.
namespace PoFile {

bool Read(const QString &path, SPoFile &po, CReport &report);
/// Writes a file to \a path; the report calls it \a name.
bool Write(const QString &path, const QString &name, const SPoFile &po, CReport &report);

} // namespace PoFile
