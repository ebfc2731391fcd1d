#include <files/Console.h>
#include <files/FileHelpers.h>
#include <files/Pathes.h>

#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>

#include <QtTest>

// Where the files of an installation lie; whole files and texts; the bounded list of messages.
class tst_files : public QObject
{
    Q_OBJECT

    static void Add(int n) { CConsole::AddMessage("a"_s, CConsole::MC_Network, CConsole::ML_Warning, "b"_s, n); }

private Q_SLOTS:
    void Composed()
    {
        using namespace Pathes;
        const CInstallationTree tree; // the answers follow the process's current directory
        QString paths;
        for (const auto function : {Binary,      Contents,      Root,
                                    Client,      Plugins,       MainExe,
                                    StarterExe,  StarterTmpExe, Frameworks,
                                    RSyncDir,    RSync,         Resources,
                                    ConfigDB,    LanguageDB,    DesignerStyleDir,
                                    Brand,       Icon,          StarterStyleCss,
                                    CommonBrand, Common,        Fonts,
                                    Tmp,         SettingsDB,    PlayerInfoDB,
                                    LobbyListDB, HandHistoryDB, Log,
                                    RSyncTmpDir, RSyncTmp})
            paths += function() + QLatin1Char(' ');
        paths.replace(QDir::currentPath(), "~"_s).replace("~/../Resources"_s, "R"_s).replace("~/../Tmp"_s, "T"_s);
        QCOMPARE(paths,
                 "~ ~/.. ~/../.. ~/../Client ~/../Client/Plugins ~/../Client/main.exe ~/../Client/starter.exe "
                 "~/../Client/startertmp.exe ~/../Frameworks ~/../Frameworks/rsyncbin "
                 "~/../Frameworks/rsyncbin/rsyncqt.exe R R/config.sqlite R/language.sqlite R/designer R/brand/Qt "
                 "R/brand/Qt/icon.ico R/brand/Qt/style.css R/brand/Qt/common/Qt R/common/Qt R/common/Qt/fonts T "
                 "T/settings.sqlite T/playerinfo.sqlite T/lobbylist.sqlite T/handhistory.sqlite T/logs T/rsyncbin "
                 "T/rsyncbin/rsyncqt.exe "_s);
    }

    void WithArguments()
    {
        const CInstallationTree tree;
        for (const QString &name : {"Tmp/a_0.png"_s, "Tmp/a_1.png"_s, "Tmp/a_3.png"_s})
            tree.WriteFile(name);
        for (const QString &folder : {tree.GetPath("Tmp"_s), tree.GetPath("Tmp/"_s)})
            QCOMPARE(Pathes::UniqueFilePath(folder, "a"_s, "png"_s), tree.GetPath("Tmp/a_2.png"_s));
        QVERIFY(QDir::isAbsolutePath(Pathes::PersonalDir()));
        QCOMPARE(Pathes::ThemeRoot("dark"_s), Pathes::Resources() + "/themes/dark"_s);
        QCOMPARE(Pathes::Theme("root"_s, -12), "root/theme-12/Qt"_s);
        QCOMPARE(Pathes::CustomAvatar(~0u), Pathes::Tmp() + "/CustomAvatars/4294967/4294967295.png"_s);
    }

    // In this order, since the answers are remembered as long as the process lives.
    void CommonResource()
    {
        const CInstallationTree tree;
        for (const QString &name :
             {"brand/Qt/common/Qt/a"_s, "common/Qt/a"_s, "common/Qt/compiled/both.txt"_s, "common/Qt/gone"_s})
            tree.WriteFile("Resources/"_s + name);
        const auto ask = [](const char *name, bool url) {
            return Pathes::ToCommonRes(QLatin1String(name), url).toUtf8().replace(Pathes::Resources().toUtf8(), "~");
        };
        QCOMPARE(ask("a", false), QByteArray("~/brand/Qt/common/Qt/a"));
        QCOMPARE(ask("compiled/both.txt", true), QByteArray("~/common/Qt/compiled/both.txt"));
        QCOMPARE(ask("compiled/path.txt", false), QByteArray(":/compiled/path.txt"));
        QCOMPARE(ask("compiled/url.txt", true), QByteArray("qrc:/compiled/url.txt"));
        QCOMPARE(ask("compiled/url.txt", true), QByteArray("qrc:/compiled/url.txt"));
        QCOMPARE(ask("compiled/url.txt", false), QByteArray(":/compiled/url.txt"));
        QCOMPARE(ask("gone", false), QByteArray("~/common/Qt/gone"));
        QCOMPARE(ask("late", true), QByteArray());

        QVERIFY(QFile::rename(Pathes::Common() + "/gone"_s, Pathes::Common() + "/late"_s));
        QCOMPARE(ask("gone", true), QByteArray("~/common/Qt/gone"));
        QCOMPARE(ask("late", false), QByteArray());
    }

