#include <files/FileFunctions.h>

#include <support/InstallationTree.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QtTest>

#include <functional>
#include <future>
#include <thread>

namespace {

QByteArray Read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("not there");
}

} // namespace

// Trees are copied, moved and removed; every step that fails is tried again.
class tst_FileFunctions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filePaths();
    void filePathsOfNoDir();
    void linkLoop();
    void copyDir_data();
    void copyDir();
    void everyOccurrenceIsReplaced();
    void moveDir();
    void removeDir();
    void copyFile();
    void actions();
    void moveAble();
    void failures();
    void laterAttempt();

private:
    QStringList GetNames(const QString &dir) const;
    QString Tmp(const char *name) const { return m_pTree->GetPath(QLatin1String("Tmp/") + QLatin1String(name)); }
    QString Write(const char *name, const QByteArray &contents = "contents") const
    {
        return m_pTree->WriteFile(QLatin1String("Tmp/") + QLatin1String(name), contents);
    }
    QString Link(const char *name, const QString &target) const
    {
        return m_pTree->MakeLink(QLatin1String("Tmp/") + QLatin1String(name), target);
    }
    void MakeDir(const char *name) const { m_pTree->MakeDir(QLatin1String("Tmp/") + QLatin1String(name)); }

    std::unique_ptr<CInstallationTree> m_pTree;

private Q_SLOTS:
    void init() { m_pTree = std::make_unique<CInstallationTree>(); }
    void cleanup() { m_pTree.reset(); }
};

// What GetFilePaths() finds, relative to the directory.
QStringList tst_FileFunctions::GetNames(const QString &dir) const
{
    QStringList names = FileFunctions::GetFilePaths(dir);
    for (QString &name : names) {
        if (name.startsWith(dir + QLatin1Char('/')))
            name.remove(0, dir.size() + 1);
    }
    return names;
}

void tst_FileFunctions::filePaths()
{
    for (const char *name : {"from/b/2", "from/b/1", "from/a/x/deep", "from/0", "from/.hidden", "from/.svn/entries",
                             "from/a/.svn/entries", "from/old.svn"})
        Write(name);
    MakeDir("from/empty");
    QStringList expected;
    for (const char *name : {"a", "a/x", "a/x/deep", "b", "b/1", "b/2", "empty", ".hidden", "0"})
        expected << QLatin1String(name);
    QCOMPARE(GetNames(Tmp("from")), expected);
}

void tst_FileFunctions::filePathsOfNoDir()
{
    Write("from.svn/file");
    for (const QString &path : {QString(), Tmp("from.svn"), Tmp("from.svn/file"), Tmp("missing")})
        QCOMPARE(FileFunctions::GetFilePaths(path), QStringList());
}

void tst_FileFunctions::linkLoop()
{
    Write("from/a/file");
    Write("outside/file");
    Link("from/a/back", Tmp("from"));
    Link("from/out", Tmp("outside"));
    QStringList expected;
    for (const char *name : {"a", "a/back", "a/file", "out", "out/file"})
        expected << QLatin1String(name);
    QCOMPARE(GetNames(Tmp("from")), expected);

    QString error;
    QVERIFY2(FileFunctions::RemoveDir(Tmp("from"), error), qPrintable(error));
    QVERIFY(!QFileInfo::exists(Tmp("from")));
    QCOMPARE(Read(Tmp("outside/file")), QByteArray("contents")); // a link goes, what it leads to stays
}

void tst_FileFunctions::copyDir_data()
{
    QTest::addColumn<bool>("move");
    QTest::newRow("copy") << false;
    QTest::newRow("move") << true;
}

void tst_FileFunctions::copyDir()
{
    QFETCH(bool, move);
    Write("from/a/b/file", "new");
    Write("from/replaced", "new");
    Write("from/.svn/entries");
    MakeDir("from/empty");
    Write("to/replaced", "old and longer");
    Write("to/kept", "old");

    QString error = QStringLiteral("before");
    QVERIFY(FileFunctions::CopyDir(Tmp("from/"), Tmp("x/../to//"), error, move));
    QCOMPARE(error, QString());
    QCOMPARE(Read(Tmp("to/a/b/file")), QByteArray("new"));
    QCOMPARE(Read(Tmp("to/replaced")), QByteArray("new"));
    QCOMPARE(Read(Tmp("to/kept")), QByteArray("old"));
    QVERIFY(!QFileInfo::exists(Tmp("to/.svn")) && !QFileInfo::exists(Tmp("to/empty")));
    QCOMPARE(QFileInfo::exists(Tmp("from/replaced")), !move);
    QCOMPARE(QFileInfo::exists(Tmp("from/a/b/file")), !move);

    QVERIFY(FileFunctions::CopyDir(Tmp("from/empty"), Tmp("nothing"), error, move));
    QVERIFY(!QFileInfo::exists(Tmp("nothing")));
}

