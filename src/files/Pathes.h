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

inline constexpr char ICON_FILE[] = "icon.ico";                  ///< The brand's icon.
inline constexpr char MAIN_EXE_FILE[] = "main.exe";              ///< The client.
inline constexpr char RSYNC_FILE[] = "rsyncqt.exe";              ///< The update tool.
inline constexpr char STARTER_EXE_FILE[] = "starter.exe";        ///< What updates and starts the client.
inline constexpr char STARTER_TMP_EXE_FILE[] = "startertmp.exe"; ///< A starter that is to replace the other.

/// The process's current directory.
PLUGININTERFACE_EXPORT QString Binary();
/// The folder around Client, Resources and Tmp.
PLUGININTERFACE_EXPORT QString Contents();
/// The folder around Contents.
PLUGININTERFACE_EXPORT QString Root();
/// Contents/Client
PLUGININTERFACE_EXPORT QString Client();
/// Contents/Frameworks
PLUGININTERFACE_EXPORT QString Frameworks();
/// Contents/Resources
PLUGININTERFACE_EXPORT QString Resources();
/// Contents/Tmp
PLUGININTERFACE_EXPORT QString Tmp();

/// brand/Qt of the resources: what is the brand's own.
PLUGININTERFACE_EXPORT QString Brand();
/// common/Qt of the resources: what all brands share.
PLUGININTERFACE_EXPORT QString Common();
/// common/Qt of the brand, whose files go before those of Common().
PLUGININTERFACE_EXPORT QString CommonBrand();
/// fonts of Common().
PLUGININTERFACE_EXPORT QString Fonts();
/// designer of the resources.
PLUGININTERFACE_EXPORT QString DesignerStyleDir();

/// A database that an installation brings along.
/// @{
PLUGININTERFACE_EXPORT QString ConfigDB();
PLUGININTERFACE_EXPORT QString LanguageDB();
/// @}
/// A database of the users, in Tmp().
/// @{
PLUGININTERFACE_EXPORT QString SettingsDB();
PLUGININTERFACE_EXPORT QString PlayerInfoDB();
PLUGININTERFACE_EXPORT QString LobbyListDB();
PLUGININTERFACE_EXPORT QString HandHistoryDB();
/// @}

/// logs of Tmp().
PLUGININTERFACE_EXPORT QString Log();
/// Plugins of Client().
PLUGININTERFACE_EXPORT QString Plugins();
/// The client in Client().
PLUGININTERFACE_EXPORT QString MainExe();
/// The starter in Client().
PLUGININTERFACE_EXPORT QString StarterExe();
/// The new starter in Client().
PLUGININTERFACE_EXPORT QString StarterTmpExe();
/// The icon in Brand().
PLUGININTERFACE_EXPORT QString Icon();
/// style.css in Brand().
PLUGININTERFACE_EXPORT QString StarterStyleCss();

/// rsyncbin of Frameworks(): the update tool as it is installed.
PLUGININTERFACE_EXPORT QString RSyncDir();
/// The tool in RSyncDir().
PLUGININTERFACE_EXPORT QString RSync();
/// rsyncbin of Tmp(): a copy of the tool, which an update may replace.
PLUGININTERFACE_EXPORT QString RSyncTmpDir();
/// The tool in RSyncTmpDir().
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
