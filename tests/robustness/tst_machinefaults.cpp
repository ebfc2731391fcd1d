// What a machine does to a client on its way: a disk that is full, one that can't be written, a file that another
// program holds for a moment, a current directory that has gone, a clock that jumps. Nothing that was committed is
// lost, the client goes on, and what couldn't be written is written once it can be.

#include "Reader.h"

#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <files/Pathes.h>
#include <models/PlayerLists.h>
#include <models/UserInfo.h>
#include <settings/PlayerInfo.h>
#include <settings/Settings.h>
#include <support/InstallationTree.h>
#include <support/Rows.h>
#include <support/ShortLock.h>
#include <support/Singletons.h>
#include <time/CasinoTime.h>
#include <time/CountDown.h>

#include <QProcess>
#include <QtTest>

#include <sys/mount.h>

namespace {

constexpr int AGAIN_MS = 15000; // longer than the pause between two attempts
constexpr char NO_DISK[] = "only root may mount a disk";
const QString ANN = QStringLiteral("Ann");
const QString BOB = QStringLiteral("Bob");

// A small disk of its own, which takes the user's folder.
class CDisk
{
public:
    ~CDisk()
    {
        if (m_bMounted)
            umount2(Path().constData(), MNT_DETACH);
    }

    // False if this process may not.
    bool Mount() { return m_bMounted = mount("tmpfs", Path().constData(), "tmpfs", 0, "size=1m") == 0; }
    bool SetReadOnly(bool readOnly) const
    {
        return mount("tmpfs", Path().constData(), "tmpfs",
                     MS_REMOUNT | (readOnly ? static_cast<unsigned long>(MS_RDONLY) : 0), "size=1m") == 0;
    }
    // So that not a page more fits on it.
    void Fill() const
    {
        QFile filler(GetFiller());
        if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            qFatal("can't write to the disk");
        while (filler.write(QByteArray(4096, 'x')) > 0)
            continue;
    }
    void Empty() const { QFile::remove(GetFiller()); }

private:
    static QString GetFiller() { return QFileInfo(Pathes::SettingsDB()).absolutePath() + "/filler"_s; }
    QByteArray Path() const { return QFile::encodeName(m_installation.GetPath("Tmp"_s)); }

    CInstallationTree m_installation;
    bool m_bMounted = false;
};

} // namespace

