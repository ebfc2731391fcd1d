#pragma once

#include <database/LocalDB.h>

#include <QSharedPointer>

/// The database with the operator's configuration, which is installed and only read. The host calls Init() once
/// before any use.
class PLUGININTERFACE_EXPORT CConfigDB : public CLocalDB
{
public:
    /// Returns the object, creating it on first use; the library owns it. Opens nothing.
    static CConfigDB *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Deletes the object at once. Its connection stays open.
    static void DestroyInstance();

    /// The name of the only table, which holds keys and values.
    static const QString strTableName;

private:
    CConfigDB();

    static QSharedPointer<CConfigDB> m_Instance;
};
