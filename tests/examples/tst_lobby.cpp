#include <protocol/LobbyProtocol.h>

#include <support/Singletons.h>

#include <QtTest>
#include <QtWidgets>

using namespace LobbyProtocol;

// Drives the plugin's own file as a host does, and reads what a player would.
class tst_lobby : public QObject
{
    Q_OBJECT

    enum EColumn { COL_NAME, COL_TYPE, COL_GAME, COL_STAKES, COL_PLAYERS, COL_START };
    enum ELanguage { ENGLISH = 2, GERMAN = 3 }; // ids in the example's catalogue

private Q_SLOTS:
    void initTestCase()
    {
        QDir::setCurrent(QStringLiteral(CLIENT_FOLDER));
        QVERIFY(CTranslationDB::GetInstance()->Init());
        CSettings::GetInstance()->SetSelectedLanguage(ENGLISH);
        CSettings::GetInstance()->SetPokerLobbyType(QStringLiteral("widgets"));
        QPluginLoader loader(QStringLiteral(LOBBY_PLUGIN_PATH));
        m_pPlugin = qobject_cast<CPluginInterface *>(loader.instance());
        QVERIFY2(m_pPlugin, qPrintable(loader.errorString()));
        QSignalSpy registered(m_pPlugin, &CPluginInterface::signal_RegisterForEvent);
        m_pPlugin->RegisterEvents();
        QVERIFY(registered.contains({QStringLiteral("LOBB"), QString()}));
        m_pView.reset(m_pPlugin->CreateView(nullptr));
        m_pTable = m_pView->findChild<QTableView *>(QStringLiteral("lobbyTable"));
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

    void listFillsAndSorts()
    {
        QCOMPARE(Column(COL_NAME), QStringLiteral("Aare,Bann,Cork"));
        QCOMPARE(Column(COL_STAKES), QStringLiteral("$0.50/$1,$42,949,672.95/$1,$9/$1"));
        QCOMPARE(Column(COL_PLAYERS), QStringLiteral("9/10,10/10,2/10"));
        m_pTable->sortByColumn(COL_STAKES, Qt::AscendingOrder);
        QCOMPARE(Column(COL_NAME), QStringLiteral("Aare,Cork,Bann"));
    }

    void countsChangeTheirCellsOnly()
    {
        QSignalSpy changed(m_pTable->model(), &QAbstractItemModel::dataChanged);
        Deliver(EncodePlayerCounts({{99, 1}, {2, 4}, {1, 9}})); // an unknown table, a new count, one as before
        QCOMPARE(Column(COL_PLAYERS), QStringLiteral("9/10,4/10,2/10"));
        const QModelIndex cell = m_pTable->model()->index(1, COL_PLAYERS);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.at(0).mid(0, 2), (QVariantList{cell, cell}));
    }

    void malformedRecordsChangeNothing()
    {
        const auto records = QVector<QByteArray>{Table(9, "Ghent", 5), Payload::Encode(SListEnd{0}),
                                                 Payload::Encode(SSeatAnswer{1, SR_TAKEN, 2})} +
                             EncodePlayerCounts({{1, 3}});
        for (const QByteArray &record : records) {
            for (int length = 4; length <= record.size(); ++length) {
                const QByteArray wrong = length < record.size() ? record.left(length) : record + 'x';
                init();
                Deliver({wrong, wrong});
                QCOMPARE(CConsole::GetMessages().size(), 1); // on a connection
                QCOMPARE(Column(COL_PLAYERS), QStringLiteral("9/10,10/10,2/10"));
                Deliver({Table(1, "Aare", 9), Payload::Encode(SListEnd{1})});
                QVERIFY2(Column(COL_NAME) == QLatin1String("Aare"), wrong.toHex());
            }
        }
    }

    void newConnectionBringsNewList()
    {
        m_pTable->selectRow(2);
        Deliver({Table(8, "Lost", 1)}); // of a list that never ends
        QSignalSpy sent(m_pPlugin, &CPluginInterface::signal_SendEvent);
        m_pPlugin->ConnectionStateChanged(EConnectionState::Reconnecting);
        QVERIFY(sent.isEmpty());
        m_pPlugin->ConnectionStateChanged(EConnectionState::Connected);
        QCOMPARE(sent.value(0).value(0).value<CEvent>().data, Payload::ToPackets(LobbyProtocol::GROUP, {GET_LIST}));
        QCOMPARE(Column(COL_NAME), QStringLiteral("Aare,Bann,Cork"));
        QVERIFY(Status().startsWith(QLatin1String("3 tables - may be out of date")));

        Deliver({Table(4, "Adda", 1), Table(3, "Cork City", 2), Payload::Encode(SListEnd{2})});
        QCOMPARE(Column(COL_NAME), QStringLiteral("Adda,Cork City"));
        QCOMPARE(Status(), QStringLiteral("2 tables"));
        QCOMPARE(m_pTable->selectionModel()->selectedRows().value(0).data().toString(), QStringLiteral("Cork City"));
    }

