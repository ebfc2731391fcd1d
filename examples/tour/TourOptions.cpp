#include "Tour.h"

#include <ui/MenuManager.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QDialog>
#include <QHeaderView>
#include <QListWidget>
#include <QTableView>
#include <QWindow>
#include <QtTest>

namespace {

constexpr int SOUNDS_PAGE = 1;
constexpr int ORDER_COLUMN = 4;
constexpr QPoint DRAG(-24, 0);
constexpr char OPTION[] = "winningsounds"; // off by default

void Click(QWidget &widget, const QPoint &place)
{
    QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier, place);
}

// The window gets it all, as from a mouse.
void Drag(const QWidget &widget, const QPoint &from, const QPoint &way)
{
    QWindow *window = widget.window()->windowHandle();
    const QPoint place = widget.mapTo(widget.window(), from);
    QTest::mousePress(window, Qt::LeftButton, Qt::NoModifier, place);
    QTest::mouseMove(window, place + way);
    QTest::mouseRelease(window, Qt::LeftButton, Qt::NoModifier, place + way);
}

} // namespace

void CTour::ShowPluginMenu()
{
    CMenu *menu = CMenuManager::GetInstance()->GetMenu(QStringLiteral("MENU_TABLES"));
    QMenuBar *bar = CMenuManager::GetInstance()->GetMenuBar();
    Step(
        QStringLiteral("A click opens the menu of the plugins"),
        [&] { Click(*bar, bar->actionGeometry(menu->menuAction()).center()); },
        [&] {
            QStringList entries;
            const QList<QAction *> actions = menu->isVisible() ? menu->actions() : QList<QAction *>();
            for (const QAction *action : actions)
                entries.append(action->text() + QLatin1String(action->isEnabled() ? "" : " (not now)"));
            return entries.join(QLatin1String(", "));
        });
    Step(
        QStringLiteral("A key closes it"), [&] { QTest::keyClick(menu, Qt::Key_Escape); },
        [&] { return menu->isVisible() ? QString() : QStringLiteral("no menu"); });
}

void CTour::ShowOptions()
{
    Step(
        QStringLiteral("A shortcut opens the options"), [this] { OpenOptions(); },
        [this] { return Find<QDialog>("options") ? Find<QDialog>("options")->windowTitle() : QString(); });
    for (const char *language : {"Français", "Deutsch", "English"}) {
        const QString name = QString::fromUtf8(language);
        Step(
            QStringLiteral("All its pages fit in the language %1").arg(name), [&] { ChooseEntry("languages", name); },
            [&] {
                QString seen = name;
                for (int page = 0; page < Find<QListWidget>("optionsPages")->count() && !seen.isEmpty(); ++page) {
                    ChooseOptionsPage(page);
                    seen = SeeTexts(name);
                }
                return seen;
            });
    }
    const auto clickOption = [this] { Click(*Find<QCheckBox>(OPTION), QPoint(8, 8)); };
    const auto seeOption = [this] { return SeeRows({QStringLiteral("magnolia|winningsounds|true")}); };
    Step(
        QStringLiteral("The user changes an option and applies it"),
        [&] {
            ChooseOptionsPage(SOUNDS_PAGE);
            clickOption();
            Find<QAbstractButton>("OPTIONS_APPLY")->click();
        },
        seeOption);
    Step(
        QStringLiteral("A picture of the options"), [] {},
        [this] { return SaveScreenshot(*Find<QDialog>("options"), QStringLiteral("options")); });
    Step(
        QStringLiteral("What is given up changes nothing"),
        [&] {
            clickOption();
            QTest::keyClick(Find<QDialog>("options"), Qt::Key_Escape);
        },
        [&] { return Find<QDialog>("options") ? QString() : seeOption(); });
}

void CTour::ShowColumns()
{
    const QHeaderView *header = Find<QTableView>("lobbyTable")->horizontalHeader();
    const int before = header->sectionSize(0);
    const QPoint border(before - 1, header->height() / 2);
    Step(
        QStringLiteral("The user drags a column's border"), [&] { Drag(*header->viewport(), border, DRAG); },
        [&] { return header->sectionSize(0) == before + DRAG.x() ? DescribeColumns() : QString(); });
    Step(
        QStringLiteral("And chooses another order of the rows"),
        [&] { Click(*header->viewport(), QPoint(header->sectionPosition(ORDER_COLUMN) - DRAG.x(), border.y())); },
        [this] { return SeeRows({QStringLiteral("magnolia|headersortingcolumn[lobby]|%1").arg(ORDER_COLUMN)}); });
}

// Another process uses the installation of this one, whose window is closed meanwhile.
void CTour::ShowReopenedClient()
{
    const QString columns = DescribeColumns();
    const QString place = DescribePlace();
    Step(
        QStringLiteral("The window closes"), [this] { m_window.close(); },
        [this] { return m_window.isVisible() ? QString() : QStringLiteral("no window"); });
    if (!m_bFailed)
        m_secondMachine.Start(m_options.strOutput, m_options.usPort);
    DoThere({"The client starts anew", "connect"});
    DoThere({"The user logs in", "log in", "", qPrintable(FIRST_NICKNAME)});
    DoThere({"The window is where it was", "see place", "", qPrintable(place)});
    DoThere({"Columns and order are as they were", "see columns", "", qPrintable(columns)});
    DoThere({"The option is as it was", "see option", OPTION});
    EndSecondMachine();
    Step(
        QStringLiteral("The window opens again"), [this] { m_window.show(); },
        [this] { return m_window.isActiveWindow() ? DescribePlace() : QString(); });
}

void CTour::OpenOptions() const
{
    QTest::keyClick(&m_window, Qt::Key_O, Qt::ControlModifier);
}

void CTour::ChooseOptionsPage(int page) const
{
    auto *pages = Find<QListWidget>("optionsPages");
    Click(*pages->viewport(), pages->visualItemRect(pages->item(page)).center());
}

QString CTour::DescribeColumns() const
{
    const QHeaderView *header = Find<QTableView>("lobbyTable")->horizontalHeader();
    QString text = QStringLiteral("ordered by column %1, widths").arg(header->sortIndicatorSection());
    for (int column = 0; column < header->count(); ++column)
        text += QStringLiteral(" %1").arg(header->sectionSize(column));
    return text;
}

QString CTour::DescribePlace() const
{
    const QRect place = m_window.geometry();
    return QStringLiteral("%1 by %2 at %3, %4").arg(place.width()).arg(place.height()).arg(place.x()).arg(place.y());
}
