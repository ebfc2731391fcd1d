#include "ServerProcess.h"

#include <protocol/AccountProtocol.h>
#include <protocol/LobbyProtocol.h>
#include <protocol/PacketStream.h>
#include <protocol/TableProtocol.h>

#include <support/Literal.h>
#include <support/Rows.h>

#include <QTcpSocket>
#include <QtTest>

using namespace AccountProtocol;
using namespace LobbyProtocol;

namespace {

constexpr quint32 TOURNAMENT = 3001; // where more than ten play

class CClient : public QTcpSocket
{
public:
    explicit CClient(quint16 port)
    {
        connectToHost(QHostAddress::LocalHost, port);
        waitForConnected();
    }

    // The next record that comes but for time, jackpot and seats; empty if there is none within the limit.
    QByteArray ReadRecord(int limit = 3000)
    {
        while (!m_packet.GetNext() && (m_stream.TakePacket(m_packet) || waitForReadyRead(limit)))
            m_stream.Append(readAll());
        const QByteArray record(m_packet.GetPayload(), m_packet.GetPayloadLength());
        const bool isExpected =
            !record.startsWith(STime::TAG) && !record.startsWith(SJackpot::TAG) && !Payload::Decode(record, m_seats);
        return isExpected ? record : ReadRecord(limit);
    }