class tst_machinefaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_bDisk = m_disk.Mount();
        m_strSettings = QFileInfo(Pathes::SettingsDB()).absoluteFilePath();
        m_strNotes = QFileInfo(Pathes::PlayerInfoDB()).absoluteFilePath();
        CCasinoTime::GetInstance()->SetTimeUTCServer(1700000000);
        CUserInfo::GetInstance()->SetLoggedIn(ANN);
    }
    void cleanupTestCase() { DestroySingletons(); }

    // The user does without; the next test makes the files where that is possible again.
    void ReadOnlyDisk()
    {
        if (!m_bDisk)
            QSKIP(NO_DISK);
        QVERIFY(m_disk.SetReadOnly(true));
        QVERIFY(!CSettingsDB::GetInstance()->Init() && !CPlayerInfoDB::GetInstance()->Init());
        Change("unwritten"_s);
        CSettings::GetInstance()->slot_SaveSettings(true);
        QCOMPARE(CSettings::GetInstance()->GetDesignerTab(), "unwritten"_s);
        QVERIFY(m_disk.SetReadOnly(false));
    }

    void FilesAreMade() { QVERIFY(CSettingsDB::GetInstance()->Init() && CPlayerInfoDB::GetInstance()->Init()); }

    // Another client writes just now: what the end of a login, and of the program, stores waits for it.
    void ShortLock()
    {
        const QString after = Change("waited"_s);
        {
            const CShortLock lock(m_strSettings);
            CUserInfo::GetInstance()->SetLoggedIn(QString());
            CSettings::GetInstance()->slot_SaveSettings(true);
        }
        QCOMPARE(Stored(), after);
        CUserInfo::GetInstance()->SetLoggedIn(ANN);
    }

    void FullDisk_data() { AddRows<bool>({"logout"}, {{"at work", false}, {"at a logout", true}}); }

    void FullDisk()
    {
        QFETCH(bool, logout);
        if (!m_bDisk)
            QSKIP(NO_DISK);
        const QString before = Change("before"_s);
        QTRY_COMPARE_WITH_TIMEOUT(Stored(), before, AGAIN_MS);
        m_disk.Fill();
        // Longer than what is left of a page that is there already.
        const QString after = Change(QString(20000, QLatin1Char('y')) + QLatin1String(QTest::currentDataTag()));
        if (logout) {
            CUserInfo::GetInstance()->SetLoggedIn(QString());
            CPlayerModel::DestroyInstances();
            CUserInfo::GetInstance()->SetLoggedIn("Zoe"_s); // her notes aren't Ann's
        }
        QTest::qWait(4500); // both have been tried by now
        QCOMPARE(Stored(), before);
        m_disk.Empty();
        CUserInfo::GetInstance()->SetLoggedIn(ANN); // which stores what was kept
        QVERIFY(!logout || Stored().section(QLatin1Char('|'), 1) == after.section(QLatin1Char('|'), 1));
        QTRY_COMPARE_WITH_TIMEOUT(Stored(), after, AGAIN_MS);
    }

    void ClockJumps_data() { AddRows<int>({"days"}, {{"+365d", 365}, {"-365d", -365}}); }

    // In a process of its own: what waits is written in its time, counts go on, and the server's time is stamped.
    void ClockJumps()
    {
        QFETCH(int, days);
#ifdef __SANITIZE_ADDRESS__
        QSKIP("the sanitizer's library has to be the first, and so has the one that sets the clock");
#endif
        QFile clock(QFile::decodeName(qgetenv("FAKETIME_TIMESTAMP_FILE")));
        if (clock.fileName().isEmpty()) {
            QTemporaryFile right;
            QVERIFY(right.open() && right.write("+0") == 2 && right.flush());
            QProcess child;
            child.start("env"_s, {QStringLiteral("LD_PRELOAD=" FAKETIME_PATH),
                                  "FAKETIME_TIMESTAMP_FILE="_s + right.fileName(), "FAKETIME_NO_CACHE=1"_s,
                                  "FAKETIME_DONT_FAKE_MONOTONIC=1"_s, QCoreApplication::applicationFilePath(),
                                  "FilesAreMade"_s, "ClockJumps:"_s + QLatin1String(QTest::currentDataTag())});
            QVERIFY2(child.waitForFinished() && child.exitCode() == 0, child.readAll());
            return;
        }
        CCasinoTime::GetInstance()->SetTimeUTCServer(1700001000);
        CCountDown countDown;
        countDown.Start(60);
        const QString after = Change(QLatin1String(QTest::currentDataTag()));
        CSettings::GetInstance()->SetThemeChips(days); // one of the user's
        const QDateTime before = QDateTime::currentDateTimeUtc();
        QVERIFY(clock.open(QIODevice::WriteOnly) && clock.write(QTest::currentDataTag()) > 0);
        clock.close();
        QCOMPARE(qRound(double(before.secsTo(QDateTime::currentDateTimeUtc())) / 86400), days);
        QTRY_COMPARE_WITH_TIMEOUT(Stored(), after, 5000);
        QVERIFY(countDown.GetLeft() > 50 && countDown.GetLeft() < 59);
        QCOMPARE(CSettings::GetLastTimestamp(ANN), 1700001000u); // what the synchronisation compares
        QCOMPARE(PlayerInfo::GetLastTimestamp(ANN), 1700001000u);
    }

    void NoCurrentDirectory()
    {
        const QString client = QDir::currentPath();
        QVERIFY(QDir().rmdir(client));
        const QString after = Change("without a directory"_s);
        QTRY_COMPARE_WITH_TIMEOUT(Stored(), after, AGAIN_MS);
        QVERIFY(QDir().mkdir(client) && QDir::setCurrent(client));
    }

    // Another start of the client reads what there is, though no log can be written beside it.
    void FilesOnAReadOnlyDisk()
    {
        if (!m_bDisk)
            QSKIP(NO_DISK);
        const QString last = Stored();
        DestroySingletons();
        const QStringList connections = QSqlDatabase::connectionNames();
        for (const QString &name : connections) // the library's and the test's
            QSqlDatabase::database(name, false).close();
        QVERIFY(m_disk.SetReadOnly(true));
        QVERIFY(CSettingsDB::GetInstance()->Init() && CPlayerInfoDB::GetInstance()->Init());
        CUserInfo::GetInstance()->SetLoggedIn(ANN);
        QVERIFY(PlayerInfo::LoadInfo());
        const QString read = CSettings::GetInstance()->GetDesignerTab() + QLatin1Char('|') +
                             CPlayerLists::GetInstance()->GetPlayerModel(BOB)->GetNotes();
        QCOMPARE(read, last);
        QVERIFY(m_disk.SetReadOnly(false));
    }

private:
    static QString Change(const QString &text)
    {
        CSettings::GetInstance()->SetDesignerTab(text);
        CPlayerLists::GetInstance()->GetPlayerModel(BOB)->SetNotes(text);
        return text + QLatin1Char('|') + text;
    }

    QString Stored() const
    {
        return ReadFirstColumn(m_strSettings, "SELECT URS_cValue FROM tbl_settings WHERE URS_cKey = 'designertab'"_s)
                   .value(0) +
               QLatin1Char('|') +
               ReadFirstColumn(m_strNotes, "SELECT PIN_cNote FROM tbl_playerinfo WHERE PIN_cPlayer = 'Bob'"_s)
                   .value(0);
    }

    CDisk m_disk;
    bool m_bDisk = false; // else the tests of a disk are left out, not those of files and folders
    QString m_strSettings;
    QString m_strNotes;
};

QTEST_MAIN(tst_machinefaults)
#include "tst_machinefaults.moc"
