#pragma once

#include <database/LocalDB.h>

#include <QSharedPointer>

/// The database of the lobby's lists, maintained by the plugins: ring games, sit-and-gos and tournaments. The host
/// calls Init() once before any use.
class PLUGININTERFACE_EXPORT CLobbyListDB : public CLocalDB
{
public:
    /// Returns the object, creating it on first use; the library owns it. Opens nothing.
    static CLobbyListDB *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Deletes the object at once. Its connection stays open.
    static void DestroyInstance();

    static const QString strTableNameTable; ///< The table of ring games.
    static const QString strTableNameSNG;   ///< The table of sit-and-gos.
    static const QString strTableNameTourn; ///< The table of tournaments.

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
