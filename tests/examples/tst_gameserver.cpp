#include <common/LobbyProtocol.h>
#include <common/PacketStream.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryFile>
#include <QtTest>

using namespace LobbyProtocol;

namespace {

class CServerProcess : public QProcess
{
public:
    ~CServerProcess() override { Kill(); }

    // The port that it tells, 0 if it tells none.
    quint16 Run(const QString &dataFile, quint16 port = 0)
    {
        start(QStringLiteral(GAMESERVER_PATH),
              {QStringLiteral("--data"), dataFile, QStringLiteral("--port"), QString::number(port),
               QStringLiteral("--idle-ms"), QStringLiteral("700")});
        while (!canReadLine() && waitForReadyRead(10000))
            continue;
        const QByteArray line = readLine();
        const QByteArray start = QByteArrayLiteral("listening on ");
        return line.startsWith(start) ? line.mid(start.size()).trimmed().toUShort() : quint16(0);
    }

    void Kill()
    {
        kill();
        waitForFinished();
    }
};

// A client of the server, which notes all that it is told.
class CClient : public QTcpSocket
{
public:
    explicit CClient(quint16 port)
    {
        connect(this, &QTcpSocket::readyRead, this, &CClient::Read);
        connectToHost(QHostAddress::LocalHost, port);
        waitForConnected();
    }

    bool GetList()
    {
        m_uiEnd = 0;
        write(ToPackets({EncodeGetList()}));
        return QTest::qWaitFor([this] { return m_uiEnd != 0; });
    }

    QVector<STable> m_tables;
    QVector<SPlayerCount> m_counts;
    quint32 m_uiEnd = 0;
    int m_iFaults = 0;

private:
    void Read()
    {
        m_stream.Append(readAll());
        CPacketLayerWrapper packet;
        while (m_stream.TakePacket(packet)) {
            while (packet.GetNext())
                Note(QByteArray(packet.GetPayload(), packet.GetPayloadLength()));
        }
        m_iFaults += m_stream.IsBroken();
    }

    void Note(const QByteArray &payload)
    {
        STable table;
        QVector<SPlayerCount> counts;
        if (DecodeTable(payload, table))
            m_tables.append(table);
        else if (DecodePlayerCounts(payload, counts))
            m_counts += counts;
        else
            m_iFaults += !DecodeListEnd(payload, m_uiEnd);
    }

    CPacketStream m_stream;
};

QByteArray Packet(const char *group, const QByteArray &payload)
{
    CPacketLayerWrapper packet(group, 0, 0);
    packet.AddPacket(payload.constData(), static_cast<unsigned short>(payload.size()));
    return QByteArray(packet.GetPacket(), packet.GetPacketSize());
}

QByteArray With(QByteArray bytes, int position, char value)
{
    bytes[position] = value;
    return bytes;
}

// The table as a row of the data file, but for its start.
QJsonObject ToRow(const STable &table)
{
    char game[4];
    Globals::GetGameType(table.eGame, game);
    const auto letter = [](int code) { return QString(QChar(code)); };
    return {{QStringLiteral("id"), int(table.uiID)},         {QStringLiteral("name"), table.strName},
            {QStringLiteral("type"), letter(table.eType)},   {QStringLiteral("game"), QString::fromLatin1(game, 4)},
            {QStringLiteral("limit"), letter(table.eLimit)}, {QStringLiteral("money"), letter(table.eMoney)},
            {QStringLiteral("low"), int(table.mvLow)},       {QStringLiteral("high"), int(table.mvHigh)},
            {QStringLiteral("places"), table.usPlaces}};
}

} // namespace

class tst_gameserver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void manyRecords();
    void list();
    void counts();
    void nonsense_data();
    void nonsense();
    void badFile_data();
    void badFile();
    void ports();

private:
    CServerProcess m_server;
    quint16 m_usPort = 0;
};

void tst_gameserver::initTestCase()
{
    m_usPort = m_server.Run(QStringLiteral(TABLES_PATH));
    QVERIFY(m_usPort != 0);
}

// More than a record holds, and in sum more than a packet.
void tst_gameserver::manyRecords()
{
    CPacketStream stream;
    stream.Append(ToPackets(EncodePlayerCounts(QVector<SPlayerCount>(MAX_TABLES))));
    int found = 0;
    CPacketLayerWrapper packet;
    while (stream.TakePacket(packet)) {
        while (packet.GetNext()) {
            QVector<SPlayerCount> counts;
            QVERIFY(DecodePlayerCounts(QByteArray(packet.GetPayload(), packet.GetPayloadLength()), counts));
            found += counts.size();
        }
    }
    QCOMPARE(found, MAX_TABLES);
}

void tst_gameserver::list()
{
    CClient client(m_usPort);
    // One byte at a time, for the server to put together.
    client.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    const QByteArray request = ToPackets({EncodeGetList()});
    for (const char byte : request)
        QVERIFY(client.write(&byte, 1) == 1 && client.waitForBytesWritten());
    QTRY_VERIFY(client.m_uiEnd != 0);
    QCOMPARE(client.m_iFaults, 0);

    QFile file(QStringLiteral(TABLES_PATH));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonArray rows = QJsonDocument::fromJson(file.readAll()).array();
    QVERIFY(rows.size() >= 240);
    QCOMPARE(int(client.m_uiEnd), rows.size());
    QCOMPARE(client.m_tables.size(), rows.size());
    for (int i = 0; i < rows.size(); ++i) {
        QJsonObject row = rows.at(i).toObject();
        const STable &table = client.m_tables.at(i);
        row.remove(QStringLiteral("players"));
        const int startsIn = row.take(QStringLiteral("starts_in")).toInt(-1);
        QCOMPARE(ToRow(table), row);
        QCOMPARE(table.uiStart != 0, startsIn >= 0);
        QVERIFY(startsIn < 0 || qAbs(QDateTime::currentSecsSinceEpoch() + startsIn - table.uiStart) < 60);
    }
}

