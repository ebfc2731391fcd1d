#include "ServerProcess.h"

#include <protocol/AccountProtocol.h>
#include <protocol/LobbyProtocol.h>
#include <protocol/PacketStream.h>

#include <support/Literal.h>
#include <support/Rows.h>

#include <QTcpSocket>
#include <QtTest>

using namespace AccountProtocol;
using namespace LobbyProtocol;

namespace {

class CClient : public QTcpSocket
{
public:
    explicit CClient(quint16 port)
    {
        connectToHost(QHostAddress::LocalHost, port);
        waitForConnected();
    }

    // The next record that comes but for time and jackpot; empty if there is none within the limit.
    QByteArray ReadRecord(int limit = 3000)
    {
        while (!m_packet.GetNext() && (m_stream.TakePacket(m_packet) || waitForReadyRead(limit)))
            m_stream.Append(readAll());
        const QByteArray record(m_packet.GetPayload(), m_packet.GetPayloadLength());
        return record.startsWith(STime::TAG) || record.startsWith(SJackpot::TAG) ? ReadRecord(limit) : record;
    }

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

    void ListAndCounts()
    {
        CClient client(m_usPort);
        CClient silent(m_usPort);
        const QByteArray packet = Payload::ToPackets(LobbyProtocol::GROUP, {GET_LIST});
        for (const char &byte : packet) { // for the server to put together
            client.write(&byte, 1);
            QVERIFY(client.waitForBytesWritten());
        }
        QHash<quint32, STable> tables;
        QByteArray record;
        for (STable table; Payload::Decode(record = client.ReadRecord(), table);)
            tables.insert(table.uiID, table);
        QCOMPARE(record, Payload::Encode(SListEnd{quint32(tables.size())}));
        STable cup = tables.value(3002);
        QVERIFY(qAbs(cup.uiStart - QDateTime::currentSecsSinceEpoch() - 11700) < 60);
        cup.usPlayers = 0; // they have come and gone since
        cup.uiStart = 0;
        QCOMPARE(
            Payload::Encode(cup),
            Payload::Encode(STable{3002, "Amber Harbour Cup"_s, GlobalDefines::TT_TOURNAMENT, GlobalDefines::GT_OMAHA,
                                   GlobalDefines::LT_POT_LIMIT, GlobalDefines::MONEYTYPE_EURO, 20000, 1500, 1000}));

        SPlayerCounts counts;
        QVERIFY(Payload::Decode(client.ReadRecord(), counts));
        for (const SPlayerCount &count : qAsConst(counts.counts))
            QVERIFY(count.usPlayers <= tables.value(count.uiTableID).usPlaces);
        QCOMPARE(silent.ReadRecord(0), QByteArray());
    }

