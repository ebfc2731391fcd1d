#include <common/QuickView.h>
#include <protocol/LobbyProtocol.h>

#include <support/Literal.h>
#include <support/Rows.h>
#include <support/Singletons.h>

#include <QAbstractItemModelTester>
#include <QtTest>
#include <QtWidgets>

#include <random>

using namespace LobbyProtocol;

// Drives the plugin's own file as a host does, and reads what a player would.
class tst_lobby : public QObject
{
    Q_OBJECT

    enum EColumn { COL_NAME, COL_STAKES = 3, COL_PLAYERS, COL_START };

private Q_SLOTS:
    void initTestCase()
    {
        QDir::setCurrent(QStringLiteral(CLIENT_FOLDER));
        QVERIFY(CTranslationDB::GetInstance()->Init());
        CSettings::GetInstance()->SetSelectedLanguage(2); // English
        CSettings::GetInstance()->SetPokerLobbyType("widgets"_s);
        QPluginLoader loader(QStringLiteral(LOBBY_PLUGIN_PATH));
        m_pPlugin = qobject_cast<CPluginInterface *>(loader.instance());
        QVERIFY2(m_pPlugin, qPrintable(loader.errorString()));
        m_pView.reset(m_pPlugin->CreateView(nullptr));
        m_pTable = m_pView->findChild<QTableView *>("lobbyTable"_s);
        QVERIFY(m_pTable);
        // Whose fading could outlast the test.
        m_pView->findChild<QLineEdit *>("lobbyFilter"_s)->setClearButtonEnabled(false);
    }

    void cleanupTestCase()
    {
        m_pView.reset();
        DestroySingletons();
    }

    // A new connection with three tables, whose amounts sort otherwise than their texts.
    void init()
    {
        m_pPlugin->ConnectionStateChanged(EConnectionState::Connected);
        Deliver({Table(1, "Aare", 9), Table(2, "Bann", 10, 4294967295u), Table(3, "Cork", 2, 900),
                 Payload::Encode(SListEnd{3})});
        m_pTable->sortByColumn(COL_NAME, Qt::AscendingOrder);
        CConsole::Clear();
    }

    void AmountsAreSorted()
    {
        QCOMPARE(Column(COL_STAKES), "$0.50/$1,$42,949,672.95/$1,$9/$1"_s);
        m_pTable->sortByColumn(COL_STAKES, Qt::AscendingOrder);
        QCOMPARE(Column(COL_NAME), "Aare,Cork,Bann"_s);
    }

    void ChangesAreTold_data()
    {
        const QByteArray all = Payload::Encode(SListEnd{3});
        const QVector<QByteArray> list{Table(1, "Aare", 9), Table(2, "Bann", 10, 4294967295u)};
        AddRows<int, QVector<QByteArray>, QString>(
            {"order", "records", "told"},
            {{"one count", COL_NAME, EncodePlayerCounts({{2, 3}}), "changed 1-1"_s},
             {"all counts", COL_NAME, EncodePlayerCounts({{1, 1}, {2, 2}, {3, 3}}), "changed 0-2"_s},
             {"no new count", COL_NAME, EncodePlayerCounts({{1, 9}, {7, 1}}), QString()},
             {"count and order", COL_PLAYERS, EncodePlayerCounts({{1, 1}}), "changed 1-1,moved"_s},
             {"count, same order", COL_PLAYERS, EncodePlayerCounts({{1, 8}}), "changed 1-1"_s},
             {"the same list", COL_NAME, list + QVector<QByteArray>{Table(3, "Cork", 2, 900), all}, QString()},
             {"another name", COL_NAME, list + QVector<QByteArray>{Table(3, "Abo", 2, 900), all},
              "moved,changed 1-1"_s},
             {"more tables", COL_NAME,
              list + QVector<QByteArray>{Table(3, "Cork", 2, 900), Table(4, "Bonn", 1), Table(5, "Brno", 1),
                                         Payload::Encode(SListEnd{5})},
              "inserted 2-3"_s},
             {"fewer tables", COL_NAME, {Table(3, "Cork", 2, 900), Payload::Encode(SListEnd{1})}, "removed 0-1"_s}});
    }
    void ChangesAreTold()
    {
        QFETCH(int, order);
        QFETCH(QVector<QByteArray>, records);
        m_pTable->sortByColumn(order, Qt::AscendingOrder);
        QStringList told;
        const auto tell = [&](const char *what) {
            return [&told, what](const QModelIndex &, int first, int last) {
                told.append("%1 %2-%3"_s.arg(QLatin1String(what)).arg(first).arg(last));
            };
        };
        const QObject context;
        const QAbstractItemModel *model = m_pTable->model();
        connect(model, &QAbstractItemModel::rowsInserted, &context, tell("inserted"));
        connect(model, &QAbstractItemModel::rowsRemoved, &context, tell("removed"));
        connect(model, &QAbstractItemModel::layoutChanged, &context, [&] { told.append("moved"_s); });
        connect(model, &QAbstractItemModel::modelReset, &context, [&] { told.append("reset"_s); });
        connect(
            model, &QAbstractItemModel::dataChanged, &context,
            [&](const QModelIndex &first, const QModelIndex &last) { tell("changed")({}, first.row(), last.row()); });
        Deliver(records);
        QTEST(told.join(QLatin1Char(',')), "told");
    }

