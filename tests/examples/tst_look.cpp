// The example client's colours follow the setting and the desktop, whose portal the test plays on a bus of its own.

#include <client/Look.h>
#include <settings/Settings.h>

#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Singletons.h>

#include <QApplication>
#include <QDBusConnection>
#include <QDBusVariant>
#include <QPalette>
#include <QProcess>
#include <QWidget>
#include <QtTest>

namespace {

const QString AREA = "org.freedesktop.appearance"_s;
const QString KEY = "color-scheme"_s;

enum EWish : unsigned int { NO_WISH, DARK, LIGHT };

QDBusVariant Wrap(unsigned int wish)
{
    return QDBusVariant(wish);
}

bool IsDark()
{
    return QApplication::palette().color(QPalette::Window).lightness() < 128;
}

} // namespace

class CFakePortal : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public Q_SLOTS:
    // Portals wrap the answer twice.
    QDBusVariant Read(const QString &area,
                      const QString &key) // NOLINT(readability-convert-member-functions-to-static)
    {
        return area == AREA && key == KEY ? QDBusVariant(QVariant::fromValue(Wrap(DARK))) : QDBusVariant();
    }

Q_SIGNALS:
    void SettingChanged(const QString &area, const QString &key, const QDBusVariant &value);
};

class tst_look : public QObject
{
    Q_OBJECT

    const CInstallationTree m_tree;
    QProcess m_bus;
    CFakePortal m_portal;
    QVector<bool> m_shown; // whether it was dark, one after the other

    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::ApplicationPaletteChange && m_shown.constLast() != IsDark())
            m_shown.append(IsDark());
        return QObject::eventFilter(object, event);
    }

private Q_SLOTS:
    void initTestCase()
    {
        qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        qputenv("XDG_RUNTIME_DIR", "/nowhere");
    }

    void cleanupTestCase()
    {
        DestroySingletons();
        m_bus.kill();
        m_bus.waitForFinished();
    }

    void WithoutABusItIsLight()
    {
        QWidget window;
        Look::Follow(&window);
        QVERIFY(!IsDark());
        CSettings::GetInstance()->SetThemeGeneral(Look::CO_DARK);
        QEvent change(QEvent::ThemeChange);
        QCoreApplication::sendEvent(&window, &change); // the palette in effect isn't the platform's
        QVERIFY(IsDark());
        CSettings::GetInstance()->SetThemeGeneral(Look::CO_SYSTEM);
        QVERIFY(!IsDark());
    }

    void FollowsThePortal()
    {
        m_bus.start("dbus-daemon"_s, {"--session"_s, "--nofork"_s, "--print-address"_s});
        QVERIFY(m_bus.waitForReadyRead());
        const QByteArray address = m_bus.readLine().trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        auto bus = QDBusConnection::connectToBus(QString::fromLatin1(address), "portal"_s);
        QVERIFY(bus.registerObject("/org/freedesktop/portal/desktop"_s, &m_portal,
                                   QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
        QVERIFY(bus.registerService("org.freedesktop.portal.Desktop"_s));

        QWidget window;
        QElapsedTimer timer;
        timer.start();
        Look::Follow(&window); // while the portal, which is in this thread, can't answer
        QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(!IsDark());
        QTRY_VERIFY(IsDark());
        Q_EMIT m_portal.SettingChanged(AREA, KEY, Wrap(LIGHT));
        QTRY_VERIFY(!IsDark());
        Q_EMIT m_portal.SettingChanged(AREA, KEY, Wrap(DARK));
        QTRY_VERIFY(IsDark());
        Q_EMIT m_portal.SettingChanged(AREA, KEY, Wrap(NO_WISH));
        QTRY_VERIFY(!IsDark());
        m_shown = {false};
        qApp->installEventFilter(this);
        for (const auto &[key, wish] : {std::pair("contrast"_s, DARK), {KEY, LIGHT}, {KEY, DARK}})
            Q_EMIT m_portal.SettingChanged(AREA, key, Wrap(wish));
        QTRY_VERIFY(IsDark());
        QCOMPARE(m_shown, QVector<bool>({false, true}));

        CSettings::GetInstance()->SetThemeGeneral(Look::CO_LIGHT);
        QVERIFY(!IsDark());
        CSettings::GetInstance()->SetThemeGeneral(Look::CO_SYSTEM);
        QVERIFY(IsDark());
    }
};

QTEST_MAIN(tst_look)
#include "tst_look.moc"
