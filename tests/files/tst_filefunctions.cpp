#include <files/FileFunctions.h>

#include <support/InstallationTree.h>
#include <support/Literal.h>

#include <QtTest>

#include <future>
#include <optional>

using namespace FileFunctions;

using TOperation = bool (*)(const QString &from, const QString &to, QString &error);

// The message of an operation that tries one of its steps again until it gives up.
static QString GetMessage(TOperation operation, const QString &from, const QString &to)
{
    QElapsedTimer timer;
    timer.start();
    QString error;
    if (operation(from, to, error))
        return "done"_s;
    // Nine waits of 200 ms; the upper bound leaves room for a loaded machine.
    const qint64 milliseconds = timer.elapsed();
    return milliseconds >= 1800 && milliseconds < 4000 ? error : QString::number(milliseconds);
}

// Trees are copied, moved and removed; every step that fails is tried again.
class tst_FileFunctions : public QObject
{
    Q_OBJECT

    QString Tmp(const char *name) const { return QDir(m_strTmp).absoluteFilePath(QLatin1String(name)); }
    void Write(const char *name, const QByteArray &contents = "old") const
    {
        m_tree->WriteFile("Tmp/"_s + QLatin1String(name), contents);
    }
    QString GetRelativePaths(const char *dir) const
    {
        return GetFilePaths(Tmp(dir)).join(QLatin1Char(' ')).remove(Tmp(dir) + QLatin1Char('/'));
    }

    std::optional<CInstallationTree> m_tree;
    QString m_strTmp;
    QString m_strError;

private Q_SLOTS:
    void init()
    {
        m_tree.reset();
        m_tree.emplace();
        m_strTmp = m_tree->GetPath("Tmp"_s);
        m_strError = "before"_s;
    }
    void cleanupTestCase() { m_tree.reset(); }

    // Links are followed, but not in circles; one that is removed leaves alone what it leads to.
    void listedAndRemoved()
    {
        for (const char *name : {"from/b/2", "from/b/1", "from/a/x/deep", "from/0", "from/.hidden", "from/empty.svn",
                                 "from/.svn/entries", "from/a/.svn/entries", "from/empty/.svn", "outside/file"})
            Write(name);
        QVERIFY(QFile::link(Tmp("from"), Tmp("from/a/back")) && QFile::link(Tmp("outside"), Tmp("from/out")));
        QVERIFY(QFile::link(Tmp("missing"), Tmp("from/dangling")));
        QCOMPARE(GetRelativePaths("from"), "a a/back a/x a/x/deep b b/1 b/2 empty out out/file .hidden 0 dangling"_s);
        for (const QString &path : {QString(), Tmp("from/.svn"), Tmp("from/0"), Tmp("missing")})
            QCOMPARE(GetFilePaths(path), QStringList());

        QVERIFY2(RemoveDir(Tmp("from"), m_strError) && m_strError.isEmpty(), qPrintable(m_strError));
        QVERIFY(!QFileInfo::exists(Tmp("from")) && RemoveDir(Tmp("from"), m_strError));
        QCOMPARE(ReadFile(Tmp("outside/file")), QByteArray("old"));
    }

    void copiedAndMoved()
    {
        for (const bool move : {false, true}) {
            init();
            for (const char *name : {"from/a/file", "from/replaced", "from/.svn/entries", "from/empty/.svn"})
                Write(name, "new");
            Write("to/replaced", "old and longer");
            Write("to/kept");

            QVERIFY(CopyFile(Tmp("from/replaced"), Tmp("to/kept"), m_strError));
            QCOMPARE(m_strError, "before"_s); // the only one that leaves it alone
            QVERIFY2(CopyDir(Tmp("from/"), Tmp("x/../to//"), m_strError, move), qPrintable(m_strError));
            QCOMPARE(m_strError, QString());
            QCOMPARE(GetRelativePaths("to"), "a a/file kept replaced"_s);
            QCOMPARE(ReadFile(Tmp("to/a/file")) + ReadFile(Tmp("to/replaced")) + ReadFile(Tmp("to/kept")),
                     QByteArray("newnewnew"));
            QCOMPARE(GetRelativePaths("from"), QLatin1String(move ? "a empty" : "a a/file empty replaced"));

            QVERIFY(MoveDir(Tmp("from/."), Tmp("to"), m_strError) && m_strError.isEmpty());
            QCOMPARE(GetRelativePaths("to"), "a a/file kept replaced"_s);
            QVERIFY(!QFileInfo::exists(Tmp("from")));
        }
    }

