// Texts of the catalogue and amounts of money, compared with the same SQL text in QSqlQuery on the same connection.

#include "LiteralQuery.h"

#include <database/ConfigDB.h>
#include <database/SettingsDB.h>
#include <database/TranslationDB.h>
#include <files/Pathes.h>
#include <money/MoneySpinner.h>
#include <money/MoneyStrings.h>
#include <support/InstallationTree.h>
#include <translation/Translation.h>

#include <sqlite3.h>

#include <QCoreApplication>
#include <QLocale>
#include <QSqlDriver>

namespace {

using Bench::Require;
using Bench::SRow;

constexpr int KEYS = 64; // the number of keys that are looked up in turn
constexpr unsigned int AMOUNT = 123456789;
constexpr unsigned int CHIPS = 1234567;
constexpr int DIGITS = 16; // more than any amount has
const QString AREA = QStringLiteral("bench");
const QString CORE = QStringLiteral("core");

void Run(const char *sql)
{
    Require(CTranslationDB::GetInstance()->Exec(QString::fromUtf8(sql)), sql);
}

void MakeCatalogue()
{
    Run("CREATE TABLE tbl_availablelanguages (AVL_iID INTEGER PRIMARY KEY, AVL_cShort TEXT, AVL_cLong TEXT)");
    Run("INSERT INTO tbl_availablelanguages VALUES (1, 'en', 'English')");
    Run("CREATE TABLE tbl_translations (TRL_AVL_iID INTEGER, TRL_cArea TEXT, TRL_cKey TEXT, TRL_cTranslation TEXT)");
    Run("CREATE UNIQUE INDEX idx_translations ON tbl_translations (TRL_AVL_iID, TRL_cArea, TRL_cKey)");
    Run("INSERT INTO tbl_translations VALUES (1, 'core', 'currency', '$'), (1, 'core', 'money_decimalseperator', "
        "'.'),"
        " (1, 'core', 'money_thousandsseperator', ',')");
}

// Fills the catalogue with the given number of texts.
void Fill(int texts)
{
    static int present = 0;
    if (texts == present)
        return;
    present = texts;
    Run("DELETE FROM tbl_translations WHERE TRL_cArea = 'bench'");
    Run("WITH RECURSIVE texts(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM texts WHERE i < " +
        QByteArray::number(texts) +
        " - 1) INSERT INTO tbl_translations SELECT 1, 'bench', 'text_' || i, 'the text ' || i FROM texts");
}

QString LookUpLiteral(const QString &key, const QString &area)
{
    const auto sql = QStringLiteral("SELECT TRL_cTranslation FROM 'tbl_translations' WHERE TRL_cArea='%1' AND"
                                    " TRL_cKey='%2' AND TRL_AVL_iID='1' LIMIT 1");
    return Bench::RunLiteral(QSqlDatabase::database(Pathes::LanguageDB()), sql.arg(area, key))
        .value(0)
        .value(QStringLiteral("TRL_cTranslation"))
        .toString();
}

QString LookUp(const QString &key, const QString &area)
{
    return CTranslation::GetInstance()->GetTranslatedString(key, area, -1);
}

// Adds a side that looks up all keys one after the other.
void AddTextSide(SRow<QStringList> &row, const char *side, QString (*find)(const QString &, const QString &))
{
    row.Side(side, [find](int texts) {
        QStringList found;
        for (int i = 0; i < KEYS; ++i)
            found.append(find(QStringLiteral("text_%1").arg(qint64(i) * texts / KEYS), AREA));
        return found;
    });
}

// Writes digits into a buffer, with given sign and separators; without any for chips.
QString FormatByHand(const QString &sign, const QString &separator, const QString &decimal, unsigned int amount)
{
    QChar buffer[DIGITS * 2];
    QChar *begin = std::end(buffer);
    int digits = decimal.isEmpty() ? 0 : -2;
    do {
        if (digits == 0 && !decimal.isEmpty())
            *--begin = decimal.at(0);
        else if (digits > 0 && digits % 3 == 0 && !separator.isEmpty())
            *--begin = separator.at(0);
        *--begin = QChar(ushort('0' + amount % 10));
        amount /= 10;
        ++digits;
    } while (amount > 0);
    if (!sign.isEmpty())
        *--begin = sign.at(0);
    return QString(begin, int(std::end(buffer) - begin));
}

QString AmountByHand(int)
{
    const QString decimal = LookUp(QStringLiteral("MONEY_DECIMALSEPERATOR"), CORE);
    LookUp(QStringLiteral("MONEY_THOUSANDSSEPERATOR"), CORE); // one for each of two groups, as the library does
    const QString separator = LookUp(QStringLiteral("MONEY_THOUSANDSSEPERATOR"), CORE);
    return FormatByHand(LookUp(QStringLiteral("CURRENCY"), CORE), separator, decimal, AMOUNT);
}

// Counts the statements that SQLite begins on the catalogue's connection, until it is called with null.
void CountStatements(int *number)
{
    const auto count = [](unsigned int, void *sum, void *, void *) { return ++*static_cast<int *>(sum), 0; };
    const QVariant handle = QSqlDatabase::database(Pathes::LanguageDB()).driver()->handle();
    sqlite3_trace_v2(*static_cast<sqlite3 *const *>(handle.constData()), number ? SQLITE_TRACE_STMT : 0, count,
                     number);
}

unsigned int Spin(int)
{
    CMoneySpinner spinner(0, GlobalDefines::MONEYTYPE_DOLLAR);
    int statements = 0;
    CountStatements(&statements);
    int steps = 0;
    QObject::connect(&spinner, &CMoneySpinnerDataModel::signal_D1Changed, &spinner, [&steps] { ++steps; });
    spinner.slot_SetValue(AMOUNT / 100);
    while (spinner.GetValue() != AMOUNT / 100)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    Require(steps > 2, "the run of the spinner");
    CountStatements(nullptr);
    Bench::Count("statements", statements);
    return spinner.GetValue();
}

QString Amount(int)
{
    return Globals::MoneyToString(GlobalDefines::MONEYTYPE_DOLLAR, AMOUNT, true);
}

QString Chips(int)
{
    return Globals::MoneyToString(GlobalDefines::MONEYTYPE_TOURN, CHIPS, false);
}

QString ChipsByHand(int)
{
    return FormatByHand(QString(), QString(), QString(), CHIPS);
}

QString AmountByLocale(int)
{
    static const QLocale locale(QLocale::English, QLocale::UnitedStates);
    return QLatin1Char('$') + locale.toString(AMOUNT / 100.0, 'f', 2);
}

void AddRows()
{
    SRow<QStringList> text{"text", {100, 1000, 10000, 100000}, Fill};
    AddTextSide(text, "library", LookUp);
    AddTextSide(text, "floor", LookUpLiteral);
    SRow<QString> chips{"money_chips", {1}};
    chips.Side("library", Chips);
    chips.Side("floor", ChipsByHand);
    SRow<QString> amount{"money_amount", {1}};
    amount.Side("library", Amount);
    amount.Side("floor", AmountByHand);
    amount.Side("QLocale, which looks nothing up", AmountByLocale);
    SRow<unsigned int> spinner{"money_spinner", {1}};
    spinner.iIterations = 1;
    spinner.Side("library", Spin);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // the SQL driver is a plugin of Qt
    const CInstallationTree installation;
    installation.WriteFile(QStringLiteral("Resources/language.sqlite"), QByteArray());
    CConfigDB::GetInstance()->Init(); // there is no file, so that the defaults are used
    Require(CSettingsDB::GetInstance()->Init() && CTranslationDB::GetInstance()->Init(), "the databases");
    MakeCatalogue();
    int statements = 0;
    CountStatements(&statements);
    LookUp(QStringLiteral("CURRENCY"), CORE);
    CountStatements(nullptr);
    Require(statements > 0, "the count of statements");
    AddRows();
    return Bench::RunRows(argc, argv);
}
