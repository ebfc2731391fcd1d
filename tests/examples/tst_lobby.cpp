#include <common/QuickView.h>
#include <protocol/LobbyProtocol.h>

#include <support/Literal.h>
#include <support/Rows.h>
#include <support/Singletons.h>

#include <QtTest>
#include <QtWidgets>

using namespace LobbyProtocol;

// Drives the plugin's own file as a host does, and reads what a player would.
class tst_lobby : public QObject
{
    Q_OBJECT

    enum EColumn { COL_NAME, COL_TYPE, COL_GAME, COL_STAKES, COL_PLAYERS, COL_START };

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
        QSignalSpy registered(m_pPlugin, &CPluginInterface::signal_RegisterForEvent);
        m_pPlugin->RegisterEvents();
        QVERIFY(registered.contains({"LOBB"_s, QString()}));
        m_pView.reset(m_pPlugin->CreateView(nullptr));
        m_pTable = m_pView->findChild<QTableView *>("lobbyTable"_s);
        QVERIFY(m_pTable);
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

    void ListFillsAndSorts()
    {
        QCOMPARE(Column(COL_NAME), "Aare,Bann,Cork"_s);
        QCOMPARE(Column(COL_STAKES), "$0.50/$1,$42,949,672.95/$1,$9/$1"_s);
        QCOMPARE(Column(COL_PLAYERS), "9/10,10/10,2/10"_s);
        m_pTable->sortByColumn(COL_STAKES, Qt::AscendingOrder);
        QCOMPARE(Column(COL_NAME), "Aare,Cork,Bann"_s);
    }

    void CountsChangeTheirCellsOnly()
    {
        QSignalSpy changed(m_pTable->model(), &QAbstractItemModel::dataChanged);
        Deliver(EncodePlayerCounts({{99, 1}, {2, 4}, {1, 9}})); // an unknown table, a new count, one as before
        QCOMPARE(Column(COL_PLAYERS), "9/10,4/10,2/10"_s);
        const QModelIndex cell = m_pTable->model()->index(1, COL_PLAYERS);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.at(0).mid(0, 2), (QVariantList{cell, cell}));
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
        QSignalSpy sent(m_pPlugin, &CPluginInterface::signal_SendEvent);
        m_pPlugin->ConnectionStateChanged(EConnectionState::Reconnecting);
        QVERIFY(sent.isEmpty());
        m_pPlugin->ConnectionStateChanged(EConnectionState::Connected);
        QCOMPARE(sent.value(0).value(0).value<CEvent>().data, Payload::ToPackets(LobbyProtocol::GROUP, {GET_LIST}));
        QCOMPARE(Column(COL_NAME), "Aare,Bann,Cork"_s);
        QVERIFY(Status().startsWith(QLatin1String("3 tables - may be out of date")));

