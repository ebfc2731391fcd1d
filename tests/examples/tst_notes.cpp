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
    void NotesOfALogin()
    {
        const CInstallationTree tree;
        QFile::link(NOTES_PLUGIN_PATH ""_s, tree.MakeDir("Client/Plugins"_s) + "/notes.so"_s);
        QVERIFY(CSettingsDB::GetInstance()->Init());
        QVERIFY(CPlayerInfoDB::GetInstance()->Init());
        CCasinoTime::GetInstance()->SetTimeUTCServer(100);
        QWidget window;
        CHost host("127.0.0.1"_s, 1);
        host.StartPlugins(Pathes::Plugins());
        CPluginInterface *plugin = host.GetPluginManager().GetPlugins().value(0);
        QVERIFY(plugin);
        QWidget *view = plugin->CreateView(&window);
        window.show();
        auto *players = view->findChild<QListWidget *>();
        const auto see = [&] {
            QStringList names;
            for (int row = 0; row < players->count(); ++row)
                names.append(players->item(row)->text());
            return names.join(u' ') + (view->isEnabled() ? ""_s : " (off)"_s);
        };
        CEvent said = CEvent::Create("TABL"_s, "SAID"_s);
        said.data = Payload::Encode(TableProtocol::SLine{7, "hello"_s, "Fern"_s, 0}, TableProtocol::SAID);
        plugin->SendInternEvent(said, false);
        QCOMPARE(see(), " (off)"_s);

        CUserInfo::GetInstance()->SetLoggedIn("Magnolia"_s);
        CEvent cutOff = said; // without the flag at the end and a part of the speaker, or with less
        for (cutOff.data.chop(2); !cutOff.data.isEmpty(); cutOff.data.chop(1))
            plugin->SendInternEvent(cutOff, false);
        QCOMPARE(see(), "Magnolia"_s);
        plugin->SendInternEvent(said, false);
        QTest::keyClicks(view->findChild<QLineEdit *>(), "Tom"_s);
        QTest::keyClick(view->findChild<QLineEdit *>(), Qt::Key_Return);
        QCOMPARE(see(), "Fern Magnolia Tom"_s);
        QTest::keyClicks(view->findChild<QPlainTextEdit *>(), "Bluffs"_s); // and waits to be stored

        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QCOMPARE(see(), " (off)"_s);
        CUserInfo::GetInstance()->SetLoggedIn("Fern"_s);
        QCOMPARE(CPlayerModel::GetInstance("Tom"_s)->GetNotes(), QString());
        QCOMPARE(PlayerInfo::GetSyncList("Magnolia"_s, 99).value(0).strNote, "Bluffs"_s);
        DestroySingletons();
    }
};

QTEST_MAIN(tst_notes)
#include "tst_notes.moc"
