#pragma once

#include <QByteArray>
#include <QString>

/// Writes \a contents into a new file in \a folder, which it makes if need be. \a name is another program's wish: it
/// is made one that a user sees, and gets a number as in "rules (1).html" where it is taken already, be it by a link
/// that leads nowhere. No file is ever written over.
///
/// Answers the path; empty, with nothing left behind, if that can't be done.
QString WriteNewFile(const QString &folder, const QString &name, const QByteArray &contents);
