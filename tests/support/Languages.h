#pragma once

#include <files/Pathes.h>
#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>
#include <support/Singletons.h>

#include <QtTest>

/// An installation with a language file, and new singletons, which end with it. Texts are rows of language, area, key
/// and text; languages are "id code name,id code name", of which 1 is selected.
class CLanguages : public CInstallationTree
{
public:
    explicit CLanguages(const QString &texts, QString languages = "1 en English,2 de Deutsch"_s)
    {
        QFile(Pathes::LanguageDB()).open(QIODevice::Append);
        Restart();
        languages.replace(QLatin1Char(' '), QLatin1Char('|')).replace(QLatin1Char(','), QLatin1Char(';'));
        Fill("tbl_availablelanguages(AVL_iID, AVL_cShort, AVL_cLong)"_s, languages);
        Fill("tbl_translations(TRL_AVL_iID, TRL_cArea, TRL_cKey, TRL_cTranslation)"_s, texts);
    }
    ~CLanguages() { DestroySingletons(); }
    static void Restart()
    {
        DestroySingletons();
        CTranslationDB::GetInstance()->Init();
        CSettings::GetInstance()->SetSelectedLanguage(1);
    }
    static void Fill(const QString &table, const QString &rows)
    {
        CTranslationDB::GetInstance()->Exec("CREATE TABLE "_s + table);
        for (const QStringList &row : ToRows(rows))
            CTranslationDB::GetInstance()->Exec("INSERT INTO %1 VALUES ('%2')"_s.arg(table, row.join("','"_s)));
    }
};
