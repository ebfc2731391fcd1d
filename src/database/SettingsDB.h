#pragma once

#include <database/LocalDB.h>

#include <QSharedPointer>

/// The users' settings, one row each; see CSettings. The host calls Init() once before anybody uses it.
class PLUGININTERFACE_EXPORT CSettingsDB : public CLocalDB
{
public:
    /// Creates the object on first use and opens nothing; the library owns it.
    static CSettingsDB *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// Deletes the object at once; its connection stays open.
    static void DestroyInstance();

    /// The one table, a row for each user, area and key.
    static const QString strTableName;

protected:
    unsigned int GetMaxVersion() override;
    bool CreateDBVersion(unsigned int version) override;

private:
    CSettingsDB();

    bool CreateTableSettings();

    static QSharedPointer<CSettingsDB> m_Instance;
};
