#include <settings/Config.h>
#include <settings/SettingsBase.h>

#include <support/Literal.h>

#include <QMetaProperty>
#include <QQmlComponent>
#include <QQmlEngine>
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
    void KnownRows()
    {
        CConfig::GetInstance()->SetConfigs({{"preferredseat10"_s, 4}, {"optionadspopups"_s, 0}});
        const QList<std::tuple<int, const char *, QVariant, const char *>> known{
            {0, "autotopupsettings", QByteArray(), "Ann/autotopup/autotopupsettings="},
            {8, "reloadinterval", 5000, "/client/reloadinterval="},
            {24, "timezoneindex30", 53, "Ann/config/timezoneindex30="},
            {25, "showads", false, "Ann/config/showads="},
            {45, "selectedlanguage", -1, "Ann/language/selectedlanguage="},
            {56, "rememberpassword", false, "/login/rememberpassword="},
            {69, "preferredseatindex10", 4, "Ann/pokertable/preferredseatindex10="},
            {75, "volume", 70, "Ann/sounds/volume="},
            {92, "sliderpostflopbutton3values", 11, "Ann/table/sliderpostflopbutton3values="},
            {105, "themechips", 0, "Ann/themesettings/themechips="},
        };
        CRecordingSettings settings;
        settings.SetNickname(ANN);
        for (const auto &[place, key, defaultValue, row] : known) {
            const QMetaObject &type = CSettingsBase::staticMetaObject;
            const QMetaProperty property = type.property(type.propertyOffset() + place);
            QCOMPARE(property.name(), key);
            QCOMPARE(property.read(&settings), defaultValue);
            property.write(&settings, OtherValue(property));
            const QString expected = QLatin1String(row) + OtherValue(property).toString() + QLatin1String("@-1");
            QCOMPARE(settings.Take(), QStringList{expected});
        }
        settings.Reset();
        QCOMPARE(settings.GetVolume(), 70);
        QVERIFY(settings.GetNickname() == ANN && settings.Take().isEmpty());
    }

    // A setter signals a new value once and stores it each time; a whole hash is never stored.
    void EveryRow()
    {
        CRecordingSettings settings;
        settings.SetNickname(ANN);
        const QMetaObject &type = CSettingsBase::staticMetaObject;
        int users = 0;
        int globals = 0;
        int keyed = 0;
        const int signal = type.property(type.propertyOffset()).notifySignalIndex();
        for (int place = 0; place < 106; ++place) {
            const QMetaProperty property = type.property(type.propertyOffset() + place);
            QCOMPARE(property.notifySignalIndex(), signal + place);
            if (property.read(&settings) == true)
                property.write(&settings, false);
            settings.Take();
            const QSignalSpy spy(&settings, "2" + property.notifySignal().methodSignature());
            QVERIFY(property.write(&settings, OtherValue(property)) &&
                    property.write(&settings, OtherValue(property)));
            QCOMPARE(spy.size(), 1);
            const QStringList saved = settings.Take();
            if (saved.isEmpty()) {
                QVERIFY(QByteArray(property.typeName()).startsWith('T'));
                QCOMPARE(QMetaType::type(property.typeName()), property.userType());
                ++keyed;
                continue;
            }
            QCOMPARE(saved.size(), 2);
            QVERIFY(saved.at(0).contains(QLatin1Char('/') + QLatin1String(property.name()) + QLatin1Char('=')));
            saved.at(0).startsWith(QLatin1Char('/')) ? ++globals : ++users;
        }
        QCOMPARE(std::tuple(users, globals, keyed), std::tuple(83 - 5, 23 - 1, 6));
        QCOMPARE(settings.GetSettings().size(), 83); // one entry in each hash
        QCOMPARE(type.propertyCount() - type.propertyOffset(), 106);
    }

    void CallerAndSave()
    {
        CRecordingSettings settings;
        QList<const QObject *> callers;
        connect(&settings, &CSettingsBase::signal_VolumeChanged, this, [&] { callers.append(settings.GetCaller()); });
        settings.SetVolume(70, this);
        QVERIFY(callers.isEmpty() && settings.Take().size() == 1);
        settings.SetVolume(30, this, false);
        settings.SetVolume(40);
        QCOMPARE(callers, (QList<const QObject *>{this, nullptr}));
        QVERIFY(!settings.GetCaller());
        QCOMPARE(settings.Take(), QStringList{"/sounds/volume=40@-1"_s});
    }

    void Keyed()
    {
        CRecordingSettings settings;
        settings.SetNickname(ANN);
        const QSignalSpy spy(&settings, &CSettingsBase::signal_HeaderSizesChanged);
        settings.SetHeaderSizes({{"lobby"_s, "1,2"_s}});
        QCOMPARE(settings.GetHeaderSizesByKey(LOBBY), "1,2"_s);
        settings.SetHeaderSizesByKey(LOBBY, "3"_s, nullptr, false);
        QVERIFY(spy.size() == 2 && settings.Take().isEmpty());
        settings.SetHeaderSizesByKey("NEW"_s, QString()); // a default: an entry and a row, no signal
        settings.SetWinPosByKey(LOBBY, QByteArrayLiteral("pos"));
        QCOMPARE(spy.size(), 2);
        QCOMPARE(settings.Take(),
                 (QStringList{"Ann/headers/headersizes[new]=@-1"_s, "/client/winpos[lobby]=pos@-1"_s}));
        QCOMPARE(settings.GetSelSubThemeByKey(LOBBY), 0); // reading makes an entry
        const auto stored = settings.GetSettings();
        QCOMPARE(stored.value("selsubtheme[lobby]"_s), QVariant(0));
        QVERIFY(stored.contains("headersizes[new]"_s) && !stored.contains("winpos[lobby]"_s));
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
        QVERIFY(settings.GetShowFps() && settings.GetClientID() == 0); // a user changes nothing of the installation
        QCOMPARE(settings.GetVolume(), 6);
        QCOMPARE(settings.GetWinPos(), (CSettingsBase::TWinPos{{"lobby"_s, "here"}}));
        QVERIFY(settings.GetHeaderSortingOrderByKey("lobb"_s)); // the last character is the bracket
        QVERIFY(!settings.GetSoundsEnabled() && settings.GetAlertSounds());
        QCOMPARE(settings.GetThemeChips() + settings.GetThemeGeneral(), 0);
        QCOMPARE(settings.GetChatOptions(), QByteArrayLiteral("QUJD"));
        QVERIFY(settings.Take().isEmpty());
        settings.SetSettings({}, {{"volume"_s, 7}}, true);
        QCOMPARE(settings.Take(), QStringList{"/sounds/volume=7@-1"_s});
    }

    void WrittenFromQml()
    {
        CRecordingSettings settings;
        QQmlEngine engine;
        QQmlComponent component(&engine);
        component.setData(
            "import QtQml 2.15\nQtObject { property QtObject settings; property int volume: settings.volume;"
            " onSettingsChanged: { settings.volume = 12; settings.selbackground = {'a': 3} } }",
            QUrl());
        const std::unique_ptr<QObject> object(
            component.createWithInitialProperties({{"settings"_s, QVariant::fromValue<QObject *>(&settings)}}));
        QVERIFY2(object, qPrintable(component.errorString()));
        settings.SetVolume(13);
        QCOMPARE(object->property("volume"), QVariant(13));
        QCOMPARE(settings.GetSelBackgroundByKey("A"_s), 3);
    }
};

QTEST_GUILESS_MAIN(tst_settingsbase)
#include "tst_settingsbase.moc"
