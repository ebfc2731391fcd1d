#pragma once

#include <protocol/AccountProtocol.h>
#include <protocol/PacketStream.h>
#include <protocol/TableProtocol.h>

#include <QHash>
#include <QObject>
#include <QSet>
#include <QSslSocket>
#include <QTimer>

/// The server's end of the connection to a client. It splits the stream into packets, checks all of it, and drops the
/// client at the first thing that no client would send. It logs its beginning and its end, a line each.
class CClientLink : public QObject
{
    Q_OBJECT

public:
    /// Takes ownership of the socket. A packet has to be complete \a halfSentLimit milliseconds after its first byte,
    /// and a handshake, if there is one, after its beginning.
    CClientLink(QSslSocket *socket, int halfSentLimit, QObject *parent);

    bool IsEncrypted() const { return m_pSocket->isEncrypted(); }
    /// How far the connection has got.
    enum class EProgress {
        Nothing,   // the client has sent nothing
        Handshake, // it has begun the handshake
        Encrypted, // and ended it
        Packet,    // it has sent a packet
        User,      // somebody is logged in, or waits for it
    };
    EProgress GetProgress() const;

    /// Returns whether the client has requested the list, and therefore receives changes.
    bool IsSubscribed() const { return m_bSubscribed; }
    /// Returns the nickname of the logged-in user; empty if there is none.
    const QString &GetNickname() const { return m_strNickname; }
    /// Returns the token of the user's login; empty if there is none.
    const QString &GetToken() const { return m_strToken; }

    void Send(const QByteArray &packets);
    /// Accepts a login, of which \a token is the token. The client is told of the account, and of the token if it is
    /// new.
    void Accept(const AccountProtocol::SAccount &account, const QString &token, bool isNewToken);
    /// Refuses a login, after a pause in which the link serves nothing, so that passwords can't be tried fast. A user
    /// who was logged in before isn't any more.
    void Refuse(const AccountProtocol::SRefusal &refusal);
    /// Returns a number that changes at each login, refusal and logout, and so identifies the login.
    int GetLoginCount() const { return m_iLogins; }
    /// Returns whether the link is no longer usable. It deletes itself when control returns to the event loop.
    bool HasEnded() const { return m_bEnded; }
    /// Ends the connection, for a reason that the log tells.
    void Drop(const QString &reason) { End(QStringLiteral("dropped: ") + reason); }

    /// Begins to get a web session for one of the user's machines. Returns false if the machine has no name, the link
    /// waits for too many already, or the user has asked for some for too many machines; otherwise the caller calls
    /// EndWebRequest() afterwards.
    bool BeginWebRequest(const QString &machine);
    void EndWebRequest() { --m_iWebRequests; }
    /// Returns the machines for which the user has asked for web sessions.
    const QSet<QString> &GetMachines() const { return m_machines; }

    /// Returns the user's place at a table; 0 for none. The seat is given back with TableProtocol::SLeave, and when
    /// the user's login on this link ends.
    quint16 GetPlace(quint32 tableID) const { return m_places.value(tableID); }
    /// Sets the place that the user has been given, 0 for none.
    void SetPlace(quint32 tableID, quint16 place);

Q_SIGNALS:
    void signal_ListRequested();
    void signal_SeatRequested(quint32 tableID);
    void signal_SeatLeft(quint32 tableID, quint16 place);
    /// Emitted when the user says something, with or without a seat.
    void signal_LineSaid(const TableProtocol::SLine &line);
    /// Emitted for a login; a slot has to call Accept() or Refuse(). Until then the link serves nothing.
    void signal_LoginRequested(const AccountProtocol::SLogin &login);
    void signal_TokenLoginRequested(const AccountProtocol::STokenLogin &login);
    /// Emitted before the user is logged out by a request, on all machines if \a everywhere is true.
    void signal_LogoutRequested(bool everywhere);
    void signal_BalancesRequested();
    void signal_WebSessionRequested(const AccountProtocol::SWebRequest &request);
    /// Emitted when the link has ended.
    void signal_Ended();

private:
    void Reach(EProgress progress);
    void SetUser(const QString &nickname, const QString &token = QString());
    void OnReadyRead();
    void OnRefusalDue();
    bool IsPaused() const { return m_bLoginPends || m_refusalPause.isActive(); }
    QString HandlePacket(CPacketLayerWrapper &packet);
    QString HandleLobbyRecord(const QByteArray &payload);
    QString HandleAccountRecord(const QByteArray &payload);
    QString HandleTableRecord(const QByteArray &payload);
    void LeaveTable(quint32 tableID);
    void End(const QString &reason);
    void Log(const QString &text) const;

    QSslSocket *m_pSocket; // owned
    QString m_strPeer;
    CPacketStream m_stream;
    QTimer m_halfSent; // or half-shaken
    QTimer m_refusalPause;
    QByteArray m_refusal; // sent after the pause
    QString m_strNickname;
    QString m_strToken;
    QSet<QString> m_machines;
    QHash<quint32, quint16> m_places; // by table; never 0
    int m_iLogins = 0;
    int m_iWebRequests = 0;                     // of all users of the link
    EProgress m_eProgress = EProgress::Nothing; // at most Packet
    bool m_bLoginPends = false;
    bool m_bSubscribed = false;
    bool m_bEnded = false;
};
