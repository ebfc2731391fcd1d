#pragma once

#include <Export.h>

#include <QString>

/// Where the client's files lie: the one place that knows the shape of an installation.
///
/// An installation is a tree around the directory that the process runs in, which is a folder beside Resources and
/// Tmp:
///
/// - Contents/Client: main program, starter, Plugins
/// - Contents/Frameworks/rsyncbin: update tool
/// - Contents/Resources: config.sqlite, language.sqlite, designer, themes, brand/Qt, common/Qt
/// - Contents/Tmp: all that changes at run time
///
/// Every answer but ToCommonRes() is composed anew from the process's current directory, with "/" as separator, and
/// not cleaned up: it keeps its "/.." parts. Nothing is created. Any thread but for ToCommonRes().
namespace Pathes {

inline constexpr char ICON_FILE[] = "icon.ico";
inline constexpr char MAIN_EXE_FILE[] = "main.exe";
inline constexpr char RSYNC_FILE[] = "rsyncqt.exe";
inline constexpr char STARTER_EXE_FILE[] = "starter.exe";
inline constexpr char STARTER_TMP_EXE_FILE[] = "startertmp.exe";

/// The process's current directory.
PLUGININTERFACE_EXPORT QString Binary();
PLUGININTERFACE_EXPORT QString Contents();
PLUGININTERFACE_EXPORT QString Root();
PLUGININTERFACE_EXPORT QString Client();
PLUGININTERFACE_EXPORT QString Frameworks();
PLUGININTERFACE_EXPORT QString Resources();
PLUGININTERFACE_EXPORT QString Tmp();

PLUGININTERFACE_EXPORT QString Brand();
PLUGININTERFACE_EXPORT QString Common();
PLUGININTERFACE_EXPORT QString CommonBrand();
PLUGININTERFACE_EXPORT QString Fonts();
PLUGININTERFACE_EXPORT QString DesignerStyleDir();

/// The two databases that an installation brings along.
PLUGININTERFACE_EXPORT QString ConfigDB();
PLUGININTERFACE_EXPORT QString LanguageDB();
/// The four databases of the users.
PLUGININTERFACE_EXPORT QString SettingsDB();
PLUGININTERFACE_EXPORT QString PlayerInfoDB();
PLUGININTERFACE_EXPORT QString LobbyListDB();
PLUGININTERFACE_EXPORT QString HandHistoryDB();

PLUGININTERFACE_EXPORT QString Log();
PLUGININTERFACE_EXPORT QString Plugins();
PLUGININTERFACE_EXPORT QString MainExe();
PLUGININTERFACE_EXPORT QString StarterExe();
PLUGININTERFACE_EXPORT QString StarterTmpExe();
PLUGININTERFACE_EXPORT QString Icon();
PLUGININTERFACE_EXPORT QString StarterStyleCss();

PLUGININTERFACE_EXPORT QString RSyncDir();
PLUGININTERFACE_EXPORT QString RSync();
PLUGININTERFACE_EXPORT QString RSyncTmpDir();
PLUGININTERFACE_EXPORT QString RSyncTmp();

/// The folder of all variants of the theme \a name.
PLUGININTERFACE_EXPORT QString ThemeRoot(const QString &name);
/// Variant \a number of the theme whose folder is \a root.
PLUGININTERFACE_EXPORT QString Theme(const QString &root, int number);

/// The cached picture of a player's own avatar. Folders hold a thousand pictures each.
PLUGININTERFACE_EXPORT QString CustomAvatar(unsigned int id);

/// The documents folder of the desktop's user.
PLUGININTERFACE_EXPORT QString PersonalDir();

/// Finds a resource by its relative name: the brand's file, else the common one, else the one compiled in. With \a
/// url a compiled-in resource is answered as "qrc:/..." for QML. Empty if there is none.
///
/// Answers are remembered for the life of the process, a missing file included, so that style sheets and QML may ask
/// again and again without touching the disk. An answer as a path, once given, is also what a later call with \a url
/// gets. Thread of the user interface only.
PLUGININTERFACE_EXPORT QString ToCommonRes(const QString &name, bool url);

/// The first path dir/name_N.extension, N counting from 0, at which no file lies.
PLUGININTERFACE_EXPORT QString UniqueFilePath(QString dir, QString name, QString extension);

} // namespace Pathes
