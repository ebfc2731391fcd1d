// The window of the example client on a real display with a window manager, which puts a frame around it. It is run
// once for each scale factor of the screen.

#include <client/MainWindow.h>
#include <database/SettingsDB.h>
#include <files/Pathes.h>
#include <settings/Settings.h>

#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Singletons.h>

#include <QScreen>
#include <QtTest>

class tst_window : public QObject
{
    Q_OBJECT

    static constexpr int SETTLE_MS = 150; // in which a window manager answers
    const CInstallationTree m_tree;

    // Opens the client's window, has \a use do something with it, and answers the place at which it was closed.
    template <typename Use>
    static QRect OpenAndClose(const Use &use)
    {
        CHost host("127.0.0.1"_s, 1);
        CMainWindow window(host);
        window.show();
        if (!QTest::qWaitForWindowExposed(&window))
            return QRect();
        QTest::qWait(SETTLE_MS);
        use(window);
        QTest::qWait(SETTLE_MS);
        const QRect place(window.pos(), window.size());
        window.close();
        return place;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(CSettingsDB::GetInstance()->Init());
        GlobalDefines::RegisterQML();
    }
    void cleanup() { DestroySingletons(); }

    void KeepsItsPlace()
    {
        const auto nothing = [](QWidget &) {};
        const QRect moved = OpenAndClose([](QWidget &window) {
            window.resize(521, 433);
            window.move(61, 47);
        });
        QCOMPARE(moved, QRect(61, 47, 521, 433));
        for (int opening = 0; opening < 10; ++opening)
            QCOMPARE(OpenAndClose(nothing), moved);
        QWidget away; // on a screen that is far larger
        away.setGeometry(6000, 5000, 521, 433);
        CSettings::GetInstance()->SetWinPosByKey("client"_s, away.saveGeometry().toBase64());
        QVERIFY(QGuiApplication::primaryScreen()->availableGeometry().contains(OpenAndClose(nothing).center()));
    }
};

QTEST_MAIN(tst_window)
#include "tst_window.moc"
