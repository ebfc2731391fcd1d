#include "Pathes.h"

#include <QDir>
#include <QFile>
#include <QHash>

#if defined(Q_OS_WIN)
#include <qt_windows.h>

#include <objbase.h>
#include <shlobj.h>
#else
#include <QStandardPaths>
#endif

namespace {

constexpr unsigned int AVATARS_PER_FOLDER = 1000;

QString Join(const QString &directory, const char *name)
{
    return directory + QLatin1Char('/') + QLatin1String(name);
}

} // namespace

QString Pathes::Binary()
{
    return QDir::currentPath();
}

QString Pathes::Contents()
{
    return Binary() + QLatin1String("/..");
}

QString Pathes::Root()
{
    return Binary() + QLatin1String("/../..");
}

QString Pathes::Client()
{
    return Contents() + QLatin1String("/Client");
}

QString Pathes::Frameworks()
{
    return Contents() + QLatin1String("/Frameworks");
}

QString Pathes::Resources()
{
    return Contents() + QLatin1String("/Resources");
}

QString Pathes::Tmp()
{
    return Contents() + QLatin1String("/Tmp");
}

QString Pathes::Brand()
{
    return Resources() + QLatin1String("/brand/Qt");
}

QString Pathes::Common()
{
    return Resources() + QLatin1String("/common/Qt");
}

QString Pathes::CommonBrand()
{
    return Brand() + QLatin1String("/common/Qt");
}

QString Pathes::Fonts()
{
    return Common() + QLatin1String("/fonts");
}

QString Pathes::DesignerStyleDir()
{
    return Resources() + QLatin1String("/designer");
}

QString Pathes::ConfigDB()
{
    return Resources() + QLatin1String("/config.sqlite");
}

QString Pathes::LanguageDB()
{
    return Resources() + QLatin1String("/language.sqlite");
}

QString Pathes::SettingsDB()
{
    return Tmp() + QLatin1String("/settings.sqlite");
}

QString Pathes::PlayerInfoDB()
{
    return Tmp() + QLatin1String("/playerinfo.sqlite");
}

QString Pathes::LobbyListDB()
{
    return Tmp() + QLatin1String("/lobbylist.sqlite");
}

QString Pathes::HandHistoryDB()
{
    return Tmp() + QLatin1String("/handhistory.sqlite");
}

QString Pathes::Log()
{
    return Tmp() + QLatin1String("/logs");
}

QString Pathes::Plugins()
{
    return Client() + QLatin1String("/Plugins");
}

QString Pathes::MainExe()
{
    return Join(Client(), MAIN_EXE_FILE);
}

QString Pathes::StarterExe()
{
    return Join(Client(), STARTER_EXE_FILE);
}

QString Pathes::StarterTmpExe()
{
    return Join(Client(), STARTER_TMP_EXE_FILE);
}

QString Pathes::Icon()
{
    return Join(Brand(), ICON_FILE);
}

QString Pathes::StarterStyleCss()
{
    return Brand() + QLatin1String("/style.css");
}

QString Pathes::RSyncDir()
{
    return Frameworks() + QLatin1String("/rsyncbin");
}

QString Pathes::RSync()
{
    return Join(RSyncDir(), RSYNC_FILE);
}

QString Pathes::RSyncTmpDir()
{
    return Tmp() + QLatin1String("/rsyncbin");
}

QString Pathes::RSyncTmp()
{
    return Join(RSyncTmpDir(), RSYNC_FILE);
}

QString Pathes::ThemeRoot(const QString &name)
{
    return Resources() + QLatin1String("/themes/") + name;
}

QString Pathes::Theme(const QString &root, int number)
{
    return root + QLatin1String("/theme") + QString::number(number) + QLatin1String("/Qt");
}

QString Pathes::CustomAvatar(unsigned int id)
{
    return Tmp() + QLatin1String("/CustomAvatars/") + QString::number(id / AVATARS_PER_FOLDER) + QLatin1Char('/') +
           QString::number(id) + QLatin1String(".png");
}

QString Pathes::PersonalDir()
{
#if defined(Q_OS_WIN)
    QString directory;
    LPITEMIDLIST idList = nullptr;
    if (SUCCEEDED(SHGetSpecialFolderLocation(nullptr, CSIDL_PERSONAL, &idList))) {
        wchar_t path[MAX_PATH] = {};
        if (SHGetPathFromIDListW(idList, path))
            directory = QString::fromWCharArray(path);
        CoTaskMemFree(idList);
    }
    return directory.replace(QLatin1Char('\\'), QLatin1Char('/'));
#else
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
#endif
}

QString Pathes::ToCommonRes(const QString &name, bool url)
{
    static QHash<QString, QString> paths; // an empty entry means that there is no file
    static QHash<QString, QString> urls;

    const auto knownPath = paths.constFind(name);
    if (knownPath != paths.constEnd())
        return *knownPath;
    if (url) {
        const auto knownUrl = urls.constFind(name);
        if (knownUrl != urls.constEnd())
            return *knownUrl;
    }

    for (const QString &directory : {CommonBrand(), Common()}) {
        const QString file = directory + QLatin1Char('/') + name;
        if (QFile::exists(file))
            return *paths.insert(name, file);
    }

    const QString compiledIn = QLatin1String(":/") + name;
    if (!QFile::exists(compiledIn))
        return *paths.insert(name, QString());
    return url ? *urls.insert(name, QLatin1String("qrc") + compiledIn) : *paths.insert(name, compiledIn);
}

QString Pathes::UniqueFilePath(QString dir, QString name, QString extension)
{
    if (!dir.endsWith(QLatin1Char('/')))
        dir += QLatin1Char('/');
    for (int i = 0;; ++i) {
        QString path = dir + name + QLatin1Char('_') + QString::number(i) + QLatin1Char('.') + extension;
        if (!QFile::exists(path))
            return path;
    }
}
