#include <client/Host.h>
#include <protocol/TableProtocol.h>
#include <settings/PlayerInfo.h>

#include <support/Languages.h>

#include <QtWidgets>

// The plugin's own file in the real host, which loads the notes at a login and ends the models at a logout.
class CNotesView
{
public:
    CNotesView()
        : m_pHost(StartHost(m_tree))
        , m_pPlugin(m_pHost->GetPluginManager().GetPlugins().value(0))
        , m_pView(m_pPlugin->CreateView(&m_window))
        , m_pPlayers(Find<QListWidget>())
    {
        m_window.show();
    }
    ~CNotesView() { DestroySingletons(); }

    template <typename Widget>
    Widget *Find(const QString &name = QString()) const
    {
        return m_pView->findChild<Widget *>(name);
    }
    static void LogIn(const QString &user) // and out, if empty
    {
        CUserInfo::GetInstance()->SetLoggedIn(user);
    }
    void Receive(const CEvent &said) const { m_pPlugin->SendInternEvent(said, false); }
    QString See() const
    {
        QStringList names;
        for (int row = 0; row < m_pPlayers->count(); ++row)
            names += m_pPlayers->item(row)->isHidden() ? QStringList() : QStringList{m_pPlayers->item(row)->text()};
        return names.join(u' ') + (m_pPlayers->isVisible() ? ""_s : " (off)"_s);
    }
    // Returns what is left in the field.
    QString Type(const QString &nickname) const
    {
        auto *field = Find<QLineEdit>("newPlayer"_s);
        field->clear();
        QTest::keyClicks(field, nickname);
        QTest::keyClick(field, Qt::Key_Return);
        return field->text();
    }
    void PressDelete()
    {
        m_pPlayers->setFocus();
        m_window.activateWindow(); // offscreen, no window is active after a message
        if (QTest::qWaitForWindowActive(&m_window))
            QTest::keyClick(m_pPlayers, Qt::Key_Delete);
    }
    // Returns the key of the message's text.
    QString Answer(QMessageBox::StandardButton button) const
    {
        auto *message = Find<QMessageBox>();
        const QString text = message ? message->text().section(u'\n', 0, 0) : QString();
        if (message)
            message->button(button)->click();
        return QTest::qWaitFor([this] { return !Find<QMessageBox>(); }) ? text : "asks again"_s;
    }
    // Those that the keyboard reaches and of which a screen reader says nothing.
    QStringList FindNameless() const
    {
        QStringList nameless;
        const auto widgets = m_pView->findChildren<QWidget *>();
        for (QWidget *widget : widgets) {
            const bool isReached = widget->focusPolicy() != Qt::NoFocus && !widget->focusProxy();
            if (isReached && QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name).isEmpty())
                nameless.append(widget->objectName() + QLatin1String(widget->metaObject()->className()));
        }
        return nameless;
    }

private:
    static CHost *StartHost(const CInstallationTree &tree)
    {
        QFile::link(NOTES_PLUGIN_PATH ""_s, tree.MakeDir("Client/Plugins"_s) + "/notes.so"_s);
        CSettingsDB::GetInstance()->Init();
        CPlayerInfoDB::GetInstance()->Init();
        CCasinoTime::GetInstance()->SetTimeUTCServer(100);
        auto *host = new CHost("127.0.0.1"_s, 1);
        host->StartPlugins(Pathes::Plugins());
        return host;
    }

    const CInstallationTree m_tree;
    QScopedPointer<CHost> m_pHost;
    QWidget m_window;
    CPluginInterface *m_pPlugin;
    QWidget *m_pView;
    QListWidget *m_pPlayers;
};

