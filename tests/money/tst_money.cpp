#include <money/MoneySpinner.h>
#include <money/MoneySpinnerWidget.h>
#include <money/MoneyStrings.h>
#include <support/Languages.h>
#include <support/Rows.h>

#include <QtWidgets>

using namespace Globals;

// The amount, or -1 if the reason why there is none is told and nothing else is changed.
static qint64 Read(char letter, const QString &text)
{
    QString typed = text, key, area;
    unsigned int value = 4;
    if (MoneyFromString(GetMoneyType(letter), typed, &value, &key, &area))
        return value;
    return std::tuple(typed, value, key, area) == std::tuple(text, 4u, "INTEGRAL_NUMBER"_s, "CORE"_s) ? -1 : -2;
}

class tst_money : public QObject
{
    Q_OBJECT

    const CLanguages m_languages{
        "1|core|currency|$;1|core|currency_euro| E ;1|core|currency_playmoney|P;1|core|hh_currency|US;"
        "1|core|money_decimalseperator|.;1|core|money_thousandsseperator|,;1|core|hh_money_decimalseperator|-;"
        "2|core|money_decimalseperator|~;2|core|money_thousandsseperator|:;1|core|hh_currency_long|dollars;"
        "1|core|hh_currency_euro|;1|core|hh_currency_eurolong|e;1|core|hh_currency_playmoney|PM;"
        "1|core|hh_currency_playmoneylong|"_s};

private Q_SLOTS:
    void ToStrings_data()
    {
        AddRows("R|0|$0|US 0 dollars;R|100000005|$1,000,000.05|US 1000000-05 dollars;S|1|0.01|0-01;x|100|1|1;"
                "E|1234567| E 12,345.67|12345-67 e;P|123456789|P123,456,789|PM 123456789;T|1000|1,000|1000"_s);
    }

    void ToStrings()
    {
        QFETCH(QStringList, in); // letter, amount, with thousands, in a history
        const char letter = in[0][0].toLatin1();
        QCOMPARE(MoneyToString(GlobalDefines::MoneyType(letter), in[1].toUInt(), true), in[2]);
        QCOMPARE(MoneyToString(letter, in[1].toUInt(), false), in[2].remove(QLatin1Char(',')));
        QCOMPARE(MoneyToHistoryString(letter, in[1].toUInt()), in[3]);
    }

    void FromString_data()
    {
        AddRows("12|1200|12;1,5|150|1;1,234|123400|1234;.5|50|-1;$-\u0663|0|-1;1 234 567,89|123456789|1234567;"
                "1.234.567|123456700|1234567;1234.567|123456|1234;1,234.5678|123456|1234;1.23.45|123|1;.123|12|-1;"
                "1.234.56.7|123456|1234;21474836.47|2147483647|21474836;21474836,48|-1|21474836"_s);
    }

    void FromString()
    {
        QFETCH(QStringList, in); // text, in hundredths, in chips
        QCOMPARE(Read('S', in[0]), in[1].toLongLong());
        QCOMPARE(Read('T', in[0]), in[2].toLongLong());
    }

    void Exchange_data()
    {
        AddRows("125|12500|156|100;1|5000|0|2;10|30000|30|4;5|0|0|0;5|-1|0|0;5|nan|0|0;5|inf|4294967295|1;"
                "5|1e-300|0|0;4294967295|10000|4294967295|4294967295"_s);
    }

    void Exchange()
    {
        QFETCH(QStringList, in); // amount, rate, to, back
        QCOMPARE(ExchangeMoneyTo(in[0].toUInt(), in[1].toDouble()), in[2].toUInt());
        QCOMPARE(ExchangeMoneyBack(in[0].toUInt(), in[1].toDouble()), in[3].toUInt());
    }

    void Places()
    {
        CMoneySpinner spinner(0, GlobalDefines::MONEYTYPE_EURO);
        QWidget window;
        window.setLayoutDirection(Qt::RightToLeft);
        const CMoneySpinnerWidget widget(&spinner, &window);
        QCOMPARE(widget.layoutDirection(), Qt::LeftToRight); // as digits are read everywhere
        // From left to right, those of hidden frames in brackets.
        const auto labels = [&widget] {
            QString text;
            for (int place = 0; place < widget.layout()->count(); ++place) {
                const auto *label = widget.layout()->itemAt(place)->widget()->findChild<QLabel *>();
                text += (label->isVisibleTo(&widget) ? "%1"_s : "[%1]"_s).arg(label->text());
            }
            return text;
        };
        QCOMPARE(labels(), "E[0][,][0]00,000.00"_s);
        spinner.SetValue(10000000);
        QCOMPARE(labels(), "E0,100,000[.][0][0]"_s);
        spinner.SetValue(1234567890);
        QCOMPARE(labels(), "E2,345,678[.][9][0]"_s);
        CSettings::GetInstance()->SetSelectedLanguage(2); // the currency stays
        QCOMPARE(labels(), "E2:345:678[~][9][0]"_s);
        spinner.slot_SetMoneyType(GlobalDefines::MONEYTYPE_TOURN);
        QCOMPARE(spinner.GetCurrency(), QString());
        connect(&spinner, &CMoneySpinner::signal_C2Changed, &spinner, [&spinner] { spinner.SetValue(7654321); });
        spinner.SetValue(1111111); // a slot sets another amount meanwhile
        QCOMPARE(labels(), "[][0][:][0]76:543~21"_s);
    }

    void AccessibleName()
    {
        CSettings::GetInstance()->SetSelectedLanguage(1);
        CMoneySpinner spinner(500, GlobalDefines::MONEYTYPE_DOLLAR);
        const CMoneySpinnerWidget widget(&spinner);
        QCOMPARE(widget.accessibleName(), "$5"_s);
        for (const auto &[target, name] : {std::pair(12345678u, "$123,456.78"_s), {1009u, "$10.09"_s}}) { // up, down
            spinner.slot_SetValue(target);
            QCOMPARE(widget.accessibleName(), name); // while it still runs
            QTRY_COMPARE(spinner.GetValue(), target);
        }
        CSettings::GetInstance()->SetSelectedLanguage(2);
        spinner.slot_SetMoneyType(GlobalDefines::MONEYTYPE_TOURN);
        QCOMPARE(widget.accessibleName(), "10~09"_s);
    }

    void Runs()
    {
        CMoneySpinner spinner;
        auto *run = spinner.findChild<QPropertyAnimation *>();
        for (const unsigned int target : {0xffffffff, 0u, 1000u}) {
            const quint64 from = spinner.GetValue();
            spinner.slot_SetValue(target);
            QCOMPARE(spinner.GetValue(), unsigned(from));
            run->setCurrentTime(250);
            QCOMPARE(spinner.GetValue(), unsigned((from + target) / 2));
            QTRY_COMPARE(run->state(), QAbstractAnimation::Stopped);
            QCOMPARE(spinner.GetValue(), target);
        }
        spinner.slot_SetValue(100);
        run->setCurrentTime(250);
        spinner.slot_SetValue(spinner.GetValue()); // no new target
        spinner.slot_SetValue(700);                // in the middle of the other run
        CSettings::GetInstance()->SetAnimationsOff(true);
        spinner.slot_SetValue(7);
        QCOMPARE(std::tuple(spinner.GetValue(), spinner.GetC2()), std::tuple(7u, "7"_s));
        QCOMPARE(run->state(), QAbstractAnimation::Stopped);
    }
};

QTEST_MAIN(tst_money)
#include "tst_money.moc"
