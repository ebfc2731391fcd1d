#pragma once

#include <QProcess>

/// Starts a server of the example; answers the port that it says it listens on, 0 if it doesn't.
inline quint16 StartServer(QProcess &process, const QString &program, const QStringList &arguments)
{
    process.start(program, arguments);
    process.waitForReadyRead();
    return process.readLine().replace("listening on ", "").trimmed().toUShort();
}
