#include <settings/Config.h>
#include <settings/SettingsBase.h>

#include <support/Literal.h>
#include <support/Rows.h>

#include <QMetaProperty>
#include <QtTest>

namespace {

// Writes down what is to be stored.
class CRecordingSettings : public CSettingsBase
{
public:
    void Save(const QString &user, const QString &area, const QString &key, const QVariant &value,
              qint64 timestamp) override
    {
        m_saved.append("%1/%2/%3=%4@%5"_s.arg(user, area, key, value.toString()).arg(timestamp));
    }
    QStringList Take() { return std::exchange(m_saved, {}); }

    // Those of the table, by key.
    static QHash<QByteArray, int> GetTypes()
    {
#define TYPE(Type, Name, key, area, scope, defaultValue) {#key, qMetaTypeId<Type>()},
        return {SETTINGS_TABLE(TYPE, TYPE)};
#undef TYPE
    }

private:
    QStringList m_saved;
};

QVariant OtherValue(const QMetaProperty &property)
{
    switch (property.userType()) {
    case QMetaType::Bool:
        return QVariant(true);
    case QMetaType::Int:
        return 1234;
    case QMetaType::QString:
    case QMetaType::QByteArray:
        return QByteArrayLiteral("text");
    default:
        return QVariantMap{{"sub"_s, 1}};
    }
}

const QString ANN = "Ann"_s;
const QString LOBBY = "Lobby"_s;

} // namespace

