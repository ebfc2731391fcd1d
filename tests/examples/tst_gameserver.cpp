#include <common/LobbyProtocol.h>
#include <common/PacketStream.h>

#include <QTcpSocket>
#include <QtTest>

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

    // The next record that comes; empty if there is none for 3 s.
    QByteArray ReadRecord()
    {
        while (!m_packet.GetNext() && (m_stream.TakePacket(m_packet) || waitForReadyRead(3000)))
            m_stream.Append(readAll());
        return QByteArray(m_packet.GetPayload(), m_packet.GetPayloadLength());
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
        m_server.start(QStringLiteral(GAMESERVER_PATH), {QStringLiteral("--data"), QStringLiteral(TABLES_PATH),
                                                         QStringLiteral("--idle-ms"), QStringLiteral("700")});
        QVERIFY(m_server.waitForReadyRead());
        m_usPort = m_server.readLine().replace("listening on ", "").trimmed().toUShort();
    }

    void cleanupTestCase() { m_server.close(); }

    void listAndCounts()
    {
        CClient client(m_usPort);
        CClient silent(m_usPort);
        for (const char &byte : ToPackets({EncodeGetList()})) // for the server to put together
            QVERIFY(client.write(&byte, 1) == 1 && client.waitForBytesWritten());

        QFile file(QStringLiteral(TABLES_PATH));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QJsonArray rows = QJsonDocument::fromJson(file.readAll()).array();
        QHash<quint32, int> places;
        for (const QJsonValue &row : rows) {
            STable table;
            QVERIFY(DecodeTable(client.ReadRecord(), table));
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
        QCOMPARE(client.ReadRecord(), EncodeListEnd(quint32(rows.size())));

        QVector<SPlayerCount> counts;
        QVERIFY(DecodePlayerCounts(client.ReadRecord(), counts));
        for (const SPlayerCount &count : qAsConst(counts))
            QVERIFY(count.usPlayers <= places.value(count.uiTableID, -1));
        QVERIFY(!silent.waitForReadyRead(0));
    }

    // A row's name is the reason that the server tells.
    void nonsense_data()
    {
        const QByteArray good = ToPackets({EncodeGetList()});
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("a size that no packet has") << QByteArray(good).replace(ucPacketSizePos, 1, "\x0A");
        QTest::newRow("an unknown group") << QByteArray(good).replace("LOBB", "LOBX");
        QTest::newRow("an unknown tag") << QByteArray(good).replace("GLST", "TBLE");
        QTest::newRow("a list request with a body") << ToPackets({"GLST1"});
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
        other.write(ToPackets({EncodeGetList()}));
        QVERIFY(!other.ReadRecord().isEmpty());
    }

    // A row's name is what the server says of the file.
    void badFile_data()
    {
        QTest::addColumn<QByteArray>("content");
        const auto change = [](const char *from, const char *to, const char *message) {
            QByteArray content(R"([{"id":1,"name":"Vega","type":"N","game":"HOLD","limit":"N","money":"R",)"
                               R"("low":1,"high":2,"places":6,"players":3}])");
            QTest::newRow(message) << content.replace(from, to);
        };
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
        QFETCH(QByteArray, content);
        QTemporaryFile file;
        QVERIFY(file.open() && file.write(content) == content.size() && file.flush());
        QProcess server;
        server.start(QStringLiteral(GAMESERVER_PATH), {QStringLiteral("--data"), file.fileName()});
        QVERIFY(server.waitForFinished());
        QCOMPARE(server.exitCode(), 1);
        QVERIFY(server.readAllStandardError().contains(file.fileName().toUtf8() + ": " + QTest::currentDataTag()));
    }

private:
    QProcess m_server;
    quint16 m_usPort = 0;
};

QTEST_GUILESS_MAIN(tst_gameserver)
#include "tst_gameserver.moc"
