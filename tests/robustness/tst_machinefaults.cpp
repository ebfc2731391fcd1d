// What a machine does to a client on its way: a disk that is full, one that can't be written, files held by another
// program, a current directory that has gone. Nothing that was committed is lost, the client goes on, and what
// couldn't be written is written once it can be.

#include "Reader.h"

#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <files/Pathes.h>
#include <models/PlayerLists.h>
#include <models/UserInfo.h>
#include <settings/Settings.h>
#include <support/InstallationTree.h>
#include <support/Singletons.h>
#include <time/CasinoTime.h>

#include <QSqlError>
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
        const QRegularExpression told("unable to open database"_s);
        QTest::ignoreMessage(QtWarningMsg, told); // Qt's, once for the flush that tries again
        Change("unwritten"_s);
        CSettings::GetInstance()->slot_SaveSettings(true);
        QCOMPARE(CSettings::GetInstance()->GetDesignerTab(), "unwritten"_s);
        QVERIFY(m_disk.SetReadOnly(false));
    }

    void FilesAreMade()
    {
        QVERIFY(CSettingsDB::GetInstance()->Init() && CPlayerInfoDB::GetInstance()->Init());
        for (CLocalDB *database : {static_cast<CLocalDB *>(CSettingsDB::GetInstance()),
                                   static_cast<CLocalDB *>(CPlayerInfoDB::GetInstance())})
            QVERIFY(database->Exec("PRAGMA busy_timeout = 50"_s)); // the tests needn't wait as long as a client
    }

    void Fault_data()
    {
        QTest::addColumn<bool>("full");
        QTest::addColumn<bool>("exchange");
        QTest::newRow("full") << true << false;
        QTest::newRow("locked") << false << false;
        QTest::newRow("full at an exchange") << true << true;
        QTest::newRow("locked at an exchange") << false << true;
    }

    void Fault()
    {
        QFETCH(bool, full);
        QFETCH(bool, exchange);
        if (full && !m_bDisk)
            QSKIP(NO_DISK);
        const QString before = Change("before"_s);
        QTRY_COMPARE_WITH_TIMEOUT(Stored(), before, AGAIN_MS);
        const QSqlDatabase settings = Lock("settings"_s, m_strSettings, !full);
        const QSqlDatabase notes = Lock("notes"_s, m_strNotes, !full);
        if (full)
            m_disk.Fill();
        // Longer than what is left of a page that is there already.
        const QString after = Change(QString(20000, QLatin1Char('y')) + QLatin1String(QTest::currentDataTag()));
        if (exchange) {
            CSettingsSync::GetInstance()->InitiateSync();
            CSettingsSync::GetInstance()->ReadJSON("{\"playerinfos\": []}"); // nor undone by an answer
        }
        QTest::qWait(4500); // both have been tried by now
        QCOMPARE(Stored(), before);
        if (full)
            m_disk.Empty();
        settings.exec("COMMIT"_s);
        notes.exec("COMMIT"_s);
        QTRY_COMPARE_WITH_TIMEOUT(Stored(), after, AGAIN_MS);
    }

    void NoCurrentDirectory()
    {
        const QString client = QDir::currentPath();
        QVERIFY(QDir().rmdir(client));
        const QString after = Change("without a directory"_s);
        QTRY_COMPARE_WITH_TIMEOUT(Stored(), after, AGAIN_MS);
        QVERIFY(QDir().mkdir(client) && QDir::setCurrent(client));
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

    static QSqlDatabase Lock(const QString &name, const QString &file, bool lock)
    {
        QSqlDatabase connection = QSqlDatabase::contains(name) ? QSqlDatabase::database(name)
                                                               : QSqlDatabase::addDatabase("QSQLITE"_s, name);
        connection.setDatabaseName(file);
        if (!connection.open() || (lock && connection.exec("BEGIN IMMEDIATE"_s).lastError().isValid()))
            qFatal("can't lock a file");
        return connection;
    }

    CDisk m_disk;
    bool m_bDisk = false; // else the tests of a disk are left out, not those of files and folders
    QString m_strSettings;
    QString m_strNotes;
};

QTEST_MAIN(tst_machinefaults)
#include "tst_machinefaults.moc"
