#include <database/ConfigDB.h>
#include <files/Pathes.h>
#include <settings/Config.h>

#include <support/InstallationTree.h>

#include <QMetaProperty>
#include <QtTest>

namespace {

struct SRow
{
    const char *key;
    const char *property;
    QVariant defaultValue;
    QVariant (*Get)(const CConfigBase &config);
};

const QList<SRow> ROWS{
#define CONFIG_ROW(type, Name, key, defaultValue, property, readers) \
    {#key, #property, QVariant::fromValue<type>(defaultValue),       \
     [](const CConfigBase &config) { return QVariant::fromValue<type>(config.Get##Name()); }},
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
    return QVariant(QLatin1String("Value of ") + QLatin1String(row.key));
}

QMetaProperty Property(int index)
{
    return CConfigBase::staticMetaObject.property(CConfigBase::staticMetaObject.propertyOffset() + index);
}

} // namespace

class tst_config : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Rows that the table has to hold, whatever else it does.
    void KnownRows()
    {
        const QList<std::tuple<int, const char *, const char *, QVariant>> known{
            {0, "activitytimertimeout", "activitytimertimeout", 600000},
            {17, "defsliderpostflopbutton3values", "defsliderpostflopbutton3values", 11},
            {25, "filtersitandgoss", "filtersitandgossmall", QString()},
            {35, "optionanimationsoffselectable", "optionanimationsoffselectable", true},
            {44, "pokerlobbytype", "pokerlobbytype", QStringLiteral("qml")},
            {49, "preferredseat5", "preferredseat5", 255},
            {69, "link_webserver", "linkwebserver", QString()},
            {142, "link_myaccount_hhoverview", "linkmyaccounthandhistoryoverview", QString()},
            {161, "playerpicture_link", "linkplayerpicture", QString()},
            {163, "defaultlanguage", "defaultlanguage", -1},
            {165, "handhistorynetworkname", "handhistorynetworkname", QStringLiteral("Velmoran")},
            {176, "link_speciallink", "linkspecial1", QString()},
            {206, "proxysettings", "proxysettings", QString()},
        };
        for (const auto &[place, key, property, defaultValue] : known) {
            CConfigBase config;
            QCOMPARE(Property(place).name(), property);
            QCOMPARE(config.property(property), defaultValue);
            config.SetConfigs({{QLatin1String(key), QStringLiteral("1")}}); // the default of none, and no true bool
            QVERIFY2(config.property(property) != defaultValue, property);
        }
    }

    void EveryRow()
    {
        CConfigBase config;
        QHash<QString, QVariant> values;
        for (const SRow &row : ROWS) {
            QCOMPARE(config.property(row.property), row.defaultValue);
            QString key = QLatin1String(row.key);
            key[0] = key.at(0).toUpper();
            values.insert(key.replace(QLatin1String("_l"), QLatin1String("_L")), OtherValue(row));
        }
        QCOMPARE(values.size(), 207);
        values.insert(QStringLiteral("unknown"), 1);
        config.SetConfigs(values);
        QCOMPARE(config.metaObject()->propertyCount() - config.metaObject()->propertyOffset(), 207);
        for (int index = 0; index < ROWS.size(); ++index) {
            const SRow &row = ROWS.at(index);
            const QMetaProperty property = Property(index);
            QCOMPARE(property.name(), row.property);
            QVERIFY(property.isConstant() && !property.isWritable() && !property.hasNotifySignal());
            QCOMPARE(property.read(&config), OtherValue(row));
            QCOMPARE(row.Get(config), OtherValue(row));
        }
    }

    void Conversions()
    {
        const QList<std::tuple<QVariant, bool, int>> conversions{
            {QStringLiteral("true"), true, 0},
            {true, true, 1},
            {QStringLiteral("True"), false, 0},
            {1, false, 1},
            {QStringLiteral("-42"), false, -42},
            {QStringLiteral("5 minutes"), false, 0},
            {QVariant(), false, 0},
        };
        for (const auto &[value, option, number] : conversions) {
            CConfigBase config;
            config.SetConfigs(
                {{QStringLiteral("OPTIONADSPOPUPS"), value}, {QStringLiteral("CashierSwapTime"), value}});
            QCOMPARE(std::pair(config.GetOptionAdsPopups(), config.GetCashierSwapTime()), std::pair(option, number));
        }
    }

    void RowsOfTheInstallation()
    {
        const CInstallationTree tree;
        QVERIFY(!CConfigDB::GetInstance()->Init());
        QCOMPARE(CConfig::GetInstance()->GetCashierSwapTime(), 5); // without the file
        CConfig::DestroyInstance();

        CLocalDB file(Pathes::ConfigDB(), false, true);
        QVERIFY(file.Init() && file.Exec(QStringLiteral("CREATE TABLE tbl_config (COV_cKey TEXT, COV_cValue TEXT)")));
        QVERIFY(file.Exec(
            QStringLiteral("INSERT INTO tbl_config VALUES ('unknown', '1'), ('LINK_CASHIER', 'http://it''s'),"
                           " ('cashierswaptime', '8'), ('cashierswaptime', '9'), ('mybesthand', '0')")));
        QSqlDatabase::removeDatabase(Pathes::ConfigDB());
        QVERIFY(CConfigDB::GetInstance()->Init());
        const CConfig *config = CConfig::GetInstance();
        QCOMPARE(config->GetLinkCashier(), QStringLiteral("http://it's"));
        QCOMPARE(config->GetCashierSwapTime(), 9); // the later row
        QCOMPARE(config->GetMyBestHand(), false);
        QCOMPARE(config->GetPreferredSeat5(), 255);
        CConfig::DestroyInstance();
        QVERIFY(!CConfig::IsExisting());
    }
};

QTEST_GUILESS_MAIN(tst_config)
#include "tst_config.moc"