        Deliver({Table(4, "Adda", 1), Table(3, "Cork City", 2), Payload::Encode(SListEnd{2})});
        QCOMPARE(Column(COL_NAME), "Adda,Cork City"_s);
        QCOMPARE(Status(), "2 tables"_s);
        QCOMPARE(m_pTable->selectionModel()->selectedRows().value(0).data().toString(), "Cork City"_s);
    }

    void FilterIsASetting()
    {
        CSettings *settings = CSettings::GetInstance();
        auto *text = m_pView->findChild<QLineEdit *>("lobbyFilter"_s);
        QTest::keyClicks(text, "r"_s);
        QTest::keyClick(text, Qt::Key_Home);
        QTest::keyClicks(text, "o"_s);
        QCOMPARE(text->cursorPosition(), 1); // where the view's own change, coming back, leaves it
        settings->SetRinggameFilter("aar");  // as for another user, who has chosen no type
        settings->SetSelectedGametype(-1);
        QCOMPARE(Column(COL_NAME), "Aare"_s);
        QCOMPARE(settings->GetSelectedGametype(), -1);
        // The button that clears the line fades in and out. Qt loses the animation of one that ends before that.
        const auto opacity = [this] { return m_pView->findChild<QToolButton *>()->property("opacity").toReal(); };
        QTRY_COMPARE(opacity(), 1.0);
        settings->SetRinggameFilter(QByteArray());
        QTRY_COMPARE(opacity(), 0.0);
    }

    void SeatWaitsForLogin()
    {
        QSignalSpy sent(m_pPlugin, &CPluginInterface::signal_SendEvent);
        m_pTable->selectRow(1);
        QTest::keyClick(m_pTable, Qt::Key_Return);
        CUserInfo::GetInstance()->SetLoggedIn("Magnolia"_s);
        QTRY_COMPARE(sent.size(), 2);
        QCOMPARE(sent.at(1).at(0).value<CEvent>().data,
                 Payload::ToPackets(LobbyProtocol::GROUP, {Payload::Encode(SSeatRequest{2})}));
        CUserInfo::GetInstance()->SetLoggedIn(QString());

        Deliver({Payload::Encode(SSeatAnswer{2, SR_FULL, 0})});
        QCOMPARE(Status(), "3 tables - Bann has no free seat."_s);
        Deliver({Payload::Encode(SSeatAnswer{2, ESeatResult('?'), 0})}); // of a newer server
        QCOMPARE(Status(), "3 tables - The game server gives no seat."_s);
        m_pPlugin->ConnectionStateChanged(EConnectionState::Reconnecting);
        QVERIFY(!Status().contains(QLatin1String("seat")));
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
        constexpr quint32 DAY = 86400;
        CSettings::GetInstance()->SetTimezoneIndex30(-CCasinoTime::iTimezoneMin); // UTC
        CCasinoTime::GetInstance()->SetTimeUTCServer(NOW);
        const QVector<QByteArray> list{Table(1, "A", 1, 1, NOW + 1), Table(2, "B", 1, 1, NOW + DAY),
                                       Table(3, "C", 1)};
        Deliver(list + QVector<QByteArray>{Payload::Encode(SListEnd{3})});
        QSignalSpy changed(m_pTable->model(), &QAbstractItemModel::dataChanged);
        const auto tick = [&] {
            changed.clear();
            CCasinoTime::GetInstance()->IncreaseCurrentTime();
            return Column(COL_START);
        };
        QCOMPARE(tick(), "00:00:00,23:59:59,"_s);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.at(0).at(0).toModelIndex(), m_pTable->model()->index(0, COL_START));
        QCOMPARE(tick(), "January 15 08:00,23:59:58,"_s);
        Deliver({Table(3, "C", 1), Payload::Encode(SListEnd{1})});
        tick(); // the countdowns that have ended, once more
        tick();
        QVERIFY(changed.isEmpty());
    }

    void ColumnsAndOrderAreSettings()
    {
        CSettings *settings = CSettings::GetInstance();
        m_pView->resize(1200, 600);
        m_pView->grab(); // which puts all in its place
        const int width = m_pTable->columnWidth(COL_TYPE);
        m_pTable->setColumnWidth(COL_TYPE, width + 9); // as a drag does
        m_pTable->sortByColumn(COL_STAKES, Qt::DescendingOrder);
        const QString stored = settings->GetHeaderSizesByKey("lobby"_s);
        settings->SetHeaderSizesByKey("lobby"_s, "600,600"_s);
        QCOMPARE(m_pTable->columnWidth(COL_TYPE), width);
        settings->SetHeaderSizesByKey("lobby"_s, stored); // as of another user
        settings->SetHeaderSortingOrderByKey("lobby"_s, false);
        QCOMPARE(m_pTable->columnWidth(COL_TYPE), width + 9);
        QCOMPARE(Column(COL_NAME), "Aare,Cork,Bann"_s);
        m_pTable->setColumnWidth(COL_TYPE, 10); // where its texts would be lost
        QCOMPARE(m_pTable->columnWidth(COL_TYPE), width + 9);
    }

private:
    static QByteArray Table(quint32 id, const char *name, quint16 players, quint32 low = 50, quint32 start = 0)
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
