#pragma once

#include <QByteArray>
#include <QString>

/// Writes \a contents into a new file in \a folder, and creates the folder if necessary. \a name is suggested by
/// another program: it is changed into the name of a visible file, and gets a number as in "rules (1).html" if a file
/// or link of that name exists, even a dangling link. No file is ever overwritten.
///
/// Returns the path; an empty string, with no file left, if that fails.
QString WriteNewFile(const QString &folder, const QString &name, const QByteArray &contents);
