#pragma once

#include "Ledger.h"

#include <webserver/SyncStore.h>

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QSqlDatabase>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <memory>

/// What stays from town to town: the web server's socket, and the program of which all machines are forks.
class CGround : public QObject
{
public:
    CGround();
    ~CGround() override;

    /// The socket to a new machine, whose process it tells.
    int Begin(const QString &folder, const QString &name, int &process);

    QTemporaryDir dir;
    QTcpServer server;
    std::unique_ptr<CSyncStore> pStore;
    int iTowns = 0;
    bool bTells = false; ///< What happens.

private:
    QProcess m_program;
    int m_iSocket = -1;
};

/// Some machines of some users and the operator's web server, in one time that the test advances.
class CTown : public QObject
{
public:
    enum EFate {
        Answered, ///< When the time has come. Before, the server doesn't know of it.
        Slow,     ///< The server takes it at once, and answers when the time has come.
        Twice,    ///< Both; the second answer arrives.
        Cut,      ///< The server takes it, and the answer breaks off.
        Lost,     ///< The server takes it, and no answer comes.
        Refused,
        FATES
    };

    CTown(CGround &ground, int machines, int users);
    ~CTown() override;

    void Advance(qint64 ms);
    /// At the machine's own time.
    void Do(int machine, const QString &command);
    void Change(int machine, const QString &what, const QString &name, const QString &value);
    void Kill(int machine);
    /// Of the machine's next request.
    void SetFate(int machine, EFate fate, qint64 ms);
    void Lock(int machine, const QString &file);
    void SetFull(int machine, bool full);
    /// The end of locks and of a full disk.
    void Free(int machine);
    /// Nothing fails any more.
    void Calm();
    /// All exchange until nothing moves, and then hold the same.
    void Settle();

    QString GetUser(int machine) const { return m_machines.at(machine).strUser; }
    QString GetUserName(int user) const { return "u%1_%2"_s.arg(user).arg(m_ground.iTowns); }
    static QStringList GetPlayers() { return {"p0"_s, "p1"_s, "p2"_s}; }
    static QStringList GetSettings() { return {"volume"_s, "themechips"_s}; }
    CLedger &GetLedger() { return m_ledger; }

private:
    struct SMachine
    {
        QString strFolder;
        int iSocket = -1;
        int iProcess = 0;
        qint64 iNow = 0;
        qint64 iNext = -1;
        QStringList requests; // under way
        QString strUser;
        EFate eFate = Answered;
        qint64 iDelay = 0;
        qint64 iHindered = -1; // until when something may wait for its file
        QHash<QString, int> ratings;
        QHash<QString, qint64> chosen; // when its user last changed the row
        QJsonObject seen;              // what its user sees, by row without the user
        QJsonObject stored;            // what its files hold, by user and row
    };
    struct SRequest
    {
        int machine = 0;
        QPointer<QTcpSocket> pSocket;
        QString strUser;
        QByteArray line;
        QByteArray body;
        EFate eFate = Answered;
        qint64 iBegin = 0;
        bool bAtOnce = false; // the server takes it
        qint64 iRelease = 0;
        QByteArray answer;
    };

    void Begin(int machine);
    QJsonObject Tell(int machine, const QString &command);
    void Await(const QString &id);
    void Look(int machine, const QJsonObject &data, bool killed = false);
    void OnConnection();
    void OnData(QTcpSocket *socket, QByteArray &data);
    void Serve(SRequest &request);
    void Release(const QString &id);
    void CheckTaken(const SRequest &request);
    void Run(int machine, qint64 end);
    qint64 GetDue(const SRequest &request) const;
    QString GetNextRequest() const;
    int GetNextMachine() const;
    QStringList GetRows(int user) const;
    QHash<QString, QString> GetServed(const QString &user);
    QString Compare(bool &same);

    CGround &m_ground;
    CLedger m_ledger;
    QVector<SMachine> m_machines;
    const int m_iUsers;
    qint64 m_iNow = 1000; // milliseconds
    QHash<QString, SRequest> m_requests;
    QHash<QString, QPair<int, qint64>> m_changed; // machine and time of each row's last change
};
