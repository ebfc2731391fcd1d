#include "Tour.h"

#include <client/LoginDialog.h>
#include <common/Texts.h>
#include <files/Pathes.h>
#include <time/CasinoTime.h>

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QTableView>
#include <QToolButton>
#include <QtTest>

#include <algorithm>

namespace {

const QString SECOND_PASSWORD = "guest"_s; // opens an account under any new nickname
const char NOBODY[] = "USER_NONE";         // key of what stands in place of a nickname

// The users' settings as "user|key|value", read with another program. Rows without a time aren't counted.
QStringList ReadSettingsRows()
{
    return QueryDatabase(Pathes::SettingsDB(),
                         "SELECT URS_cUser, URS_cKey, URS_cValue FROM tbl_settings WHERE URS_iTimestamp > 0"_s);
}

int CountFreeSeats(const QModelIndex &row)
{
    const QStringList players = row.siblingAtColumn(4).data().toString().split(QLatin1Char('/'));
    return players.value(1).toInt() - players.value(0).toInt();
}

} // namespace

void CTour::ShowClock()
{
    See("The clock shows the server's time in the machine's time zone"_s, [this] {
        const CCasinoTime *clock = CCasinoTime::GetInstance();
        const auto seconds = static_cast<unsigned int>(QDateTime::currentSecsSinceEpoch());
        const QString now = clock->GetTimeString(seconds) + u' ' + clock->GetTimezoneString();
        return Find<QLabel>("clock")->text() == now ? now : QString();
    });
}

void CTour::ShowCancelledLogin()
{
    Step(
        "The user is asked for a nickname"_s, [this] { Find<QToolButton>("logInButton")->click(); },
        [this] { return SeeDialog(); });
    Step(
        "A server that doesn't answer keeps the user waiting"_s,
        [this] {
            m_gameServer.Pause(true);
            TypeLogin(FIRST_NICKNAME, FIRST_PASSWORD);
        },
        [this] {
            return Find<QProgressBar>("loginBusy")->isVisible()
                       ? SaveScreenshot(*Find<CLoginDialog>(), "login-waiting"_s)
                       : QString();
        });
    Step(
        "The user gives it up"_s, [this] { QTest::keyClick(Find<CLoginDialog>(), Qt::Key_Escape); },
        [this] { return SeeUser(Texts::Get(NOBODY)); });
    m_gameServer.Pause(false); // its answer comes too late
}

void CTour::ShowLogin()
{
    Step(
        "Whoever wants a seat has to log in"_s, [this] { ChooseTable(); }, [this] { return SeeDialog(); });
    Step(
        "A wrong password is refused"_s, [this] { TypeLogin(FIRST_NICKNAME, "flop"_s); },
        [this] {
            const auto *message = Find<QLabel>("loginMessage");
            const bool isSeen =
                message && message->isEnabled() && message->text() == Texts::Get("LOGIN_WRONG_PASSWORD");
            return isSeen ? message->text() : QString();
        });
    ShowDialogLanguages();
    Step(
        "The user logs in"_s, [this] { TypeLogin(FIRST_NICKNAME, FIRST_PASSWORD); },
        [this] { return SeeUser(FIRST_NICKNAME); });
    See("What waited for it goes out, and is answered"_s, [this] { return SeeSeat(FIRST_NICKNAME); });
}

void CTour::ShowSettings()
{
    Step(
        "The user's choices are rows of the user, and of the next one"_s,
        [this] {
            TypeFilter("omaha"_s);
            QTest::keyClick(Find<QComboBox>("lobbyType"), Qt::Key_Down);
            Trigger(Find<QAction>("sounds"));
        },
        [this] {
            return SeeRows({"magnolia|ringgamefilter|omaha"_s, "|ringgamefilter|omaha"_s,
                            "magnolia|selectedgametype|78"_s, "|selectedgametype|78"_s,
                            "magnolia|soundsenabled|false"_s, "|soundsenabled|false"_s, "|lastusername|Magnolia"_s});
        });
    Step(
        "The window's place is a row of the installation"_s,
        [this] {
            m_window.move(60, 40);
            m_window.resize(1080, 720);
        },
        [this] {
            const QString place = QString::fromLatin1(m_window.saveGeometry().toBase64());
            const bool isSeen = m_window.size() == QSize(1080, 720) &&
                                !SeeRows({QLatin1String("|winpos[client]|") + place}).isEmpty();
            return isSeen ? "1080 by 720 pixels"_s : QString();
        });
}

