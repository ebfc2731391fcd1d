#include "TranslationDB.h"

#include <Singleton_p.h>
#include <files/Pathes.h>

PLUGININTERFACE_DEFINE_SINGLETON(CTranslationDB);

const QString CTranslationDB::strTableNameAvailLanguages = QStringLiteral("tbl_availablelanguages");
const QString CTranslationDB::strTableNameTranslations = QStringLiteral("tbl_translations");

CTranslationDB::CTranslationDB()
    : CLocalDB(Pathes::LanguageDB(), true, true)
{
}
