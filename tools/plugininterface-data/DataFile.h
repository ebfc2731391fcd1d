#pragma once

#include "ReplacementFile.h"

#include <QSqlDatabase>
#include <QVariant>
#include <QVector>

/// Writes an SQLite file in one transaction, and replaces an older one only on success; see CReplacementFile.
///
/// It replaces nothing but an SQLite file or an empty one. After a failure every further operation fails too, and
/// GetError() returns the first error. The same operations write the same bytes.
class CDataFile
{
public:
    explicit CDataFile(const QString &path);
    ~CDataFile();
    Q_DISABLE_COPY_MOVE(CDataFile)

    bool Open();
    bool Exec(const QString &sql);
    /// Executes \a sql once for each row, whose values replace its question marks.
    bool Insert(const QString &sql, const QVector<QVariantList> &rows);
    bool Commit();

    QString GetError() const { return m_strError; }

private:
    /// Keeps the first error and returns false.
    bool Fail(const QString &error);
    void Close();

    CReplacementFile m_file;
    QString m_strError;
};

/// Reads an SQLite file and never changes it.
class CDataReader
{
public:
    explicit CDataReader(const QString &path);
    ~CDataReader();
    Q_DISABLE_COPY_MOVE(CDataReader)

    /// Opens the file and checks that it has these tables. Returns false, with the reason in GetError(), on failure.
    bool Open(const QStringList &tables);
    /// Returns the rows of a selection; none after a failure.
    QVector<QVariantList> Select(const QString &sql);

    QString GetError() const { return m_strError; }

private:
    QString m_strPath;
    QString m_strError;
};
