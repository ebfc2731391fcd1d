#pragma once

#include <database/LocalDB.h>

#include <QSharedPointer>

/// The hands that users have played, kept by the plugins. The host calls Init() once before anybody uses it.
class PLUGININTERFACE_EXPORT CHandHistoryDB : public CLocalDB
{
public:
    /// Creates the object on first use and opens nothing; the library owns it.
    static CHandHistoryDB *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// Deletes the object at once; its connection stays open.
    static void DestroyInstance();

    /// The one table, a row for each hand.
    static const QString strTableName;

protected:
    unsigned int GetMaxVersion() override;
    bool CreateDBVersion(unsigned int version) override;

private:
    CHandHistoryDB();

    bool CreateTableHandHistory();

    static QSharedPointer<CHandHistoryDB> m_Instance;
};
