#pragma once

#include <database/ConfigDB.h>
#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <database/TranslationDB.h>
#include <models/UserInfo.h>
#include <settings/Config.h>
#include <settings/Settings.h>
#include <support/InstallationTree.h>

#include <QApplication>
#include <QByteArray>

#include <cstdint>

/// The common parts of the fuzz targets. Each target is a libFuzzer program, which calls FuzzOne() with inputs of its
/// choice; a failed check ends the program, which saves the input.
namespace Fuzz {

inline void Require(bool holds, const char *what)
{
    if (!holds)
        qFatal("%s", what);
}

/// The library as in a client: with files of its own, a small catalogue, and a logged-in user. It exists until the
/// process ends.
class CLibrary
{
public:
    CLibrary()
    {
        for (const char *file : {"Resources/config.sqlite", "Resources/language.sqlite"})
            m_installation.WriteFile(QString::fromLatin1(file), QByteArray());
        Require(CConfigDB::GetInstance()->Init() && CTranslationDB::GetInstance()->Init() &&
                    CSettingsDB::GetInstance()->Init() && CPlayerInfoDB::GetInstance()->Init(),
                "the databases");
        for (const char *sql :
             {"CREATE TABLE tbl_availablelanguages (AVL_iID INTEGER PRIMARY KEY, AVL_cShort TEXT, AVL_cLong TEXT)",
              "INSERT INTO tbl_availablelanguages VALUES (1, 'en', 'English')",
              "CREATE TABLE tbl_translations (TRL_AVL_iID INTEGER, TRL_cArea TEXT, TRL_cKey TEXT, TRL_cTranslation "
              "TEXT)",
              "INSERT INTO tbl_translations VALUES (1, 'core', 'currency', '$'),"
              " (1, 'core', 'money_decimalseperator', '.'), (1, 'core', 'money_thousandsseperator', ',')"})
            Require(CTranslationDB::GetInstance()->Exec(QString::fromLatin1(sql)), sql);
        CConfig::GetInstance();
        CUserInfo::GetInstance();
        CSettings::GetInstance();
        CUserInfo::GetInstance()->SetLoggedIn(QStringLiteral("Ann"));
    }

    const CInstallationTree &GetInstallation() const { return m_installation; }

private:
    static char *s_arguments[];
    int m_iArguments = 1;
    QApplication m_application{m_iArguments, s_arguments};
    CInstallationTree m_installation;
};

inline char programName[] = "fuzz";
inline char *CLibrary::s_arguments[] = {programName, nullptr};

/// Returns the library, and creates it on first use.
inline CLibrary &Library()
{
    static CLibrary &library = *[] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return new CLibrary;
    }();
    return library;
}

/// Removes and returns the first byte of \a bytes; 0 if there is none.
inline unsigned char TakeByte(QByteArray &bytes)
{
    const unsigned char first = bytes.isEmpty() ? 0 : static_cast<unsigned char>(bytes.at(0));
    bytes.remove(0, 1);
    return first;
}

} // namespace Fuzz

/// Checks one input; each target defines it.
void FuzzOne(QByteArray bytes);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzOne(QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size)));
    return 0;
}
