#pragma once

#include <protocol/AccountProtocol.h>
#include <protocol/PacketStream.h>
#include <protocol/TableProtocol.h>

#include <QHash>
#include <QObject>
#include <QTcpSocket>
#include <QTimer>

/// The server's end of one client. It cuts what arrives into packets, checks all of it, and drops the client at the
/// first thing that no client would send. Beginning and end are one line each in the log.
class CClientLink : public QObject
{
    Q_OBJECT

public:
    /// Takes the socket over. A packet has to be whole \a halfSentLimit milliseconds after its first byte.
    CClientLink(QTcpSocket *socket, int halfSentLimit, QObject *parent);

    /// Whether the client has asked for the list, and thus wants to hear of changes.
    bool IsSubscribed() const { return m_bSubscribed; }
    /// Whose link this is; empty as long as nobody has logged in.
    const QString &GetNickname() const { return m_strNickname; }

    void Send(const QByteArray &packets);
    /// Answers a login.
    void Accept(const AccountProtocol::SAccount &account);
    /// The same, after a pause in which the link serves nothing, so that passwords can't be tried fast. Whoever was
    /// logged in before isn't any more.
    void Refuse(const AccountProtocol::SRefusal &refusal);
    /// Tells apart whose the link has been: another number behind each login, refusal and logout.
    int GetLoginCount() const { return m_iLogins; }

    /// The user's place at a table; 0 for none. Seats are given back with TableProtocol::SLeave, and at the end of
    /// the user's time on this link.
    quint16 GetPlace(quint32 tableID) const { return m_places.value(tableID); }
    void SetPlace(quint32 tableID, quint16 place) { m_places.insert(tableID, place); }

Q_SIGNALS:
    void signal_ListRequested();
    void signal_SeatRequested(quint32 tableID);
    void signal_SeatLeft(quint32 tableID);
    /// The user says something, with or without a seat.
    void signal_LineSaid(const TableProtocol::SLine &line);
    /// To be answered at once.
    void signal_LoginRequested(const AccountProtocol::SLogin &login);
    void signal_BalancesRequested();
    void signal_WebSessionRequested(const AccountProtocol::SWebRequest &request);
    /// The link is of no use any more and deletes itself at the next turn of the event loop.
    void signal_Ended();

private:
    void SetUser(const QString &nickname);
    void OnReadyRead();
    void OnRefusalDue();
    QString HandlePacket(CPacketLayerWrapper &packet);
    QString HandleLobbyRecord(const QByteArray &payload);
    QString HandleAccountRecord(const QByteArray &payload);
    QString HandleTableRecord(const QByteArray &payload);
    void LeaveTable(quint32 tableID);
    void End(const QString &reason);
    void Log(const QString &text) const;

    QTcpSocket *m_pSocket; // owned
    QString m_strPeer;
    CPacketStream m_stream;
    QTimer m_halfSent;
    QTimer m_refusalPause;
    QByteArray m_refusal; // to be sent when the pause is over
    QString m_strNickname;
    QHash<quint32, quint16> m_places; // by table
    int m_iLogins = 0;
    bool m_bSubscribed = false;
    bool m_bEnded = false;
};
