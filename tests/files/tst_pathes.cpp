#include <files/Pathes.h>

#include <support/InstallationTree.h>

#include <QDir>
#include <QtTest>

using TFunction = QString (*)();
Q_DECLARE_METATYPE(TFunction)

// Where the files of an installation lie. The answers of ToCommonRes() are remembered as long as the process lives,
// so each test has names of its own.
class tst_Pathes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void composed_data();
    void composed();
    void withArguments();
    void commonResource();
    void compiledInResource();
    void rememberedResource();
    void uniqueFilePath();
};

void tst_Pathes::composed_data()
{
    QTest::addColumn<TFunction>("function");
    QTest::addColumn<QString>("behindBinary");

    const auto add = [](const char *path, TFunction function) { QTest::newRow(path) << function << path; };
    add("", Pathes::Binary);
    add("/..", Pathes::Contents);
    add("/../..", Pathes::Root);
    add("/../Client", Pathes::Client);
    add("/../Client/Plugins", Pathes::Plugins);
    add("/../Client/main.exe", Pathes::MainExe);
    add("/../Client/starter.exe", Pathes::StarterExe);
    add("/../Client/startertmp.exe", Pathes::StarterTmpExe);
    add("/../Frameworks", Pathes::Frameworks);
    add("/../Frameworks/rsyncbin", Pathes::RSyncDir);
    add("/../Frameworks/rsyncbin/rsyncqt.exe", Pathes::RSync);
    add("/../Resources", Pathes::Resources);
    add("/../Resources/config.sqlite", Pathes::ConfigDB);
    add("/../Resources/language.sqlite", Pathes::LanguageDB);
    add("/../Resources/designer", Pathes::DesignerStyleDir);
    add("/../Resources/brand/Qt", Pathes::Brand);
    add("/../Resources/brand/Qt/icon.ico", Pathes::Icon);
    add("/../Resources/brand/Qt/style.css", Pathes::StarterStyleCss);
    add("/../Resources/brand/Qt/common/Qt", Pathes::CommonBrand);
    add("/../Resources/common/Qt", Pathes::Common);
    add("/../Resources/common/Qt/fonts", Pathes::Fonts);
    add("/../Tmp", Pathes::Tmp);
    add("/../Tmp/settings.sqlite", Pathes::SettingsDB);
    add("/../Tmp/playerinfo.sqlite", Pathes::PlayerInfoDB);
    add("/../Tmp/lobbylist.sqlite", Pathes::LobbyListDB);
    add("/../Tmp/handhistory.sqlite", Pathes::HandHistoryDB);
    add("/../Tmp/logs", Pathes::Log);
    add("/../Tmp/rsyncbin", Pathes::RSyncTmpDir);
    add("/../Tmp/rsyncbin/rsyncqt.exe", Pathes::RSyncTmp);
}

void tst_Pathes::composed()
{
    QFETCH(TFunction, function);
    QFETCH(QString, behindBinary);

    QCOMPARE(function(), QDir::currentPath() + behindBinary);
    const CInstallationTree tree; // the answer follows the process's current directory
    QCOMPARE(function(), QDir::currentPath() + behindBinary);
}

void tst_Pathes::withArguments()
{
    QVERIFY(QDir::isAbsolutePath(Pathes::PersonalDir()));
    QCOMPARE(Pathes::ThemeRoot(QStringLiteral("dark")), Pathes::Resources() + QLatin1String("/themes/dark"));
    QCOMPARE(Pathes::Theme(QStringLiteral("root"), -12), QStringLiteral("root/theme-12/Qt"));

    const QString avatars = Pathes::Tmp() + QLatin1String("/CustomAvatars/");
    QCOMPARE(Pathes::CustomAvatar(0), avatars + QLatin1String("0/0.png"));
    QCOMPARE(Pathes::CustomAvatar(999), avatars + QLatin1String("0/999.png"));
    QCOMPARE(Pathes::CustomAvatar(1000), avatars + QLatin1String("1/1000.png"));
    QCOMPARE(Pathes::CustomAvatar(4294967295u), avatars + QLatin1String("4294967/4294967295.png"));
}

