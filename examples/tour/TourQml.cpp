#include "Tour.h"

#include <QAction>
#include <QCheckBox>
#include <QQuickItem>
#include <QQuickWidget>
#include <QTableView>
#include <QtTest>

void CTour::ShowQml()
{
    const auto switchLobby = [this] {
        Find<QAction>("openOptions")->trigger();
        Find<QCheckBox>("lobbyInQml")->click();
        QMetaObject::invokeMethod(Find<QAbstractButton>("OPTIONS_OK"), &QAbstractButton::click, Qt::QueuedConnection);
    };
    const auto read = [this](const char *item, const char *property) {
        const auto views = m_window.findChildren<QQuickWidget *>();
        for (const QQuickWidget *view : views) {
            if (const auto *found = view->rootObject()->findChild<QObject *>(QLatin1String(item)))
                return found->property(property).toString();
        }
        return QString();
    };
    const auto *widgets = Find<QTableView>("lobbyTable");
    const auto seeTables = [&] {
        const QString rows = QString::number(widgets->model()->rowCount());
        return read("quickTables", "rows") == rows ? rows + QLatin1String(" tables") : QString();
    };
    const auto findView = [&] { return widgets->parentWidget()->parentWidget()->findChild<QQuickWidget *>(); };
    const auto press = [&](const QVector<Qt::Key> &keys) {
        for (const Qt::Key key : keys)
            QTest::keyClick(findView(), key);
    };
    Step(QStringLiteral("An option shows the same tables in QML"), switchLobby,
         [&] { return findView() && findView()->isVisible() ? seeTables() : QString(); });
    Step(
        QStringLiteral("And the account's line"), [] {}, [&] { return read("quickMoney", "text"); });
    const auto typeFilter = [&] {
        findView()->setFocus(Qt::TabFocusReason);
        press({Qt::Key_Tab, Qt::Key_S, Qt::Key_T, Qt::Key_U, Qt::Key_D});
    };
    Step(
        QStringLiteral("The window is in front again"), [this] { m_window.activateWindow(); },
        [this] { return m_window.isActiveWindow() ? m_window.windowTitle() : QString(); });
    Step(QStringLiteral("A filter is typed"), typeFilter,
         [&] { return widgets->model()->rowCount() < 100 ? seeTables() : QString(); });
    const auto choose = [&] { press({Qt::Key_Return, Qt::Key_End, Qt::Key_Up, Qt::Key_Return}); };
    const auto seeSeat = [this] {
        return SeeSeat(FIRST_NICKNAME).isEmpty() ? QString() : SaveScreenshot(m_window, QStringLiteral("lobby-qml"));
    };
    Step(QStringLiteral("Keys choose a table for a seat"), choose, seeSeat);
    TypeFilter(QString());
    Step(QStringLiteral("And back to the widgets"), switchLobby,
         [&] { return widgets->isVisible() && !Find<QQuickWidget>() ? SeeFilledLobby() : QString(); });
}
