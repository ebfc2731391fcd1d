#pragma once

#include <Export.h>

#include <QString>

/// The paths of the client's files. Only these functions know the structure of an installation.
///
/// An installation is a tree around the current directory of the process, which is next to Resources and Tmp:
///
/// - Contents/Client: main program, starter, Plugins
/// - Contents/Frameworks/rsyncbin: update tool
/// - Contents/Resources: config.sqlite, language.sqlite, designer, themes, brand/Qt, common/Qt
/// - Contents/Tmp: everything that changes at run time
///
/// Every result except that of ToCommonRes() is composed anew from the current directory of the process, with "/" as
/// separator, and isn't cleaned: it keeps its "/.." parts. Nothing is created. All functions except ToCommonRes() may
/// be called from any thread.
namespace Pathes {

inline constexpr char ICON_FILE[] = "icon.ico";                  ///< The brand's icon.
inline constexpr char MAIN_EXE_FILE[] = "main.exe";              ///< The client.
inline constexpr char RSYNC_FILE[] = "rsyncqt.exe";              ///< The update tool.
inline constexpr char STARTER_EXE_FILE[] = "starter.exe";        ///< Updates and starts the client.
inline constexpr char STARTER_TMP_EXE_FILE[] = "startertmp.exe"; ///< The new starter, which replaces the other.

/// Returns the current directory of the process.
PLUGININTERFACE_EXPORT QString Binary();
/// Returns the directory of Client, Resources and Tmp.
PLUGININTERFACE_EXPORT QString Contents();
/// Returns the directory of Contents.
PLUGININTERFACE_EXPORT QString Root();
/// Returns Contents/Client.
PLUGININTERFACE_EXPORT QString Client();
/// Returns Contents/Frameworks.
PLUGININTERFACE_EXPORT QString Frameworks();
/// Returns Contents/Resources.
PLUGININTERFACE_EXPORT QString Resources();
/// Returns Contents/Tmp.
PLUGININTERFACE_EXPORT QString Tmp();

/// Returns brand/Qt in Resources(), the files of the brand.
PLUGININTERFACE_EXPORT QString Brand();
/// Returns common/Qt in Resources(), the files that all brands share.
PLUGININTERFACE_EXPORT QString Common();
/// Returns common/Qt in Brand(), whose files take precedence over those in Common().
PLUGININTERFACE_EXPORT QString CommonBrand();
/// Returns fonts in Common().
PLUGININTERFACE_EXPORT QString Fonts();
/// Returns designer in Resources().
PLUGININTERFACE_EXPORT QString DesignerStyleDir();

/// Returns the path of a database that is installed with the client.
/// @{
PLUGININTERFACE_EXPORT QString ConfigDB();
PLUGININTERFACE_EXPORT QString LanguageDB();
/// @}
/// Returns the path of a database of the users, in Tmp().
/// @{
PLUGININTERFACE_EXPORT QString SettingsDB();
PLUGININTERFACE_EXPORT QString PlayerInfoDB();
PLUGININTERFACE_EXPORT QString LobbyListDB();
PLUGININTERFACE_EXPORT QString HandHistoryDB();
/// @}

/// Returns logs in Tmp().
PLUGININTERFACE_EXPORT QString Log();
/// Returns Plugins in Client().
PLUGININTERFACE_EXPORT QString Plugins();
/// Returns the path of the client in Client().
PLUGININTERFACE_EXPORT QString MainExe();
/// Returns the path of the starter in Client().
PLUGININTERFACE_EXPORT QString StarterExe();
/// Returns the path of the new starter in Client().
PLUGININTERFACE_EXPORT QString StarterTmpExe();
/// Returns the path of the icon in Brand().
PLUGININTERFACE_EXPORT QString Icon();
/// Returns the path of style.css in Brand().
PLUGININTERFACE_EXPORT QString StarterStyleCss();

/// Returns rsyncbin in Frameworks(), where the update tool is installed.
PLUGININTERFACE_EXPORT QString RSyncDir();
/// Returns the path of the update tool in RSyncDir().
PLUGININTERFACE_EXPORT QString RSync();
/// Returns rsyncbin in Tmp(), for a copy of the update tool, which an update may replace.
PLUGININTERFACE_EXPORT QString RSyncTmpDir();
/// Returns the path of the update tool in RSyncTmpDir().
PLUGININTERFACE_EXPORT QString RSyncTmp();

/// Returns the directory of all variants of the theme \a name.
PLUGININTERFACE_EXPORT QString ThemeRoot(const QString &name);
/// Returns the directory of variant \a number of the theme in \a root.
PLUGININTERFACE_EXPORT QString Theme(const QString &root, int number);

/// Returns the path of the cached picture \a id of a player's custom avatar. Each directory holds a thousand
/// pictures.
PLUGININTERFACE_EXPORT QString CustomAvatar(unsigned int id);

/// Returns the documents directory of the desktop's user.
PLUGININTERFACE_EXPORT QString PersonalDir();

/// Returns the path of a resource with the relative \a name: the brand's file, otherwise the common one, otherwise
/// the compiled-in one. With \a url a compiled-in resource is returned as "qrc:/..." for QML. Empty if there is none.
///
/// Results, even for missing files, are remembered for the life of the process, so that style sheets and QML can ask
/// repeatedly without accessing the disk. Once a path has been returned, a later call with \a url returns it too.
/// Main thread.
PLUGININTERFACE_EXPORT QString ToCommonRes(const QString &name, bool url);

/// Returns the first path dir/name_N.extension, with N counted from 0, at which no file exists.
PLUGININTERFACE_EXPORT QString UniqueFilePath(QString dir, QString name, QString extension);

} // namespace Pathes
