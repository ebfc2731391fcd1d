#include <client/Host.h>
#include <protocol/TableProtocol.h>
#include <settings/PlayerInfo.h>

#include <support/Languages.h>

#include <QtWidgets>

// The plugin's own file in the real host, which loads the notes at a login and ends the models at a logout.
class tst_notes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void notesOfALogin()
    {
        const CInstallationTree tree;
        tree.MakeDir("Tmp"_s);
        QFile::link(NOTES_PLUGIN_PATH ""_s, tree.MakeDir("Client/Plugins"_s) + "/notes.so"_s);
        QVERIFY(CSettingsDB::GetInstance()->Init() && CPlayerInfoDB::GetInstance()->Init());
        CCasinoTime::GetInstance()->SetTimeUTCServer(100);
        QVERIFY(PlayerInfo::InsertPlayerInfo({"Magnolia"_s, "Robin"_s, "old"_s, 2, 1, 90}));
        QWidget window;
        CHost host("127.0.0.1"_s, 1);
        host.StartPlugins(Pathes::Plugins());
        CPluginInterface *plugin = host.GetPluginManager().GetPlugins().value(0);
        QVERIFY(plugin);
        QWidget *view = plugin->CreateView(&window);
        window.show();
        auto *players = view->findChild<QListWidget *>();
        auto *nickname = view->findChild<QLineEdit *>();
        CEvent said = CEvent::Create("TABL"_s, "SAID"_s);
        said.data = Payload::Encode(TableProtocol::SLine{7, "hello"_s, "Fern"_s, 0}, TableProtocol::SAID);
        plugin->SendInternEvent(said, false);
        QVERIFY(!view->isEnabled() && players->count() == 0 && !view->findChild<QPlainTextEdit *>());

        CUserInfo::GetInstance()->SetLoggedIn("Magnolia"_s);
        plugin->SendInternEvent(said, false);
        for (const char *typed : {"Tom", "Tom", " "}) {
            QTest::keyClicks(nickname, QLatin1String(typed));
            QTest::keyClick(nickname, Qt::Key_Return);
        }
        QVERIFY(players->currentItem() && players->currentItem()->text() == "Tom"_s);
        QVERIFY(PlayerInfo::InsertPlayerInfo({"Magnolia"_s, "Wren"_s, "from another machine"_s, 0, 0, 80}));
        QTRY_COMPARE(players->count(), 5);
        QTest::keyClicks(players, "Robin"_s);
        auto *note = view->findChild<QPlainTextEdit *>();
        auto *buddy = view->findChild<QCheckBox *>();
        QVERIFY(note->toPlainText() == "old"_s && buddy->isChecked());
        const auto *tag = view->findChild<QComboBox *>();
        QVERIFY(tag->currentIndex() == 2 && !tag->itemIcon(2).isNull());
        note->selectAll();
        QTest::keyClicks(note, "Bluffs"_s);
        QTest::keyClick(buddy, Qt::Key_Space);
        CPlayerModel::GetInstance("Robin"_s)->SetRating(4);
        QCOMPARE(view->findChild<QSpinBox *>("rating"_s)->value(), 4);

        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QVERIFY(!view->isEnabled() && players->count() == 0 && !view->findChild<QPlainTextEdit *>());
        const auto rows = PlayerInfo::GetSyncList("Magnolia"_s, 99);
        QVERIFY(rows.size() == 1 && rows[0].strNote == "Bluffs"_s && rows[0].ulPlayerFlags == 0);
        DestroySingletons();
    }
};

QTEST_MAIN(tst_notes)
#include "tst_notes.moc"
