#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

/// Finds the lines of the members of a JSON object, which QJsonDocument doesn't tell.
namespace JsonLines {

struct SMember
{
    QString strName;
    int iLine; ///< from 1
};

/// Returns the members of the outermost object in the order of the text, a repeated one repeatedly. QJsonDocument has
/// to accept the text.
QVector<SMember> FindMembers(const QByteArray &json);

/// Returns the line of a byte, from 1.
int LineAt(const QByteArray &text, int offset);

} // namespace JsonLines
