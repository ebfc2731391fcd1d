#include <files/FileHelpers.h>

#include <support/InstallationTree.h>

#include <QtTest>

// Whole files, digests, text between markers, boolean texts.
class tst_FileHelpers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void write()
    {
        const CInstallationTree tree;
        const QString inNewDir = tree.GetPath(QStringLiteral("Tmp/a/b/file"));
        const QString overLongerFile = tree.WriteFile(QStringLiteral("Tmp/longer"), "0123456789");
        const std::tuple<int, int, const char *> parts[] = {
            {-1, -1, "abcdef"}, {2, 3, "cde"},  {2, -5, "cdef"}, {-5, 2, "ab"},
            {0, 0, ""},         {4, 100, "ef"}, {100, 3, ""},
        };
        for (const auto &[position, length, expected] : parts) {
            for (const QString &path : {inNewDir, overLongerFile, QStringLiteral("inCurrentDir")}) {
                QVERIFY(Globals::WriteToFile(path, "abcdef", position, length));
                QByteArray written("not read");
                QVERIFY(Globals::GetContents(path, written));
                QCOMPARE(written, QByteArray(expected));
            }
        }
    }

    void writeOnlyChanges()
    {
        const CInstallationTree tree;
        const QString path = tree.WriteFile(QStringLiteral("Tmp/file"), "cde");
        const QDateTime longAgo = QDateTime::fromSecsSinceEpoch(1000000000);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite) && file.setFileTime(longAgo, QFileDevice::FileModificationTime));
        file.close();

        QVERIFY(Globals::WriteToFile(path, "abcdef", 2, 3));
        QCOMPARE(QFileInfo(path).lastModified(), longAgo);
        QVERIFY(Globals::WriteToFile(path, "abcdef", 2, 4));
        QVERIFY(QFileInfo(path).lastModified() > longAgo);
    }

    void failuresAndDigests()
    {
        const CInstallationTree tree;
        const QString file = tree.WriteFile(QStringLiteral("Tmp/file"), "abc");
        const QString missing = tree.GetPath(QStringLiteral("Tmp/missing"));
        QVERIFY(!Globals::WriteToFile(file + QLatin1String("/below"), "abcdef", -1, -1));
        QVERIFY(!Globals::WriteToFile(tree.GetPath(QStringLiteral("Tmp")), "abcdef", -1, -1));
        QByteArray contents("before");
        QVERIFY(!Globals::GetContents(missing, contents));
        QCOMPARE(contents, QByteArray("before"));
        QCOMPARE(Globals::GetFileMD5(file), QStringLiteral("900150983cd24fb0d6963f7d28e17f72"));
        QCOMPARE(Globals::GetFileMD5(missing), QString());
        QCOMPARE(Globals::GetMD5(QByteArray()), QStringLiteral("d41d8cd98f00b204e9800998ecf8427e"));
    }

    void between()
    {
        const std::tuple<const char *, int, const char *, int> rows[] = {
            {" <<text>> ", 0, "text", 9},      {"<<a>><<b>>", 1, "b", 10}, {" <<>>", 0, "", 5},
            {"<<text>>", 0, "before", -7}, // a marker at the start isn't seen
            {">> <<text>", 0, "before", -7},   {" <<>", 0, "before", -7},  {" <<text>> ", 2, "before", -7},
            {" <<text>> ", 100, "before", -7},
        };
        for (const auto &[data, from, expected, expectedNext] : rows) {
            QByteArray result("before");
            int next = -7;
            QCOMPARE(Globals::GetBetween(data, from, "<<", ">>", result, next), expectedNext > 0);
            QCOMPARE(result, QByteArray(expected));
            QCOMPARE(next, expectedNext);
        }
    }

    void boolean()
    {
        const auto read = [](const char *text) {
            return int(Globals::ToBool(QLatin1String(text), false)) + int(Globals::ToBool(QLatin1String(text), true));
        };
        for (const char *text : {"true", "ON", "Yes", "1"})
            QCOMPARE(read(text), 2);
        for (const char *text : {"FALSE", "off", "nO", "0"})
            QCOMPARE(read(text), 0);
        for (const char *text : {"", "2", "maybe", " true", "00"})
            QCOMPARE(read(text), 1); // the default
    }
};

QTEST_GUILESS_MAIN(tst_FileHelpers)
#include "tst_filehelpers.moc"