void tst_FileFunctions::everyOccurrenceIsReplaced()
{
    const QString inner = Tmp("from") + Tmp("from");
    QVERIFY(QDir().mkpath(inner));
    QVERIFY(QFile::copy(Write("file"), inner + QLatin1String("/file")));
    QString error;
    QVERIFY2(FileFunctions::CopyDir(Tmp("from"), Tmp("to"), error, false), qPrintable(error));
    QCOMPARE(Read(Tmp("to") + Tmp("to") + QLatin1String("/file")), QByteArray("contents"));
}

void tst_FileFunctions::moveDir()
{
    Write("from/a/file");
    Write("from/.svn/entries");
    MakeDir("from/empty");
    QString error = QStringLiteral("before");
    QVERIFY(FileFunctions::MoveDir(Tmp("from/."), Tmp("to"), error));
    QCOMPARE(error, QString());
    QCOMPARE(GetNames(Tmp("to")), (QStringList{QStringLiteral("a"), QStringLiteral("a/file")}));
    QVERIFY(!QFileInfo::exists(Tmp("from")));
}

void tst_FileFunctions::removeDir()
{
    Write("dir/.svn/entries");
    Write("dir/.hidden");
    Link("dir/dangling", Tmp("missing"));
    QString error = QStringLiteral("before");
    QVERIFY(FileFunctions::RemoveDir(Tmp("dir"), error));
    QCOMPARE(error, QString());
    QVERIFY(!QFileInfo::exists(Tmp("dir")));

    error = QStringLiteral("before");
    QVERIFY(FileFunctions::RemoveDir(Tmp("dir"), error));
    QCOMPARE(error, QString());
}

void tst_FileFunctions::copyFile()
{
    Write("from", "new");
    Write("to", "old");
    QString error = QStringLiteral("before");
    QVERIFY(FileFunctions::CopyFile(Tmp("from"), Tmp("to"), error));
    QCOMPARE(Read(Tmp("to")), QByteArray("new"));
    QCOMPARE(error, QStringLiteral("before")); // the only one that leaves it alone
}

void tst_FileFunctions::actions()
{
    using namespace FileFunctions;
    QVERIFY(DoAction(FA_MakePath, Tmp("a/b"), QString()) && QFileInfo(Tmp("a/b")).isDir());
    QVERIFY(DoAction(FA_Copy, Write("file"), Tmp("a/copy")) && QFileInfo::exists(Tmp("file")));
    QVERIFY(DoAction(FA_Rename, Tmp("file"), Tmp("a/renamed")) && !QFileInfo::exists(Tmp("file")));
    QCOMPARE(Read(Tmp("a/copy")), Read(Tmp("a/renamed")));
    QVERIFY(DoAction(FA_RemoveFile, Tmp("a/copy"), QString()) && !QFileInfo::exists(Tmp("a/copy")));
    QVERIFY(DoAction(FA_RemoveDir, Tmp("a/b"), QString()) && !QFileInfo::exists(Tmp("a/b")));
    QCOMPARE(int(FA_RemoveFile), 0);
    QCOMPARE(int(FA_Copy), 4);
}

void tst_FileFunctions::moveAble()
{
    using FileFunctions::IsMoveAbleDir;
    // A program that runs can't be opened for writing, whoever the user is.
    const QString busy = QCoreApplication::applicationFilePath();
    Write("from/file");
    Write("to/file", "old");

    QString error = QStringLiteral("before");
    QVERIFY(IsMoveAbleDir(Tmp("from"), Tmp("to"), error));
    QCOMPARE(error, QString());
    QCOMPARE(Read(Tmp("to/file")), QByteArray("old"));
    QVERIFY(IsMoveAbleDir(Tmp("from"), Tmp("missing"), error));
    QVERIFY(IsMoveAbleDir(Tmp("missing"), Tmp("to"), error));

    QVERIFY(!IsMoveAbleDir(Tmp("from"), busy, error));
    QCOMPARE(error, QLatin1String("move: not writeable: ") + busy);

    MakeDir("busy");
    Link("busy/file", busy);
    QVERIFY(!IsMoveAbleDir(Tmp("from"), Tmp("busy"), error));
    QCOMPARE(error, QLatin1String("move: not writeable: ") + Tmp("busy/file"));

    const QString dangling = Link("from/dangling", Tmp("missing"));
    QVERIFY(!IsMoveAbleDir(Tmp("from"), Tmp("to"), error));
    QCOMPARE(error, QLatin1String("move: from not found: ") + dangling + QLatin1String(" - permissions ") +
                        QString::number(int(QFileInfo(dangling).permissions())));
}

