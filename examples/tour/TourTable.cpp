#include "Tour.h"

#include <common/SeatEvent.h>
#include <common/Texts.h>
#include <files/Pathes.h>
#include <settings/Settings.h>
#include <ui/MenuManager.h>

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QSpinBox>
#include <QTableView>
#include <QTextBrowser>
#include <QTextFragment>
#include <QtTest>

namespace {

// A table with a fixed limit of €0.25/€0.50, where few play.
const QString TABLE_NAME = "Malmo"_s;
const QString TABLE_OBJECT = "table1036"_s;
constexpr QSize SIZE(1000, 680); // of the lobby's window, but for when a table needs room

// Chooses an entry of the plugins' menu, as far as it can be chosen.
void ChooseTablesEntry(const char *key)
{
    CMenu *menu = CMenuManager::GetInstance()->GetMenu(SeatEvent::MENU);
    menu->popup(QPoint());
    const QList<QAction *> entries = menu->actions();
    for (QAction *entry : entries) {
        if (entry->text() == Texts::Get(key) && entry->isEnabled())
            Trigger(entry);
    }
    menu->close();
}

// How many pictures the document shows that are really there.
int CountPictures(const QTextDocument &document)
{
    int pictures = 0;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto part = block.begin(); !part.atEnd(); ++part) {
            const QTextImageFormat format = part.fragment().charFormat().toImageFormat();
            const QUrl url(format.name());
            pictures += format.isValid() && document.resource(QTextDocument::ImageResource, url).isValid() ? 1 : 0;
        }
    }
    return pictures;
}

// Who sits around the table, each as "nickname: stack", in the order of the seats.
QStringList ReadSeats(const QWidget &table)
{
    QStringList seats;
    const auto stacks = table.findChildren<QLabel *>("seatStack"_s);
    for (const QLabel *stack : stacks) {
        const auto *name = stack->parentWidget()->findChild<QLabel *>("seatName"_s);
        if (stack->isVisible())
            seats.append(name->text() + QLatin1String(": ") + stack->text());
    }
    return seats;
}

QString SeeTopUp(const QWidget &table)
{
    const QString text = table.findChild<QLabel *>("topUpText"_s)->text();
    const QStringList stored =
        QueryDatabase(Pathes::SettingsDB(), "SELECT URS_cValue FROM tbl_settings WHERE URS_cKey = "
                                            "'autotopupsettings' AND URS_cUser = 'magnolia'"_s);
    const QString setting = QString::fromLatin1(CSettings::GetInstance()->GetAutoTopUpSettings());
    const bool isSeen =
        text == "Below €20 the stack is topped up to €50."_s && !setting.isEmpty() && stored.contains(setting);
    return isSeen ? text : QString();
}

} // namespace

void CTour::ShowTable()
{
    QPointer<QWidget> table;
    Step(
        "The lobby makes room and shows one table"_s,
        [this] {
            m_window.resize(0, SIZE.height()); // which makes it as narrow as can be
            m_window.move(0, 0);
            TypeFilter(TABLE_NAME);
            Find<QTableView>("lobbyTable")->selectRow(0);
        },
        [this] {
            const auto *list = Find<QTableView>("lobbyTable");
            const bool isSeen = m_window.width() < SIZE.width() && list->model()->rowCount() == 1;
            return isSeen ? list->model()->index(0, 0).data().toString() : QString();
        });
    Step(
        "A seat that is taken by the menu opens the table beside the lobby"_s,
        [] { ChooseTablesEntry("ACTION_TAKE_SEAT"); },
        [&] {
            table = Find<QWidget>(TABLE_OBJECT.toLatin1());
            // Their frames, which the window manager adds afterwards, may lie upon each other.
            const bool isSeen =
                table && table->isActiveWindow() && table->geometry().left() >= m_window.geometry().right();
            return isSeen ? table->findChild<QLabel *>("tableFacts"_s)->text() : QString();
        });
    if (m_bFailed)
        return;
    ShowSeats(*table);
    ShowChat(*table);
    ShowTopUp(*table);
    TakePicture(*table, "table"_s);
    ShowInLanguages("The table is in %1"_s, [this](const QString &language) { return SeeTexts(language); });
    Step(
        "Whoever closes a table is asked whether to give up the seat"_s,
        [&] { QTest::keyClick(table, Qt::Key_W, Qt::ControlModifier); },
        [&] {
            auto *question = table->findChild<QMessageBox *>();
            return question && question->isActiveWindow() ? SaveScreenshot(*question, "question"_s) : QString();
        });
    Step(
        "And stays"_s, [&] { QTest::keyClick(table->findChild<QMessageBox *>(), Qt::Key_Escape); },
        [&] { return table->findChild<QMessageBox *>() ? QString() : table->windowTitle(); });
    Step(
        "The user leaves all tables"_s, [] { ChooseTablesEntry("ACTION_LEAVE_TABLES"); },
        [&] { return table ? QString() : "the window is gone"_s; });
    Step(
        "And sees the whole lobby again"_s,
        [this] {
            m_window.resize(SIZE);
            TypeFilter(QString());
        },
        [this] {
            const bool isSeen = m_window.size() == SIZE && SeeSeat(FIRST_NICKNAME).isEmpty();
            return isSeen ? SeeFilledLobby() : QString();
        });
}

void CTour::ShowSeats(const QWidget &table)
{
    const QString own = FIRST_NICKNAME + ": €25"_s;
    QStringList seats;
    See("Others sit there, and the user"_s, [&] {
        seats = ReadSeats(table);
        return seats.size() > 2 && seats.contains(own) ? seats.join(QLatin1String(", ")) : QString();
    });
    See("One wins from another"_s, [&] {
        const QStringList later = ReadSeats(table);
        const bool isSeen = later.size() == seats.size() && later != seats && later.contains(own);
        return isSeen ? later.join(QLatin1String(", ")) : QString();
    });
}

void CTour::ShowChat(const QWidget &table)
{
    Step(
        "A line goes to the game server and comes back with a smiley, and no other markup"_s,
        [&] {
            auto *line = table.findChild<QLineEdit *>("chatLine"_s);
            QTest::keyClicks(line, "Good <b>luck</b> :-)"_s);
            QTest::keyClick(line, Qt::Key_Return);
        },
        [&] {
            const auto *chat = table.findChild<QTextBrowser *>("chat"_s);
            const QString text = chat->toPlainText();
            const bool isSeen = text.contains(u' ' + FIRST_NICKNAME + QLatin1String(": Good <b>luck</b> ")) &&
                                !text.contains(QLatin1String(":-)")) && CountPictures(*chat->document()) == 1;
            return isSeen ? text.trimmed() : QString();
        });
}

void CTour::ShowTopUp(const QWidget &table)
{
    Step(
        "The user lets chips be bought, which is stored, and what it comes to is shown"_s,
        [&] {
            QTest::keyClick(table.findChild<QCheckBox *>("topUp"_s), Qt::Key_Space);
            auto *limit = table.findChild<QSpinBox *>("lowerLimit"_s);
            limit->selectAll();
            QTest::keyClicks(limit, "40"_s);
        },
        [&] { return SeeTopUp(table); });
}
