#pragma once

#include <database/LocalDB.h>

#include <QSharedPointer>

/// The texts of all languages, which come with an installation and are only read. The host calls Init() once before
/// anybody uses it.
class PLUGININTERFACE_EXPORT CTranslationDB : public CLocalDB
{
public:
    /// Creates the object on first use and opens nothing; the library owns it.
    static CTranslationDB *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// Deletes the object at once; its connection stays open.
    static void DestroyInstance();

    static const QString strTableNameAvailLanguages; ///< A row for each language.
    static const QString strTableNameTranslations;   ///< A row for each text of each language.

private:
    CTranslationDB();

    static QSharedPointer<CTranslationDB> m_Instance;
};
