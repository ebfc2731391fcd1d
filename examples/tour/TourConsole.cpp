#include "Tour.h"

#include <client/ConsoleWindow.h>

#include <QLineEdit>
#include <QTableView>
#include <QtTest>

// The window of the console is the one tab widget in the window that has a frame of its own.
void CTour::ShowConsole()
{
    const auto find = [this] { return Find<QTabWidget>("console"); };
    const auto seeRows = [&](int column, const QString &text) {
        const auto *rows = find() ? find()->currentWidget()->findChild<QTableView *>()->model() : nullptr;
        const QModelIndexList found =
            rows ? rows->match(rows->index(0, column), Qt::DisplayRole, text, -1, Qt::MatchContains)
                 : QModelIndexList();
        return found.isEmpty() ? QString()
                               : QStringLiteral("%1 of %2 rows, the first one says %3")
                                     .arg(found.size())
                                     .arg(rows->rowCount())
                                     .arg(found.constFirst().data().toString());
    };
    Step(
        QStringLiteral("A shortcut opens the console with the plugins' start"),
        [this] { QTest::keyClick(&m_window, Qt::Key_F12); },
        [&] { return seeRows(3, QStringLiteral("\" 1.0 started")); });
    Step(
        QStringLiteral("A picture of the messages"), [] {},
        [&] { return SaveScreenshot(*find(), QStringLiteral("console")); });
    Step(
        QStringLiteral("The events of the lobby cross the bus"), [&] { find()->setCurrentIndex(1); },
        [&] { return seeRows(2, QStringLiteral("LOBB")); });
    Step(
        QStringLiteral("The tag chooses them"),
        [&] { QTest::keyClicks(find()->currentWidget()->findChild<QLineEdit *>(), QStringLiteral("lobb")); },
        [&] {
            find()->currentWidget()->findChild<QTableView *>()->selectRow(0);
            return seeRows(2, QStringLiteral("LOBB"));
        });
    Step(
        QStringLiteral("A picture of the bus"), [] {},
        [&] { return SaveScreenshot(*find(), QStringLiteral("bus")); });
    Step(
        QStringLiteral("The console closes"), [&] { find()->close(); },
        [&] { return find() ? QString() : QStringLiteral("no console"); });
}
