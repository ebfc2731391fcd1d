#include <files/FileFunctions.h>

#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>

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
class tst_filefunctions : public QObject
{
    Q_OBJECT

    QString Tmp(const char *name) const { return QDir(m_strTmp).absoluteFilePath(QLatin1String(name)); }
    void Write(const char *name, const QByteArray &contents = "old") const
    {
        m_tree->WriteFile("Tmp/"_s + QLatin1String(name), contents);
    }
    void Link(const char *target, const char *name) const
    {
        QVERIFY(QDir().mkpath(QFileInfo(Tmp(name)).path()));
        QVERIFY(QFile::link(Tmp(target), Tmp(name)));
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
    void ListedAndRemoved()
    {
        for (const char *name : {"from/b/2", "from/b/1", "from/a/x/deep", "from/0", "from/.hidden", "from/empty.svn",
                                 "from/.svn/entries", "from/a/.svn/entries", "from/empty/.svn", "outside/file"})
            Write(name);
        Link("from", "from/a/back");
        Link("outside", "from/out");
        Link("missing", "from/dangling");
        QCOMPARE(GetRelativePaths("from"), "a a/back a/x a/x/deep b b/1 b/2 empty out out/file .hidden 0 dangling"_s);
        for (const QString &path : {QString(), Tmp("from/.svn"), Tmp("from/0"), Tmp("missing")})
            QVERIFY2(GetFilePaths(path).isEmpty(), qPrintable(path));

        QVERIFY(RemoveDir(Tmp("from"), m_strError));
        QCOMPARE(m_strError, QString());
        QVERIFY(!QFileInfo::exists(Tmp("from")));
        QVERIFY(RemoveDir(Tmp("from"), m_strError)); // nothing is left to be done
        for (const char *path : {"alias", "alias/", "alias/.", "alias/.//"}) {
            Link("outside", "alias");
            QVERIFY2(RemoveDir(Tmp(path), m_strError) && !QFileInfo::exists(Tmp("alias")), path);
        }
        QCOMPARE(ReadFile(Tmp("outside/file")), QByteArray("old"));
    }

    void CopiedAndMoved_data() { AddRows("copied|a a/file empty replaced;moved|a empty"_s); }

    void CopiedAndMoved()
    {
        QFETCH(QStringList, in); // what is done, what is left
        for (const char *name : {"from/a/file", "from/replaced", "from/.svn/entries", "from/empty/.svn"})
            Write(name, "new");
        Write("to/replaced", "old and longer");
        Write("to/kept");
        QVERIFY(CopyFile(Tmp("from/replaced"), Tmp("to/kept"), m_strError));
        QCOMPARE(m_strError, "before"_s); // the only one that leaves it alone
        QVERIFY(CopyDir(Tmp("from/"), Tmp("x/../to//"), m_strError, in[0] == "moved"_s));
        QCOMPARE(m_strError, QString());
        QCOMPARE(GetRelativePaths("to"), "a a/file kept replaced"_s);
        QCOMPARE(ReadFile(Tmp("to/a/file")) + ReadFile(Tmp("to/replaced")) + ReadFile(Tmp("to/kept")),
                 QByteArray("newnewnew"));
        QCOMPARE(GetRelativePaths("from"), in[1]);

        QVERIFY(MoveDir(Tmp("from/."), Tmp("to"), m_strError));
        QCOMPARE(m_strError, QString());
        QCOMPARE(GetRelativePaths("to"), "a a/file kept replaced"_s);
        QVERIFY(!QFileInfo::exists(Tmp("from")));
        QVERIFY(MoveDir(Tmp("from"), Tmp("from/below"), m_strError)); // nothing is left to be moved
    }

    void MoveAble()
    {
        Write("from/file");
        Write("to/file");
        QVERIFY(IsMoveAbleDir(Tmp("from"), Tmp("to"), m_strError));
        QCOMPARE(m_strError, QString());

        // A program that runs can't be opened for writing, whoever the user is.
        QVERIFY(QDir().mkdir(Tmp("busy")) && QFile::link(QCoreApplication::applicationFilePath(), Tmp("busy/file")));
        QVERIFY(!IsMoveAbleDir(Tmp("from"), Tmp("busy"), m_strError));
        QCOMPARE(m_strError, "move: not writeable: "_s + Tmp("busy/file"));

        Link("missing", "from/dangling");
        QVERIFY(!IsMoveAbleDir(Tmp("from"), Tmp("to"), m_strError));
        QCOMPARE(m_strError, "move: from not found: %1 - permissions 0"_s.arg(Tmp("from/dangling")));
    }

    void IntoItself_data()
    {
        AddRows("tree|tree/below;tree|alias/below;alias|tree/below;tree|../Tmp/tree/below;tree|target;tree|."_s);
    }

    // What comes to lie within the tree would be removed with it.
    void IntoItself()
    {
        QFETCH(QStringList, in);
        Write("tree/tree/file");
        Link("tree", "target/tree");
        Link("tree", "alias");
        const QString above = m_strTmp + QLatin1Char('/');
        QVERIFY(!MoveDir(above + in[0], in[1].startsWith("../"_s) ? in[1] : above + in[1], m_strError));
        QVERIFY2(m_strError.startsWith("move: failed to rename: "_s), qPrintable(m_strError));
        QCOMPARE(ReadFile(Tmp("tree/tree/file")), QByteArray("old"));
    }

    // Every step that can be tried again fails for good, and all of them at the same time, since each takes its time.
    // Permissions would stop nobody who is root; directories, files and links in the way stop everybody. For one of
    // them another program lets go of the file after a moment.
    void Failures()
    {
        Write("from/a/file");
        Write("over/file/in the way");
        Write("across/a"); // where a directory is needed
        QVERIFY(QDir().mkpath(Tmp("removed/a/file")));
        Link("missing/file", "dangling/a/file");
        Link("from", "alias");
        Write("obstacle");

        const TOperation copy = [](const auto &from, const auto &to, auto &e) { return CopyDir(from, to, e, false); };
        const TOperation move = [](const auto &from, const auto &to, auto &e) { return CopyDir(from, to, e, true); };
        const TOperation remove = [](const auto &path, const auto &, auto &e) { return RemoveDir(path, e); };
        const std::tuple<TOperation, const char *, const char *, const char *> failures[] = {
            {copy, "from", "across", "copy: failed to create path: ~/across/a"},
            {move, "from", "removed", "copy: failed to remove: ~/removed/a/file"},
            {move, "from", "dangling", "move: failed to rename: ~/from/a/file to ~/dangling/a/file"},
            {copy, "from", "dangling", "copy: failed to copy: ~/from/a/file to ~/dangling/a/file"},
            {CopyFile, "from/a/file", "over/file", "copy: failed to remove file: ~/over/file"},
            {CopyFile, "from/a/file", "from/a/file", "copy: failed to copy file: ~/from/a/file to ~/from/a/file"},
            {move, "from", "alias", "move: failed to rename: ~/from/a/file to ~/alias/a/file"},
            {remove, "across/a", "", "remove: failed to remove dir: ~/across/a"},
#if defined(Q_OS_LINUX) // the kernel lets nobody remove these
            {remove, "/proc/self/fdinfo", "", "remove: failed to remove file: /proc/self/fdinfo/0"},
#endif
        };
        std::vector<std::future<QString>> errors;
        for (const auto &[operation, from, to, message] : failures)
            errors.push_back(std::async(std::launch::async, GetMessage, operation, Tmp(from), Tmp(to)));
        auto later = std::async(std::launch::async, copy, Tmp("from"), Tmp("obstacle"), std::ref(m_strError));
        QThread::msleep(300);
        QVERIFY(QFile::remove(Tmp("obstacle")));
        QVERIFY2(later.get(), qPrintable(m_strError));
        for (size_t i = 0; i < errors.size(); ++i)
            QCOMPARE(errors[i].get().replace(m_strTmp, "~"_s), QLatin1String(std::get<3>(failures[i])));
        QCOMPARE(ReadFile(Tmp("from/a/file")), QByteArray("old"));
        QCOMPARE(ReadFile(Tmp("across/a")), QByteArray("old"));
    }
};

QTEST_GUILESS_MAIN(tst_filefunctions)
#include "tst_filefunctions.moc"
