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
        QVERIFY(Status().startsWith("3 tables - may be out of date"_s));
        Deliver({Table(4, "Adda", 1), Table(3, "Cork City", 2), Payload::Encode(SListEnd{2})});
        QCOMPARE(Column(COL_NAME), "Adda,Cork City"_s);
        QCOMPARE(Status(), "2 tables"_s);
        QCOMPARE(m_pTable->selectionModel()->selectedRows().value(0).data().toString(), "Cork City"_s);
    }

    void UnknownSeatAnswer()
    {
        Deliver({Payload::Encode(SSeatAnswer{2, ESeatResult('?'), 0})}); // of a newer server
        QCOMPARE(Status(), "3 tables - The game server gives no seat."_s);
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
        Deliver({Table(1, "A", 1, 1, NOW + 1), Table(2, "B", 1, 1, NOW + DAY), Table(3, "C", 1),
                 Payload::Encode(SListEnd{3})});
        const auto tick = [this] {
            CCasinoTime::GetInstance()->IncreaseCurrentTime();
            return Column(COL_START);
        };
        QCOMPARE(tick(), "00:00:00,23:59:59,"_s);
        QCOMPARE(tick(), "January 15 08:00,23:59:58,"_s);
        Deliver({Table(3, "C", 1), Payload::Encode(SListEnd{1})});
        QCOMPARE(tick(), QString()); // the countdowns have ended with their tables
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