// Every step that can be tried again fails for good, and all of them at the same time, since each takes its 1.8 s.
// Permissions would stop nobody who is root; directories, files and links in the way stop everybody.
void tst_FileFunctions::failures()
{
    using namespace FileFunctions;
    Write("from/a/file");
    Write("over/file/in the way");
    Write("across/a", "a file, where a directory is needed");
    MakeDir("dangling/a");
    Link("dangling/a/file", Tmp("missing/file"));
    QVERIFY(QDir().mkpath(Tmp("removed/a/file")));

    struct SFailure
    {
        std::function<bool(QString &)> operation;
        QString error;
    };
    const QString from = Tmp("from");
    const QString fromFile = Tmp("from/a/file");
    const auto text = [](const char *start, const QString &rest) { return QLatin1String(start) + rest; };
    const SFailure failures[] = {
        {[=](QString &) { return DoAction(FA_RemoveDir, from, QString()); }, QString()},
        {[=](QString &error) { return CopyDir(from, Tmp("across"), error, false); },
         text("copy: failed to create path: ", Tmp("across/a"))},
        {[=](QString &error) { return CopyDir(from, Tmp("removed"), error, true); },
         text("copy: failed to remove: ", Tmp("removed/a/file"))},
        {[=](QString &error) { return CopyDir(from, Tmp("dangling"), error, true); },
         text("move: failed to rename: ", fromFile + QLatin1String(" to ") + Tmp("dangling/a/file"))},
        {[=](QString &error) { return CopyDir(from, Tmp("dangling"), error, false); },
         text("copy: failed to copy: ", fromFile + QLatin1String(" to ") + Tmp("dangling/a/file"))},
        {[=](QString &error) { return MoveDir(from, Tmp("across"), error); },
         text("copy: failed to create path: ", Tmp("across/a"))},
        {[=](QString &error) { return CopyFile(fromFile, Tmp("over/file"), error); },
         text("copy: failed to remove file: ", Tmp("over/file"))},
        {[=](QString &error) { return CopyFile(Tmp("missing"), Tmp("to"), error); },
         text("copy: failed to copy file: ", Tmp("missing") + QLatin1String(" to ") + Tmp("to"))},
        {[=](QString &error) { return RemoveDir(Tmp("across/a"), error); },
         text("remove: failed to remove dir: ", Tmp("across/a"))},
#if defined(Q_OS_LINUX)
        // The kernel lets nobody remove these.
        {[=](QString &error) { return RemoveDir(QStringLiteral("/proc/self/fdinfo"), error); },
         text("remove: failed to remove file: ",
              QDir(QStringLiteral("/proc/self/fdinfo")).entryInfoList(QDir::Files).value(0).absoluteFilePath())},
#endif
    };

    struct SOutcome
    {
        bool done;
        QString error;
        qint64 milliseconds;
    };
    std::vector<std::future<SOutcome>> outcomes;
    for (const SFailure &failure : failures) {
        outcomes.push_back(std::async(std::launch::async, [&failure] {
            QElapsedTimer timer;
            timer.start();
            QString error;
            const bool done = failure.operation(error);
            return SOutcome{done, error, timer.elapsed()};
        }));
    }
    for (size_t i = 0; i < outcomes.size(); ++i) {
        const SOutcome outcome = outcomes[i].get();
        QVERIFY2(!outcome.done, qPrintable(failures[i].error));
        QCOMPARE(outcome.error, failures[i].error);
        // Nine waits of 200 ms; the upper bound leaves room for a loaded machine.
        QVERIFY2(outcome.milliseconds >= 1800 && outcome.milliseconds < 4000, qPrintable(outcome.error));
    }
    QCOMPARE(Read(fromFile), QByteArray("contents"));
}

void tst_FileFunctions::laterAttempt()
{
    const QString obstacle = Write("obstacle");
    QElapsedTimer timer;
    timer.start();
    // Another program lets go of the file after a moment; the call below blocks this thread.
    std::thread otherProgram([obstacle] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        QFile::remove(obstacle);
    });
    const bool done = FileFunctions::DoAction(FileFunctions::FA_MakePath, obstacle + QLatin1String("/a"), QString());
    const qint64 milliseconds = timer.elapsed();
    otherProgram.join();
    QVERIFY(done);
    QVERIFY2(milliseconds >= 300 && milliseconds < 1800, qPrintable(QString::number(milliseconds)));
}

QTEST_GUILESS_MAIN(tst_FileFunctions)
#include "tst_filefunctions.moc"