    void moveAble()
    {
        Write("from/file");
        Write("to/file");
        QVERIFY(IsMoveAbleDir(Tmp("from"), Tmp("to"), m_strError) && m_strError.isEmpty());

        // A program that runs can't be opened for writing, whoever the user is.
        QVERIFY(QDir().mkdir(Tmp("busy")) && QFile::link(QCoreApplication::applicationFilePath(), Tmp("busy/file")));
        QVERIFY(!IsMoveAbleDir(Tmp("from"), Tmp("busy"), m_strError));
        QCOMPARE(m_strError, "move: not writeable: "_s + Tmp("busy/file"));

        QVERIFY(QFile::link(Tmp("missing"), Tmp("from/dangling")));
        QVERIFY(!IsMoveAbleDir(Tmp("from"), Tmp("to"), m_strError));
        QCOMPARE(m_strError, "move: from not found: %1 - permissions 0"_s.arg(Tmp("from/dangling")));
    }

    // The old file is removed before the new one comes, which here is the same.
    void ontoItself()
    {
        const QString alias = Tmp("alias");
        Write("tree/a/file");
        QVERIFY(QFile::link(Tmp("tree"), alias));
        QVERIFY(!CopyDir(Tmp("tree"), Tmp("tree/."), m_strError, false));
        QVERIFY(!CopyDir(Tmp("tree"), Tmp("tree/."), m_strError, true));
        QVERIFY(!CopyDir(Tmp("tree"), alias, m_strError, true));
        QVERIFY(!MoveDir(Tmp("tree"), Tmp("tree/below"), m_strError));
        QCOMPARE(m_strError, "move: failed to rename: "_s + Tmp("tree to ") + Tmp("tree/below"));
        QVERIFY(RemoveDir(alias, m_strError) && !QFileInfo::exists(alias));
        QCOMPARE(ReadFile(Tmp("tree/a/file")), QByteArray("old"));
    }

