#pragma once

#include <protocol/AccountProtocol.h>
#include <protocol/LobbyProtocol.h>
#include <protocol/PacketStream.h>
#include <protocol/TableProtocol.h>

#include <QDeadlineTimer>
#include <QSslSocket>

/// A client that believes any server, and sends what it is given.
class CGameClient : public QSslSocket
{
public:
    explicit CGameClient(quint16 port)
    {
        setPeerVerifyMode(VerifyNone);
        connectToHostEncrypted(QStringLiteral("127.0.0.1"), port);
        waitForEncrypted();
    }

    static QByteArray OnAccount(const QByteArray &record)
    {
        return Payload::ToPackets(AccountProtocol::GROUP, {record});
    }
    static QByteArray Login(const QString &nickname, const QString &password)
    {
        return OnAccount(Payload::Encode(AccountProtocol::SLogin{nickname, password}));
    }
    static QByteArray TokenLogin(const QString &nickname, const QString &token)
    {
        return OnAccount(Payload::Encode(AccountProtocol::STokenLogin{nickname, token}));
    }

    // The next record that comes but for time, jackpot, token and seats; empty if there is none within the limit.
    QByteArray ReadRecord(int limit = 3000)
    {
        while (!m_packet.GetNext() && (m_stream.TakePacket(m_packet) || waitForReadyRead(limit)))
            m_stream.Append(readAll());
        const QByteArray record(m_packet.GetPayload(), m_packet.GetPayloadLength());
        const bool isExpected = !record.startsWith(AccountProtocol::STime::TAG) &&
                                !record.startsWith(AccountProtocol::SJackpot::TAG) &&
                                !Payload::Decode(record, m_token) && !Payload::Decode(record, m_seats);
        return isExpected ? record : ReadRecord(limit);
    }

    // The letter of the refusal of what is sent, '+' if it is accepted, '?' if it isn't answered.
    char LogIn(const QByteArray &login)
    {
        write(login);
        const QByteArray answer = ReadRecord();
        AccountProtocol::SAccount account;
        AccountProtocol::SRefusal refusal;
        if (Payload::Decode(answer, account))
            return '+';
        return Payload::Decode(answer, refusal) ? char(refusal.eReason) : '?';
    }

    // Takes a seat, and returns the place.
    quint16 TakeSeat(const QByteArray &login, quint32 tableID)
    {
        const LobbyProtocol::SSeatRequest request{tableID};
        write(login + Payload::ToPackets(LobbyProtocol::GROUP, {Payload::Encode(request)}));
        LobbyProtocol::SSeatAnswer answer;
        while (!Payload::Decode(ReadRecord(), answer)) {
        }
        return answer.usPlace;
    }

    // Reads until the seats are as \a fits says.
    template <typename Fits>
    bool SeesSeats(const Fits &fits)
    {
        for (QDeadlineTimer limit(5000); !limit.hasExpired() && !fits(m_seats.seats);)
            ReadRecord(100);
        return fits(m_seats.seats);
    }

    AccountProtocol::SToken m_token; // the last one that came
    TableProtocol::SSeats m_seats;   // likewise

private:
    CPacketStream m_stream;
    CPacketLayerWrapper m_packet;
};
