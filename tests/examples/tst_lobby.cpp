#include <common/LobbyProtocol.h>
#include <files/Console.h>
#include <plugin/PluginInterface.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPluginLoader>
#include <QTableView>
#include <QtEndian>
#include <QtTest>

using namespace LobbyProtocol;

namespace {

enum EColumn { COL_NAME, COL_TYPE, COL_GAME, COL_STAKES, COL_PLAYERS, COL_START };

STable Table(quint32 id, const char *name, quint16 players)
{
    STable table;
    table.uiID = id;
    table.strName = QString::fromUtf8(name);
    table.mvLow = 50;
    table.mvHigh = 100;
    table.usPlaces = 10;
    table.usPlayers = players;
    return table;
}

} // namespace

Q_DECLARE_METATYPE(LobbyProtocol::STable)

// Drives the plugin's own file as a host does, and reads what a player would.
class tst_lobby : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cells_data();
    void cells();
    void sortAndFilter();
    void counts();
    void malformed_data();
    void malformed();
    void incompleteList();
    void reconnect();

private:
    void Deliver(const QByteArray &payload);
    void DeliverList(const QVector<STable> &tables);
    void SetState(EConnectionState::type state);
    QString Cell(int row, int column) const { return m_pTable->model()->index(row, column).data().toString(); }
    QString Names() const;

    CPluginInterface *m_pPlugin = nullptr;
    QScopedPointer<QWidget> m_pView;
    QTableView *m_pTable = nullptr;
    QLabel *m_pStatus = nullptr;
};

void tst_lobby::initTestCase()
{
    QPluginLoader loader(QStringLiteral(LOBBY_PLUGIN_PATH));
    QCOMPARE(loader.metaData()[QLatin1String("IID")].toString(), QStringLiteral(CPluginInterface_iid));
    m_pPlugin = qobject_cast<CPluginInterface *>(loader.instance());
    QVERIFY2(m_pPlugin, qPrintable(loader.errorString()));
    QSignalSpy registered(m_pPlugin, &CPluginInterface::signal_RegisterForEvent);
    m_pPlugin->RegisterEvents();
    QCOMPARE(registered.last(), (QVariantList{QStringLiteral("LOBB"), QString()}));
    QVERIFY(m_pPlugin->Initialize());
    m_pPlugin->Start();
    m_pView.reset(m_pPlugin->CreateView(nullptr));
    m_pTable = m_pView->findChild<QTableView *>(QStringLiteral("lobbyTable"));
    m_pStatus = m_pView->findChild<QLabel *>(QStringLiteral("lobbyStatus"));
    QVERIFY(m_pTable && m_pStatus);
    QCOMPARE(m_pStatus->text(), QStringLiteral("Waiting for the game server"));
}

// A new connection with three tables.
void tst_lobby::init()
{
    CConsole::Clear();
    SetState(EConnectionState::Connected);
    DeliverList({Table(1, "Aare", 10), Table(2, "Bann", 9), Table(3, "Cork", 2)});
    m_pTable->sortByColumn(COL_NAME, Qt::AscendingOrder);
}

void tst_lobby::Deliver(const QByteArray &payload)
{
    CEvent event = CEvent::Create(QString::fromLatin1(GROUP), QString::fromLatin1(payload.left(4)));
    event.data = payload;
    m_pPlugin->emit_ReceiveEvent(event);
}

void tst_lobby::DeliverList(const QVector<STable> &tables)
{
    for (const STable &table : tables)
        Deliver(EncodeTable(table));
    Deliver(EncodeListEnd(quint32(tables.size())));
}

void tst_lobby::SetState(EConnectionState::type state)
{
    CEvent event = CEvent::Create(QStringLiteral("M2PE"), QStringLiteral("SCOC"));
    event.data.resize(4);
    qToLittleEndian<qint32>(state, event.data.data());
    m_pPlugin->emit_ReceiveEvent(event);
}

QString tst_lobby::Names() const
{
    QStringList names;
    for (int row = 0; row < m_pTable->model()->rowCount(); ++row)
        names.append(Cell(row, COL_NAME));
    return names.join(QLatin1Char(','));
}

void tst_lobby::cells_data()
{
    QTest::addColumn<STable>("table");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("stakes");
    const auto row = [](char type, char money, quint32 low, quint32 high, const char *typeText, const char *stakes) {
        STable table = Table(7, "\u0141\u00F3d\u017A", 9);
        table.eType = static_cast<GlobalDefines::TableType>(type);
        table.eMoney = static_cast<GlobalDefines::MoneyType>(money);
        table.mvLow = low;
        table.mvHigh = high;
        QTest::newRow(stakes) << table << QString::fromUtf8(typeText) << QString::fromUtf8(stakes);
    };
    row('N', 'R', 50, 100, "Ring game", "$0.50/$1.00");
    row('P', 'P', 500, 1000, "Private", "500/1,000");
    row('S', 'E', 100000, 9, "Sit & Go", "\u20AC1,000.00 + \u20AC0.09");
    row('T', 'R', 0, 0, "Tournament", "Free");
    row('?', '?', 4294967295u, 5, "Ring game", "42,949,672.95/0.05"); // letters that nobody knows
}

void tst_lobby::cells()
{
    QFETCH(STable, table);
    DeliverList({table});
    QCOMPARE(Names(), table.strName);
    QTEST(Cell(0, COL_TYPE), "type");
    QTEST(Cell(0, COL_STAKES), "stakes");
    QCOMPARE(Cell(0, COL_GAME), QStringLiteral("NL Hold'em"));
    QCOMPARE(Cell(0, COL_PLAYERS), QStringLiteral("9/10"));
    QCOMPARE(Cell(0, COL_START), QString());
}

