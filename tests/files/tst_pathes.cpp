#include <files/Pathes.h>

#include <support/InstallationTree.h>

#include <QtTest>

// Where the files of an installation lie.
class tst_Pathes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void composed()
    {
        const std::pair<QString (*)(), const char *> rows[] = {
            {Pathes::Binary, ""},
            {Pathes::Contents, "/.."},
            {Pathes::Root, "/../.."},
            {Pathes::Client, "/../Client"},
            {Pathes::Plugins, "/../Client/Plugins"},
            {Pathes::MainExe, "/../Client/main.exe"},
            {Pathes::StarterExe, "/../Client/starter.exe"},
            {Pathes::StarterTmpExe, "/../Client/startertmp.exe"},
            {Pathes::Frameworks, "/../Frameworks"},
            {Pathes::RSyncDir, "/../Frameworks/rsyncbin"},
            {Pathes::RSync, "/../Frameworks/rsyncbin/rsyncqt.exe"},
            {Pathes::Resources, "/../Resources"},
            {Pathes::ConfigDB, "/../Resources/config.sqlite"},
            {Pathes::LanguageDB, "/../Resources/language.sqlite"},
            {Pathes::DesignerStyleDir, "/../Resources/designer"},
            {Pathes::Brand, "/../Resources/brand/Qt"},
            {Pathes::Icon, "/../Resources/brand/Qt/icon.ico"},
            {Pathes::StarterStyleCss, "/../Resources/brand/Qt/style.css"},
            {Pathes::CommonBrand, "/../Resources/brand/Qt/common/Qt"},
            {Pathes::Common, "/../Resources/common/Qt"},
            {Pathes::Fonts, "/../Resources/common/Qt/fonts"},
            {Pathes::Tmp, "/../Tmp"},
            {Pathes::SettingsDB, "/../Tmp/settings.sqlite"},
            {Pathes::PlayerInfoDB, "/../Tmp/playerinfo.sqlite"},
            {Pathes::LobbyListDB, "/../Tmp/lobbylist.sqlite"},
            {Pathes::HandHistoryDB, "/../Tmp/handhistory.sqlite"},
            {Pathes::Log, "/../Tmp/logs"},
            {Pathes::RSyncTmpDir, "/../Tmp/rsyncbin"},
            {Pathes::RSyncTmp, "/../Tmp/rsyncbin/rsyncqt.exe"},
        };
        const CInstallationTree tree; // the answers follow the process's current directory
        for (const auto &[function, behindBinary] : rows)
            QCOMPARE(function(), QDir::currentPath() + QLatin1String(behindBinary));
    }

    void withArguments()
    {
        const CInstallationTree tree;
        for (const char *name : {"Tmp/a_0.png", "Tmp/a_1.png", "Tmp/a_3.png"})
            tree.WriteFile(QLatin1String(name));
        for (const QString &dir : {tree.GetPath(QStringLiteral("Tmp")), tree.GetPath(QStringLiteral("Tmp/"))})
            QCOMPARE(Pathes::UniqueFilePath(dir, QStringLiteral("a"), QStringLiteral("png")),
                     tree.GetPath(QStringLiteral("Tmp/a_2.png")));

        QVERIFY(QDir::isAbsolutePath(Pathes::PersonalDir()));
        QCOMPARE(Pathes::ThemeRoot(QStringLiteral("dark")), Pathes::Resources() + QLatin1String("/themes/dark"));
        QCOMPARE(Pathes::Theme(QStringLiteral("root"), -12), QStringLiteral("root/theme-12/Qt"));
        QCOMPARE(Pathes::CustomAvatar(1000), Pathes::Tmp() + QLatin1String("/CustomAvatars/1/1000.png"));
        QCOMPARE(Pathes::CustomAvatar(~0u), Pathes::Tmp() + QLatin1String("/CustomAvatars/4294967/4294967295.png"));
    }

    // In this order, since the answers are remembered as long as the process lives.
    void commonResource()
    {
        const CInstallationTree tree;
        for (const char *name :
             {"brand/Qt/common/Qt/a", "common/Qt/a", "common/Qt/compiled/both.txt", "common/Qt/gone"})
            tree.WriteFile(QLatin1String("Resources/") + QLatin1String(name));
        const auto ask = [](const char *name, bool url) {
            return Pathes::ToCommonRes(QLatin1String(name), url).toUtf8().replace(Pathes::Resources().toUtf8(), "~");
        };
        QCOMPARE(ask("a", false), QByteArray("~/brand/Qt/common/Qt/a"));
        QCOMPARE(ask("compiled/both.txt", true), QByteArray("~/common/Qt/compiled/both.txt"));
        QCOMPARE(ask("compiled/path.txt", false), QByteArray(":/compiled/path.txt"));
        QCOMPARE(ask("compiled/path.txt", true), QByteArray(":/compiled/path.txt")); // the path is known already
        QCOMPARE(ask("compiled/url.txt", true), QByteArray("qrc:/compiled/url.txt"));
        QCOMPARE(ask("compiled/url.txt", true), QByteArray("qrc:/compiled/url.txt"));
        QCOMPARE(ask("compiled/url.txt", false), QByteArray(":/compiled/url.txt"));
        QCOMPARE(ask("gone", false), QByteArray("~/common/Qt/gone"));
        QCOMPARE(ask("late", true), QByteArray());

        QVERIFY(QFile::rename(Pathes::Common() + QLatin1String("/gone"), Pathes::Common() + QLatin1String("/late")));
        QCOMPARE(ask("gone", true), QByteArray("~/common/Qt/gone"));
        QCOMPARE(ask("late", false), QByteArray());
    }
};

QTEST_GUILESS_MAIN(tst_Pathes)
#include "tst_pathes.moc"