    void Logins_data()
    {
        const auto refused = [](const QString &nickname, ERefusal reason) {
            return Payload::Encode(SRefusal{nickname, reason});
        };
        const QByteArray magnolia =
            Payload::Encode(SAccount{"Magnolia"_s, GlobalDefines::MONEYTYPE_EURO, 125050, 20000});
        const QByteArray zoe = Payload::Encode(SAccount{"Zoë"_s, GlobalDefines::MONEYTYPE_DOLLAR, 0, 100000});
        AddRows<QString, QString, QByteArray>(
            {"nickname", "password", "answer"},
            {{"known, in capitals", "MAGNOLIA"_s, "river"_s, magnolia},
             {"new", "Zoë"_s, "guest"_s, zoe},
             {"wrong password", "magnolia"_s, "guest"_s, refused("magnolia"_s, RF_WRONG_PASSWORD)},
             {"new, wrong password", "Zoë"_s, "river"_s, refused("Zoë"_s, RF_WRONG_PASSWORD)},
             {"no nickname", ""_s, "guest"_s, refused(""_s, RF_BAD_NICKNAME)},
             {"space at the end", "Zoë "_s, "guest"_s, refused("Zoë "_s, RF_BAD_NICKNAME)},
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

        // Of nobody's balances there is no answer.
        client.write(OnAccount(GET_BALANCES) + Login(nickname, password) + OnAccount(GET_BALANCES) + seat);
        QCOMPARE(client.ReadRecord(), answer);
        if (accepted)
            QCOMPARE(client.ReadRecord(), QByteArray(answer).replace(SAccount::TAG, BALANCES));
        QVERIFY(client.ReadRecord().startsWith(SSeatAnswer::TAG));
    }

    void WebSessions()
    {
        const auto request = [](quint8 link, const QString &machine) {
            return OnAccount(Payload::Encode(SWebRequest{link, machine}));
        };
        const QByteArray none = Payload::Encode(SWebSession{38, QString()});
        CClient client(m_usPort);
        client.write(request(38, "desk"_s));
        QCOMPARE(client.ReadRecord(), none);
        client.write(Login("Zoë"_s, "guest"_s) + request(39, "d & sk"_s));
        QVERIFY(client.ReadRecord().startsWith(SAccount::TAG));
        SWebSession session;
        QVERIFY(Payload::Decode(client.ReadRecord(), session));
        QCOMPARE(int(session.ucLink), 39);
        QVERIFY(!session.strSession.isEmpty());
        client.write(request(38, QString())); // which the web server refuses
        QCOMPARE(client.ReadRecord(), none);
        client.write(request(38, "desk"_s) + OnAccount(LOGOUT));
        QCOMPARE(client.ReadRecord(), none);
        m_webServer.close();
        client.write(Login("Zoë"_s, "guest"_s) + request(38, "desk"_s));
        QVERIFY(client.ReadRecord().startsWith(SAccount::TAG));
        QCOMPARE(client.ReadRecord(), none);
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
             {"that don't fill it", QByteArray(good).replace(ucPacketSizePos + 2, 1, "\x03")},
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
        other.write(Payload::ToPackets(LobbyProtocol::GROUP, {GET_LIST}));
        QVERIFY(!other.ReadRecord().isEmpty());
    }

    // A row's name is what the server says of the file.
    void BadFiles_data()
    {
        const QByteArray table = "[{'id':1,'name':'Vega','type':'N','game':'HOLD','limit':'N','money':'R','low':1,"
                                 "'high':2,'places':6,'players':3}]";
        const auto change = [&table](const char *from, const char *to) {
            return QByteArray(table).replace(from, to);
        };
        const auto accounts = [](const QByteArray &nickname, const char *hash) {
            const QByteArray row = "{" + nickname + "'currency':'R','real':0,'play':1,'password':'" +
                                   QByteArray(hash).repeated(64) + "'}";
            return "[" + row + "," + row + "]";
        };
        AddRows<QString, QByteArray>(
            {"option", "content"}, // with single quotes
            {{"row 2: nickname \"\" is another row's", "--accounts"_s, accounts("", "b")},
             {"row 2: nickname \"Vega\" is another row's", "--accounts"_s, accounts("'nickname':'Vega',", "b")},
             {"row 1: \"nickname\"", "--accounts"_s, accounts("'nickname':' Vega',", "b")},
             {"row 1: \"password\"", "--accounts"_s, accounts("", "B")},
             {"row 1: \"nick\" is not a known key", "--accounts"_s, accounts("'nick':'Vega',", "b")},
             {"malformed at byte", "--data"_s, change("3}]", "3,}]")},
             {"row 2: not an object", "--data"_s, change("}]", "},7]")},
             {"row 1: \"id\"", "--data"_s, change("'id':1", "'id':'1'")},
             {"row 1: \"type\"", "--data"_s, change("'type':'N'", "'type':'Q'")},
             {"row 1: \"game\"", "--data"_s, change("HOLD", "HULD")},
             {"row 1: \"low\"", "--data"_s, change("'low':1", "'low':1.5")},
             {"row 1: \"players\"", "--data"_s, change(":3}", ":7}")}});
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