void tst_lobby::sortAndFilter()
{
    STable tournament = Table(4, "Deneb", 100);
    tournament.eType = GlobalDefines::TT_TOURNAMENT;
    tournament.mvLow = 1000;
    STable cheap = Table(5, "Ems", 0);
    cheap.mvHigh = 90;
    DeliverList({Table(1, "Aare", 10), Table(2, "Bann", 9), tournament, cheap});
    m_pTable->sortByColumn(COL_PLAYERS, Qt::DescendingOrder);
    QCOMPARE(Names(), QStringLiteral("Deneb,Aare,Bann,Ems"));
    m_pTable->sortByColumn(COL_STAKES, Qt::AscendingOrder);
    QCOMPARE(Names(), QStringLiteral("Ems,Aare,Bann,Deneb"));

    auto *text = m_pView->findChild<QLineEdit *>(QStringLiteral("lobbyFilter"));
    auto *type = m_pView->findChild<QComboBox *>(QStringLiteral("lobbyType"));
    text->setClearButtonEnabled(false); // its fading would outlive the test
    text->setText(QStringLiteral("EN"));
    QCOMPARE(Names(), QStringLiteral("Deneb"));
    QCOMPARE(m_pStatus->text(), QStringLiteral("1 of 4 tables"));
    type->setCurrentText(QStringLiteral("Ring games"));
    QCOMPARE(Names(), QString());
    text->clear();
    QCOMPARE(Names(), QStringLiteral("Ems,Aare,Bann"));
    type->setCurrentIndex(0);
}

void tst_lobby::counts()
{
    QSignalSpy changed(m_pTable->model(), &QAbstractItemModel::dataChanged);
    // An unknown table, a new count and one that is as before.
    Deliver(EncodePlayerCounts({{99, 1}, {2, 4}, {1, 10}}).constFirst());
    const QModelIndex cell = m_pTable->model()->index(1, COL_PLAYERS);
    QCOMPARE(cell.data().toString(), QStringLiteral("4/10"));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.at(0).mid(0, 2), (QVariantList{cell, cell}));
    QVERIFY(CConsole::GetMessages().isEmpty());
}

void tst_lobby::malformed_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("table") << EncodeTable(Table(9, "Ghent", 5));
    QTest::newRow("list end") << EncodeListEnd(0);
    QTest::newRow("counts") << EncodePlayerCounts({{1, 3}}).constFirst();
}

// Each record at each wrong length, in turn with a list end, which would show what got through.
void tst_lobby::malformed()
{
    QFETCH(QByteArray, payload);
    for (int length = 4; length <= payload.size() + 1; ++length) {
        if (length == payload.size())
            continue;
        SetState(EConnectionState::Connected);
        CConsole::Clear();
        Deliver((payload + 'x').left(length));
        Deliver((payload + 'x').left(length));
        QCOMPARE(CConsole::GetMessages().size(), 1); // on a connection
        QCOMPARE(Cell(0, COL_PLAYERS), QStringLiteral("10/10"));
        QCOMPARE(Names(), QStringLiteral("Aare,Bann,Cork"));
        DeliverList({Table(1, "Aare", 10), Table(2, "Bann", 9), Table(3, "Cork", 2)});
        QCOMPARE(Names(), QStringLiteral("Aare,Bann,Cork"));
    }
}

void tst_lobby::incompleteList()
{
    Deliver(EncodeTable(Table(9, "Ghent", 5)));
    Deliver(EncodeTable(Table(9, "Ghent", 5))); // a second table of this id is none
    Deliver(EncodeListEnd(2));
    QCOMPARE(Names(), QStringLiteral("Ghent"));
    QCOMPARE(CConsole::GetMessages().size(), 1);
}

void tst_lobby::reconnect()
{
    m_pTable->selectRow(2);
    Deliver(EncodeTable(Table(8, "Lost", 1))); // of a list that never ends
    QSignalSpy sent(m_pPlugin, &CPluginInterface::signal_SendEvent);
    SetState(EConnectionState::Reconnecting);
    QCOMPARE(sent.size(), 0);
    SetState(EConnectionState::Connected);
    QCOMPARE(sent.size(), 1);
    QVERIFY(sent.at(0).at(0).value<CEvent>().HasTags("P2ME", "RSRV"));
    QCOMPARE(sent.at(0).at(0).value<CEvent>().data, ToPackets({EncodeGetList()}));
    QCOMPARE(Names(), QStringLiteral("Aare,Bann,Cork"));
    QVERIFY(m_pStatus->text().startsWith(QLatin1String("3 tables - may be out of date")));

    DeliverList({Table(4, "Adda", 1), Table(3, "Cork City", 2), Table(2, "Bann", 9)});
    QCOMPARE(Names(), QStringLiteral("Adda,Bann,Cork City"));
    QCOMPARE(m_pStatus->text(), QStringLiteral("3 tables"));
    const QModelIndexList selected = m_pTable->selectionModel()->selectedRows();
    QCOMPARE(selected.size(), 1);
    QCOMPARE(selected.constFirst().data().toString(), QStringLiteral("Cork City"));
    Deliver(EncodePlayerCounts({{3, 6}}).constFirst());
    QCOMPARE(Cell(2, COL_PLAYERS), QStringLiteral("6/10"));
}

QTEST_MAIN(tst_lobby)
#include "tst_lobby.moc"