void tst_Pathes::commonResource()
{
    const CInstallationTree tree;
    tree.WriteFile(QStringLiteral("Resources/brand/Qt/common/Qt/a/branded.png"));
    for (const char *name : {"a/branded.png", "a/common.png", "compiled/both.txt"})
        tree.WriteFile(QLatin1String("Resources/common/Qt/") + QLatin1String(name));

    for (const bool url : {false, true}) {
        QCOMPARE(Pathes::ToCommonRes(QStringLiteral("a/branded.png"), url),
                 Pathes::CommonBrand() + QLatin1String("/a/branded.png"));
        QCOMPARE(Pathes::ToCommonRes(QStringLiteral("a/common.png"), url),
                 Pathes::Common() + QLatin1String("/a/common.png"));
        QCOMPARE(Pathes::ToCommonRes(QStringLiteral("compiled/both.txt"), url),
                 Pathes::Common() + QLatin1String("/compiled/both.txt"));
        QCOMPARE(Pathes::ToCommonRes(QStringLiteral("a/missing.png"), url), QString());
    }
}

void tst_Pathes::compiledInResource()
{
    const QString path = QStringLiteral("compiled/path.txt");
    QCOMPARE(Pathes::ToCommonRes(path, false), QStringLiteral(":/compiled/path.txt"));
    QCOMPARE(Pathes::ToCommonRes(path, true), QStringLiteral(":/compiled/path.txt")); // the path is known already

    const QString url = QStringLiteral("compiled/url.txt");
    QCOMPARE(Pathes::ToCommonRes(url, true), QStringLiteral("qrc:/compiled/url.txt"));
    QCOMPARE(Pathes::ToCommonRes(url, true), QStringLiteral("qrc:/compiled/url.txt"));
    QCOMPARE(Pathes::ToCommonRes(url, false), QStringLiteral(":/compiled/url.txt"));
}

void tst_Pathes::rememberedResource()
{
    const CInstallationTree tree;
    const QString late = QStringLiteral("late.png");
    const QString gone = QStringLiteral("gone.png");
    const QString file = tree.WriteFile(QLatin1String("Resources/common/Qt/") + gone);
    const QString answer = Pathes::ToCommonRes(gone, false);
    QCOMPARE(Pathes::ToCommonRes(late, false), QString());

    QVERIFY(QFile::remove(file));
    tree.WriteFile(QLatin1String("Resources/common/Qt/") + late);
    QCOMPARE(Pathes::ToCommonRes(gone, false), answer);
    QCOMPARE(Pathes::ToCommonRes(late, false), QString());
    QCOMPARE(Pathes::ToCommonRes(late, true), QString());
}

void tst_Pathes::uniqueFilePath()
{
    const CInstallationTree tree;
    tree.WriteFile(QStringLiteral("Tmp/a_0.png"));
    tree.WriteFile(QStringLiteral("Tmp/a_1.png"));
    tree.WriteFile(QStringLiteral("Tmp/a_3.png"));

    const QString tmp = tree.GetPath(QStringLiteral("Tmp"));
    const QString png = QStringLiteral("png");
    QCOMPARE(Pathes::UniqueFilePath(tmp, QStringLiteral("a"), png), tmp + QLatin1String("/a_2.png"));
    QCOMPARE(Pathes::UniqueFilePath(tmp + QLatin1Char('/'), QStringLiteral("a"), png),
             tmp + QLatin1String("/a_2.png"));
    QCOMPARE(Pathes::UniqueFilePath(tmp, QStringLiteral("b"), png), tmp + QLatin1String("/b_0.png"));
}

QTEST_GUILESS_MAIN(tst_Pathes)
#include "tst_pathes.moc"