    // Lists, counts and filters by chance, each compared with a plain sort, and with what a view knows that reads
    // only what it is told to.
    void RandomChanges_data()
    {
        AddRows<int, int>({"column", "order"}, {{"name", COL_NAME, Qt::AscendingOrder},
                                                {"name, descending", COL_NAME, Qt::DescendingOrder},
                                                {"stakes", COL_STAKES, Qt::AscendingOrder},
                                                {"players", COL_PLAYERS, Qt::AscendingOrder},
                                                {"players, descending", COL_PLAYERS, Qt::DescendingOrder},
                                                {"start", COL_START, Qt::AscendingOrder}});
    }
    void RandomChanges()
    {
        QFETCH(int, column);
        QFETCH(int, order);
        Deliver({Payload::Encode(SListEnd{0})});
        m_pTable->sortByColumn(column, Qt::SortOrder(order));
        QAbstractItemModel *model = m_pTable->model();
        const QAbstractItemModelTester tester(model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QStringList known;
        const auto read = [&](int first, int last) {
            for (int row = first; row <= last; ++row)
                known[row] = ReadRow(row);
        };
        const QObject context;
        connect(model, &QAbstractItemModel::rowsInserted, &context, [&](const QModelIndex &, int first, int last) {
            for (int row = first; row <= last; ++row)
                known.insert(row, ReadRow(row));
        });
        connect(model, &QAbstractItemModel::rowsRemoved, &context, [&](const QModelIndex &, int first, int last) {
            known.erase(known.begin() + first, known.begin() + last + 1);
        });
        connect(model, &QAbstractItemModel::layoutChanged, &context, [&] { read(0, int(known.size()) - 1); });
        connect(model, &QAbstractItemModel::dataChanged, &context,
                [&](const QModelIndex &first, const QModelIndex &last) { read(first.row(), last.row()); });
        QMap<quint32, STable> tables;
        std::mt19937 random(column + 1U);
        for (int change = 0; change < 40; ++change) {
            ChangeByChance(random, tables);
            QCOMPARE(known, SortPlainly(tables.values(), column, order));
        }
        CSettings::GetInstance()->SetRinggameFilter(QByteArray());
    }

    void MalformedRecordsChangeNothing_data()
    {
        AddRows<QByteArray>({"record"}, {{"table", Table(9, "Ghent", 5)},
                                         {"end of the list", Payload::Encode(SListEnd{0})},
                                         {"answer on a seat", Payload::Encode(SSeatAnswer{1, SR_TAKEN, 2})},
                                         {"counts", EncodePlayerCounts({{1, 3}}).constFirst()}});
    }
    void MalformedRecordsChangeNothing()
    {
        QFETCH(QByteArray, record);
        Deliver({record.left(4), record.chopped(1), record + 'x'});
        QCOMPARE(CConsole::GetMessages().size(), 1); // on a connection
        QCOMPARE(Column(COL_PLAYERS), "9/10,10/10,2/10"_s);
        Deliver({Payload::Encode(SListEnd{0})});
        QCOMPARE(Column(COL_NAME), QString());
    }

    void NewConnectionBringsNewList()
    {
        m_pTable->selectRow(2);
        Deliver({Table(8, "Lost", 1)}); // of a list that never ends
        m_pPlugin->ConnectionStateChanged(EConnectionState::Reconnecting);
        m_pPlugin->ConnectionStateChanged(EConnectionState::Connected);
        QCOMPARE(Column(COL_NAME), "Aare,Bann,Cork"_s);
        QCOMPARE(Status(), "The tables may be out of date."_s);
        Deliver({Table(4, "Adda", 1), Table(3, "Cork City", 2), Payload::Encode(SListEnd{2})});
        QCOMPARE(Column(COL_NAME), "Adda,Cork City"_s);
        QCOMPARE(Status(), QString());
        QCOMPARE(m_pView->findChild<QLabel *>("lobbyCount"_s)->text(), "2 tables"_s);
        QCOMPARE(m_pTable->selectionModel()->selectedRows().value(0).data().toString(), "Cork City"_s);
    }

    void UnknownSeatAnswer()
    {
        Deliver({Payload::Encode(SSeatAnswer{2, ESeatResult('?'), 0})}); // of a newer server
        QCOMPARE(Status(), "The game server gives no seat."_s);
    }

    void SeatIsToldUntilItIsLeft()
    {
        auto *takeSeat = m_pView->findChild<QAction *>("takeSeat"_s);
        m_pTable->clearSelection();
        QVERIFY(!takeSeat->isEnabled());
        m_pTable->selectRow(1);
        QSignalSpy sent(m_pPlugin, &CPluginInterface::signal_SendEvent);
        takeSeat->trigger();
        QVERIFY(sent.value(0).value(0).value<CEvent>().HasTags("P2ME", "LGND")); // whoever wants a seat has to log in
        Deliver({Payload::Encode(SSeatAnswer{2, SR_TAKEN, 3})});
        CEvent left = CEvent::Create("SEAT"_s, "LEFT"_s);
        for (left.targetID = 1; left.targetID <= 2; ++left.targetID) {
            QVERIFY(!Status().isEmpty());
            m_pPlugin->emit_ReceiveEvent(left);
        }
        QCOMPARE(Status(), QString());
    }

    void WidgetsStandInForBrokenQml()
    {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("nothing.qml"_s));
        const CQuickView broken(new QWidget, QUrl("qrc:/nothing.qml"_s), {}, nullptr);
        CSettings::GetInstance()->SetPokerLobbyType("qml"_s);
        QTRY_VERIFY(CConsole::GetMessages().value(0).strMessage.contains("nothing.qml"_s));
        QVERIFY(!broken.IsQuickShown());
        CSettings::GetInstance()->SetPokerLobbyType("widgets"_s);
    }

