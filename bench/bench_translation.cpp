// Texts of the catalogue, the switch to another language, and amounts of money. The floor selects on the same
// connection. QTranslator and gettext find the same texts by the same keys in files of their own; QLocale and ICU
// know by themselves how to write an amount.

#include "Catalogues.h"

#include <database/ConfigDB.h>
#include <database/SettingsDB.h>
#include <money/MoneySpinner.h>
#include <money/MoneyStrings.h>
#include <settings/Settings.h>
#include <support/InstallationTree.h>
#include <translation/TranslationObject.h>

#ifdef BENCH_ICU
#include <unicode/numberformatter.h>
#endif

#include <QLocale>

#include <optional>

namespace {

using namespace Catalogues;
using Bench::SRow;

constexpr int KEYS = 64;             // the number of keys that are looked up in turn
constexpr int SHOWN = 620;           // texts on screen
constexpr int TEXTS = 10000 + SHOWN; // of each language, where languages are switched
constexpr unsigned int AMOUNT = 123456789;
constexpr unsigned int CHIPS = 1234567;
constexpr int DIGITS = 16; // more than any amount has
constexpr char SELECT_GERMAN[] = "SELECT TRL_cTranslation FROM tbl_translations WHERE TRL_AVL_iID = 2"
                                 " AND TRL_cArea = 'bench' AND TRL_cKey = ?";

void FillEnglish(int texts)
{
    Fill(texts, KEYS, false);
}

void FillBoth(int shown)
{
    Fill(TEXTS, shown, true);
}

void UseTranslator(int texts)
{
    static std::unique_ptr<QTranslator> translator;
    translator = LoadTranslator(ProvideTranslatorFile(English, texts));
    QCoreApplication::installTranslator(translator.get());
    FillEnglish(texts);
}

void UseGettext(int texts)
{
    BindGettext(texts);
    FillEnglish(texts);
}

// Adds a side that looks up all keys one after the other.
void AddTextSide(SRow<QStringList> row, const char *side, void (*setup)(int), QString (*find)(const SKey &))
{
    row.Setup = setup;
    row.Side(side, [find](int) { return FindAll(find); });
}

void AddTextRow()
{
    const SRow<QStringList> row{"text", {100, 1000, 10000, 100000}};
    AddTextSide(row, "library", FillEnglish, LookUpKey);
    AddTextSide(row, "floor", FillEnglish, LookUpLiteral);
    AddTextSide(row, "QTranslator", UseTranslator, LookUpTranslator);
    AddTextSide(row, "gettext", UseGettext, LookUpGettext);
}

void SelectLanguage(ELanguage language)
{
    CSettings::GetInstance()->SetSelectedLanguage(language);
    Require(CTranslation::GetInstance()->GetLanguage().iID == language, "the switch of language");
}

// Changes a text that isn't shown, so that nothing that has been read from the file before may be used again.
void ChangeFile()
{
    static int number = 0;
    Run("UPDATE tbl_translations SET TRL_cTranslation = 'changed " + QByteArray::number(++number) +
        "' WHERE TRL_AVL_iID = 2 AND TRL_cArea = 'bench' AND TRL_cKey = 'text_1'");
}

// Texts on screen, each of which is taken over when it announces its change. Both languages have been in effect.
class CScreen
{
public:
    CScreen()
    {
        for (const SKey &key : keys) {
            const auto place = int(m_objects.size());
            auto &object = m_objects.emplace_back(std::make_unique<CTranslationObject>());
            object->SetTranslationKey(key.strKey, AREA);
            m_shown.append(object->GetTranslatedText());
            QObject::connect(object.get(), &CTranslationObject::signal_TextChanged, object.get(),
                             [this, place, text = object.get()] { m_shown[place] = text->GetTranslatedText(); });
        }
        SelectLanguage(German);
        SelectLanguage(English);
    }
    ~CScreen()
    {
        m_objects.clear();
        SelectLanguage(English); // for the other rows
    }
    Q_DISABLE_COPY_MOVE(CScreen)