class tst_settingsbase : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { CConfig::DestroyInstance(); }

    // Rows that the table has to hold, whatever else it does.
    void KnownRows_data()
    {
        AddRows<QVariant, QString>({"defaultValue", "row"}, {{"autotopupsettings", QByteArray(), "Ann/autotopup/"_s},
                                                             {"showads", false, "Ann/config/"_s},
                                                             {"rememberpassword", false, "/login/"_s},
                                                             {"preferredseatindex10", 4, "Ann/pokertable/"_s},
                                                             {"volume", 70, "Ann/sounds/"_s},
                                                             {"themechips", 0, "Ann/themesettings/"_s}});
    }

    void KnownRows()
    {
        QFETCH(QString, row);
        const char *name = QTest::currentDataTag();
        CConfig::GetInstance()->SetConfigs({{"preferredseat10"_s, 4}, {"optionadspopups"_s, 0}});
        CRecordingSettings settings;
        settings.SetNickname(ANN);
        QTEST(settings.property(name), "defaultValue");
        QVERIFY(settings.setProperty(name, 1));
        QCOMPARE(settings.Take(),
                 QStringList{row + QLatin1String(name) + "=%1@-1"_s.arg(settings.property(name).toString())});
        settings.Reset();
        QTEST(settings.property(name), "defaultValue");
        QCOMPARE(settings.GetNickname(), ANN);
        QCOMPARE(settings.Take(), QStringList());
    }

    // A setter signals a new value once and stores it each time; a whole hash is never stored.
    void EveryRow_data()
    {
        QTest::addColumn<int>("index");
        const QMetaObject &type = CSettingsBase::staticMetaObject;
        for (int index = type.propertyOffset(); index < type.propertyCount(); ++index)
            QTest::newRow(type.property(index).name()) << index;
    }

    void EveryRow()
    {
        QFETCH(int, index);
        const QMetaProperty property = CSettingsBase::staticMetaObject.property(index);
        CRecordingSettings settings;
        if (property.read(&settings) == true)
            property.write(&settings, false);
        settings.Take();
        const QSignalSpy spy(&settings, "2" + property.notifySignal().methodSignature());
        for (int time = 0; time < 2; ++time)
            QVERIFY(property.write(&settings, OtherValue(property)));
        QCOMPARE(spy.size(), 1);
        const QStringList saved = settings.Take();
        QCOMPARE(property.userType(), CRecordingSettings::GetTypes().value(property.name()));
        QCOMPARE(saved.size(), property.userType() >= QMetaType::User ? 0 : 2);
        QCOMPARE(saved.filter("/%1="_s.arg(QLatin1String(property.name()))), saved);
    }

    void CallerAndSave()
    {
        CRecordingSettings settings;
        QList<const QObject *> callers;
        connect(&settings, &CSettingsBase::signal_VolumeChanged, this, [&] { callers.append(settings.GetCaller()); });
        settings.SetVolume(70, this);
        QVERIFY(callers.isEmpty());
        settings.SetVolume(30, this, false);
        settings.SetVolume(40);
        QCOMPARE(callers, (QList<const QObject *>{this, nullptr}));
        QVERIFY(!settings.GetCaller());
        QCOMPARE(settings.Take(), (QStringList{"/sounds/volume=70@-1"_s, "/sounds/volume=40@-1"_s}));
    }

    void Keyed()
    {
        CRecordingSettings settings;
        settings.SetNickname(ANN);
        const QSignalSpy spy(&settings, &CSettingsBase::signal_HeaderSizesChanged);
        settings.SetHeaderSizes({{"lobby"_s, "1,2"_s}});
        QCOMPARE(settings.GetHeaderSizesByKey(LOBBY), "1,2"_s);
        settings.SetHeaderSizesByKey(LOBBY, "3"_s, nullptr, false);
        QCOMPARE(spy.size(), 2);
        QCOMPARE(settings.Take(), QStringList());
        settings.SetHeaderSizesByKey("NEW"_s, QString()); // a default: an entry and a row, no signal
        settings.SetWinPosByKey(LOBBY, QByteArrayLiteral("pos"));
        QCOMPARE(spy.size(), 2);
        QCOMPARE(settings.Take(),
                 (QStringList{"Ann/headers/headersizes[new]=@-1"_s, "/client/winpos[lobby]=pos@-1"_s}));
        QCOMPARE(settings.GetSelSubThemeByKey(LOBBY), 0); // reading makes an entry
        const auto stored = settings.GetSettings();
        QCOMPARE(stored.value("selsubtheme[lobby]"_s), QVariant(0));
        QVERIFY(!stored.contains("winpos[lobby]"_s)); // it is the installation's
    }

    void StoredValues()
    {
        CRecordingSettings settings;
        settings.SetSettings(
            {{"ShowFPS"_s, "true"_s}, {"volume"_s, "5"_s}, {"winpos[Lobby]"_s, "here"_s}, {"unknown"_s, 1}},
            {{"VOLUME"_s, "6"_s},
             {"ClientID"_s, "9"_s},
             {"WinPos[lobby]"_s, "there"_s},
             {"winpos"_s, "x"_s},
             {"headersortingorder[Lobby"_s, "true"_s},
             {"soundsenabled"_s, 1},
             {"themechips"_s, "ten"_s},
             {"themegeneral[x]"_s, 3},
             {"chatoptions"_s, "QUJD"_s}},
            false);
        QCOMPARE(settings.GetShowFps(), true);
        QCOMPARE(settings.GetClientID(), 0); // a user changes nothing of the installation
        QCOMPARE(settings.GetVolume(), 6);
        QCOMPARE(settings.GetWinPos(), (CSettingsBase::TWinPos{{"lobby"_s, "here"}}));
        QVERIFY(settings.GetHeaderSortingOrderByKey("lobb"_s)); // the last character is the bracket
        QCOMPARE(std::pair(settings.GetSoundsEnabled(), settings.GetAlertSounds()), std::pair(false, true));
        QCOMPARE(settings.GetThemeChips() + settings.GetThemeGeneral(), 0);
        QCOMPARE(settings.GetChatOptions(), QByteArrayLiteral("QUJD"));
        settings.SetSettings({}, {{"volume"_s, 7}}, true);
        QCOMPARE(settings.Take(), QStringList{"/sounds/volume=7@-1"_s});
    }
};

QTEST_GUILESS_MAIN(tst_settingsbase)
#include "tst_settingsbase.moc"
