#include <files/Pathes.h>
#include <settings/PlayerInfo.h>

#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/ShortLock.h>
#include <support/Singletons.h>

#include <QJsonDocument>
#include <QtTest>

namespace {

const QString ANN = "Ann"_s;
constexpr unsigned int NOW = 1700000000;

// All rows that fit, in order, as "user/area/key=value@time user/area/...".
QString Rows(const char *where = "1")
{
    QSqlQuery query = CSettingsDB::GetInstance()->GetQuery();
    query.exec(QLatin1String("SELECT URS_cUser || '/' || URS_cArea || '/' || URS_cKey || '=' || URS_cValue || '@' || "
                             "URS_iTimestamp FROM tbl_settings WHERE typeof(URS_iTimestamp) = 'integer' AND ") +
               QLatin1String(where) + QLatin1String(" ORDER BY URS_cKey, URS_cUser"));
    QStringList rows;
    while (query.next())
        rows.append(query.value(0).toString());
    return rows.join(QLatin1Char(' '));
}

} // namespace

class tst_settings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QVERIFY(CSettingsDB::GetInstance()->Init());
        QVERIFY(CSettingsDB::GetInstance()->Exec("DELETE FROM tbl_settings"_s));
        CCasinoTime::GetInstance()->SetTimeUTCServer(NOW);
    }

    void cleanup() { DestroySingletons(); }

    void DelayedWrite()
    {
        CSettings *settings = CSettings::GetInstance();
        QElapsedTimer sinceLast;
        for (const int volume : {1, 2}) {
            settings->SetVolume(volume);
            sinceLast.start();
            QTest::qWait(150); // within the delay
            QCOMPARE(Rows(), QString());
        }
        QTRY_COMPARE(Rows(), "/sounds/volume=2@1700000000"_s);
        QVERIFY(sinceLast.elapsed() >= 250);
    }

    void UserAndGlobalRow()
    {
        CUserInfo::GetInstance()->SetLoggedIn("ANN"_s);
        CSettings *settings = CSettings::GetInstance();
        settings->SetVolume(5);
        settings->SetWinPosByKey("Client"_s, QByteArrayLiteral("it's"));
        settings->SetDesignerTab(QString());
        settings->Save(ANN, "AREA"_s, "KEY"_s, 1, 0);
        settings->slot_SaveSettings();
        QCOMPARE(Rows(), "/client/designertab=@1700000000 /area/key=1@0 ann/area/key=1@0 "
                         "/sounds/volume=5@1700000000 ann/sounds/volume=5@1700000000 "
                         "/client/winpos[client]=it's@1700000000"_s);
        QCOMPARE(CSettings::GetLastTimestamp(ANN), NOW);
    }

    // As if each change had been compared and written in turn.
    void UnchangedRows()
    {
        CSettings *settings = CSettings::GetInstance();
        settings->SetVolume(5);
        settings->SetThemeChips(5);
        settings->slot_SaveSettings();
        CCasinoTime::GetInstance()->SetTimeUTCServer(NOW + 10);
        settings->SetVolume(5);
        settings->SetThemeChips(6);
        settings->SetThemeChips(5);
        settings->slot_SaveSettings();
        QCOMPARE(Rows(), "/themesettings/themechips=5@1700000010 /sounds/volume=5@1700000000"_s);
    }

    void WithoutServerTime()
    {
        CCasinoTime::GetInstance()->SetTimeUTCServer(0);
        CSettings *settings = CSettings::GetInstance();
        settings->SetVolume(5);
        settings->slot_SaveSettings();
        QCOMPARE(Rows(), QString());
        CUserInfo::GetInstance()->SetLoggedIn(ANN); // writes what waits, for nobody
        QCOMPARE(Rows(), "/sounds/volume=5@0"_s);
        CCasinoTime::GetInstance()->SetTimeUTCServer(NOW);
        QTRY_COMPARE(Rows("URS_cUser != ''"), "ann/sounds/volume=5@1700000000"_s);
    }

    void OneUserAfterTheOther()
    {
        CUserInfo *user = CUserInfo::GetInstance();
        CSettings *settings = CSettings::GetInstance();
        user->SetUsername("login"_s);
        user->SetPasswordHashed("hash"_s);
        user->SetLoggedIn(ANN);
        settings->SetVolume(11);
        user->SetLoggedIn(QString());
        user->SetLoggedIn("Bob"_s);
        QCOMPARE(settings->GetNickname() + settings->GetUsername() + settings->GetPwd(), "Bobloginhash"_s);
        QCOMPARE(settings->GetVolume(), 11); // inherited
        settings->SetVolume(22);
        user->SetLoggedIn(QString());
        user->SetLoggedIn(ANN);
        QCOMPARE(settings->GetVolume(), 11);
        settings->slot_SaveSettings(true);
        QCOMPARE(Rows(), "/sounds/volume=11@1700000000 ann/sounds/volume=11@1700000000 "
                         "bob/sounds/volume=22@1700000000"_s);

        DestroySingletons(); // a new process: the global rows apply before any login
        QCOMPARE(CSettings::GetInstance()->GetVolume(), 11);
    }

    void Json()
    {
        CUserInfo::GetInstance()->SetLoggedIn(ANN);
        CSettings *settings = CSettings::GetInstance();
        settings->SetSelSubThemeByKey("Table"_s, 4);
        settings->SetShowFps(true);
        const QByteArray json = settings->GetOptionJSON();
        QCOMPARE(QJsonDocument::fromJson(json)["nickname"_s].toString(), ANN);
        settings->Reset();
        for (const char *bad : {"{", "[]", "{\"settings\": [1, {}]}"})
            settings->SetOptionJSON(bad);
        QCOMPARE(settings->GetSelSubThemeByKey("table"_s), 0);
        settings->SetOptionJSON(QByteArray(json).replace("\"70\"", "\"71\"").replace("animationsoff", "showfps"));
        QCOMPARE(settings->GetSelSubThemeByKey("table"_s), 4);
        QCOMPARE(std::pair(settings->GetVolume(), settings->GetShowFps()), std::pair(71, false));
    }

    void OperatorsRules()
    {
        DestroySingletons();
        CConfig::GetInstance()->SetConfigs({{"avatardisplaymode"_s, "custom"_s}});
        CSettings *settings = CSettings::GetInstance();
        QCOMPARE(settings->GetAvatarDisplayMode(), int(CUserInfo::ADM_CustomAvatars));
        settings->SetAnimationsOff(true);
        QVERIFY(settings->GetAnimationOff());
        CConfig::GetInstance()->SetConfigs({{"optionanimationsoffselectable"_s, QString()}});
        QVERIFY(!settings->GetAnimationOff());
    }

    // While another program holds the files, the event loop turns on.
    void LockedFilesDontStopTheEventLoop()
    {
        QVERIFY(CPlayerInfoDB::GetInstance()->Init());
        CUserInfo::GetInstance()->SetLoggedIn(ANN);
        CSettings::GetInstance()->slot_SaveSettings();
        const CShortLock settings(Pathes::SettingsDB(), "BEGIN IMMEDIATE"_s, 6000);
        const CShortLock notes(Pathes::PlayerInfoDB(), "BEGIN IMMEDIATE"_s, 6000);
        CSettings::GetInstance()->SetVolume(5);
        CPlayerModel::GetInstance("Bob"_s)->SetNotes("n"_s);
        qint64 longest = 0;
        const QDeadlineTimer end(5500);
        while (!end.hasExpired()) {
            QElapsedTimer turn;
            turn.start();
            QCoreApplication::processEvents();
            longest = qMax(longest, turn.elapsed());
            QThread::msleep(1);
        }
        QVERIFY2(longest >= 90 && longest < 1000, QByteArray::number(longest)); // it has been tried
        QTRY_VERIFY_WITH_TIMEOUT(Rows().contains("ann/sounds/volume=5@1700000000"_s), 10000);
        QTRY_COMPARE_WITH_TIMEOUT(PlayerInfo::GetLastTimestamp(ANN), NOW, 10000);
    }

private:
    CInstallationTree m_tree;
};

QTEST_GUILESS_MAIN(tst_settings)
#include "tst_settings.moc"