    void CountDownsTick()
    {
        constexpr quint32 NOW = 1800000000; // 15 January 2027, 08:00 UTC
        constexpr quint32 HOUR = 3600;
        CSettings::GetInstance()->SetTimezoneIndex30(-CCasinoTime::iTimezoneMin); // UTC
        CCasinoTime::GetInstance()->SetTimeUTCServer(NOW);
        Deliver({Table(1, "A", 1, 1, NOW + 1), Table(2, "B", 1, 1, NOW + HOUR + 1), Table(3, "C", 1),
                 Payload::Encode(SListEnd{3})});
        const auto tick = [this] {
            CCasinoTime::GetInstance()->IncreaseCurrentTime();
            return Column(COL_START);
        };
        QCOMPARE(tick(), "in 00:00,in 1 h 0 min,"_s);
        QCOMPARE(tick(), "January 15 08:00,in 59:59,"_s);
        Deliver({Table(3, "C", 1), Payload::Encode(SListEnd{1})});
        QCOMPARE(tick(), QString()); // the countdowns have ended with their tables
    }

private:
    static QByteArray Table(quint32 id, const QByteArray &name, quint16 players, quint32 low = 50, quint32 start = 0)
    {
        using TDefines = GlobalDefines;
        return Payload::Encode(STable{id, QString::fromUtf8(name), TDefines::TT_NORMAL, TDefines::GT_HOLDEM,
                                      TDefines::LT_NO_LIMIT, TDefines::MONEYTYPE_DOLLAR, low, 100, 10, players,
                                      start});
    }

