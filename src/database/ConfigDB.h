#pragma once

#include <database/LocalDB.h>

#include <QSharedPointer>

/// The operator's configuration, which comes with an installation and is only read. The host calls Init() once before
/// anybody uses it.
class PLUGININTERFACE_EXPORT CConfigDB : public CLocalDB
{
public:
    /// Creates the object on first use and opens nothing; the library owns it.
    static CConfigDB *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// Deletes the object at once; its connection stays open.
    static void DestroyInstance();

    /// The one table, of keys and values.
    static const QString strTableName;

private:
    CConfigDB();

    static QSharedPointer<CConfigDB> m_Instance;
};
