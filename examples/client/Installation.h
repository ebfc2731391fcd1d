#pragma once

#include <network/ServerTrust.h>

#include <QStringList>
#include <QVector>

#include <functional>

class CLocalDB;
class CPluginManager;
class QWidget;

/// The files with which the client works, and what is wrong with them.
namespace Installation {

/// Makes the folder of the user's files unless it is there, so that no other user of the machine can open it.
void MakeUserFolder();
/// Returns the user's databases that other users of the machine can open, such as those of older clients.
QStringList FindOpenFiles();

/// Reads the certificates of the authorities that vouch for the operator's servers from a PEM file, by default
/// "authority.pem" beside the configuration. Without that one, those count that the system trusts. Returns the latter
/// also if the file can't be read; \a error is then the reason.
CServerTrust ReadTrust(const QString &fileName, QString *error);

/// Returns all databases. The configuration is first, because the settings need it.
QVector<CLocalDB *> GetDatabases();

struct SProblem
{
    QString strText;          ///< A sentence with the path of the file, and what it means to the user.
    bool bIsOfUser = false;   ///< A file that the client itself makes, so that another installation is no remedy.
    bool bIsHopeless = false; ///< There is nothing to do in a client with this problem.
};

/// Returns what the client misses of Qt and of its installation, once \a plugins have been loaded, and which files of
/// the user it can't use. \a trustError is the error of ReadTrust(), if there was one. The texts are English where
/// the catalogue has none.
QVector<SProblem> FindProblems(const CPluginManager &plugins, const QString &trustError = QString());

/// Shows the problems in a dialog of \a window and returns at once. If the user goes on all the same, which hopeless
/// problems don't allow, \a goOn is called; otherwise the program quits.
void ShowProblems(const QVector<SProblem> &problems, QWidget *window, const std::function<void()> &goOn);

} // namespace Installation
