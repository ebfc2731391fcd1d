#include "Tour.h"

#include <ui/TableView.h>

#include <QAction>
#include <QCheckBox>
#include <QJSValue>
#include <QMouseEvent>
#include <QQuickItem>
#include <QQuickWidget>
#include <QTableView>
#include <QtTest>

#include <cmath>

namespace {

constexpr int DRAG = 20; // pixels

} // namespace

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
        const bool areWide = read("quickTables", "contentWidth").toDouble() > m_window.width() / 2.0;
        return areWide && read("quickTables", "rows") == rows ? rows + QLatin1String(" tables") : QString();
    };
    const auto findView = [&] { return widgets->parentWidget()->parentWidget()->findChild<QQuickWidget *>(); };
    const auto press = [&](const QVector<Qt::Key> &keys) {
        for (const Qt::Key key : keys)
            QTest::keyClick(findView(), key);
    };
    Step("An option shows the same tables in QML"_s, switchLobby,
         [&] { return findView() && findView()->isVisible() ? seeTables() : QString(); });
    See("And the account's line"_s, [&] { return read("quickMoney", "text"); });
    See("In the colours of the widgets"_s, [&] {
        const auto colour = findView()->rootObject()->property("highlight").value<QColor>();
        return colour == findView()->palette().color(QPalette::Highlight) ? colour.name() : QString();
    });
    Step(
        "In the user's language at once"_s, [] { SetLanguage("Deutsch"_s); },
        [&] { return read("quickType", "displayText") == "Alle Tische"_s ? read("quickCount", "text") : QString(); });
    ChooseLanguage("English"_s, {});
    const auto typeFilter = [&] {
        findView()->setFocus(Qt::TabFocusReason); // and the filter has it in there
        press({Qt::Key_S, Qt::Key_T, Qt::Key_U, Qt::Key_D});
    };
    Step(
        "The window is in front again"_s, [this] { m_window.activateWindow(); },
        [this] { return m_window.isActiveWindow() ? m_window.windowTitle() : QString(); });
    double width = 0; // of the first column
    const auto readWidth = [&] {
        const QVariant widths = findView()->rootObject()->property("widths");
        return widths.value<QJSValue>().toVariant().toList().value(0).toDouble();
    };
    const auto drag = [&] {
        width = readWidth();
        const auto *rows = findView()->rootObject()->findChild<QQuickItem *>("quickTables"_s);
        const QPoint edge = rows->mapToScene(QPointF(width, -m_window.fontMetrics().height())).toPoint();
        QTest::mousePress(findView(), Qt::LeftButton, {}, edge);
        const QPoint end = edge + QPoint(DRAG, 0);
        QMouseEvent move(QEvent::MouseMove, end, findView()->mapToGlobal(end), Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(findView(), &move);
        QTest::mouseRelease(findView(), Qt::LeftButton, {}, end);
    };
    Step("A column is dragged, which is stored"_s, drag, [&] {
        m_strFault = "%1 to %2"_s.arg(width).arg(readWidth());
        const bool isStored = TableView::Load("lobby"_s).value(0) == std::floor(readWidth());
        return isStored && qAbs(readWidth() - width - DRAG) < 2 ? m_strFault : QString();
    });
    Step("A filter is typed"_s, typeFilter,
         [&] { return widgets->model()->rowCount() < 100 ? seeTables() : QString(); });
    const auto choose = [&] { press({Qt::Key_Return, Qt::Key_End, Qt::Key_Up, Qt::Key_Return}); };
    const auto seeSeat = [this] {
        return SeeSeat(FIRST_NICKNAME).isEmpty() ? QString() : SaveScreenshot(m_window, "lobby-qml"_s);
    };
    Step("Keys choose a table for a seat"_s, choose, seeSeat);
    TypeFilter(QString());
    Step("And back to the widgets"_s, switchLobby,
         [&] { return widgets->isVisible() && !Find<QQuickWidget>() ? SeeFilledLobby() : QString(); });
}