    const QStringList &GetShown() const { return m_shown; }

private:
    std::vector<std::unique_ptr<CTranslationObject>> m_objects;
    QStringList m_shown;
};

// The sides of a switch from English to German, whose result is the German texts. In a first switch, nothing of the
// language has been read since the file changed; in a later one all may be remembered.
void AddLibrarySwitch(SRow<QStringList> row, bool first)
{
    static std::optional<CScreen> screen;
    row.Setup = [](int shown) {
        FillBoth(shown);
        screen.emplace();
    };
    row.Prepare = [first](int) {
        SelectLanguage(English);
        if (first)
            ChangeFile();
    };
    const auto work = [](int) {
        SelectLanguage(German);
        return screen->GetShown();
    };
    row.Side("library", work, [](const QStringList &shown) {
        screen.reset();
        return shown;
    });
}

// Selects each text with one statement, which is prepared anew.
QStringList SelectThroughQt()
{
    QSqlQuery query(QSqlDatabase::database(Pathes::LanguageDB()));
    query.setForwardOnly(true);
    Require(query.prepare(QString::fromLatin1(SELECT_GERMAN)), SELECT_GERMAN);
    return FindAll([&query](const SKey &key) {
        query.bindValue(0, key.strKey.toLower());
        Require(query.exec() && query.next(), "a text's row");
        return query.value(0).toString();
    });
}

QStringList SelectThroughSQLite()
{
    sqlite3_stmt *select = nullptr;
    Require(sqlite3_prepare_v2(GetHandle(), SELECT_GERMAN, -1, &select, nullptr) == SQLITE_OK, SELECT_GERMAN);
    const QStringList found = FindAll([select](const SKey &key) {
        const QByteArray lowerKey = key.abKey.toLower();
        sqlite3_reset(select);
        sqlite3_bind_text(select, 1, lowerKey.constData(), int(lowerKey.size()), SQLITE_TRANSIENT);
        Require(sqlite3_step(select) == SQLITE_ROW, "a text's row");
        return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(select, 0)));
    });
    sqlite3_finalize(select);
    return found;
}

// One transaction, so that the file is locked and looked at for changes only once.
void AddSelectedSwitch(SRow<QStringList> row, const char *side, QStringList (*select)())
{
    row.Setup = FillBoth;
    row.Prepare = [](int) { ChangeFile(); };
    row.Side(side, [select](int) {
        Run("BEGIN");
        QStringList found = select();
        Run("COMMIT");
        return found;
    });
}

void AddRememberedSwitch(SRow<QStringList> row)
{
    static QHash<QString, QString> remembered;
    row.Setup = [](int shown) {
        FillBoth(shown);
        const CatalogueFiles::TTexts texts = MakeTexts(German, TEXTS);
        for (auto text = texts.begin(); text != texts.end(); ++text)
            remembered.insert(QString::fromUtf8(text.key()), *text);
    };
    row.Side("floor", [](int) { return FindAll([](const SKey &key) { return remembered.value(key.strKey); }); });
}

void AddTranslatorSwitch(SRow<QStringList> row, bool first)
{
    static std::unique_ptr<QTranslator> english;
    static std::unique_ptr<QTranslator> german;
    static QString path;
    row.Setup = [](int shown) {
        FillBoth(shown);
        path = ProvideTranslatorFile(German, TEXTS);
        german = LoadTranslator(path);
        english = LoadTranslator(ProvideTranslatorFile(English, TEXTS));
    };
    row.Prepare = [first](int) {
        QCoreApplication::removeTranslator(german.get());
        if (first)
            german.reset();
        QCoreApplication::installTranslator(english.get());
    };
    const auto work = [](int) {
        QCoreApplication::removeTranslator(english.get());
        if (!german)
            german = LoadTranslator(path);
        QCoreApplication::installTranslator(german.get());
        return FindAll(LookUpTranslator);
    };
    row.Side("QTranslator", work, [](const QStringList &found) {
        german.reset();
        english.reset();
        return found;
    });
}

void AddLanguageRows()
{
    const SRow<QStringList> first{"language_first", {SHOWN}};
    AddLibrarySwitch(first, true);
    AddSelectedSwitch(first, "floor", SelectThroughQt);
    AddSelectedSwitch(first, "C API of SQLite", SelectThroughSQLite);
    AddTranslatorSwitch(first, true);
    const SRow<QStringList> again{"language_again", {SHOWN}};
    AddLibrarySwitch(again, false);
    AddRememberedSwitch(again);
    AddTranslatorSwitch(again, false);
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
    sqlite3_trace_v2(GetHandle(), number ? SQLITE_TRACE_STMT : 0, count, number);
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

#ifdef BENCH_ICU
QString AmountByICU(int)
{
    UErrorCode status = U_ZERO_ERROR;
    static const icu::number::LocalizedNumberFormatter formatter =
        icu::number::NumberFormatter::withLocale(icu::Locale::getUS()).unit(icu::CurrencyUnit(u"USD", status));
    const icu::UnicodeString text = formatter.formatDouble(AMOUNT / 100.0, status).toString(status);
    Require(U_SUCCESS(status), "an amount by ICU");
    return QString::fromUtf16(text.getBuffer(), text.length());
}
#endif

void AddMoneyRows()
{
    SRow<QString> chips{"money_chips", {1}};
    chips.Side("library", Chips);
    chips.Side("floor", ChipsByHand);
    SRow<QString> amount{"money_amount", {1}};
    amount.Side("library", Amount);
    amount.Side("floor", AmountByHand);
    amount.Side("QLocale, which looks nothing up", AmountByLocale);
#ifdef BENCH_ICU
    amount.Side("ICU", AmountByICU);
#endif
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
    SelectLanguage(English);
    AddTextRow();
    AddLanguageRows();
    AddMoneyRows();
    return Bench::RunRows(argc, argv);
}