    void filterIsASetting()
    {
        CSettings *settings = CSettings::GetInstance();
        auto *text = m_pView->findChild<QLineEdit *>(QStringLiteral("lobbyFilter"));
        auto *type = m_pView->findChild<QComboBox *>(QStringLiteral("lobbyType"));
        QTest::keyClicks(text, QStringLiteral("r"));
        QTest::keyClick(text, Qt::Key_Home);
        QTest::keyClicks(text, QStringLiteral("o"));
        QCOMPARE(text->cursorPosition(), 1); // where the view's own change, coming back, leaves it
        type->setCurrentIndex(3);
        const QScopedPointer<QWidget> later(m_pPlugin->CreateView(nullptr));
        QCOMPARE(later->findChild<QLineEdit *>(text->objectName())->text(), QStringLiteral("or"));
        QCOMPARE(later->findChild<QComboBox *>(type->objectName())->currentIndex(), 3);
        QCOMPARE(settings->GetSelectedGametype(), int(GlobalDefines::TT_TOURNAMENT)); // which `later` has left alone

        settings->SetRinggameFilter("aar"); // as for another user, who has chosen no type
        settings->SetSelectedGametype(-1);
        QCOMPARE(Column(COL_NAME), QStringLiteral("Aare"));
        QCOMPARE(settings->GetSelectedGametype(), -1);
        // The button that clears the line fades in and out. Qt loses the animation of one that ends before that.
        const auto opacity = [](const QWidget *view) {
            return view->findChild<QToolButton *>()->property("opacity").toReal();
        };
        QTRY_COMPARE(opacity(later.data()), 1.0);
        QTRY_COMPARE(opacity(m_pView.data()), 1.0);
        settings->SetRinggameFilter(QByteArray());
        QTRY_COMPARE(opacity(m_pView.data()), 0.0);
    }

    void seatWaitsForLogin()
    {
        QSignalSpy sent(m_pPlugin, &CPluginInterface::signal_SendEvent);
        m_pTable->selectRow(1);
        QTest::keyClick(m_pTable, Qt::Key_Return);
        CUserInfo::GetInstance()->SetLoggedIn(QStringLiteral("Magnolia"));
        QTRY_COMPARE(sent.size(), 2);
        QCOMPARE(sent.at(1).at(0).value<CEvent>().data,
                 Payload::ToPackets(LobbyProtocol::GROUP, {Payload::Encode(SSeatRequest{2})}));
        CUserInfo::GetInstance()->SetLoggedIn(QString());

        Deliver({Payload::Encode(SSeatAnswer{2, SR_FULL, 0})});
        QCOMPARE(Status(), QStringLiteral("3 tables - Bann has no free seat."));
        Deliver({Payload::Encode(SSeatAnswer{2, ESeatResult('?'), 0})}); // of a newer server
        QCOMPARE(Status(), QStringLiteral("3 tables - The game server gives no seat."));
        m_pPlugin->ConnectionStateChanged(EConnectionState::Reconnecting);
        QVERIFY(!Status().contains(QLatin1String("seat")));
    }

    void languageChangesEveryText()
    {
        const auto texts = [this] {
            const QAbstractItemModel *model = m_pTable->model();
            const QStringList all{m_pView->findChild<QComboBox *>()->currentText(),
                                  m_pView->findChild<QLineEdit *>()->placeholderText(),
                                  Status(),
                                  model->headerData(COL_PLAYERS, Qt::Horizontal).toString(),
                                  model->index(0, COL_TYPE).data().toString(),
                                  Column(COL_STAKES).left(8)};
            return all.join(QLatin1Char('|'));
        };
        Deliver({Payload::Encode(SSeatAnswer{2, SR_FULL, 0})});
        const QString english = texts();
        qRegisterMetaType<Qt::Orientation>();
        QSignalSpy titles(m_pTable->model(), &QAbstractItemModel::headerDataChanged);
        QSignalSpy cells(m_pTable->model(), &QAbstractItemModel::dataChanged);
        CSettings::GetInstance()->SetSelectedLanguage(GERMAN);
        QCOMPARE(texts(), QStringLiteral("Alle Tische|Name oder Spiel|3 Tische – Bann hat keinen freien Platz.|"
                                         "Spieler|Cash Game|$\u00A00,50/$"));
        QVERIFY(titles.size() == 1 && !cells.isEmpty());
        CSettings::GetInstance()->SetSelectedLanguage(ENGLISH);
        QCOMPARE(texts(), english);
    }

    void countDownsTick()
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
        QCOMPARE(tick(), QStringLiteral("00:00:00,23:59:59,"));
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.at(0).at(0).toModelIndex(), m_pTable->model()->index(0, COL_START));
        QCOMPARE(tick(), QStringLiteral("January 15 08:00,23:59:58,"));
        Deliver({Table(3, "C", 1), Payload::Encode(SListEnd{1})});
        tick(); // the countdowns that have ended, once more
        tick();
        QVERIFY(changed.isEmpty());
    }

    void columnsAndOrderAreSettings()
    {
        CSettings *settings = CSettings::GetInstance();
        m_pView->resize(1200, 600);
        m_pView->grab(); // which puts all in its place
        const int width = m_pTable->columnWidth(COL_TYPE);
        m_pTable->setColumnWidth(COL_TYPE, width + 9); // as a drag does
        m_pTable->sortByColumn(COL_STAKES, Qt::DescendingOrder);
        const QString stored = settings->GetHeaderSizesByKey(QStringLiteral("lobby"));
        settings->SetHeaderSizesByKey(QStringLiteral("lobby"), QStringLiteral("600,600"));
        QCOMPARE(m_pTable->columnWidth(COL_TYPE), width);
        settings->SetHeaderSizesByKey(QStringLiteral("lobby"), stored); // as of another user
        settings->SetHeaderSortingOrderByKey(QStringLiteral("lobby"), false);
        QCOMPARE(m_pTable->columnWidth(COL_TYPE), width + 9);
        QCOMPARE(Column(COL_NAME), QStringLiteral("Aare,Cork,Bann"));
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

    QString Status() const { return m_pView->findChild<QLabel *>(QStringLiteral("lobbyStatus"))->text(); }

    CPluginInterface *m_pPlugin = nullptr;
    QScopedPointer<QWidget> m_pView;
    QTableView *m_pTable = nullptr;
};

QTEST_MAIN(tst_lobby)
#include "tst_lobby.moc"
