#include <files/FileHelpers.h>

#include <support/InstallationTree.h>

#include <QDateTime>
#include <QFileInfo>
#include <QtTest>

// Whole files, digests, text between markers, boolean texts.
class tst_FileHelpers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void write_data();
    void write();
    void writeOnlyChanges();
    void failures();
    void digests();
    void between_data();
    void between();
    void boolean();
};

void tst_FileHelpers::write_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("length");
    QTest::addColumn<QByteArray>("written");

    QTest::newRow("all") << -1 << -1 << QByteArray("abcdef");
    QTest::newRow("middle") << 2 << 3 << QByteArray("cde");
    QTest::newRow("rest") << 2 << -5 << QByteArray("cdef");
    QTest::newRow("front") << -5 << 2 << QByteArray("ab");
    QTest::newRow("nothing") << 0 << 0 << QByteArray();
    QTest::newRow("longer than the data") << 4 << 100 << QByteArray("ef");
    QTest::newRow("behind the data") << 100 << 3 << QByteArray();
}

void tst_FileHelpers::write()
{
    QFETCH(int, position);
    QFETCH(int, length);
    const CInstallationTree tree;
    const QString inNewDir = tree.GetPath(QStringLiteral("Tmp/a/b/file"));
    const QString overLongerFile = tree.WriteFile(QStringLiteral("Tmp/longer"), "0123456789");
    const QString inCurrentDir = QStringLiteral("file");

    for (const QString &path : {inNewDir, overLongerFile, inCurrentDir}) {
        QVERIFY(Globals::WriteToFile(path, "abcdef", position, length));
        QByteArray written("not read");
        QVERIFY(Globals::GetContents(path, written));
        QTEST(written, "written");
    }
}

void tst_FileHelpers::writeOnlyChanges()
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

void tst_FileHelpers::failures()
{
    const CInstallationTree tree;
    const QString file = tree.WriteFile(QStringLiteral("Tmp/file"), "kept");
    QVERIFY(!Globals::WriteToFile(file + QLatin1String("/below"), "abcdef", -1, -1));
    QVERIFY(!Globals::WriteToFile(tree.GetPath(QStringLiteral("Tmp")), "abcdef", -1, -1));
    QByteArray contents;
    QVERIFY(Globals::GetContents(file, contents));
    QVERIFY(!Globals::GetContents(tree.GetPath(QStringLiteral("Tmp/missing")), contents));
    QCOMPARE(contents, QByteArray("kept"));
}

void tst_FileHelpers::digests()
{
    const CInstallationTree tree;
    QCOMPARE(Globals::GetMD5(QByteArray()), QStringLiteral("d41d8cd98f00b204e9800998ecf8427e"));
    QCOMPARE(Globals::GetMD5("abc"), QStringLiteral("900150983cd24fb0d6963f7d28e17f72"));
    QCOMPARE(Globals::GetFileMD5(tree.WriteFile(QStringLiteral("Tmp/abc"), "abc")), Globals::GetMD5("abc"));
    QCOMPARE(Globals::GetFileMD5(tree.GetPath(QStringLiteral("Tmp/missing"))), QString());
}

void tst_FileHelpers::between_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<int>("from");
    QTest::addColumn<QByteArray>("result");
    QTest::addColumn<int>("next"); // -1 when nothing is to be found

    QTest::newRow("found") << QByteArray(" <<text>> ") << 0 << QByteArray("text") << 9;
    QTest::newRow("at the start") << QByteArray("<<text>>") << 0 << QByteArray() << -1;
    QTest::newRow("the second, behind one at the start") << QByteArray("<<a>><<b>>") << 1 << QByteArray("b") << 10;
    QTest::newRow("empty") << QByteArray(" <<>>") << 0 << QByteArray("") << 5;
    QTest::newRow("no end") << QByteArray(">> <<text>") << 0 << QByteArray() << -1;
    QTest::newRow("end within begin") << QByteArray(" <<>") << 0 << QByteArray() << -1;
    QTest::newRow("from behind begin") << QByteArray(" <<text>> ") << 2 << QByteArray() << -1;
    QTest::newRow("from behind the data") << QByteArray(" <<text>> ") << 100 << QByteArray() << -1;
}

void tst_FileHelpers::between()
{
    QFETCH(QByteArray, data);
    QFETCH(int, from);
    QFETCH(QByteArray, result);
    QFETCH(int, next);

    QByteArray actualResult("before");
    int actualNext = -7;
    QCOMPARE(Globals::GetBetween(data, from, "<<", ">>", actualResult, actualNext), next >= 0);
    QCOMPARE(actualResult, next >= 0 ? result : QByteArray("before"));
    QCOMPARE(actualNext, next >= 0 ? next : -7);
}

void tst_FileHelpers::boolean()
{
    const auto read = [](const char *text, bool defaultValue) {
        return Globals::ToBool(QLatin1String(text), defaultValue);
    };
    for (const char *text : {"true", "ON", "Yes", "1"})
        QVERIFY2(read(text, false) && read(text, true), text);
    for (const char *text : {"FALSE", "off", "nO", "0"})
        QVERIFY2(!read(text, false) && !read(text, true), text);
    for (const char *text : {"", "2", "maybe", " true", "00"})
        QVERIFY2(!read(text, false) && read(text, true), text);
}

QTEST_GUILESS_MAIN(tst_FileHelpers)
#include "tst_filehelpers.moc"
