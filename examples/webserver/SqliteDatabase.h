#pragma once

#include "StoreDatabase.h"

#include <database/LocalDB.h>

/// A file of this server alone.
class CSqliteDatabase : public CStoreDatabase
{
public:
    explicit CSqliteDatabase(const QString &path)
        : m_file(path)
        , m_strPath(path)
    {
    }

    bool Init() override { return m_file.Init(); }
    QString GetError() const override { return QStringLiteral("%1 can't be opened as a database").arg(m_strPath); }
    bool IsOpen() override { return m_file.IsOpen(); }
    QSqlQuery GetQuery() override { return m_file.GetQuery(); }
    bool Begin(const QString &user, bool &waited, QSqlError &error) override;
    bool End(bool commit, QSqlError &error) override;
    EFailure GetFailure(const QSqlError &) const override { return EFailure::Final; }
    bool Reopen() override { return false; }
    QString Adapt(QString sql) const override;

private:
    class CFile : public CLocalDB
    {
    public:
        explicit CFile(const QString &path)
            : CLocalDB(path, false, false)
        {
        }

    protected:
        unsigned int GetMaxVersion() override { return VERSION; }
        bool CreateDBVersion(unsigned int version) override;
    };

    bool Exec(const char *sql, QSqlError &error);

    CFile m_file;
    const QString m_strPath;
};
