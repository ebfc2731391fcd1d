#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

/// Where the members of a JSON object stand in its text, which QJsonDocument doesn't tell.
namespace JsonLines {

struct SMember
{
    QString strName;
    int iLine; ///< from 1
};

/// The members of the outermost object, in the order of the text, and each as often as it stands there. The text has
/// to be one that QJsonDocument accepts.
QVector<SMember> FindMembers(const QByteArray &json);

/// The line of a byte, from 1.
int LineAt(const QByteArray &text, int offset);

} // namespace JsonLines
