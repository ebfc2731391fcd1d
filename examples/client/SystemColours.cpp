#include "SystemColours.h"

#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QPalette>

#ifdef EXAMPLE_DBUS
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#endif

#include <functional>

namespace {

// The portal's wishes; any other number stands for none.
constexpr unsigned int WANTS_DARK = 1;
constexpr unsigned int WANTS_LIGHT = 2;
constexpr int MIDDLE_LIGHTNESS = 128;

bool IsDarkPalette(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < MIDDLE_LIGHTNESS;
}

#ifdef EXAMPLE_DBUS

const QString PORTAL_INTERFACE = QStringLiteral("org.freedesktop.portal.Settings");
const QString PORTAL_PATH = QStringLiteral("/org/freedesktop/portal/desktop");
const QString PORTAL_AREA = QStringLiteral("org.freedesktop.appearance");
const QString PORTAL_KEY = QStringLiteral("color-scheme");

// Returns whether there is a bus of the session. The library of the bus would start one otherwise, which takes long.
bool HasSessionBus()
{
    return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") ||
           QFile::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + QLatin1String("/bus"));
}

// Reads a number, which portals wrap several times.
unsigned int ReadWish(QVariant value)
{
    while (value.userType() == qMetaTypeId<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value.toUInt();
}

/// Tells what the user wants when the portal answers, and each time that it changes.
class CColourPortal : public QObject
{
    Q_OBJECT

public:
    CColourPortal(const std::function<void(unsigned int)> &tell, QObject *parent)
        : QObject(parent)
        , m_tell(tell)
    {
        qRegisterMetaType<QDBusVariant>(); // Qt 6 looks it up by its name
        QDBusConnection bus = QDBusConnection::sessionBus();
        // From any sender: the portal may start later, and its name would have to be waited for.
        bus.connect(QString(), PORTAL_PATH, PORTAL_INTERFACE, QStringLiteral("SettingChanged"), this,
                    SLOT(slot_SettingChanged(QString, QString, QDBusVariant)));
        QDBusMessage question = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"),
                                                               PORTAL_PATH, PORTAL_INTERFACE, QStringLiteral("Read"));
        question << PORTAL_AREA << PORTAL_KEY;
        const auto *answer = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
        connect(answer, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *watcher) {
            const QDBusPendingReply<QDBusVariant> reply = *watcher;
            if (!reply.isError())
                m_tell(ReadWish(QVariant::fromValue(reply.value())));
            watcher->deleteLater();
        });
    }

private Q_SLOTS:
    void slot_SettingChanged(const QString &area, const QString &key, const QDBusVariant &value)
    {
        if (area == PORTAL_AREA && key == PORTAL_KEY)
            m_tell(ReadWish(value.variant()));
    }

private:
    const std::function<void(unsigned int)> m_tell;
};

#endif

} // namespace

CSystemColours::CSystemColours(QObject *window)
    : QObject(window)
    , m_bDarkPlatform(IsDarkPalette(QApplication::palette()))
{
    window->installEventFilter(this);
#ifdef EXAMPLE_DBUS
    if (HasSessionBus())
        new CColourPortal(
            [this](unsigned int wish) {
                m_uiWish = wish;
                Q_EMIT signal_Changed();
            },
            this);
#endif
}

bool CSystemColours::IsDark() const
{
    return m_uiWish == WANTS_DARK || (m_uiWish != WANTS_LIGHT && m_bDarkPlatform);
}

bool CSystemColours::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::ThemeChange) {
        const QPalette own = QApplication::palette();
        QApplication::setPalette(QPalette()); // which is the platform's then
        m_bDarkPlatform = IsDarkPalette(QApplication::palette());
        QApplication::setPalette(own);
        Q_EMIT signal_Changed();
    }
    return QObject::eventFilter(object, event);
}

#ifdef EXAMPLE_DBUS
#include "SystemColours.moc"
#endif
