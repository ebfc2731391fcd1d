#pragma once

#include <database/LocalDB.h>

#include <QSharedPointer>

/// What users noted about other players, and their tags. The host calls Init() once before anybody uses it.
class PLUGININTERFACE_EXPORT CPlayerInfoDB : public CLocalDB
{
public:
    /// Creates the object on first use and opens nothing; the library owns it.
    static CPlayerInfoDB *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// Deletes the object at once; its connection stays open.
    static void DestroyInstance();

    static const QString strTableNameInfo; ///< A row for each user and player.
    static const QString strTableNameTags; ///< Unused by the library, whose tags are the setting `playertags`.

protected:
    unsigned int GetMaxVersion() override;
    bool CreateDBVersion(unsigned int version) override;

private:
    CPlayerInfoDB();

    bool CreateTablePlayerInfo();
    bool CreateTablePlayerTags();

    static QSharedPointer<CPlayerInfoDB> m_Instance;
};
