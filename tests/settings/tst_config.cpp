#include <database/ConfigDB.h>
#include <files/Pathes.h>
#include <settings/Config.h>

#include <support/InstallationTree.h>
#include <support/Literal.h>

#include <QMetaProperty>
#include <QtTest>

namespace {

struct SRow
{
    const char *key;
    const char *property;
    QVariant defaultValue;
};

const QList<SRow> ROWS{
#define CONFIG_ROW(type, Name, key, defaultValue, property, readers) \
    {#key, #property, QVariant::fromValue<type>(defaultValue)},
    CONFIG_TABLE(CONFIG_ROW)
#undef CONFIG_ROW
};

// A value of the row's type that no other row of text has and that isn't the default.
QVariant OtherValue(const SRow &row)
{
    if (row.defaultValue.userType() == QMetaType::Bool)
        return !row.defaultValue.toBool();
    if (row.defaultValue.userType() == QMetaType::Int)
        return row.defaultValue.toInt() + 7;
    return "Value of "_s + QLatin1String(row.key);
}

} // namespace

class tst_config : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The reference page of the keys, which is compared elsewhere, holds what the rows themselves have to say.
    void EveryRow()
    {
        CConfigBase config;
        QHash<QString, QVariant> values{{"unknown"_s, 1}};
        for (const SRow &row : ROWS) {
            QCOMPARE(config.property(row.property), row.defaultValue);
            QString key = QLatin1String(row.key);
            key[0] = key.at(0).toUpper();
            values.insert(key.replace("_l"_s, "_L"_s), OtherValue(row));
        }
        config.SetConfigs(values);
        const int offset = config.metaObject()->propertyOffset();
        QCOMPARE(config.metaObject()->propertyCount() - offset, ROWS.size());
        for (int index = 0; index < ROWS.size(); ++index) {
            const QMetaProperty property = config.metaObject()->property(offset + index);
            QCOMPARE(property.name(), ROWS.at(index).property);
            QVERIFY2(property.isConstant() && !property.isWritable(), property.name());
            QCOMPARE(property.read(&config), OtherValue(ROWS.at(index)));
        }
    }

    void Conversions()
    {
        const auto convert = [](const QVariant &value) {
            CConfigBase config;
            config.SetConfigs({{"OPTIONADSPOPUPS"_s, value}, {"CashierSwapTime"_s, value}});
            return std::pair(config.GetOptionAdsPopups(), config.GetCashierSwapTime());
        };
        QCOMPARE(convert("true"_s), std::pair(true, 0));
        QCOMPARE(convert(true), std::pair(true, 1));
        QCOMPARE(convert("True"_s), std::pair(false, 0));
        QCOMPARE(convert(1), std::pair(false, 1));
        QCOMPARE(convert("-42"_s), std::pair(false, -42));
        QCOMPARE(convert(QVariant()), std::pair(false, 0));
    }

    void RowsOfTheInstallation()
    {
        const CInstallationTree tree;
        QVERIFY(!CConfigDB::GetInstance()->Init());
        QCOMPARE(CConfig::GetInstance()->GetCashierSwapTime(), 5); // without the file
        CConfig::DestroyInstance();

        CLocalDB file(Pathes::ConfigDB(), false, true);
        QVERIFY(file.Init() && file.Exec("CREATE TABLE tbl_config (COV_cKey TEXT, COV_cValue TEXT)"_s));
        QVERIFY(file.Exec("INSERT INTO tbl_config VALUES ('unknown', '1'), ('LINK_CASHIER', 'http://it''s'), "
                          "('cashierswaptime', '8'), ('cashierswaptime', '9'), ('mybesthand', '0')"_s));
        QSqlDatabase::removeDatabase(Pathes::ConfigDB());
        QVERIFY(CConfigDB::GetInstance()->Init());
        const CConfig *config = CConfig::GetInstance();
        QCOMPARE(config->GetLinkCashier(), "http://it's"_s);
        QCOMPARE(config->GetCashierSwapTime(), 9); // the later row
        QCOMPARE(config->GetMyBestHand(), false);
        CConfig::DestroyInstance();
        QVERIFY(!CConfig::IsExisting());
    }
};

QTEST_GUILESS_MAIN(tst_config)
#include "tst_config.moc"
