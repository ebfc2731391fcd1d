#include <protocol/LobbyProtocol.h>
#include <protocol/TableProtocol.h>

#include <support/Literal.h>
#include <support/Singletons.h>

#include <QtTest>
#include <QtWidgets>

using namespace TableProtocol;

// Drives the plugin's own file as a host does.
class tst_table : public QObject
{
    Q_OBJECT

    static void Answer(const QMessageBox *question, QMessageBox::ButtonRole role)
    {
        const auto buttons = question->buttons();
        for (QAbstractButton *button : buttons) {
            if (question->buttonRole(button) == role)
                button->click();
        }
    }

private Q_SLOTS:
    void LinesThatAreShown()
    {
        QDir::setCurrent(QStringLiteral(CLIENT_FOLDER));
        QPluginLoader loader(QStringLiteral(TABLE_PLUGIN_PATH));
        auto *plugin = qobject_cast<CPluginInterface *>(loader.instance());
        QVERIFY2(plugin, qPrintable(loader.errorString()));
        plugin->Start();
        const auto deliver = [plugin](const char *tags, const QByteArray &data, QWidget *lobby) {
            CEvent event = CEvent::Create(QLatin1String(tags), QLatin1String(tags + 4));
            event.targetID = 3;
            event.data = data;
            event.widget = lobby;
            plugin->emit_ReceiveEvent(event);
        };
        QWidget lobby;
        CUserInfo::GetInstance()->SetLoggedIn("Magnolia"_s);
        CSettings::GetInstance()->SetDisableTablePopup(true); // the test has no front to bring a window to
        CSettings::GetInstance()->SetSoundsEnabled(false);    // and no sound server
        // The test's display complains about the least size of each window; all else is told.
        static const QtMessageHandler tell =
            qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &context, const QString &message) {
                if (!message.contains("propagateSizeHints"_s))
                    tell(type, context, message);
            });
        for (QWidget *widget : {static_cast<QWidget *>(nullptr), &lobby, &lobby}) // null as of a game server
            deliver("SEATGIVN", Payload::Encode(LobbyProtocol::STable{7, "Aare"_s}), widget);
        deliver("SEATGIVN", Payload::Encode(LobbyProtocol::STable{9, "Bann"_s}), &lobby);
        const auto chats = lobby.findChildren<QTextBrowser *>();
        QCOMPARE(chats.size(), 2);
        QVERIFY(chats.at(0)->window()->pos() != chats.at(1)->window()->pos());

        CPlayerModel::GetInstance("Robin"_s)->SetChatBlock(true);
        CChatModel::GetInstance()->SetSettings({false, 2, 3}); // without observers
        for (const SLine &line :
             {SLine{7, "<i>a</i> &amp; :-):))"_s, "<Fern>"_s, 0}, SLine{7, "blocked"_s, "Robin"_s, 0},
              SLine{7, "observes"_s, "Tom"_s, 1}, SLine{8, "elsewhere"_s, "Tom"_s, 0}})
            deliver("TABLSAID", Payload::Encode(line, SAID), nullptr);
        const QString said = chats.constFirst()->toPlainText();
        QVERIFY2(said.endsWith("<Fern>: <i>a</i> &amp; \uFFFC\uFFFC)"_s) && !said.contains(u'\n'), qPrintable(said));

        // A seat is given up once the user has said so.
        QSignalSpy sent(plugin, &CPluginInterface::signal_SendEvent);
        const QPointer<QWidget> table = chats.constFirst()->window();
        for (const auto role : {QMessageBox::RejectRole, QMessageBox::AcceptRole}) {
            QVERIFY(table && sent.isEmpty());
            table->close();
            Answer(table->findChildren<QMessageBox *>().constLast(), role);
        }
        QVERIFY(sent.value(0).value(0).value<CEvent>().data.endsWith(Payload::Encode(SLeave{7})));
        const CEvent told = sent.value(1).value(0).value<CEvent>();
        QVERIFY(told.HasTags("SEAT", "LEFT") && told.targetID == 7);
        QTimer::singleShot(0, this, [] {
            Answer(qobject_cast<QMessageBox *>(QApplication::activeModalWidget()), QMessageBox::RejectRole);
        });
        QVERIFY(!plugin->CanClose());
        CUserInfo::GetInstance()->SetLoggedIn(QString()); // which closes the other table
        QVERIFY(plugin->CanClose());
        DestroySingletons();
        qInstallMessageHandler(tell);
    }
};

QTEST_MAIN(tst_table)
#include "tst_table.moc"