    void Write_data() { AddRows("-1|-1|abcdef;2|3|cde;2|-5|cdef;-5|2|ab;4|100|ef;100|3|"_s); }

    void Write()
    {
        QFETCH(QStringList, in); // position, length, what is written of "abcdef"
        const int position = in[0].toInt(), length = in[1].toInt();
        const CInstallationTree tree;
        const QString longer = tree.WriteFile("Tmp/longer"_s, "0123456789");
        for (const QString &path : {tree.GetPath("Tmp/a/b/file"_s), longer, "inCurrentDir"_s}) {
            QVERIFY2(Globals::WriteToFile(path, "abcdef", position, length), qPrintable(path));
            QCOMPARE(ReadFile(path), in[2].toLatin1());
        }
        QVERIFY(!Globals::WriteToFile(longer + "/below"_s, "abcdef", position, length));
        QVERIFY(!Globals::WriteToFile(tree.GetPath("Tmp"_s), "abcdef", position, length));
    }

    void ContentsAndDigests()
    {
        const CInstallationTree tree;
        const QString file = tree.WriteFile("Tmp/file"_s, "abc");
        QByteArray contents("before");
        QVERIFY(!Globals::GetContents("missing"_s, contents));
        QCOMPARE(contents, QByteArray("before"));
        QVERIFY(Globals::GetContents(file, contents));
        QCOMPARE(contents, QByteArray("abc"));
        QCOMPARE(Globals::GetFileMD5(file), "900150983cd24fb0d6963f7d28e17f72"_s);
        QCOMPARE(Globals::GetFileMD5("missing"_s), QString());

        // A program that runs can't be opened for writing, and needn't be if nothing changes.
        QVERIFY(Globals::GetContents(QCoreApplication::applicationFilePath(), contents));
        QVERIFY(Globals::WriteToFile(QCoreApplication::applicationFilePath(), contents, -1, -1));
    }

    void Between_data()
    {
        AddRows(" <<text>> |0|text|9;<<a>><<b>>|1|b|10; <<>>|0||5;<<text>>|0|before|-7;>> <<text>|0|before|-7;"
                " <<text>> |2|before|-7"_s); // a marker at the start isn't seen
    }

    void Between()
    {
        QFETCH(QStringList, in); // data, where to begin, result, the next place
        QByteArray result("before");
        int next = -7;
        QCOMPARE(Globals::GetBetween(in[0].toLatin1(), in[1].toInt(), "<<", ">>", result, next), in[3] != "-7"_s);
        QCOMPARE(result, in[2].toLatin1());
        QCOMPARE(next, in[3].toInt());
    }

    void Boolean()
    {
        QString answers; // with either default
        for (const char *text : {"true", "ON", "Yes", "1", "FALSE", "off", "nO", "0", "", "2", " true", "00"})
            answers += "%1=%2%3 "_s.arg(QLatin1String(text))
                           .arg(Globals::ToBool(QLatin1String(text), false))
                           .arg(Globals::ToBool(QLatin1String(text), true));
        QCOMPARE(answers, "true=11 ON=11 Yes=11 1=11 FALSE=00 off=00 nO=00 0=00 =01 2=01  true=01 00=01 "_s);
    }

    void Console()
    {
        Add(1);
        QVERIFY(!CConsole::IsExisting()); // the message is kept, and creates nothing
        QList<CConsole::SConsoleMessage> queued;
        connect(
            CConsole::GetInstance(), &CConsole::signal_MessageAdded, this,
            [&](const CConsole::SConsoleMessage &message) { queued << message; }, Qt::QueuedConnection);
        Add(-5);
        QTRY_COMPARE(queued.size(), 1);
        const CConsole::SConsoleMessage &message = queued.constFirst();
        QVERIFY(qAbs(message.dtTimestamp.secsTo(QDateTime::currentDateTime())) < 60);
        QCOMPARE(std::tuple(message.strMessage, message.strDetail, message.iDetail), std::tuple("a"_s, "b"_s, -5));
        QCOMPARE(message.eCategory, CConsole::MC_Network);
        QCOMPARE(message.eLevel, CConsole::ML_Warning);
        CConsole::DestroyInstance();
        for (int i = 3; i <= 1001; ++i)
            Add(i);
        QCOMPARE(CConsole::GetMessages().size(), 1000);
        QCOMPARE(CConsole::GetMessages().constFirst().iDetail, -5);
        QCOMPARE(CConsole::GetMessages().constLast().iDetail, 1001);
    }
};

QTEST_GUILESS_MAIN(tst_files)
#include "tst_files.moc"
