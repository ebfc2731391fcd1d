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

/// What the targets stand on. Each is a program of libFuzzer's, which calls FuzzOne() with bytes of its choice; what
/// doesn't hold ends the program with those bytes on the disk.
namespace Fuzz {

inline void Require(bool holds, const char *what)
{
    if (!holds)
        qFatal("%s", what);
}

/// The library as a client has it: files of its own, a small catalogue, and somebody logged in. Made once, and left
/// to the end of the process.
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

/// Creates it on first use.
inline CLibrary &Library()
{
    static CLibrary &library = *[] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return new CLibrary;
    }();
    return library;
}

/// Takes the first byte off \a bytes; 0 if there is none.
inline unsigned char TakeByte(QByteArray &bytes)
{
    const unsigned char first = bytes.isEmpty() ? 0 : static_cast<unsigned char>(bytes.at(0));
    bytes.remove(0, 1);
    return first;
}

} // namespace Fuzz

/// Written by each target.
void FuzzOne(QByteArray bytes);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzOne(QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size)));
    return 0;
}
