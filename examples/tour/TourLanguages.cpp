#include "Tour.h"
#include "VisibleTexts.h"

#include <client/LoginDialog.h>
#include <common/Texts.h>
#include <time/CasinoTime.h>

#include <QDateTime>
#include <QLabel>
#include <QMenu>
#include <QRegularExpression>
#include <QTableView>
#include <QTextStream>

namespace {

constexpr int START_COLUMN = 5;
constexpr int FOREIGN_OFFSET_SECONDS = 19800;
const QString FOREIGN_TIMEZONE = QStringLiteral("GMT+5:30");

struct SLanguage
{
    QString strName;
    QString strShort;
    QString strLogIn;   // title of the dialog
    QString strRefusal; // of a wrong password
    QString strCashier; // of the first user
    QString strPlayers; // title of a column
};

// What a reader of the language expects, and not what the catalogue says. The last one stays in effect.
const QVector<SLanguage> LANGUAGES{
    {QStringLiteral("Deutsch"), QStringLiteral("de"), QStringLiteral("Anmelden"),
     QStringLiteral("Spielername und Passwort passen nicht zusammen."),
     QStringLiteral("Echtgeld €\u00A01.250,50, Spielgeld 20.000"), QStringLiteral("Spieler")},
    {QStringLiteral("Français"), QStringLiteral("fr"), QStringLiteral("Se connecter"),
     QStringLiteral("Le pseudo et le mot de passe ne correspondent pas."),
     QStringLiteral("Argent réel €\u00A01\u202F250,50, argent fictif 20\u202F000"), QStringLiteral("Joueurs")},
    {QStringLiteral("English"), QStringLiteral("en"), QStringLiteral("Log in"),
     QStringLiteral("Nickname and password don't fit together."),
     QStringLiteral("Real money €1,250.50, play money 20,000"), QStringLiteral("Players")}};

// The first row in view that counts down, or an invalid index.
QModelIndex FindCountDown(const QTableView &table)
{
    static const QRegularExpression time(QStringLiteral("^\\d\\d:\\d\\d:\\d\\d$"));
    for (int row = qMax(0, table.rowAt(0)); row < table.model()->rowCount(); ++row) {
        const QModelIndex cell = table.model()->index(row, START_COLUMN);
        if (time.match(cell.data().toString()).hasMatch())
            return cell;
    }
    return QModelIndex();
}

} // namespace

void Trigger(QAction *entry)
{
    QMetaObject::invokeMethod(entry, &QAction::trigger, Qt::QueuedConnection);
}

// A menu needs no mouse to be chosen from, but the entry has to be there.
void CTour::ChooseEntry(const char *menu, const QString &text) const
{
    const QList<QAction *> entries = Find<QMenu>(menu)->actions();
    for (QAction *entry : entries) {
        if (entry->text() == text)
            Trigger(entry);
    }
}

QString CTour::GetChosenEntry(const char *menu) const
{
    const QList<QAction *> entries = Find<QMenu>(menu)->actions();
    for (const QAction *entry : entries) {
        if (entry->isChecked())
            return entry->text();
    }
    return QString();
}

// Everything that can be read is in this language, and fits.
QString CTour::SeeTexts(const QString &language)
{
    const QVector<SVisibleText> texts = CollectVisibleTexts(m_window);
    m_strFault = FindTextFault(texts);
    const bool isSeen = m_strFault.isEmpty() && GetChosenEntry("languages") == language;
    return isSeen ? QStringLiteral("%1 texts").arg(texts.size()) : QString();
}

void CTour::ShowDialogLanguages()
{
    for (const SLanguage &language : LANGUAGES) {
        Step(
            QStringLiteral("The dialog is in the language %1 at once").arg(language.strName),
            [&] { ChooseEntry("languages", language.strName); },
            [&] {
                const bool isSeen = Find<CLoginDialog>()->windowTitle() == language.strLogIn &&
                                    Find<QLabel>("loginMessage")->text() == language.strRefusal;
                return isSeen ? SeeTexts(language.strName) : QString();
            });
        Step(
            QStringLiteral("A picture of the dialog"), [] {},
            [&] { return SaveScreenshot(*Find<CLoginDialog>(), QLatin1String("login-") + language.strShort); });
    }
}