void tst_gameserver::counts()
{
    CClient asking(m_usPort);
    CClient silent(m_usPort);
    QVERIFY(asking.GetList());
    QTRY_VERIFY_WITH_TIMEOUT(!asking.m_counts.isEmpty(), 3000);
    QVERIFY(silent.m_counts.isEmpty() && silent.m_tables.isEmpty());
    for (const SPlayerCount &count : qAsConst(asking.m_counts)) {
        const auto table = std::find_if(asking.m_tables.cbegin(), asking.m_tables.cend(),
                                        [&](const STable &known) { return known.uiID == count.uiTableID; });
        QVERIFY(table != asking.m_tables.cend());
        QVERIFY(count.usPlayers <= table->usPlaces && count.usPlayers != table->usPlayers);
    }
}

void tst_gameserver::nonsense_data()
{
    const QByteArray good = Packet("LOBB", "GLST"); // 11 bytes of header, 2 of record length, 4 of tag
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("small size") << With(good, ucPacketSizePos, 10) << QByteArray("a size that no packet has");
    QTest::newRow("large size") << With(good, ucPacketSizePos + 1, '\xFF') << QByteArray("a size that no packet has");
    QTest::newRow("group") << Packet("LOBX", "GLST") << QByteArray("an unknown group");
    QTest::newRow("tag") << Packet("LOBB", "TBLE") << QByteArray("an unknown tag");
    QTest::newRow("short tag") << Packet("LOBB", "GLS") << QByteArray("an unknown tag");
    QTest::newRow("body") << Packet("LOBB", "GLST1") << QByteArray("a list request with a body");
    QTest::newRow("long record") << With(good, 11, 7) << QByteArray("records that don't fill it");
    QTest::newRow("bytes behind it") << With(good + 'x', ucPacketSizePos, 18) << QByteArray("that don't fill it");
    QTest::newRow("half a packet") << good.left(13) << QByteArray("left a packet half-sent");
    QTest::newRow("one and a half") << good + good.left(5) << QByteArray("left a packet half-sent");
    QTest::newRow("reads too little") << good.repeated(5000) << QByteArray("doesn't read");
}

void tst_gameserver::nonsense()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, reason);
    CClient other(m_usPort);
    QVERIFY(other.GetList());
    m_server.readAllStandardError();

    CClient client(m_usPort);
    client.write(bytes);
    QTRY_COMPARE(client.state(), QAbstractSocket::UnconnectedState);
    QByteArray log;
    QTRY_VERIFY2((log += m_server.readAllStandardError()).contains(reason), log.constData());
    QVERIFY(other.GetList());
}

void tst_gameserver::badFile_data()
{
    const QByteArray row =
        "{\"id\":1,\"name\":\"Vega\",\"type\":\"N\",\"game\":\"HOLD\",\"limit\":\"N\",\"money\":\"R\","
        "\"low\":1,\"high\":2,\"places\":6,\"players\":3}";
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("message");
    const auto add = [](const QByteArray &content, const char *message) {
        QTest::newRow(message) << content << QByteArray(message);
    };
    const auto change = [&](const char *from, const char *to, const char *message) {
        add('[' + row + ',' + QByteArray(row).replace("1,\"name", "2,\"name").replace(from, to) + ']', message);
    };
    add("[{\"id\":1,}]", "malformed at byte 10");
    add(row, "not an array");
    add('[' + row + ",7]", "row 2: not an object");
    add('[' + row + ',' + row + ']', "row 2: id 1 is another row's");
    change(":2,\"name", ":\"2\",\"name", "row 2: \"id\"");
    change("\"name\":\"Vega\",", "", "row 2: \"name\"");
    change("\"type\":\"N\"", "\"type\":\"Q\"", "row 2: \"type\"");
    change("HOLD", "HULD", "row 2: \"game\"");
    change("\"low\":1", "\"low\":1.5", "row 2: \"low\"");
    change(":3}", ":7}", "row 2: \"players\"");
    change(":3}", ":3,\"start_in\":5}", "row 2: \"start_in\"");
}

void tst_gameserver::badFile()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, message);
    QTemporaryFile file;
    QVERIFY(file.open() && file.write(content) == content.size() && file.flush());

    CServerProcess server;
    QCOMPARE(server.Run(file.fileName()), quint16(0));
    QTRY_COMPARE(server.state(), QProcess::NotRunning);
    QCOMPARE(server.exitCode(), 1);
    const QByteArray errors = server.readAllStandardError();
    QVERIFY2(errors.contains(file.fileName().toUtf8() + ": " + message), errors.constData());
}

void tst_gameserver::ports()
{
    CServerProcess second;
    QCOMPARE(second.Run(QStringLiteral(TABLES_PATH), m_usPort), quint16(0));
    QTRY_COMPARE(second.state(), QProcess::NotRunning);
    QCOMPARE(second.exitCode(), 1);
    QVERIFY(second.readAllStandardError().contains(QByteArray::number(m_usPort)));

    // The link that the killed server had keeps the port busy for a while, but not for its successor.
    CClient client(m_usPort);
    QVERIFY(client.GetList());
    m_server.Kill();
    QTRY_COMPARE(client.state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(m_server.Run(QStringLiteral(TABLES_PATH), m_usPort), m_usPort);
}

QTEST_GUILESS_MAIN(tst_gameserver)
#include "tst_gameserver.moc"