    void Deliver(const QVector<QByteArray> &records)
    {
        for (const QByteArray &record : records) {
            CEvent event = CEvent::Create(QLatin1String(GROUP), QLatin1String(record.left(4)));
            event.data = record;
            m_pPlugin->emit_ReceiveEvent(event);
        }
        QCoreApplication::processEvents(); // in which the plugin shows it
    }

    // A list, counts of some tables, or a filter.
    void ChangeByChance(std::mt19937 &random, QMap<quint32, STable> &tables)
    {
        const auto draw = [&](quint32 limit) { return quint32(random()) % limit; };
        const quint32 kind = draw(6);
        if (kind == 0) {
            CSettings::GetInstance()->SetRinggameFilter(QByteArray::number(draw(10)).left(int(draw(3))));
            return;
        }
        QVector<QByteArray> records;
        QVector<SPlayerCount> counts;
        if (kind == 1)
            tables.clear();
        for (quint32 id = 1; id <= 80; ++id) {
            if (kind == 1 && draw(4) > 0) {
                STable table;
                Payload::Decode(Table(id, "Bay " + QByteArray::number(id * 37 % 1000), quint16(draw(9)), draw(50),
                                      draw(2) * (2000000000 + draw(9))),
                                table);
                tables.insert(id, table);
                records.append(Payload::Encode(table));
            } else if (kind > 1 && tables.contains(id) && draw(1U << (2 * kind - 4)) == 0) {
                tables[id].usPlayers = quint16(draw(9));
                counts.append({id, tables[id].usPlayers});
            }
        }
        if (kind == 1)
            records.append(Payload::Encode(SListEnd{quint32(tables.size())}));
        Deliver(records + EncodePlayerCounts(counts));
    }

    static QStringList SortPlainly(QList<STable> tables, int column, int order)
    {
        const auto value = [column](const STable &table) {
            return column == COL_STAKES    ? table.mvLow
                   : column == COL_PLAYERS ? table.usPlayers
                   : column == COL_START   ? table.uiStart - 1 // 0 is last
                                           : 0;
        };
        const auto byName = [](const STable &left, const STable &right) { return left.strName < right.strName; };
        const bool turn = order == Qt::DescendingOrder;
        std::sort(tables.begin(), tables.end(), byName);
        if (column == COL_NAME && turn)
            std::reverse(tables.begin(), tables.end());
        std::stable_sort(tables.begin(), tables.end(), [&](const STable &left, const STable &right) {
            return turn ? value(left) > value(right) : value(left) < value(right);
        });
        QStringList rows;
        const QString filter = QString::fromUtf8(CSettings::GetInstance()->GetRinggameFilter());
        for (const STable &table : qAsConst(tables)) {
            if (table.strName.contains(filter))
                rows.append("%1 %2/10"_s.arg(table.strName).arg(table.usPlayers));
        }
        return rows;
    }

    QString ReadRow(int row) const
    {
        const QModelIndex name = m_pTable->model()->index(row, COL_NAME);
        return name.data().toString() + QLatin1Char(' ') + name.siblingAtColumn(COL_PLAYERS).data().toString();
    }

    QString Column(EColumn column) const
    {
        QStringList texts;
        for (int row = 0; row < m_pTable->model()->rowCount(); ++row)
            texts.append(m_pTable->model()->index(row, column).data().toString());
        return texts.join(QLatin1Char(','));
    }

    QString Status() const { return m_pView->findChild<QLabel *>("lobbyStatus"_s)->text(); }

    CPluginInterface *m_pPlugin = nullptr;
    QScopedPointer<QWidget> m_pView;
    QTableView *m_pTable = nullptr;
};

QTEST_MAIN(tst_lobby)
#include "tst_lobby.moc"
