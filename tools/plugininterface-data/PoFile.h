#pragma once

#include "Report.h"

#include <QString>
#include <QVector>

/// A PO file as gettext defines it: entries, and a header of fields.
struct SPoFile
{
    /// Where an entry is in the bytes of its file; the positions are 0 if they are unknown.
    struct SPlace
    {
        int iLine = 0;                      ///< the line of its msgid, from 1; 0 if it is unknown
        QByteArray::size_type iBegin = 0;   ///< of its comments
        QByteArray::size_type iKeyword = 0; ///< of msgctxt or msgid
        QByteArray::size_type iText = 0;    ///< of msgstr
        QByteArray::size_type iEnd = 0;     ///< after its last quote
    };

    struct SEntry
    {
        QString strContext; ///< null if there is none
        QString strID;
        QString strText;
        QString strComments;  ///< of the translator, each a line
        QString strExtracted; ///< comments of the developer, each a line
        SPlace place;
        bool bFuzzy = false;
        bool bPlural = false;
    };

    QString GetField(const QString &name) const;
    void SetField(const QString &name, const QString &value);

    /// Returns the line of a field of the header, or of the header if it lacks the field.
    int GetFieldLine(const QString &name) const;
    /// Returns how many fields of that name the header has.
    int CountFields(const QString &name) const;

    QString strHeader;
    SPlace headerPlace;
    QVector<SEntry> entries; ///< in the order of the file, without the header and obsolete ones
    int iObsolete = 0;
    QByteArray baText;   ///< the whole file, without a byte order mark
    QByteArray baActive; ///< the same, with spaces in the place of obsolete entries and their comments
};

/// Reads and writes PO files with the gettext-po library, in UTF-8. Errors are added to the report. A byte order mark
/// is skipped.
namespace PoFile {

bool Read(const QString &path, SPoFile &po, CReport &report);
/// Writes a file to \a path; the report calls it \a name.
bool Write(const QString &path, const QString &name, const SPoFile &po, CReport &report);

} // namespace PoFile
