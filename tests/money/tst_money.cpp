#include <money/MoneySpinner.h>
#include <money/MoneySpinnerWidget.h>
#include <money/MoneyStrings.h>
#include <support/Languages.h>
#include <support/Rows.h>

#include <QtWidgets>

using namespace Globals;

static qint64 Read(char letter, QString text)
{
    unsigned int value = 0;
    return MoneyFromString(GetMoneyType(letter), text, &value, nullptr, nullptr) ? qint64(value) : -1;
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
        AddRows(
            "12|1200|12;1,5|150|1;1.23|123|1;1,234|123400|1234;1.234,56|123456|1234;.5|50|-1;|0|-1;$-\u0663|0|-1;"
            "1 234 567,89|123456789|1234567;1,234,567.89|123456789|1234567;1.234.567|123456700|1234567;"
            "1234.567|123456|1234;1234.567.89|123456|1234;1.234.5678|123456|1234;1.23.45|123|1;1.234.56.7|123456|"
            "1234;.123|12|-1;"
            "123.456|12345600|123456;1..5|100|1;..5|0|-1;21474836.47|2147483647|21474836;21474836,48|-1|21474836"_s);
    }

    void FromString()
    {
        QFETCH(QStringList, in); // text, in hundredths, in chips
        QCOMPARE(Read('S', in[0]), in[1].toLongLong());
        QCOMPARE(Read('T', in[0]), in[2].toLongLong());
    }

    void NoAmount()
    {
        QString text = "-"_s, key, area;
        unsigned int value = 4;
        QVERIFY(!MoneyFromString(GetMoneyType('T'), text, &value, &key, &area));
        QCOMPARE(std::tuple(value, text, key, area), std::tuple(4u, "-"_s, "INTEGRAL_NUMBER"_s, "CORE"_s));
    }

    void Exchange_data()
    {
        AddRows("100|12500|125|80;125|12500|156|100;1|5000|0|2;10|30000|30|4;0|10000|0|0;5|0|0|0;5|-1|0|0;5|nan|0|0;"
                "5|inf|4294967295|1;5|1e300|4294967295|1;5|1e-300|0|0;4294967295|10000|4294967295|4294967295;"
                "4294967295|1|429496|0"_s);
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
        const CMoneySpinnerWidget widget(&spinner);
        const auto labels = [&widget] { // from left to right, those of hidden frames in brackets
            QString text;
            for (int place = 0; place < widget.layout()->count(); ++place) {
                const auto *label = widget.layout()->itemAt(place)->widget()->findChild<QLabel *>();
                text += (label->isVisibleTo(&widget) ? "%1"_s : "[%1]"_s).arg(label->text());
            }
            return text;
        };
        QCOMPARE(labels(), "E[0][,][0]00,000.00"_s);
        spinner.SetValue(9999999);
        QCOMPARE(labels(), "E[0][,][0]99,999.99"_s);
        spinner.SetValue(10000000);
        QCOMPARE(labels(), "E0,100,000[.][0][0]"_s);
        spinner.SetValue(1234567890);
        QCOMPARE(labels(), "E2,345,678[.][9][0]"_s);
        CSettings::GetInstance()->SetSelectedLanguage(2); // the currency stays
        QCOMPARE(labels(), "E2:345:678[~][9][0]"_s);
        spinner.SetCurrency("  "_s);
        QCOMPARE(labels(), "[  ]2:345:678[~][9][0]"_s);
        spinner.slot_SetMoneyType(GlobalDefines::MONEYTYPE_TOURN);
        QCOMPARE(spinner.GetCurrency(), QString());
        connect(&spinner, &CMoneySpinner::signal_C2Changed, &spinner, [&spinner] { spinner.SetValue(7654321); });
        spinner.SetValue(1111111); // a slot sets another amount meanwhile
        QCOMPARE(labels(), "[][0][:][0]76:543~21"_s);
    }

    void Styled()
    {
        QWidget window;
        window.setLayoutDirection(Qt::RightToLeft); // in which digits run from left to right
        window.setStyleSheet("#W_MoneySpinner { background: #ffff00; border: 2px solid #ff0000; }"_s);
        CMoneySpinner spinner;
        CMoneySpinnerWidget widget(&spinner, &window);
        widget.resize(120, 30);
        const QImage image = widget.grab().toImage();
        QCOMPARE(image.pixelColor(60, 0).name() + image.pixelColor(60, 4).name(), "#ff0000#ffff00"_s);
        QVERIFY(widget.findChild<QWidget *>("F_D5"_s)->x() < widget.findChild<QWidget *>("F_C2"_s)->x());
    }

    void AccessibleName()
    {
        CSettings::GetInstance()->SetSelectedLanguage(1);
        CMoneySpinner spinner(500, GlobalDefines::MONEYTYPE_DOLLAR);
        const CMoneySpinnerWidget widget(&spinner);
        QCOMPARE(widget.accessibleName(), "$5"_s);
        spinner.slot_SetValue(12345678);
        QCOMPARE(widget.accessibleName(), "$123,456.78"_s); // while it still runs
        QTRY_COMPARE(spinner.GetValue(), 12345678u);
        spinner.slot_SetValue(1009);
        QCOMPARE(widget.accessibleName(), "$10.09"_s);
        QTRY_COMPARE(spinner.GetValue(), 1009u);
        QCOMPARE(widget.accessibleName(), "$10.09"_s);
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
        for (const unsigned int target : {100u, 700u}) { // the second in the middle of the first
            spinner.slot_SetValue(target);
            run->setCurrentTime(250);
            spinner.slot_SetValue(spinner.GetValue()); // no new target
            spinner.SetValue(spinner.GetValue() + 1);
        }
        QTRY_COMPARE(spinner.GetValue(), 700u);
        spinner.slot_SetValue(1000);
        CSettings::GetInstance()->SetAnimationsOff(true);
        spinner.slot_SetValue(7);
        QCOMPARE(std::tuple(spinner.GetValue(), spinner.GetC2()), std::tuple(7u, "7"_s));
        QCOMPARE(run->state(), QAbstractAnimation::Stopped);
    }
};

QTEST_MAIN(tst_money)
#include "tst_money.moc"
