#pragma once

#include <database/LocalDB.h>

#include <QSharedPointer>

/// The database of the users' settings, see CSettings. The host calls Init() once before any use.
class PLUGININTERFACE_EXPORT CSettingsDB : public CLocalDB
{
public:
    /// Returns the object, creating it on first use; the library owns it. Opens nothing.
    static CSettingsDB *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Deletes the object at once. Its connection stays open.
    static void DestroyInstance();

    /// The name of the only table, which holds a row for each user, area and key.
    static const QString strTableName;

protected:
    unsigned int GetMaxVersion() override;
    bool CreateDBVersion(unsigned int version) override;

private:
    CSettingsDB();

    bool CreateTableSettings();

    static QSharedPointer<CSettingsDB> m_Instance;
};
