#pragma once

#include <QStringList>

/// The commands that make and show the certificates by which clients recognise an operator's servers.
namespace CertificateCommands {

/// Makes a certificate for servers of these hosts, which are names or addresses, in a folder, and an authority that
/// vouches for it unless the folder has one. Replaces a server's certificate only with \a replaces. Returns the
/// program's exit code.
int Make(const QString &folder, const QStringList &hosts, bool replaces);

/// Prints the certificates of a PEM file. Returns the program's exit code.
int Show(const QString &path);

} // namespace CertificateCommands
