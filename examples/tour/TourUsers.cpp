#include "Tour.h"

#include <client/LoginDialog.h>
#include <common/Texts.h>
#include <files/Pathes.h>
#include <time/CasinoTime.h>

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QtTest>

#include <algorithm>

namespace {

const QString SECOND_PASSWORD = QStringLiteral("guest"); // opens an account under any new nickname
const char NOBODY[] = "USER_NONE";                       // key of what stands in place of a nickname

// The users' settings as "user|key|value", read with another program. Rows without a time aren't counted.
QStringList ReadSettingsRows()
{
    return QueryDatabase(
        Pathes::SettingsDB(),
        QStringLiteral("SELECT URS_cUser, URS_cKey, URS_cValue FROM tbl_settings WHERE URS_iTimestamp > 0"));
}

int CountFreeSeats(const QModelIndex &row)
{
    const QStringList players = row.siblingAtColumn(4).data().toString().split(QLatin1Char('/'));
    return players.value(1).toInt() - players.value(0).toInt();
}

} // namespace

void CTour::ShowClock()
{
    Step(
        QStringLiteral("The clock shows the server's time in the machine's time zone"), [] {},
        [this] {
            const CCasinoTime *clock = CCasinoTime::GetInstance();
            const auto seconds = static_cast<unsigned int>(QDateTime::currentSecsSinceEpoch());
            const QString now = clock->GetTimeString(seconds) + QLatin1Char(' ') + clock->GetTimezoneString();
            return Find<QLabel>("clock")->text() == now ? now : QString();
        });
}

void CTour::ShowCancelledLogin()
{
    Step(
        QStringLiteral("The user is asked for a nickname"), [this] { Trigger(Find<QAction>("logIn")); },
        [this] { return SeeDialog(); });
    Step(
        QStringLiteral("The user gives it up"), [this] { QTest::keyClick(Find<CLoginDialog>(), Qt::Key_Escape); },
        [this] { return SeeUser(Texts::Get(NOBODY)); });
}

void CTour::ShowLogin()
{
    Step(
        QStringLiteral("Whoever wants a seat has to log in"), [this] { ChooseTable(); },
        [this] { return SeeDialog(); });
    Step(
        QStringLiteral("A wrong password is refused"), [this] { TypeLogin(FIRST_NICKNAME, QStringLiteral("flop")); },
        [this] {
            const auto *message = Find<QLabel>("loginMessage");
            const bool isSeen =
                message && message->isEnabled() && message->text() == Texts::Get("LOGIN_WRONG_PASSWORD");
            return isSeen ? message->text() : QString();
        });
    ShowDialogLanguages();
    Step(
        QStringLiteral("The user logs in"), [this] { TypeLogin(FIRST_NICKNAME, FIRST_PASSWORD); },
        [this] { return SeeUser(FIRST_NICKNAME); });
    Step(
        QStringLiteral("What waited for it goes out, and is answered"), [] {},
        [this] { return SeeSeat(FIRST_NICKNAME); });
}

void CTour::ShowSettings()
{
    Step(
        QStringLiteral("The user's choices are rows of the user, and of the next one"),
        [this] {
            TypeFilter(QStringLiteral("omaha"));
            QTest::keyClick(Find<QComboBox>("lobbyType"), Qt::Key_Down);
            Trigger(Find<QAction>("sounds"));
        },
        [this] {
            return SeeRows({QStringLiteral("magnolia|ringgamefilter|omaha"), QStringLiteral("|ringgamefilter|omaha"),
                            QStringLiteral("magnolia|selectedgametype|78"), QStringLiteral("|selectedgametype|78"),
                            QStringLiteral("magnolia|soundsenabled|false"), QStringLiteral("|soundsenabled|false"),
                            QStringLiteral("|lastusername|Magnolia")});
        });
    Step(
        QStringLiteral("The window's place is a row of the installation"),
        [this] {
            m_window.move(60, 40);
            m_window.resize(1080, 720);
        },
        [this] {
            const QString place = QString::fromLatin1(m_window.saveGeometry().toBase64());
            const bool isSeen = m_window.size() == QSize(1080, 720) &&
                                !SeeRows({QLatin1String("|winpos[client]|") + place}).isEmpty();
            return isSeen ? QStringLiteral("1080 by 720 pixels") : QString();
        });
}

void CTour::ShowSecondUser()
{
    ChooseLanguage(QStringLiteral("Deutsch"),
                   {QStringLiteral("magnolia|selectedlanguage|3"), QStringLiteral("|selectedlanguage|3")});
    LogOut();
    LogIn(SECOND_NICKNAME, SECOND_PASSWORD, FIRST_NICKNAME);
    Step(
        QStringLiteral("A new user begins with what was chosen last"), [] {},
        [this] { return SeeFilter(QStringLiteral("omaha")); });
    Step(
        QStringLiteral("Which are the new user's rows now"), [] {},
        [this] {
            return SeeRows(
                {QStringLiteral("robin|ringgamefilter|omaha"), QStringLiteral("robin|soundsenabled|false")});
        });
    Step(
        QStringLiteral("The language as well"), [] {},
        [this] {
            return SeeTexts(QStringLiteral("Deutsch")).isEmpty()
                       ? QString()
                       : SeeRows({QStringLiteral("robin|selectedlanguage|3")});
        });
    ChooseLanguage(QStringLiteral("English"),
                   {QStringLiteral("robin|selectedlanguage|2"), QStringLiteral("magnolia|selectedlanguage|3")});
    Step(
        QStringLiteral("Another choice leaves the first user's as it is"),
        [this] { TypeFilter(QStringLiteral("stud")); },
        [this] {
            return SeeRows({QStringLiteral("robin|ringgamefilter|stud"), QStringLiteral("|ringgamefilter|stud"),
                            QStringLiteral("magnolia|ringgamefilter|omaha")});
        });
    Step(
        QStringLiteral("The sounds as well"), [this] { Trigger(Find<QAction>("sounds")); },
        [this] {
            return SeeRows(
                {QStringLiteral("robin|soundsenabled|true"), QStringLiteral("magnolia|soundsenabled|false")});
        });
    LogOut();
}

void CTour::ShowFirstUserAgain()
{
    LogIn(FIRST_NICKNAME, FIRST_PASSWORD, SECOND_NICKNAME);
    Step(
        QStringLiteral("The first user finds the own choices"), [] {},
        [this] { return Find<QAction>("sounds")->isChecked() ? QString() : SeeFilter(QStringLiteral("omaha")); });
    Step(
        QStringLiteral("And the own language"), [] {}, [this] { return SeeTexts(QStringLiteral("Deutsch")); });
    ChooseLanguage(QStringLiteral("English"), {QStringLiteral("magnolia|selectedlanguage|2")});
    Step(
        QStringLiteral("Without them the list is whole again"),
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
        QStringLiteral("The dialog knows who was here last"), [&] { Trigger(Find<QAction>("logIn")); },
        [&] {
            const bool isSeen = !SeeDialog().isEmpty() && Find<QLineEdit>("loginNickname")->text() == lastNickname;
            const QString seen = lastNickname.isEmpty() ? QStringLiteral("nobody") : lastNickname;
            return isSeen ? seen : QString();
        });
    Step(
        QStringLiteral("%1 logs in").arg(nickname), [&] { TypeLogin(nickname, password); },
        [&] { return SeeUser(nickname); });
}

void CTour::LogOut()
{
    Step(
        QStringLiteral("The user logs out"), [this] { Trigger(Find<QAction>("logOut")); },
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
