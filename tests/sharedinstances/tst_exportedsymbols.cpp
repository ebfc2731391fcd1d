#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

namespace {

// The public classes and namespaces.
const char *const PUBLIC_NAMES[] = {
    "CConfig",       "CConfigBase",      "CConfigDB",
    "CConsole",      "CEvent",           "CHandHistoryDB",
    "CLobbyListDB",  "CLocalDB",         "CPacketLayerWrapper",
    "CPlayerInfoDB", "CPluginInterface", "CPluginInterfaceFunctions",
    "CSettingsDB",   "CTranslationDB",   "DBValue",
    "FileFunctions", "GlobalDefines",    "Globals",
    "Pathes",
};

// What stands in front of the first name of a mangled symbol: the sanitizer's mark, the kind of a special object, the
// start of a nested name.
const char *const PREFIX = "^(?:__odr_asan\\.)?_Z(?:TV|TI|TS|GV|Z)*N?K?";

// A name is mangled with its length before it, so CPlugin doesn't let CPluginInterface pass.
QRegularExpression MakePublicPattern()
{
    QStringList names;
    for (const char *name : PUBLIC_NAMES)
        names << QString::number(qstrlen(name)) + QLatin1String(name);
    return QRegularExpression(QLatin1String(PREFIX) +
                              QLatin1String("(?:rsR11QDataStream|lsR11QDataStream|ls6QDebug)?R?K?N?(?:") +
                              names.join(QLatin1Char('|')) + QLatin1String(")"));
}

} // namespace

// The library shows its public classes and functions and nothing else.
class tst_ExportedSymbols : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void publicNamesOnly();
};

void tst_ExportedSymbols::publicNamesOnly()
{
    QProcess nm;
    nm.start(QStringLiteral(NM),
             {QStringLiteral("-D"), QStringLiteral("--defined-only"), QStringLiteral(LIBRARY_FILE)});
    QVERIFY2(nm.waitForFinished(), qPrintable(nm.errorString()));
    QCOMPARE(nm.exitCode(), 0);

    const QRegularExpression line(QStringLiteral("^[0-9a-f]* (\\w) (\\S+)$"));
    const QRegularExpression publicPattern = MakePublicPattern();
    // Inline functions of the toolkit and the standard library leave copies, which the linker merges with theirs.
    const QRegularExpression inlineCopy(QLatin1String(PREFIX) +
                                        QLatin1String("(?:St|9__gnu_cxx|\\d+Q[A-Z]|\\d+QtPrivate)"));
    // The runtime of the coverage counters.
    const QRegularExpression counters(QStringLiteral("^(?:__gcov_|mangle_path$)"));

    QStringList leaked;
    int shown = 0;
    const QStringList lines =
        QString::fromLatin1(nm.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &text : lines) {
        const QRegularExpressionMatch match = line.match(text);
        QVERIFY2(match.hasMatch(), qPrintable(text));
        const QString symbol = match.captured(2);
        const bool weak = QStringLiteral("VWu").contains(match.captured(1));
        if (publicPattern.match(symbol).hasMatch())
            ++shown;
        else if (!(weak && inlineCopy.match(symbol).hasMatch()) && !counters.match(symbol).hasMatch())
            leaked << symbol;
    }
    QCOMPARE(leaked.join(QLatin1Char(' ')), QString());
    QVERIFY(shown > 100);
}

QTEST_GUILESS_MAIN(tst_ExportedSymbols)
#include "tst_exportedsymbols.moc"
