#include "Tour.h"
#include "VisibleTexts.h"

#include <client/LoginDialog.h>
#include <common/Texts.h>
#include <settings/Settings.h>
#include <time/CasinoTime.h>

#include <QAction>
#include <QDateTime>
#include <QLabel>
#include <QTableView>
#include <QTextStream>

namespace {

constexpr int START_COLUMN = 5;
constexpr int FOREIGN_OFFSET_SECONDS = 19800;
const QString FOREIGN_TIMEZONE = "GMT+5:30"_s;

struct SReading
{
    QString strShort;
    QString strLogIn;   // title of the dialog
    QString strRefusal; // of a wrong password
    QString strCashier; // of the first user
    QString strPlayers; // title of a column
    QString strType;    // of a table
    QString strCount;   // of the tables
};

// What a reader of each language expects, and not what the catalogue says.
const QVector<SReading> READINGS{
    {"de"_s, "Anmelden"_s, "Spielername und Passwort passen nicht zusammen."_s,
     "Echtgeld €\u00A01.250,50, Spielgeld 20.000"_s, "Spieler"_s, "Cash Game"_s, "264 Tische"_s},
    {"fr"_s, "Se connecter"_s, "Le pseudo et le mot de passe ne correspondent pas."_s,
     "Argent réel €\u00A01\u202F250,50, argent fictif 20\u202F000"_s, "Joueurs"_s, "Cash game"_s, "264 tables"_s},
    {"en"_s, "Log in"_s, "Nickname and password don't fit together."_s, "Real money €1,250.50, play money 20,000"_s,
     "Players"_s, "Ring game"_s, "264 tables"_s}};

const SReading &GetReading(const QString &language)
{
    return READINGS.at(LANGUAGES.indexOf(language));
}

bool IsCountDown(const QString &text)
{
    return text.startsWith("in "_s) || text.startsWith("dans "_s);
}

// The first row in view that counts down, or an invalid index.
QModelIndex FindCountDown(const QTableView &table)
{
    for (int row = qMax(0, table.rowAt(0)); row < table.model()->rowCount(); ++row) {
        const QModelIndex cell = table.model()->index(row, START_COLUMN);
        if (IsCountDown(cell.data().toString()))
            return cell;
    }
    return QModelIndex();
}

} // namespace

void Trigger(QAction *entry)
{
    QMetaObject::invokeMethod(entry, &QAction::trigger, Qt::QueuedConnection);
}

void CTour::SetOption(const char *setting, const QVariant &value)
{
    CSettings *settings = CSettings::GetInstance();
    QMetaObject::invokeMethod(
        settings, [=] { settings->setProperty(setting, value); }, Qt::QueuedConnection);
}

void CTour::SetLanguage(const QString &language)
{
    for (const CTranslation::SLang &other : CTranslation::GetInstance()->GetAvailableLanguages()) {
        if (other.strLong == language)
            SetOption("selectedlanguage", other.iID);
    }
}

bool CTour::IsLanguage(const QString &language)
{
    return CTranslation::GetInstance()->GetLanguage().strLong == language;
}

// Everything that can be read is in this language, and fits.
QString CTour::SeeTexts(const QString &language)
{
    const QVector<SVisibleText> texts = CollectVisibleTexts(m_window);
    m_strFault = FindTextFault(texts);
    const bool isSeen = m_strFault.isEmpty() && IsLanguage(language);
    return isSeen ? "%1 texts"_s.arg(texts.size()) : QString();
}

void CTour::ShowDialogLanguages()
{
    const auto look = [this](const QString &language) {
        const SReading &reading = GetReading(language);
        const bool isSeen = Find<CLoginDialog>()->windowTitle() == reading.strLogIn &&
                            Find<QLabel>("loginMessage")->text() == reading.strRefusal &&
                            !SeeTexts(language).isEmpty();
        return isSeen ? SaveScreenshot(*Find<CLoginDialog>(), "login-"_s + reading.strShort) : QString();
    };
    ShowInLanguages("The dialog is in the language %1 at once"_s, look);
}

// With a user, a jackpot and countdowns.
void CTour::ShowLanguages()
{
    const auto look = [this](const QString &language) {
        const SReading &reading = GetReading(language);
        const auto *table = Find<QTableView>("lobbyTable");
        const bool isSeen = Find<QLabel>("cashier")->text() == reading.strCashier &&
                            table->model()->headerData(4, Qt::Horizontal) == reading.strPlayers &&
                            table->model()->index(0, 1).data() == reading.strType &&
                            Find<QLabel>("lobbyCount")->text() == reading.strCount &&
                            FindCountDown(*table).isValid() && SeeJackpot() > 0 && !SeeTexts(language).isEmpty();
        return isSeen ? SaveScreenshot(m_window, "lobby-"_s + reading.strShort) : QString();
    };
    ShowInLanguages("So is the window in %1"_s, look);
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
        "The jackpot rises"_s, [&] { jackpot = SeeJackpot(); },
        [&] {
            const int later = SeeJackpot();
            return jackpot > 0 && later > jackpot ? "%1 to %2 cents"_s.arg(jackpot).arg(later) : QString();
        });
}

void CTour::ShowTimezones()
{
    const auto *table = Find<QTableView>("lobbyTable");
    const QStringList zones = CCasinoTime::GetInstance()->GetTimezoneList();
    QModelIndex start = FindCountDown(*table);
    while (start.isValid() && (start.data().toString().isEmpty() || IsCountDown(start.data().toString())))
        start = start.siblingAtRow(start.row() + 1);
    const QString before = start.data().toString();
    Step(
        "Clock and starts are in the time zone that the user chooses"_s,
        [&] { SetOption("timezoneindex30", zones.indexOf(FOREIGN_TIMEZONE)); },
        [&] {
            // After a change of the zone the clock stands at the last time that the server has told.
            const auto *clock = CCasinoTime::GetInstance();
            const QDateTime now = QDateTime::fromSecsSinceEpoch(clock->GetTimeUTCClient(), Qt::UTC);
            const QString expected = now.addSecs(FOREIGN_OFFSET_SECONDS).toString("hh:mm "_s) + FOREIGN_TIMEZONE;
            const bool isSeen =
                Find<QLabel>("clock")->text() == expected && !before.isEmpty() && start.data().toString() != before;
            return isSeen ? expected + QLatin1String(", ") + before + QLatin1String(" is ") + start.data().toString()
                          : QString();
        });
    Step(
        "And back in the machine's own"_s, [&] { SetOption("timezoneindex30", zones.size() - 1); },
        [&] { return start.data().toString() == before ? before : QString(); });
}

void CTour::ChooseLanguage(const QString &language, const QStringList &rows)
{
    Step(
        "The user chooses %1"_s.arg(language), [&] { SetLanguage(language); },
        [&] {
            const QString seen = SeeTexts(language);
            return rows.isEmpty() || !SeeRows(rows).isEmpty() ? seen : QString();
        });
}