void CTour::ShowSecondUser()
{
    ChooseLanguage("Deutsch"_s, {"magnolia|selectedlanguage|3"_s, "|selectedlanguage|3"_s});
    LogOut();
    LogIn(SECOND_NICKNAME, SECOND_PASSWORD, FIRST_NICKNAME);
    See("A new user begins with what was chosen last, in rows of the own"_s, [this] {
        const bool isSeen = !SeeFilter("omaha"_s).isEmpty() && !SeeTexts("Deutsch"_s).isEmpty();
        return isSeen ? SeeRows({"robin|ringgamefilter|omaha"_s, "robin|soundsenabled|false"_s,
                                 "robin|selectedlanguage|3"_s})
                      : QString();
    });
    ChooseLanguage("English"_s, {"robin|selectedlanguage|2"_s, "magnolia|selectedlanguage|3"_s});
    Step(
        "Other choices leave the first user's as they are"_s,
        [this] {
            TypeFilter("stud"_s);
            Trigger(Find<QAction>("sounds"));
        },
        [this] {
            return SeeRows({"robin|ringgamefilter|stud"_s, "magnolia|ringgamefilter|omaha"_s,
                            "robin|soundsenabled|true"_s, "magnolia|soundsenabled|false"_s});
        });
    LogOut();
}

void CTour::ShowFirstUserAgain()
{
    LogIn(FIRST_NICKNAME, FIRST_PASSWORD, SECOND_NICKNAME);
    See("The first user finds the own choices"_s, [this] {
        const bool isSeen = !SeeFilter("omaha"_s).isEmpty() && !Find<QAction>("sounds")->isChecked();
        return isSeen ? SeeTexts("Deutsch"_s) : QString();
    });
    ChooseLanguage("English"_s, {"magnolia|selectedlanguage|2"_s});
    Step(
        "Without them the list is whole again"_s,
        [this] {
            QTest::keyClick(Find<QComboBox>("lobbyType"), Qt::Key_Up);
            TypeFilter(QString());
        },
        [this] { return SeeFilledLobby(); });
}

// Asks for a seat where there is one.
void CTour::ChooseTable() const
{
    auto *table = Find<QTableView>("lobbyTable");
    QModelIndex best = table->model()->index(0, 0);
    for (int row = 1; row < table->model()->rowCount(); ++row) {
        const QModelIndex other = best.siblingAtRow(row);
        best = CountFreeSeats(other) > CountFreeSeats(best) ? other : best;
    }
    table->setCurrentIndex(best);
    QTest::keyClick(table, Qt::Key_Return);
}

void CTour::TypeFilter(const QString &text) const
{
    auto *filter = Find<QLineEdit>("lobbyFilter");
    filter->selectAll();
    QTest::keyClick(filter, Qt::Key_Delete);
    QTest::keyClicks(filter, text);
}

void CTour::LogIn(const QString &nickname, const QString &password, const QString &lastNickname)
{
    Step(
        "The dialog knows who was here last"_s, [&] { Trigger(Find<QAction>("logIn")); },
        [&] {
            const bool isSeen = !SeeDialog().isEmpty() && Find<QLineEdit>("loginNickname")->text() == lastNickname;
            const QString seen = lastNickname.isEmpty() ? "nobody"_s : lastNickname;
            return isSeen ? seen : QString();
        });
    Step(
        "%1 logs in"_s.arg(nickname), [&] { TypeLogin(nickname, password); }, [&] { return SeeUser(nickname); });
}

void CTour::LogOut()
{
    Step(
        "The user logs out"_s, [this] { Trigger(Find<QAction>("logOut")); },
        [this] { return SeeUser(Texts::Get(NOBODY)); });
}

void CTour::TypeLogin(const QString &nickname, const QString &password) const
{
    auto *nicknameField = Find<QLineEdit>("loginNickname");
    nicknameField->selectAll();
    QTest::keyClicks(nicknameField, nickname);
    auto *passwordField = Find<QLineEdit>("loginPassword");
    QTest::keyClicks(passwordField, password);
    QTest::keyClick(passwordField, Qt::Key_Return);
}

// A window that isn't on the screen yet can't be closed without complaints of the display.
QString CTour::SeeDialog() const
{
    const auto *dialog = Find<CLoginDialog>();
    return dialog && dialog->isActiveWindow() ? dialog->windowTitle() : QString();
}

// The dialog has gone too.
QString CTour::SeeUser(const QString &text) const
{
    return !Find<CLoginDialog>() && Find<QLabel>("user")->text() == text ? text : QString();
}

QString CTour::SeeFilter(const QString &text) const
{
    return Find<QLineEdit>("lobbyFilter")->text() == text ? text : QString();
}

QString CTour::SeeSeat(const QString &nickname) const
{
    const QString status = Find<QLabel>("lobbyStatus")->text();
    return status.contains(nickname) ? status : QString();
}

QString CTour::SeeRows(const QStringList &rows) const
{
    const QStringList stored = ReadSettingsRows();
    const bool isSeen =
        std::all_of(rows.begin(), rows.end(), [&](const QString &row) { return stored.contains(row); });
    return isSeen ? rows.join(QLatin1String(", ")) : QString();
}
