#pragma once

#include <database/LocalDB.h>

#include <QSharedPointer>

/// The lobby's lists, kept by the plugins: ring games, sit-and-gos and tournaments. The host calls Init() once before
/// anybody uses it.
class PLUGININTERFACE_EXPORT CLobbyListDB : public CLocalDB
{
public:
    /// Creates the object on first use and opens nothing; the library owns it.
    static CLobbyListDB *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// Deletes the object at once; its connection stays open.
    static void DestroyInstance();

    static const QString strTableNameTable; ///< Tables of ring games.
    static const QString strTableNameSNG;   ///< Sit-and-gos.
    static const QString strTableNameTourn; ///< Tournaments.

protected:
    unsigned int GetMaxVersion() override;
    bool CreateDBVersion(unsigned int version) override;

private:
    CLobbyListDB();

    bool CreateTableTable();
    bool CreateTableSNG();
    bool CreateTableTourn();

    static QSharedPointer<CLobbyListDB> m_Instance;
};
