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
        return SaveScreenshot(*find(), picture);
    };
    Step(
        "A shortcut opens the console, which tells of the plugins' start"_s,
        [this] { QTest::keyClick(&m_window, Qt::Key_F12); }, [&] { return seeRows(3, " started"_s, "console"_s); });
    Step(
        "Its other page has the events of the bus that bear a tag"_s,
        [&] {
            find()->setCurrentIndex(1);
            QTest::keyClicks(find()->currentWidget()->findChild<QLineEdit *>(), "LOBB"_s);
        },
        [&] { return seeRows(2, "LOBB"_s, "bus"_s); });
    for (const int page : {0, 1}) {
        if (!m_bFailed)
            find()->setCurrentIndex(page);
        ShowInLanguages("Its page fits in the language %1"_s,
                        [this](const QString &language) { return SeeTexts(language); });
    }
    Step(
        "The console closes"_s, [&] { find()->close(); }, [&] { return find() ? QString() : "no console"_s; });
}
