// Texts of the catalogue and amounts of money, beside the same SQL text through QSqlQuery on the same connection.

#include "support.h"

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

using Bench::CRow;
using Bench::Require;

constexpr int KEYS = 64; // that are asked for in turn
constexpr unsigned int AMOUNT = 123456789;
constexpr unsigned int CHIPS = 1234567;
constexpr int DIGITS = 16; // more than an amount has
const QString AREA = QStringLiteral("bench");
const QString CORE = QStringLiteral("core");

void Run(const QString &sql)
{
    Require(CTranslationDB::GetInstance()->Exec(sql), qUtf8Printable(sql));
}

void MakeCatalogue()
{
    Run(QStringLiteral("CREATE TABLE tbl_availablelanguages (AVL_iID INTEGER PRIMARY KEY, AVL_cShort TEXT,"
                       " AVL_cLong TEXT)"));
    Run(QStringLiteral("INSERT INTO tbl_availablelanguages VALUES (1, 'en', 'English')"));
    Run(QStringLiteral("CREATE TABLE tbl_translations (TRL_AVL_iID INTEGER, TRL_cArea TEXT, TRL_cKey TEXT,"
                       " TRL_cTranslation TEXT)"));
    Run(QStringLiteral(
        "CREATE UNIQUE INDEX idx_translations ON tbl_translations (TRL_AVL_iID, TRL_cArea, TRL_cKey)"));
    Run(QStringLiteral("INSERT INTO tbl_translations VALUES (1, 'core', 'currency', '$'),"
                       " (1, 'core', 'money_decimalseperator', '.'), (1, 'core', 'money_thousandsseperator', ',')"));
}

void Fill(int texts)
{
    static int present = 0;
    if (texts == present)
        return;
    present = texts;
    Run(QStringLiteral("DELETE FROM tbl_translations WHERE TRL_cArea = 'bench'"));
    Run(QStringLiteral("WITH RECURSIVE texts(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM texts WHERE i < %1 - 1)"
                       " INSERT INTO tbl_translations SELECT 1, 'bench', 'text_' || i, 'the text ' || i FROM texts")
            .arg(texts));
}

QString LookUpLiteral(const QString &key, const QString &area)
{
    QSqlQuery query(QSqlDatabase::database(Pathes::LanguageDB()));
    query.setForwardOnly(true);
    Require(query.exec(QStringLiteral("SELECT TRL_cTranslation FROM 'tbl_translations' WHERE TRL_cArea='%1' AND"
                                      " TRL_cKey='%2' AND TRL_AVL_iID='1' LIMIT 1")
                           .arg(area, key)) &&
                query.next(),
            "the literal look-up");
    return query.value(0).toString();
}

QString LookUp(const QString &key, const QString &area)
{
    return CTranslation::GetInstance()->GetTranslatedString(key, area, -1);
}

template <typename Find>
QStringList LookUpKeys(int texts, Find find)
{
    QStringList found;
    for (int i = 0; i < KEYS; ++i)
        found.append(find(QStringLiteral("text_%1").arg(qint64(i) * texts / KEYS), AREA));
    return found;
}

// Digits in a buffer, with signs that are known.
QString FormatByHand(const QString &sign, const QString &separator, const QString &decimal, unsigned int cents)
{
    QChar buffer[DIGITS * 2];
    QChar *begin = std::end(buffer);
    const auto put = [&begin](unsigned int digit) { *--begin = QChar(ushort('0' + digit)); };
    unsigned int whole = cents;
    if (!decimal.isEmpty()) {
        put(cents % 10);
        put(cents / 10 % 10);
        *--begin = decimal.at(0);
        whole /= 100;
    }
    int digits = 0;
    do {
        if (digits > 0 && digits % 3 == 0 && !separator.isEmpty())
            *--begin = separator.at(0);
        put(whole % 10);
        whole /= 10;
        ++digits;
    } while (whole > 0);
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

// Statements that SQLite begins on the catalogue's connection.
class CStatementCount
{
public:
    CStatementCount()
    {
        const auto count = [](unsigned int, void *context, void *, void *) {
            return ++*static_cast<int *>(context), 0;
        };
        sqlite3_trace_v2(Handle(), SQLITE_TRACE_STMT, count, &m_iStatements);
    }
    ~CStatementCount() { sqlite3_trace_v2(Handle(), 0, nullptr, nullptr); }
    Q_DISABLE_COPY_MOVE(CStatementCount)
    int Get() const { return m_iStatements; }

private:
    static sqlite3 *Handle()
    {
        const QVariant handle = QSqlDatabase::database(Pathes::LanguageDB()).driver()->handle();
        return *static_cast<sqlite3 *const *>(handle.constData());
    }

    int m_iStatements = 0;
};

unsigned int Spin(int)
{
    CMoneySpinner spinner(0, GlobalDefines::MONEYTYPE_DOLLAR);
    const CStatementCount count;
    int steps = 0;
    QObject::connect(&spinner, &CMoneySpinnerDataModel::signal_D1Changed, &spinner, [&steps] { ++steps; });
    spinner.slot_SetValue(AMOUNT / 100);
    while (spinner.GetValue() != AMOUNT / 100)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    Require(steps > 2, "the run of the spinner");
    Bench::Count("statements", count.Get());
    return spinner.GetValue();
}

void AddRows()
{
    CRow<QStringList>("text", {100, 1000, 10000, 100000})
        .Setup(Fill)
        .Side("library", [](int texts) { return LookUpKeys(texts, LookUp); })
        .Side("floor", [](int texts) { return LookUpKeys(texts, LookUpLiteral); });
    CRow<QString>("money_chips", {1})
        .Side("library", [](int) { return Globals::MoneyToString(GlobalDefines::MONEYTYPE_TOURN, CHIPS, false); })
        .Side("floor", [](int) { return FormatByHand(QString(), QString(), QString(), CHIPS); });
    CRow<QString>("money_amount", {1})
        .Setup([](int) { Fill(1000); })
        .Side("library", [](int) { return Globals::MoneyToString(GlobalDefines::MONEYTYPE_DOLLAR, AMOUNT, true); })
        .Side("floor", AmountByHand)
        .Side("QLocale, which looks nothing up", [](int) {
            static const QLocale locale(QLocale::English, QLocale::UnitedStates);
            return QLatin1Char('$') + locale.toString(AMOUNT / 100.0, 'f', 2);
        });
    CRow<unsigned int>("money_spinner", {1}).Prepare([](int) {}).Iterations(1).Side("library", Spin);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // the SQL driver is a plugin of Qt
    const CInstallationTree installation;
    installation.WriteFile(QStringLiteral("Resources/language.sqlite"), QByteArray());
    CConfigDB::GetInstance()->Init(); // there is none, so that the defaults hold
    Require(CSettingsDB::GetInstance()->Init() && CTranslationDB::GetInstance()->Init(), "the databases");
    MakeCatalogue();
    {
        const CStatementCount count;
        LookUp(QStringLiteral("CURRENCY"), CORE);
        Require(count.Get() > 0, "the count of statements");
    }
    AddRows();
    return Bench::RunRows(argc, argv);
}