class tst_notes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void NotesOfALogin()
    {
        const CNotesView view;
        CEvent said = CEvent::Create("TABL"_s, "SAID"_s);
        said.data = Payload::Encode(TableProtocol::SLine{7, "hello"_s, "Fern"_s, 0}, TableProtocol::SAID);
        view.Receive(said);
        QCOMPARE(view.See(), " (off)"_s);

        view.LogIn("Magnolia"_s);
        CEvent cutOff = said; // without the flag at the end and a part of the speaker, or with less
        for (cutOff.data.chop(2); !cutOff.data.isEmpty(); cutOff.data.chop(1))
            view.Receive(cutOff);
        QCOMPARE(view.See(), ""_s);
        view.Receive(said);
        QCOMPARE(view.Type("Tom"_s), ""_s);
        QCOMPARE(view.See(), "Fern Tom"_s);
        QTest::keyClicks(view.Find<QPlainTextEdit>(), "Bluffs"_s); // and waits to be stored
        QCOMPARE(view.FindNameless(), QStringList());

        view.LogIn(QString());
        QCOMPARE(view.See(), " (off)"_s);
        view.LogIn("Fern"_s);
        QCOMPARE(CPlayerModel::GetInstance("Tom"_s)->GetNotes(), QString());
        QCOMPARE(PlayerInfo::GetSyncList("Magnolia"_s, 99).value(0).strNote, "Bluffs"_s);
    }

    void Refused_data()
    {
        AddRows<QString, QString>({"nickname", "answer"},
                                  {{"no nickname", " Tom"_s, "example/login_bad_nickname"_s},
                                   {"the user's", "magnolia"_s, "example/players_yourself"_s}});
    }
    void Refused()
    {
        QFETCH(QString, nickname);
        QTest::ignoreMessage(QtWarningMsg, "This plugin does not support propagateSizeHints()");
        const CNotesView view;
        view.LogIn("Magnolia"_s);
        QCOMPARE(view.Type(nickname), nickname);
        QTEST(view.Answer(QMessageBox::Ok), "answer");
        QCOMPARE(view.See(), ""_s);
    }

    void Searched_data()
    {
        AddRows<QString, QString>({"words", "found"}, {{"a nickname", "TO"_s, "Tom"_s},
                                                       {"a note", "river"_s, "Fern"_s},
                                                       {"nothing", " "_s, "Fern Tom"_s},
                                                       {"nobody", "raises"_s, ""_s}});
    }
    void Searched()
    {
        QFETCH(QString, words);
        const CNotesView view;
        view.LogIn("Magnolia"_s);
        view.Type("Tom"_s);
        view.Type("Fern"_s);
        QTest::keyClicks(view.Find<QPlainTextEdit>(), "On the River"_s);
        QTest::keyClicks(view.Find<QLineEdit>("playerSearch"_s), words);
        QTEST(view.See(), "found");
        QCOMPARE(view.Find<QPushButton>("clearSearch"_s)->isVisible(), view.See().isEmpty());
        QCOMPARE(view.Find<QPlainTextEdit>() != nullptr, view.See().contains("Fern"_s)); // who was chosen
        view.Type("Tim"_s); // a search that would hide the new player ends
        QCOMPARE(view.See(), "Fern Tim Tom"_s);
    }

    void Removed()
    {
        QTest::ignoreMessage(QtWarningMsg, "This plugin does not support propagateSizeHints()");
        QTest::ignoreMessage(QtWarningMsg, "This plugin does not support propagateSizeHints()");
        CNotesView view;
        view.LogIn("Magnolia"_s);
        view.Type("Tom"_s);
        QTest::keyClicks(view.Find<QPlainTextEdit>(), "Bluffs"_s);
        view.Find<QCheckBox>()->click();
        auto *rating = view.Find<QAbstractSlider>("rating"_s);
        QTest::keyClick(rating, Qt::Key_3);
        QCOMPARE(QAccessible::queryAccessibleInterface(rating)->valueInterface()->currentValue(), QVariant(3));
        view.PressDelete();
        QCOMPARE(view.Answer(QMessageBox::Cancel), "example/players_remove_noted"_s);
        QCOMPARE(view.See(), "Tom"_s);
        view.PressDelete();
        QCOMPARE(view.Answer(QMessageBox::Yes), "example/players_remove_noted"_s);
        QCOMPARE(view.See(), ""_s);
        view.LogIn(QString()); // which stores that nothing is noted
        view.LogIn("Magnolia"_s);
        QCOMPARE(view.See(), ""_s);
        QCOMPARE(PlayerInfo::GetSyncList("Magnolia"_s, 99).size(), 1);
        QCOMPARE(PlayerInfo::GetSyncList("Magnolia"_s, 99).value(0).strNote, ""_s);
    }
};

QTEST_MAIN(tst_notes)
#include "tst_notes.moc"
