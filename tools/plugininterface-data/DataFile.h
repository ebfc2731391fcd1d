#pragma once

#include "ReplacementFile.h"

#include <QSqlDatabase>
#include <QVariant>
#include <QVector>

/// Writes an SQLite file in one transaction. It replaces an older one only when all is well; see CReplacementFile.
///
/// After a failure every further operation fails, too, and GetError() tells of the first one. The same operations
/// give the same bytes.
class CDataFile
{
public:
    explicit CDataFile(const QString &path);
    ~CDataFile();
    Q_DISABLE_COPY_MOVE(CDataFile)

    bool Open();
    bool Exec(const QString &sql);
    /// Runs \a sql once for each row, whose values stand for its question marks.
    bool Insert(const QString &sql, const QVector<QVariantList> &rows);
    bool Commit();

    QString GetError() const { return m_strError; }

private:
    bool Check(bool done, const QString &error);
    void Close();

    QString m_strPath;
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

    /// Opens the file and makes sure that it has these tables. If it fails, GetError() says why.
    bool Open(const QStringList &tables);
    /// The rows of a selection; none after a failure.
    QVector<QVariantList> Select(const QString &sql);

    QString GetError() const { return m_strError; }

private:
    QString m_strPath;
    QString m_strError;
};
