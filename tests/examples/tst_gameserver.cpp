#include "ServerProcess.h"

#include <protocol/AccountProtocol.h>
#include <protocol/LobbyProtocol.h>
#include <protocol/PacketStream.h>

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
        const bool passes = Payload::Decode(record, m_time) || Payload::Decode(record, m_jackpot);
        return passes ? ReadRecord(limit) : record;
    }

    STime m_time; // as the server has told both last
    SJackpot m_jackpot;

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
                                  {QStringLiteral("--database"), m_dir.filePath(QStringLiteral("web.sqlite")),
                                   QStringLiteral("--key"), QStringLiteral("k&")});
        m_usPort = StartServer(m_server, QStringLiteral(GAMESERVER_PATH),
                               {QStringLiteral("--data"), QStringLiteral(TABLES_PATH), QStringLiteral("--accounts"),
                                QStringLiteral(ACCOUNTS_PATH), QStringLiteral("--idle-ms"), QStringLiteral("700"),
                                QStringLiteral("--web-server"), QStringLiteral("127.0.0.1:%1").arg(m_usWebPort),
                                QStringLiteral("--web-key"), QStringLiteral("k&")});
        QVERIFY(m_usWebPort != 0 && m_usPort != 0);
    }

    void cleanupTestCase() { m_server.close(); }

    void listAndCounts()
    {
        CClient client(m_usPort);
        CClient silent(m_usPort);
        const QByteArray packet = Payload::ToPackets(LobbyProtocol::GROUP, {GET_LIST});
        for (const char &byte : packet) // for the server to put together
            QVERIFY(client.write(&byte, 1) == 1 && client.waitForBytesWritten());

        QFile file(QStringLiteral(TABLES_PATH));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QJsonArray rows = QJsonDocument::fromJson(file.readAll()).array();
        QHash<quint32, int> places;
        for (const QJsonValue &row : rows) {
            STable table;
            QVERIFY(Payload::Decode(client.ReadRecord(), table));
            places.insert(table.uiID, table.usPlaces);

            QVariantMap expected = row.toObject().toVariantMap();
            expected.remove(QStringLiteral("players")); // they have come and gone since
            const QVariant startsIn = expected.take(QStringLiteral("starts_in"));
            const qint64 start = startsIn.isNull() ? 0 : QDateTime::currentSecsSinceEpoch() + startsIn.toInt();
            QVERIFY(qAbs(table.uiStart - start) < 60);
            QByteArray game(4, '\0');
            Globals::GetGameType(table.eGame, game.data());
            const auto got = QVariantList()
                             << game << table.mvHigh << table.uiID << QChar(table.eLimit) << table.mvLow
                             << QChar(table.eMoney) << table.strName << table.usPlaces << QChar(table.eType);
            QCOMPARE(got, expected.values()); // which are in the order of their keys
        }
        QCOMPARE(client.ReadRecord(), Payload::Encode(SListEnd{quint32(rows.size())}));

        SPlayerCounts counts;
        QVERIFY(Payload::Decode(client.ReadRecord(), counts));
        for (const SPlayerCount &count : qAsConst(counts.counts))
            QVERIFY(count.usPlayers <= places.value(count.uiTableID, -1));
        const quint32 jackpot = client.m_jackpot.mvAmount;
        client.ReadRecord();
        QVERIFY(jackpot > 0 && client.m_jackpot.mvAmount > jackpot && client.m_jackpot.mvAmount <= jackpot + 250);
        QCOMPARE(silent.ReadRecord(0), QByteArray());
        QVERIFY(qAbs(silent.m_time.uiSeconds - QDateTime::currentSecsSinceEpoch()) < 60);
    }

    // A row's name is "nickname/password".
    void logins_data()
    {
        QTest::addColumn<QByteArray>("answer");
        const auto accepted = [](const char *nickname, GlobalDefines::MoneyType currency, quint32 real,
                                 quint32 play) {
            return Payload::Encode(SAccount{QString::fromUtf8(nickname), currency, real, play});
        };
        const auto refused = [](const char *login, ERefusal reason) {
            return Payload::Encode(SRefusal{QString::fromUtf8(login).section(QLatin1Char('/'), 0, 0), reason});
        };
        QTest::newRow("Magnolia/river") << accepted("Magnolia", GlobalDefines::MONEYTYPE_EURO, 125050, 20000);
        QTest::newRow("MAGNOLIA/river") << accepted("Magnolia", GlobalDefines::MONEYTYPE_EURO, 125050, 20000);
        QTest::newRow("Zoë/guest") << accepted("Zoë", GlobalDefines::MONEYTYPE_DOLLAR, 0, 100000);
        for (const char *login : {"magnolia/guest", "Zoë/river"})
            QTest::newRow(login) << refused(login, RF_WRONG_PASSWORD);
        for (const char *login : {"/guest", "Zoë /guest", "Z\to/guest"})
            QTest::newRow(login) << refused(login, RF_BAD_NICKNAME);
    }

    void logins()
    {
        QFETCH(QByteArray, answer);
        const QStringList login = QString::fromUtf8(QTest::currentDataTag()).split(QLatin1Char('/'));
        const QByteArray seat = Payload::ToPackets(LobbyProtocol::GROUP, {Payload::Encode(SSeatRequest{1002})});
        CClient client(m_usPort);
        QElapsedTimer time;
        time.start();
        client.write(Login(login.at(0), login.at(1)) + seat + Payload::ToPackets(AccountProtocol::GROUP, {LOGOUT}) +
                     seat);
        const QByteArray record = client.ReadRecord();
        const bool accepted = record.startsWith(SAccount::TAG);
        QCOMPARE(record, answer);
        QVERIFY(accepted || time.elapsed() >= 400);
        const QByteArray noSeat = Payload::Encode(SSeatAnswer{1002, SR_NOT_LOGGED_IN, 0});
        QCOMPARE(client.ReadRecord() == noSeat, !accepted);
        QCOMPARE(client.ReadRecord(), noSeat);

        const QByteArray balances = Payload::ToPackets(AccountProtocol::GROUP, {GET_BALANCES});
        client.write(balances + Login(login.at(0), login.at(1)) + balances + seat); // of nobody's, there is no answer
        QCOMPARE(client.ReadRecord(), answer);
        if (accepted)
            QCOMPARE(client.ReadRecord(), QByteArray(answer).replace(SAccount::TAG, BALANCES));
        QVERIFY(client.ReadRecord().startsWith(SSeatAnswer::TAG));
    }

    void webSessions()
    {
        const auto request = [](quint8 link, const char *machine) {
            return Payload::ToPackets(AccountProtocol::GROUP,
                                      {Payload::Encode(SWebRequest{link, QString::fromUtf8(machine)})});
        };
        const QByteArray none = Payload::Encode(SWebSession{38, QString()});
        CClient client(m_usPort);
        client.write(request(38, "desk"));
        QCOMPARE(client.ReadRecord(), none);
        client.write(Login(QStringLiteral("Zoë"), QStringLiteral("guest")) + request(39, "d & sk"));
        QVERIFY(client.ReadRecord().startsWith(SAccount::TAG));
        SWebSession session;
        QVERIFY(Payload::Decode(client.ReadRecord(), session));
        QCOMPARE(int(session.ucLink), 39);
        QTcpSocket web;
        web.connectToHost(QHostAddress::LocalHost, m_usWebPort);
        web.write("GET /sync?playerinfos=0&usersettings=0&session=" + session.strSession.left(32).toUtf8() +
                  " HTTP/1.0\r\n\r\n");
        QTRY_VERIFY(web.canReadLine());
        QVERIFY(web.readLine().contains(" 200 "));

        client.write(request(38, "")); // which the web server refuses
        QCOMPARE(client.ReadRecord(), none);
        client.write(request(38, "desk") + Payload::ToPackets(AccountProtocol::GROUP, {LOGOUT}));
        QCOMPARE(client.ReadRecord(), none);
        m_webServer.close();
        client.write(Login(QStringLiteral("Zoë"), QStringLiteral("guest")) + request(38, "desk"));
        QVERIFY(client.ReadRecord().startsWith(SAccount::TAG));
        QCOMPARE(client.ReadRecord(), none);
    }

    // A row's name is the reason that the server tells.
    void nonsense_data()
    {
        const QByteArray good = Payload::ToPackets(LobbyProtocol::GROUP, {GET_LIST});
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("a size that no packet has") << QByteArray(good).replace(ucPacketSizePos, 1, "\x0A");
        QTest::newRow("an unknown group") << QByteArray(good).replace("LOBB", "LOBX");
        QTest::newRow("an unknown tag") << QByteArray(good).replace("GLST", "TBLE");
        QTest::newRow("a list request with a body") << Payload::ToPackets(LobbyProtocol::GROUP, {"GLST1"});
        QTest::newRow("a malformed seat request") << Payload::ToPackets(LobbyProtocol::GROUP, {"SEAT"});
        const QByteArray login = Login(QString(), QString());
        QTest::newRow("an unknown or malformed record") << QByteArray(login).replace("LGIN", "LGOK");
        QTest::newRow("an unknown or malformed record on")
            << Payload::ToPackets(AccountProtocol::GROUP, {Payload::Encode(SWebRequest{40, QString()})});
        QTest::newRow("more than one record")
            << QByteArray(login + login.mid(11)).replace(9, 1, QByteArray(1, char(2 * login.size() - 11)));
        QTest::newRow("left a packet half-sent") << good + good.left(5);
        QTest::newRow("doesn't read") << good.repeated(20000);
    }

    void nonsense()
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
    void badFile_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QByteArray>("content");
        const auto change = [](const char *from, const char *to, const char *message) {
            QByteArray content(R"([{"id":1,"name":"Vega","type":"N","game":"HOLD","limit":"N","money":"R",)"
                               R"("low":1,"high":2,"places":6,"players":3}])");
            QTest::newRow(message) << QStringLiteral("--data") << content.replace(from, to);
        };
        const auto account = [](const QByteArray &nickname, const char *hash, const char *message) {
            const QByteArray row = "{" + nickname + "\"currency\":\"R\",\"real\":0,\"play\":1,\"password\":\"" +
                                   QByteArray(hash).repeated(64) + "\"}";
            QTest::newRow(message) << QStringLiteral("--accounts") << "[" + row + "," + row + "]";
        };
        account("", "b", "row 2: nickname \"\" is another row's");
        account("\"nickname\":\"Vega\",", "b", "row 2: nickname \"Vega\" is another row's");
        account("\"nickname\":\" Vega\",", "b", "row 1: \"nickname\"");
        account("", "B", "row 1: \"password\"");
        account("\"nick\":\"Vega\",", "b", "row 1: \"nick\" is not a known key");
        change("3}]", "3,}]", "malformed at byte");
        change("}]", "},7]", "row 2: not an object");
        change(":1,\"name", ":\"1\",\"name", "row 1: \"id\"");
        change("\"type\":\"N\"", "\"type\":\"Q\"", "row 1: \"type\"");
        change("HOLD", "HULD", "row 1: \"game\"");
        change("\"low\":1", "\"low\":1.5", "row 1: \"low\"");
        change(":3}", ":7}", "row 1: \"players\"");
        change(":3}", ":3,\"start_in\":5}", "row 1: \"start_in\"");
    }

    void badFile()
    {
        QFETCH(QString, option);
        QFETCH(QByteArray, content);
        QTemporaryFile file;
        QVERIFY(file.open() && file.write(content) == content.size() && file.flush());
        QProcess server;
        server.start(QStringLiteral(GAMESERVER_PATH),
                     {QStringLiteral("--data"), QStringLiteral(TABLES_PATH), option, file.fileName()});
        QVERIFY(server.waitForFinished());
        QCOMPARE(server.exitCode(), 1);
        QVERIFY(server.readAllStandardError().contains(file.fileName().toUtf8() + ": " + QTest::currentDataTag()));
    }

private:
    static QByteArray Login(const QString &nickname, const QString &password)
    {
        return Payload::ToPackets(AccountProtocol::GROUP,
                                  {Payload::Encode(SLogin{nickname, HashPassword(password)})});
    }

    QTemporaryDir m_dir;
    QProcess m_webServer;
    quint16 m_usWebPort = 0;
    QProcess m_server;
    quint16 m_usPort = 0;
};

QTEST_GUILESS_MAIN(tst_gameserver)
#include "tst_gameserver.moc"
