#pragma once

#include <support/Literal.h>

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QUrl>
#include <QUrlQuery>

/// A PostgreSQL of the test's own, which ends with it however it ends.
class CPostgres
{
public:
    ~CPostgres()
    {
        QSqlDatabase::removeDatabase(CONNECTION);
        m_process.closeWriteChannel();
        m_process.waitForFinished();
    }

    /// The address of its database, or nothing if it can't be started.
    QString Start()
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral(POSTGRES_PATH), QStringList());
        m_strAddress = ReadLine();
        return m_strAddress;
    }

    /// "stop", "kill" or "start" it.
    bool Tell(const QByteArray &command)
    {
        m_process.write(command + '\n');
        return ReadLine() == "done"_s;
    }

    bool Exec(const QString &sql)
    {
        QSqlDatabase connection = QSqlDatabase::database(CONNECTION);
        if (!connection.isValid()) {
            connection = QSqlDatabase::addDatabase("QPSQL"_s, CONNECTION);
            connection.setHostName(QUrlQuery(QUrl(m_strAddress)).queryItemValue("host"_s));
            connection.setUserName(QUrl(m_strAddress).userName());
            connection.setDatabaseName(QUrl(m_strAddress).path().mid(1));
        }
        return (connection.isOpen() || connection.open()) && QSqlQuery(connection).exec(sql);
    }

private:
    static inline const QString CONNECTION = QStringLiteral("test");

    QString ReadLine()
    {
        while (!m_process.canReadLine() && m_process.waitForReadyRead()) {
        }
        return QString::fromUtf8(m_process.readLine()).trimmed();
    }

    QProcess m_process;
    QString m_strAddress;
};
