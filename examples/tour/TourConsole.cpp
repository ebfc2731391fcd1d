#include "Tour.h"
#include "VisibleTexts.h"

#include <client/ConsoleWindow.h>

#include <QHeaderView>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QTableView>
#include <QtTest>

namespace {

constexpr int DRAGGED_WIDTH = 311; // pixels
constexpr int DRAGGED_HEIGHT = 222;

QTableView *FindRows(const QTabWidget *console)
{
    return console ? console->currentWidget()->findChild<QTableView *>() : nullptr;
}

} // namespace

void CTour::ShowConsole()
{
    const auto find = [this] { return Find<QTabWidget>("console"); };
    const auto seeFirst = [&](int column, const QString &text) {
        const QTableView *view = FindRows(find());
        const bool isSeen = view && view->model()->index(0, column).data().toString().contains(text) &&
                            !view->selectionModel()->hasSelection();
        return isSeen ? "%1 rows"_s.arg(view->model()->rowCount()) : QString();
    };
    Step(
        "A shortcut opens the console, which tells of the plugins' start"_s,
        [this] { QTest::keyClick(&m_window, Qt::Key_F12); }, [&] { return seeFirst(3, " started"_s); });
    if (!m_bFailed)
        TakePicture(*find(), "console"_s);
    Step(
        "Its other page has the events of the bus that bear tags"_s,
        [&] {
            find()->setCurrentIndex(1);
            QTest::keyClicks(Find<QLineEdit>("group"), "lobb"_s);
            QTest::keyClicks(find()->currentWidget()->findChild<QLineEdit *>("search"_s), "pcnt"_s);
        },
        [&] { return seeFirst(3, "PCNT"_s); });
    Step(
        "A key chooses one, whose bytes and text are shown in the same lines"_s,
        [&] {
            FindRows(find())->setFocus();
            QTest::keyClick(FindRows(find()), Qt::Key_Space);
        },
        [&] {
            const QString hex = Find<QPlainTextEdit>("hex")->toPlainText();
            const QString text = Find<QPlainTextEdit>("text")->toPlainText();
            const bool isSeen = hex.startsWith("000000  50 43 4e 54 "_s) && text.startsWith("PCNT"_s) &&
                                hex.count(u'\n') == text.count(u'\n');
            return isSeen ? SaveScreenshot(*find(), "bus"_s) : QString();
        });
    for (const int page : {0, 1}) {
        if (!m_bFailed)
            find()->setCurrentIndex(page);
        ShowInLanguages("Its page fits in the language %1"_s,
                        [this](const QString &language) { return SeeTexts(language); });
    }
    ShowConsoleAgain();
}

// It is opened as it was closed.
void CTour::ShowConsoleAgain()
{
    const auto find = [this] { return Find<QTabWidget>("console"); };
    QRect place;
    const auto close = [&] { find()->close(); };
    const auto seeNone = [&] { return find() ? QString() : "no console"_s; };
    Step(
        "The user moves the console and makes it larger"_s,
        [&] {
            place = find()->geometry().adjusted(40, 30, 90, 60);
            find()->setGeometry(place);
            FinishLayout();
        },
        [&] { return find()->geometry() == place ? "done"_s : QString(); });
    Step(
        "And drags a column, and the border above the bytes"_s,
        [&] {
            FindRows(find())->horizontalHeader()->resizeSection(1, DRAGGED_WIDTH);
            auto *parts = Find<QSplitter>("parts");
            parts->setSizes({parts->height() - parts->handleWidth() - DRAGGED_HEIGHT, DRAGGED_HEIGHT});
            Q_EMIT parts->splitterMoved(0, 1);
        },
        [&] { return Find<QSplitter>("parts")->sizes().value(1) == DRAGGED_HEIGHT ? "done"_s : QString(); });
    Step("The console closes"_s, close, seeNone);
    Step(
        "It opens again as it was"_s, [this] { PressInFront(Qt::Key_F12); },
        [&] {
            if (!find())
                return QString();
            find()->setCurrentIndex(1);
            const int width = FindRows(find())->columnWidth(1);
            const int height = Find<QSplitter>("parts")->sizes().value(1);
            m_strFault = "%1 pixels, %2 pixels"_s.arg(width).arg(height);
            const bool isSeen = find()->geometry() == place && width == DRAGGED_WIDTH && height == DRAGGED_HEIGHT;
            return isSeen ? m_strFault : QString();
        });
    Step("And closes"_s, close, seeNone);
}
