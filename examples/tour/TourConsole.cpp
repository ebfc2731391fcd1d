#include "Tour.h"

#include <client/ConsoleWindow.h>

#include <QLineEdit>
#include <QTableView>
#include <QtTest>

void CTour::ShowConsole()
{
    const auto find = [this] { return Find<QTabWidget>("console"); };
    const auto seeRows = [&](int column, const QString &text, const QString &picture) {
        auto *view = find() ? find()->currentWidget()->findChild<QTableView *>() : nullptr;
        if (!view || !view->model()->index(0, column).data().toString().contains(text))
            return QString();
        view->selectRow(0);
        return QStringLiteral("rows: %1, %2").arg(view->model()->rowCount()).arg(SaveScreenshot(*find(), picture));
    };
    Step(
        QStringLiteral("A shortcut opens the console, which tells of the plugins' start"),
        [this] { QTest::keyClick(&m_window, Qt::Key_F12); },
        [&] { return seeRows(3, QStringLiteral(" started"), QStringLiteral("console")); });
    Step(
        QStringLiteral("Its other page has the events of the bus that bear a tag"),
        [&] {
            find()->setCurrentIndex(1);
            QTest::keyClicks(find()->currentWidget()->findChild<QLineEdit *>(), QStringLiteral("LOBB"));
        },
        [&] { return seeRows(2, QStringLiteral("LOBB"), QStringLiteral("bus")); });
    for (const char *language : {"Français", "Deutsch", "English"}) {
        for (const int page : {0, 1})
            Step(
                QStringLiteral("Page %1 fits in the language %2").arg(page + 1).arg(QString::fromUtf8(language)),
                [&] {
                    find()->setCurrentIndex(page);
                    ChooseEntry("languages", QString::fromUtf8(language));
                },
                [&] { return SeeTexts(QString::fromUtf8(language)); });
    }
    Step(
        QStringLiteral("The console closes"), [&] { find()->close(); },
        [&] { return find() ? QString() : QStringLiteral("no console"); });
}