void CTour::ShowLanguages()
{
    for (const SLanguage &language : LANGUAGES) {
        Step(
            QStringLiteral("So is the window in %1").arg(language.strName),
            [&] { ChooseEntry("languages", language.strName); },
            [&] {
                const auto *table = Find<QTableView>("lobbyTable");
                const bool isSeen = Find<QLabel>("cashier")->text() == language.strCashier &&
                                    table->model()->headerData(4, Qt::Horizontal) == language.strPlayers &&
                                    FindCountDown(*table).isValid() && SeeJackpot() > 0;
                return isSeen ? SeeTexts(language.strName) : QString();
            });
        Step(
            QStringLiteral("A picture with a user, a jackpot and countdowns"), [] {},
            [&] { return SaveScreenshot(m_window, QLatin1String("lobby-") + language.strShort); });
    }
}

// The digits in view, in cents; 0 if there is no jackpot.
int CTour::SeeJackpot() const
{
    QString digits;
    const auto labels = Find<QWidget>("W_MoneySpinner")->findChildren<QLabel *>();
    for (const QLabel *label : labels) {
        if (label->isVisible() && label->text().size() == 1 && label->text().at(0).isDigit())
            digits += label->text();
    }
    return digits.toInt();
}

void CTour::ShowRunningNumbers()
{
    int jackpot = 0;
    Step(
        QStringLiteral("The jackpot rises"), [&] { jackpot = SeeJackpot(); },
        [&] {
            const int later = SeeJackpot();
            return jackpot > 0 && later > jackpot ? QStringLiteral("%1 to %2 cents").arg(jackpot).arg(later)
                                                  : QString();
        });
    const auto *table = Find<QTableView>("lobbyTable");
    const QModelIndex cell = FindCountDown(*table);
    const QString before = cell.data().toString();
    QString after;
    QObject context; // ends before what the lambda refers to: clazy:excludeall=lambda-in-connect
    QObject::connect(table->model(), &QAbstractItemModel::dataChanged, &context, [&](const QModelIndex &changed) {
        if (changed.column() == cell.column())
            after = cell.data().toString();
    });
    Step(
        QStringLiteral("A countdown runs"), [] {},
        [&] { return !after.isEmpty() && after < before ? before + QLatin1String(" to ") + after : QString(); });
}

void CTour::ShowTimezones()
{
    const auto *table = Find<QTableView>("lobbyTable");
    QModelIndex start = FindCountDown(*table);
    while (start.isValid() && (start.data().toString().count(QLatin1Char(':')) != 1))
        start = start.siblingAtRow(start.row() + 1);
    const QString before = start.data().toString();
    Step(
        QStringLiteral("Clock and starts are in the time zone that the user chooses"),
        [&] { ChooseEntry("timezones", FOREIGN_TIMEZONE); },
        [&] {
            // Behind a change of the zone the clock stands at the last time that the server has told.
            const auto *clock = CCasinoTime::GetInstance();
            const QDateTime now = QDateTime::fromSecsSinceEpoch(clock->GetTimeUTCClient(), Qt::UTC);
            const QString expected =
                now.addSecs(FOREIGN_OFFSET_SECONDS).toString(QStringLiteral("hh:mm ")) + FOREIGN_TIMEZONE;
            const bool isSeen =
                Find<QLabel>("clock")->text() == expected && !before.isEmpty() && start.data().toString() != before;
            return isSeen ? expected + QLatin1String(", ") + before + QLatin1String(" is ") + start.data().toString()
                          : QString();
        });
    Step(
        QStringLiteral("And back in the machine's own"),
        [&] { ChooseEntry("timezones", CCasinoTime::GetInstance()->GetTimezoneList().constLast()); },
        [&] { return start.data().toString() == before ? before : QString(); });
}

void CTour::ChooseLanguage(const QString &language, const QStringList &rows)
{
    Step(
        QStringLiteral("The user chooses %1").arg(language), [&] { ChooseEntry("languages", language); },
        [&] {
            const QString seen = SeeTexts(language);
            return rows.isEmpty() || !SeeRows(rows).isEmpty() ? seen : QString();
        });
}
