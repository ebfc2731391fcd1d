#pragma once

#include "CatalogueFiles.h"
#include "LiteralQuery.h"

#include <database/TranslationDB.h>
#include <files/Pathes.h>
#include <translation/Translation.h>

#include <sqlite3.h>

#include <QCoreApplication>
#include <QDir>
#include <QSqlDriver>
#include <QTranslator>

#include <utility>

#include <libintl.h>
#include <locale.h>

// The catalogues of texts that are compared.

namespace Catalogues {

using Bench::Require;

constexpr char CONTEXT[] = "bench";
inline const QString AREA = QString::fromLatin1(CONTEXT);
inline const QString CORE = QStringLiteral("core");

enum ELanguage { English = 1, German = 2 };

// A key as the library and as the peers take it.
struct SKey
{
    QString strKey;
    QByteArray abKey;
};
inline std::vector<SKey> keys; // of the current run

inline QByteArray GetKey(int text)
{
    return "TEXT_" + QByteArray::number(text);
}

inline QByteArray GetBeginning(ELanguage language)
{
    return language == German ? "der Text " : "the text ";
}

inline void Run(const QByteArray &sql)
{
    Require(CTranslationDB::GetInstance()->Exec(QString::fromUtf8(sql)), sql.constData());
}

// Returns the catalogue's connection.
inline sqlite3 *GetHandle()
{
    const QVariant handle = QSqlDatabase::database(Pathes::LanguageDB()).driver()->handle();
    return *static_cast<sqlite3 *const *>(handle.constData());
}

inline void MakeCatalogue()
{
    Run("CREATE TABLE tbl_availablelanguages (AVL_iID INTEGER PRIMARY KEY, AVL_cShort TEXT, AVL_cLong TEXT)");
    Run("INSERT INTO tbl_availablelanguages VALUES (1, 'en', 'English'), (2, 'de', 'Deutsch')");
    Run("CREATE TABLE tbl_translations (TRL_AVL_iID INTEGER, TRL_cArea TEXT, TRL_cKey TEXT, TRL_cTranslation TEXT,"
        " PRIMARY KEY (TRL_AVL_iID, TRL_cArea, TRL_cKey)) WITHOUT ROWID");
    Run("INSERT INTO tbl_translations VALUES (1, 'core', 'currency', '$'), (1, 'core', 'money_decimalseperator', "
        "'.'),"
        " (1, 'core', 'money_thousandsseperator', ',')");
}

inline void FillLanguage(ELanguage language, int texts)
{
    Run("WITH RECURSIVE texts(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM texts WHERE i < " +
        QByteArray::number(texts) + " - 1) INSERT INTO tbl_translations SELECT " + QByteArray::number(language) +
        ", 'bench', 'text_' || i, '" + GetBeginning(language) + "' || i FROM texts");
}

// Fills the catalogue with the given number of texts, and takes as many of their keys, which are spread over them.
inline void Fill(int texts, int wanted, bool bothLanguages)
{
    static std::pair<int, bool> present;
    if (std::exchange(present, {texts, bothLanguages}) != present) {
        Run("DELETE FROM tbl_translations WHERE TRL_cArea = 'bench'");
        FillLanguage(English, texts);
        if (bothLanguages)
            FillLanguage(German, texts);
    }
    keys.clear();
    for (int i = 0; i < wanted; ++i) {
        const QByteArray key = GetKey(int(qint64(i) * texts / wanted));
        keys.push_back({QString::fromUtf8(key), key});
    }
}

inline CatalogueFiles::TTexts MakeTexts(ELanguage language, int texts)
{
    CatalogueFiles::TTexts all;
    for (int i = 0; i < texts; ++i)
        all.insert(GetKey(i), QString::fromUtf8(GetBeginning(language) + QByteArray::number(i)));
    return all;
}

// Finds the text of each key.
template <typename Find>
inline QStringList FindAll(Find find)
{
    QStringList found;
    found.reserve(int(keys.size()));
    for (const SKey &key : keys)
        found.append(find(key));
    return found;
}

inline QString LookUp(const QString &key, const QString &area)
{
    return CTranslation::GetInstance()->GetTranslatedString(key, area, -1);
}

inline QString LookUpKey(const SKey &key)
{
    return LookUp(key.strKey, AREA);
}

inline QString LookUpLiteral(const SKey &key)
{
    const auto sql = QStringLiteral("SELECT TRL_cTranslation FROM 'tbl_translations' WHERE TRL_cArea='%1' AND"
                                    " TRL_cKey='%2' AND TRL_AVL_iID='1' LIMIT 1");
    return Bench::RunLiteral(QSqlDatabase::database(Pathes::LanguageDB()), sql.arg(AREA, key.strKey.toLower()))
        .value(0)
        .value(QStringLiteral("TRL_cTranslation"))
        .toString();
}

inline QString LookUpTranslator(const SKey &key)
{
    return QCoreApplication::translate(CONTEXT, key.abKey);
}

inline QByteArray domain; // of gettext, in the current run

inline QString LookUpGettext(const SKey &key)
{
    return QString::fromUtf8(dgettext(domain, key.abKey));
}

// Returns the path of a peer's file, which is written once, to the installation's client folder.
template <typename Make>
inline QString ProvideFile(const QString &name, Make make)
{
    const QString path = QDir::current().filePath(name);
    if (QFile::exists(path))
        return path;
    const QByteArray contents = make();
    QFile file(path);
    Require(QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
                file.write(contents) == contents.size(),
            "a peer's file");
    return path;
}

inline QString ProvideTranslatorFile(ELanguage language, int texts)
{
    return ProvideFile(QStringLiteral("%1_%2.qm").arg(language).arg(texts), [language, texts] {
        return CatalogueFiles::MakeTranslatorFile(MakeTexts(language, texts), CONTEXT);
    });
}

// Returns a translator that isn't installed yet. Its destruction removes it.
inline std::unique_ptr<QTranslator> LoadTranslator(const QString &path)
{
    auto translator = std::make_unique<QTranslator>();
    Require(translator->load(path), "a file for QTranslator");
    return translator;
}

// The C library takes the language from LANGUAGE, unless the locale is "C". It reads a domain's file only once.
inline void BindGettext(int texts)
{
    Require(qputenv("LANGUAGE", "en") && setlocale(LC_MESSAGES, "C.UTF-8") != nullptr, "a locale for gettext");
    domain = "texts_" + QByteArray::number(texts);
    ProvideFile(QStringLiteral("en/LC_MESSAGES/texts_%1.mo").arg(texts),
                [texts] { return CatalogueFiles::MakeGettextFile(MakeTexts(English, texts)); });
    Require(bindtextdomain(domain, QFile::encodeName(QDir::currentPath())) != nullptr &&
                bind_textdomain_codeset(domain, "UTF-8") != nullptr,
            "a domain of gettext");
}

} // namespace Catalogues