    // Takes a seat, and returns the place.
    quint16 TakeSeat(const QByteArray &login, quint32 tableID)
    {
        write(login + Payload::ToPackets(LobbyProtocol::GROUP, {Payload::Encode(SSeatRequest{tableID})}));
        SSeatAnswer answer;
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

    TableProtocol::SSeats m_seats; // the last ones that came

private:
    CPacketStream m_stream;
    CPacketLayerWrapper m_packet;
};

} // namespace

class tst_gameserver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_usWebPort = StartServer(m_webServer, QStringLiteral(WEBSERVER_PATH),
                                  {"--database"_s, m_dir.filePath("web.sqlite"_s), "--key"_s, "k&"_s});
        m_usPort = StartServer(m_server, QStringLiteral(GAMESERVER_PATH),
                               {"--data"_s, QStringLiteral(TABLES_PATH), "--accounts"_s,
                                QStringLiteral(ACCOUNTS_PATH), "--idle-ms"_s, "700"_s, "--web-server"_s,
                                "127.0.0.1:%1"_s.arg(m_usWebPort), "--web-key"_s, "k&"_s});
        QVERIFY(m_usWebPort != 0);
        QVERIFY(m_usPort != 0);
    }

    void cleanupTestCase() { m_server.close(); }

    void Logins_data()
    {
        const auto refused = [](const QString &nickname, ERefusal reason) {
            return Payload::Encode(SRefusal{nickname, reason});
        };
        const QByteArray magnolia =
            Payload::Encode(SAccount{"Magnolia"_s, GlobalDefines::MONEYTYPE_EURO, 125050, 20000});
        AddRows<QString, QString, QByteArray>(
            {"nickname", "password", "answer"},
            {{"known, in capitals", "MAGNOLIA"_s, "river"_s, magnolia},
             {"wrong password", "magnolia"_s, "guest"_s, refused("magnolia"_s, RF_WRONG_PASSWORD)},
             {"no nickname", ""_s, "guest"_s, refused(""_s, RF_BAD_NICKNAME)},
             {"control character", "Z\to"_s, "guest"_s, refused("Z\to"_s, RF_BAD_NICKNAME)}});
    }
    void Logins()
    {
        QFETCH(QString, nickname);
        QFETCH(QString, password);
        QFETCH(QByteArray, answer);
        const bool accepted = answer.startsWith(SAccount::TAG);
        const QByteArray seat = Payload::ToPackets(LobbyProtocol::GROUP, {Payload::Encode(SSeatRequest{1002})});
        CClient client(m_usPort);
        QElapsedTimer time;
        time.start();
        client.write(Login(nickname, password) + seat + OnAccount(LOGOUT) + seat);
        QCOMPARE(client.ReadRecord(), answer);
        QVERIFY(accepted || time.elapsed() >= 400);
        const QByteArray noSeat = Payload::Encode(SSeatAnswer{1002, SR_NOT_LOGGED_IN, 0});
        QCOMPARE(client.ReadRecord() == noSeat, !accepted);
        QCOMPARE(client.ReadRecord(), noSeat);
    }

    void SeatsAroundATable()
    {
        using TSeats = QVector<TableProtocol::SSeat>;
        const auto has = [](const TSeats &seats, const QString &nickname, quint16 place) {
            return std::count_if(seats.begin(), seats.end(), [&](const TableProtocol::SSeat &seat) {
                       return seat.strNickname == nickname && (place == 0 || seat.usPlace == place);
                   }) == 1;
        };
        CClient first(m_usPort);
        const quint16 place = first.TakeSeat(Login("Zoë"_s, "guest"_s), 1036);
        QVERIFY(first.SeesSeats([&](const TSeats &seats) { return has(seats, "Zoë"_s, place); }));
        const TableProtocol::SSeat player = first.m_seats.seats.constFirst();
        {
            CClient second(m_usPort); // by the name of a simulated player, who makes way
            QCOMPARE(second.TakeSeat(Login(player.strNickname, "guest"_s), 1036), player.usPlace);
            QVERIFY(first.SeesSeats([&](const TSeats &seats) {
                return has(seats, player.strNickname, player.usPlace) && seats.constFirst().usPicture == 0;
            }));
            QCOMPARE(second.TakeSeat(QByteArray(), 1036), player.usPlace);
        }
        QVERIFY(first.SeesSeats([&](const TSeats &seats) { return !has(seats, player.strNickname, 0); }));
        // Of a tournament, the ten places around one table.
        CClient third(m_usPort);
        const quint16 far = third.TakeSeat(Login("Zoë"_s, "guest"_s), TOURNAMENT);
        QVERIFY(far > TableProtocol::PLACES_AROUND);
        QVERIFY(third.SeesSeats([&](const TSeats &seats) { return has(seats, "Zoë"_s, far); }));
        for (const TableProtocol::SSeat &seat : qAsConst(third.m_seats.seats))
            QCOMPARE((seat.usPlace - 1) / 10, (far - 1) / 10);
    }

    void WebSessions()
    {
        const auto request = [](const QString &machine) {
            return OnAccount(Payload::Encode(SWebRequest{38, machine}));
        };
        const QByteArray login = Login("Zoë"_s, "guest"_s);
        const QByteArray none = Payload::Encode(SWebSession{38, QString()});
        CClient client(m_usPort);
        client.write(request("desk"_s));
        QCOMPARE(client.ReadRecord(), none);
        client.write(login + request(QString())); // which the web server refuses
        QVERIFY(client.ReadRecord().startsWith(SAccount::TAG));
        QCOMPARE(client.ReadRecord(), none);
        client.write(request("desk"_s) + OnAccount(LOGOUT));
        QCOMPARE(client.ReadRecord(), none);
        m_webServer.close();
        client.write(login + request("desk"_s));
        QVERIFY(client.ReadRecord().startsWith(SAccount::TAG));
        QCOMPARE(client.ReadRecord(), none);
    }

    // Those of the file are among them, and the numbers of players change at all of them.
    void MadeTables()
    {
        constexpr int COUNT = 5000;
        QProcess server;
        CClient client(StartServer(
            server, QStringLiteral(GAMESERVER_PATH),
            {"--data"_s, QStringLiteral(TABLES_PATH), "--tables"_s, QString::number(COUNT), "--seed"_s, "7"_s}));
        client.write(Payload::ToPackets(LobbyProtocol::GROUP, {GET_LIST}));
        QHash<quint32, quint16> players;
        STable table;
        QByteArray record;
        while (Payload::Decode(record = client.ReadRecord(), table)) {
            QVERIFY(table.usPlayers <= table.usPlaces);
            players.insert(table.uiID, table.usPlayers);
        }
        QCOMPARE(record, Payload::Encode(SListEnd{COUNT}));
        QCOMPARE(players.size(), COUNT);
        QVERIFY(players.contains(1002));
        SPlayerCounts counts;
        for (int changed = 0; changed < COUNT; changed += int(counts.counts.size())) {
            counts.counts.clear();
            QVERIFY(Payload::Decode(client.ReadRecord(), counts));
            for (const SPlayerCount &count : qAsConst(counts.counts))
                QVERIFY(players.take(count.uiTableID) != count.usPlayers);
        }
        QVERIFY(players.isEmpty());
        server.close();
    }

    // A row's name is the reason that the server tells.
    void Nonsense_data()
    {
        const QByteArray good = Payload::ToPackets(LobbyProtocol::GROUP, {GET_LIST});
        const QByteArray login = Login(QString(), QString());
        AddRows<QByteArray>(
            {"bytes"},
            {{"a size that no packet has", QByteArray(good).replace(ucPacketSizePos, 2, QByteArray("\x0A\0", 2))},
             {"that no packet has", QByteArray(good).replace(ucPacketSizePos, 2, QByteArray("\0\x80", 2))},
             {"records that don't fill it", QByteArray(good).replace(ucPacketSizePos + 2, 1, "\x05")},
             {"don't fill it", QByteArray(good).replace(ucPacketSizePos + 2, 1, QByteArray(1, '\0'))},
             {"an unknown group", QByteArray(good).replace("LOBB", "LOBX")},
             {"an unknown tag", QByteArray(good).replace("GLST", "TBLE")},
             {"a list request with a body", Payload::ToPackets(LobbyProtocol::GROUP, {"GLST1"})},
             {"a malformed seat request", Payload::ToPackets(LobbyProtocol::GROUP, {"SEAT"})},
             {"an unknown or malformed record", QByteArray(login).replace("LGIN", "LGOK")},
             {"an unknown or malformed record on", OnAccount(Payload::Encode(SWebRequest{40, QString()}))},
             {"more than one record",
              QByteArray(login + login.mid(11)).replace(9, 1, QByteArray(1, char(2 * login.size() - 11)))},
             {"left a packet half-sent", good + good.left(12)},
             {"doesn't read", good.repeated(20000)}});
    }
    void Nonsense()
    {
        QFETCH(QByteArray, bytes);
        CClient other(m_usPort);
        CClient client(m_usPort);
        client.write(bytes);
        QTRY_COMPARE(client.state(), QAbstractSocket::UnconnectedState);
        QByteArray log;
        QTRY_VERIFY2((log += m_server.readAllStandardError()).contains(QTest::currentDataTag()), log.constData());
        const QByteArray request = Payload::ToPackets(LobbyProtocol::GROUP, {GET_LIST});
        for (const char &byte : request) { // for the server to put together
            other.write(&byte, 1);
            other.flush();
        }
        QVERIFY(!other.ReadRecord().isEmpty());
    }

    // A row's name is what the server says of the file.
    void BadFiles_data()
    {
        const QByteArray table = "[{'id':1,'name':'Vega','type':'N','game':'HOLD','limit':'N','money':'R','low':1,"
                                 "'high':2,'places':6,'players':3}]";
        const QByteArray hash(64, 'b');
        const QByteArray account = "{'currency':'R','real':0,'play':1,'password':'" + hash + "'}";
        AddRows<QString, QByteArray>(
            {"option", "content"}, // with single quotes
            {{"row 2: nickname \"\" is another row's", "--accounts"_s, "[" + account + "," + account + "]"},
             {"row 1: \"nickname\"", "--accounts"_s, "[{'nickname':' Vega'," + account.mid(1) + "]"},
             {"row 1: \"password\"", "--accounts"_s, "[" + QByteArray(account).replace(hash, "B") + "]"},
             {"row 1: \"nick\" is not a known key", "--accounts"_s, "[{'nick':'Vega'," + account.mid(1) + "]"},
             {"malformed at byte", "--data"_s, QByteArray(table).replace("3}]", "3,}]")},
             {"row 2: not an object", "--data"_s, QByteArray(table).replace("}]", "},7]")},
             {"row 1: \"game\"", "--data"_s, QByteArray(table).replace("HOLD", "HULD")},
             {"row 1: \"low\"", "--data"_s, QByteArray(table).replace("'low':1", "'low':1.5")},
             {"row 1: \"players\"", "--data"_s, QByteArray(table).replace(":3}", ":7}")}});
    }
    void BadFiles()
    {
        QFETCH(QString, option);
        QFETCH(QByteArray, content);
        QTemporaryFile file;
        QVERIFY(file.open());
        file.write(content.replace('\'', '"'));
        file.close();
        QProcess server;
        server.start(QStringLiteral(GAMESERVER_PATH),
                     {"--data"_s, QStringLiteral(TABLES_PATH), option, file.fileName()});
        QVERIFY(server.waitForFinished());
        QCOMPARE(server.exitCode(), 1);
        const QByteArray error = server.readAllStandardError();
        QVERIFY2(error.contains(file.fileName().toUtf8() + ": " + QTest::currentDataTag()), error.constData());
    }

private:
    static QByteArray OnAccount(const QByteArray &record)
    {
        return Payload::ToPackets(AccountProtocol::GROUP, {record});
    }
    static QByteArray Login(const QString &nickname, const QString &password)
    {
        return OnAccount(Payload::Encode(SLogin{nickname, HashPassword(password)}));
    }

    QTemporaryDir m_dir;
    QProcess m_webServer;
    quint16 m_usWebPort = 0;
    QProcess m_server;
    quint16 m_usPort = 0;
};

QTEST_GUILESS_MAIN(tst_gameserver)
#include "tst_gameserver.moc"
