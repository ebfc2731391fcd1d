#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

// The public classes and namespaces.
static const char *const PUBLIC_NAMES =
    "CAction CAutoTopUpModel CCasinoInfo CCasinoTime CChatModel CConfig CConfigBase CConfigDB CConsole "
    "CCountDown CDownload CEvent CHandHistoryDB CLobbyListDB CLocalDB CMenu CMenuManager CMoneySpinner "
    "CMoneySpinnerDataModel CMoneySpinnerWidget CNetworkAccessManager COptionsDialogManager COptionsPage "
    "CPacketLayerWrapper CPlayerDataModel CPlayerInfoDB CPlayerLists CPlayerModel CPlayerTaggingModel "
    "CPluginInterface CPluginInterfaceFunctions CSettings CSettingsBase CSettingsDB CSettingsSync "
    "CSoundManager CSoundPlayer CTranslation CTranslationDB CTranslationItem CTranslationObject CUserInfo "
    "CUserInfoDataModel DBValue FileFunctions GlobalDefines Globals Pathes PlayerInfo TableView WebRequest";

// The library shows its public classes and functions and nothing else.
class tst_ExportedSymbols : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void publicNamesOnly()
    {
        // Before the first name: the sanitizer's mark, the kind of a special object or a way to one of its bases, the
        // start of a nested name.
        const QString prefix = QStringLiteral("^(?:__odr_asan\\.)?_Z(?:TV|TI|TS|GV|Z|Thn\\d+_)*N?K?");
        // A name is mangled with its length before it, so CPlugin doesn't let CPluginInterface pass.
        QStringList names = QString::fromLatin1(PUBLIC_NAMES).split(QLatin1Char(' '));
        for (QString &name : names)
            name.prepend(QString::number(name.size()));
        static const QRegularExpression publicPattern(
            prefix + QLatin1String("(?:rsR11QDataStream|lsR11QDataStream|ls6QDebug)?[PR]?K?N?(?:") +
            names.join(QLatin1Char('|')) + QLatin1Char(')'));
        // Inline functions of the toolkit and the standard library leave copies, which the linker merges with theirs;
        // then the runtime of the coverage counters, and section ends, which the linker takes over from libGL.
        static const QRegularExpression inlineCopy(prefix +
                                                   QLatin1String("(?:St|9__gnu_cxx|\\d+Q[A-Z]|\\d+QtPrivate)"));
        static const QRegularExpression byLinker(
            QStringLiteral("^(?:__gcov_|(?:mangle_path|__bss_start|_edata|_end)$)"));

        QProcess nm;
        nm.start(QStringLiteral(NM),
                 QStringList{QStringLiteral("-DP"), QStringLiteral("--defined-only"), QStringLiteral(LIBRARY_FILE)});
        QVERIFY2(nm.waitForFinished() && nm.exitCode() == 0, qPrintable(nm.errorString()));
        QStringList leaked;
        int shown = 0;
        while (nm.canReadLine()) {
            const QList<QByteArray> nameAndKind = nm.readLine().split(' ');
            const QString symbol = QString::fromLatin1(nameAndKind.at(0));
            const bool weak = QByteArray("VWu").contains(nameAndKind.at(1));
            if (publicPattern.match(symbol).hasMatch())
                ++shown;
            else if (!(weak && inlineCopy.match(symbol).hasMatch()) && !byLinker.match(symbol).hasMatch())
                leaked << symbol;
        }
        QCOMPARE(leaked.join(QLatin1Char(' ')), QString());
        QVERIFY(shown > 100);
    }
};

QTEST_GUILESS_MAIN(tst_ExportedSymbols)
#include "tst_exportedsymbols.moc"
