#pragma once

#include <database/LocalDB.h>

#include <QSharedPointer>

/// The database of the users' notes on other players and their tags. The host calls Init() once before any use.
class PLUGININTERFACE_EXPORT CPlayerInfoDB : public CLocalDB
{
public:
    /// Returns the object, creating it on first use; the library owns it. Opens nothing.
    static CPlayerInfoDB *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Deletes the object at once. Its connection stays open.
    static void DestroyInstance();

    static const QString strTableNameInfo; ///< The table with a row for each user and player.
    static const QString strTableNameTags; ///< Not used by the library, which keeps tags in the setting `playertags`.

protected:
    unsigned int GetMaxVersion() override;
    bool CreateDBVersion(unsigned int version) override;

private:
    CPlayerInfoDB();

    bool CreateTablePlayerInfo();
    bool CreateTablePlayerTags();

    static QSharedPointer<CPlayerInfoDB> m_Instance;
};