    void intoItself_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::newRow("through a link") << "tree"_s
                                        << "alias/below"_s;
        QTest::newRow("from a link") << "alias"_s
                                     << "tree/below"_s;
        QTest::newRow("to a relative path") << "tree"_s
                                            << "../Tmp/tree/below"_s;
        QTest::newRow("below a link in the target") << "tree"_s
                                                    << "target"_s;
        QTest::newRow("up, with the same name within") << "tree"_s
                                                       << "."_s;
    }
    // What comes to lie within the tree would be removed with it.
    void intoItself()
    {
        QFETCH(const QString, from);
        QFETCH(const QString, to);
        Write("tree/tree/file");
        QVERIFY(QDir().mkpath(Tmp("target")) && QFile::link(Tmp("tree"), Tmp("target/tree")));
        QVERIFY(QFile::link(Tmp("tree"), Tmp("alias")));
        const QDir tmp(m_strTmp);
        const QString target = to.startsWith("../"_s) ? to : tmp.absoluteFilePath(to);
        QVERIFY(!MoveDir(tmp.absoluteFilePath(from), target, m_strError));
        QVERIFY2(m_strError.startsWith("move: failed to rename: "_s), qPrintable(m_strError));
        QCOMPARE(ReadFile(Tmp("tree/tree/file")), QByteArray("old"));
    }

    void linkWithTail()
    {
        Write("tree/file");
        for (const char *path : {"alias/", "alias/.", "alias/.//"}) {
            QVERIFY(QFile::link(Tmp("tree"), Tmp("alias")));
            QVERIFY(RemoveDir(Tmp(path), m_strError) && !QFileInfo::exists(Tmp("alias")));
        }
        QCOMPARE(ReadFile(Tmp("tree/file")), QByteArray("old"));
    }

    void nothingThere()
    {
        for (const QString &from : {QString(), Tmp("missing")}) {
            QVERIFY2(CopyDir(from, Tmp("other"), m_strError, false), qPrintable(m_strError));
            QVERIFY2(MoveDir(from, Tmp("missing/below"), m_strError) && m_strError.isEmpty(), qPrintable(m_strError));
        }
    }

    // Every step that can be tried again fails for good, and all of them at the same time, since each takes its time.
    // Permissions would stop nobody who is root; directories, files and links in the way stop everybody.
    void failures()
    {
        Write("from/a/file");
        Write("over/file/in the way");
        Write("across/a", "a file, where a directory is needed");
        QVERIFY(QDir().mkpath(Tmp("dangling/a")) && QDir().mkpath(Tmp("removed/a/file")));
        QVERIFY(QFile::link(Tmp("missing/file"), Tmp("dangling/a/file")));
        QVERIFY(QDir().mkpath(Tmp("back")) && QFile::link(Tmp("from/a"), Tmp("back/a")));

        const TOperation copy = [](const auto &from, const auto &to, auto &e) { return CopyDir(from, to, e, false); };
        const TOperation move = [](const auto &from, const auto &to, auto &e) { return CopyDir(from, to, e, true); };
        const TOperation remove = [](const auto &path, const auto &, auto &e) { return RemoveDir(path, e); };
        const std::tuple<TOperation, const char *, const char *, const char *> failures[] = {
            {copy, "from", "across", "copy: failed to create path: ~/across/a"},
            {MoveDir, "from", "across", "copy: failed to create path: ~/across/a"},
            {move, "from", "removed", "copy: failed to remove: ~/removed/a/file"},
            {move, "from", "dangling", "move: failed to rename: ~/from/a/file to ~/dangling/a/file"},
            {copy, "from", "dangling", "copy: failed to copy: ~/from/a/file to ~/dangling/a/file"},
            {CopyFile, "from/a/file", "over/file", "copy: failed to remove file: ~/over/file"},
            {CopyFile, "from/a/file", "from/a/file", "copy: failed to copy file: ~/from/a/file to ~/from/a/file"},
            {CopyFile, "from", "across/a", "copy: failed to copy file: ~/from to ~/across/a"}, // a directory
            {copy, "from", "back", "copy: failed to copy: ~/from/a/file to ~/back/a/file"},
            {CopyFile, "missing", "from/a/file", "copy: failed to copy file: ~/missing to ~/from/a/file"},
            {remove, "across/a", "", "remove: failed to remove dir: ~/across/a"},
#if defined(Q_OS_LINUX) // the kernel lets nobody remove these
            {remove, "/proc/self/fdinfo", "", "remove: failed to remove file: /proc/self/fdinfo/0"},
#endif
        };
        std::vector<std::future<QString>> errors;
        for (const auto &[operation, from, to, message] : failures)
            errors.push_back(std::async(std::launch::async, GetMessage, operation, Tmp(from), Tmp(to)));
        for (size_t i = 0; i < errors.size(); ++i)
            QCOMPARE(errors[i].get().replace(m_strTmp, "~"_s), QLatin1String(std::get<3>(failures[i])));
        QCOMPARE(ReadFile(Tmp("from/a/file")), QByteArray("old"));
        QCOMPARE(ReadFile(Tmp("across/a")).left(6), QByteArray("a file"));
        QCOMPARE(QDir(Tmp("across")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
    }

    void laterAttempt()
    {
        Write("obstacle");
        // Another program lets go of the file after a moment; the call below blocks this thread.
        const auto otherProgram = std::async(std::launch::async, [this] {
            QThread::msleep(300);
            QFile::remove(Tmp("obstacle"));
        });
        QVERIFY(DoAction(FA_MakePath, Tmp("obstacle/a"), QString()));
    }
};

QTEST_GUILESS_MAIN(tst_FileFunctions)
#include "tst_filefunctions.moc"
