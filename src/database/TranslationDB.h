#pragma once

#include <database/LocalDB.h>

#include <QSharedPointer>

/// The database with the texts of all languages, which is installed and only read. The host calls Init() once before
/// any use.
class PLUGININTERFACE_EXPORT CTranslationDB : public CLocalDB
{
public:
    /// Returns the object, creating it on first use; the library owns it. Opens nothing.
    static CTranslationDB *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Deletes the object at once. Its connection stays open.
    static void DestroyInstance();

    static const QString strTableNameAvailLanguages; ///< The table with a row for each language.
    static const QString strTableNameTranslations;   ///< The table with a row for each text of each language.

private:
    CTranslationDB();

    static QSharedPointer<CTranslationDB> m_Instance;
};
