#include <common/QuickView.h>
#include <protocol/LobbyProtocol.h>

#include <support/Singletons.h>

#include <QQuickItem>
#include <QQuickWidget>
#include <QtTest>

class tst_qmllobby : public QObject
{
    Q_OBJECT

    QScopedPointer<QWidget> m_pView;

    QString Text(const char *name, const char *property = "text") const
    {
        const auto views = m_pView->findChildren<QQuickWidget *>();
        for (const QQuickWidget *view : views) {
            const auto *root = view->rootObject(); // null until it is read
            if (const auto *item = root ? root->findChild<QObject *>(QLatin1String(name)) : nullptr)
                return item->property(property).toString() + QLatin1Char('|');
        }
        return QString();
    }

private Q_SLOTS:
    void showsSettingsAndLanguage()
    {
        QDir::setCurrent(QStringLiteral(CLIENT_FOLDER));
        QVERIFY(CTranslationDB::GetInstance()->Init());
        GlobalDefines::RegisterQML();
        Q_INIT_RESOURCE(client);
        CSettings *settings = CSettings::GetInstance();
        settings->SetSelectedLanguage(2); // English
        m_pView.reset(new QWidget);
        qobject_cast<CPluginInterface *>(QPluginLoader(QStringLiteral(LOBBY_PLUGIN_PATH)).instance())
            ->CreateView(m_pView.data());
        new CQuickView(new QWidget, QUrl(QStringLiteral("qrc:/client/AccountLine.qml")), {}, m_pView.data());
        settings->SetRinggameFilter("\xc3\xa4"); // as for another user
        settings->SetSelectedGametype(GlobalDefines::TT_TOURNAMENT);
        QTRY_COMPARE(Text("quickFilter") + Text("quickType", "displayText"), QStringLiteral("\u00e4|Tournaments|"));
        QTRY_VERIFY(!Text("quickUser").isEmpty());
        auto *filter =
            m_pView->findChild<QQuickWidget *>()->rootObject()->findChild<QObject *>(QStringLiteral("quickFilter"));
        filter->setProperty("text", QStringLiteral("Bann"));
        QMetaObject::invokeMethod(filter, "textEdited"); // as when the user types
        QCOMPARE(settings->GetRinggameFilter(), QByteArray("Bann"));
        settings->SetSelectedLanguage(3); // German
        CUserInfo::GetInstance()->SetLoggedIn(QStringLiteral("Magnolia"));
        QCOMPARE(Text("quickType", "displayText") + Text("quickStatus") + Text("quickUser"),
                 QStringLiteral("Turniere|Warte auf den Spielserver|Magnolia|"));
    }

    void switchesUnlessBroken()
    {
        CSettings::GetInstance()->SetPokerLobbyType(QStringLiteral("widgets"));
        QVERIFY(m_pView->findChildren<QQuickWidget *>().isEmpty());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("nothing.qml")));
        const CQuickView broken(new QWidget, QUrl(QStringLiteral("qrc:/nothing.qml")), {}, nullptr);
        CSettings::GetInstance()->SetPokerLobbyType(QStringLiteral("qml"));
        const auto lastMessage = [] { return CConsole::GetMessages().value(0).strMessage; };
        QTRY_VERIFY(lastMessage().contains(QLatin1String("nothing.qml")));
        QTRY_VERIFY(!Text("quickFilter").isEmpty() && !Text("quickUser").isEmpty());
        QVERIFY(!broken.IsQuickShown());
        m_pView.reset();
    }

    void cleanupTestCase()
    {
        QTest::qWait(100); // Qt's animation of a field's button ends by itself, a frame behind the field
        DestroySingletons();
    }
};

QTEST_MAIN(tst_qmllobby)
#include "tst_qmllobby.moc"
