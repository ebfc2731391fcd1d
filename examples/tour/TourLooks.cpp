#include "Tour.h"

#include <client/Look.h>
#include <settings/Settings.h>
#include <ui/MenuManager.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QSet>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTableView>
#include <QToolButton>
#include <QtTest>

namespace {

constexpr int RULES_BYTES = 3 << 20; // some seconds' worth
constexpr int MANY_WIDGETS = 200;    // more than the window has

// A letter with a & before it, in lower case; null if there is none.
QChar GetMnemonic(const QString &text)
{
    const QKeySequence keys = QKeySequence::mnemonic(text);
    return keys.isEmpty() ? QChar() : QChar(ushort(keys[0] & 0xff)).toLower();
}

// The first entry of the bar or a menu that no key leads to, or that shares its letter with another one.
QString FindKeylessEntry(const QWidget &menu)
{
    QSet<QChar> letters;
    const QList<QAction *> entries = menu.actions();
    for (const QAction *entry : entries) {
        const QChar letter = GetMnemonic(entry->text());
        const bool isChoice = entry->actionGroup() != nullptr; // of a long list, which the arrows lead through
        if (!entry->isSeparator() && !isChoice && (letter.isNull() || letters.contains(letter)))
            return entry->text();
        letters.insert(letter);
        const QString below = entry->menu() ? FindKeylessEntry(*entry->menu()) : QString();
        if (!below.isEmpty())
            return below;
    }
    return QString();
}

// Those that take the focus from the Tab key, in its order.
QStringList PressTabs(QWidget &window)
{
    QStringList names;
    const QWidget *first = QApplication::focusWidget();
    for (int i = 0; i < MANY_WIDGETS && QApplication::focusWidget(); ++i) {
        QTest::keyClick(&window, Qt::Key_Tab);
        const QWidget *focus = QApplication::focusWidget();
        names.append(focus->objectName().isEmpty() ? QString::fromLatin1(focus->metaObject()->className())
                                                   : focus->objectName());
        if (focus == first)
            break;
    }
    return names;
}

} // namespace

void CTour::ShowTransfers()
{
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation));
    const QString file = folder.filePath(QStringLiteral("rules.html"));
    const QString second = folder.filePath(QStringLiteral("rules (1).html"));
    const auto seeText = [this](const char *words) {
        const auto *text = Find<QLabel>("transferText");
        return text->isVisible() && text->text().contains(QLatin1String(words)) ? text->text() : QString();
    };
    for (const QString &name : {file, second}) // of an earlier tour
        QFile::remove(name);
    Step(
        QStringLiteral("A download tells how far and how fast it is"), [this] { Trigger(Find<QAction>("rules")); },
        [&] { return Find<QProgressBar>("transferBar")->value() > 0 ? seeText("rules.html") : QString(); });
    Step(
        QStringLiteral("A picture of that"), [] {},
        [this] { return SaveScreenshot(m_window, QStringLiteral("download")); });
    Step(
        QStringLiteral("The user cancels it"), [this] { Find<QToolButton>("transferCancel")->click(); },
        [&] {
            const bool isOver = !Find<QLabel>("transferText")->isVisible() && Find<QAction>("rules")->isEnabled();
            return isOver && !QFile::exists(file) ? QStringLiteral("no file") : QString();
        });
    Step(
        QStringLiteral("Another time it comes to its end, beside a file of the user's own"),
        [&] {
            folder.mkpath(QStringLiteral("."));
            QFile::link(QStringLiteral("nowhere"), file);
            Trigger(Find<QAction>("rules"));
        },
        [&] {
            const bool isSeen = QFile(second).size() == RULES_BYTES && QFileInfo(file).isSymLink() &&
                                m_window.statusBar()->currentMessage().contains(second);
            return isSeen ? m_window.statusBar()->currentMessage() : QString();
        });
}

void CTour::MakeRules() const
{
    QDir().mkpath(GetFolder(QStringLiteral("files")));
    QFile file(GetFolder(QStringLiteral("files/rules.html")));
    if (file.open(QIODevice::WriteOnly))
        file.write(QByteArray(RULES_BYTES, 'r'));
}

void CTour::ShowKeyboard()
{
    for (const char *language : {"Deutsch", "Français", "English"}) {
        const QString name = QString::fromUtf8(language);
        Step(
            QStringLiteral("A key leads to every entry of the menus in the language %1").arg(name),
            [&] { ChooseEntry("languages", name); },
            [&] {
                const QMenuBar *bar = CMenuManager::GetInstance()->GetMenuBar();
                m_strFault = FindKeylessEntry(*bar);
                const bool isSeen = m_strFault.isEmpty() && GetChosenEntry("languages") == name;
                return isSeen ? QStringLiteral("%1 menus").arg(bar->actions().size()) : QString();
            });
    }
    QStringList order;
    Step(
        QStringLiteral("The Tab key leads through the window"),
        [&] {
            QTest::keyClick(&m_window, Qt::Key_F, Qt::ControlModifier);
            order = PressTabs(m_window);
        },
        [&] {
            m_strFault = order.join(QLatin1String(", "));
            const bool isSeen =
                order.last() == QLatin1String("lobbyFilter") && order.contains(QLatin1String("lobbyType")) &&
                order.indexOf(QLatin1String("lobbyType")) < order.indexOf(QLatin1String("lobbyTable"));
            return isSeen ? m_strFault : QString();
        });
    Step(
        QStringLiteral("Keys order the tables"),
        [this] { QTest::keyClick(&m_window, Qt::Key_2, Qt::ControlModifier); },
        [this] {
            const auto *header = Find<QTableView>("lobbyTable")->horizontalHeader();
            return header->sortIndicatorSection() == 1 ? DescribeColumns() : QString();
        });
}

// A client of its own for each density of the screen, as that can't change while a client runs.
void CTour::ShowLooks()
{
    for (const char *scale : {"1", "1.5", "2"}) {
        const QString name = QLatin1String("scale-") + QLatin1String(scale);
        const QByteArray light = (QStringLiteral("light-") + QLatin1String(scale)).toLatin1();
        const QByteArray dark = (QStringLiteral("dark-") + QLatin1String(scale)).toLatin1();
        qputenv("QT_SCALE_FACTOR", scale);
        StartSecondMachine(name, true);
        qunsetenv("QT_SCALE_FACTOR");
        DoThere({"The user logs in on a screen of this density", "log in"});
        for (const char *language : {"Deutsch", "Français", "English"})
            DoThere({"All texts fit", "language", "", language});
        DoThere({"In light colours", "colours", "", "0"});
        DoThere({"A picture", "window picture", "", light.constData()});
        DoThere({"In dark colours", "colours", "", "1"});
        DoThere({"All texts fit", "language", "", "English"});
        DoThere({"A picture", "window picture", "", dark.constData()});
        EndSecondMachine();
    }
}

// A folder with nothing but the program in it, as it seems.
void CTour::ShowBareStart()
{
    const QString folder = GetFolder(QStringLiteral("bare"));
    QDir(folder).removeRecursively();
    QDir().mkpath(GetClientFolder(folder));
    if (!m_bFailed)
        m_secondMachine.Start(folder, m_options.usPort);
    DoThere({"A client without an installation connects", "connect"});
    DoThere({"It says what is missing", "see problems"});
    DoThere({"A picture", "window picture", "", "bare"});
    EndSecondMachine();
    Step(
        QStringLiteral("It has made a folder of its user"), [] {},
        [&] {
            const QDir files(GetClientFolder(folder) + QLatin1String("/../Tmp"));
            return files.entryList({QStringLiteral("*.sqlite")}).join(QLatin1String(", "));
        });
}

QString CTour::SeeProblems() const
{
    const auto *problems = Find<QLabel>("problems");
    const bool isSeen = problems->isVisible() &&
                        problems->text().contains(QLatin1String("config.sqlite is missing")) &&
                        problems->text().contains(QLatin1String("language.sqlite is missing"));
    return isSeen ? QStringLiteral("%1 problems").arg(problems->text().count(QLatin1Char('\n')) + 1) : QString();
}

// Contrast of text to what is behind it, as a reader needs it at least.
QString CTour::SeeColours(const QString &colours)
{
    const auto luminance = [](const QColor &colour) {
        const auto part = [](double value) {
            return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
    };
    double least = 21;
    const QPalette palette = m_window.palette();
    for (const auto &[front, back] : {std::pair{QPalette::WindowText, QPalette::Window},
                                      {QPalette::Text, QPalette::Base},
                                      {QPalette::Text, QPalette::AlternateBase},
                                      {QPalette::ButtonText, QPalette::Button},
                                      {QPalette::HighlightedText, QPalette::Highlight}}) {
        const double one = luminance(palette.color(front)) + 0.05;
        const double other = luminance(palette.color(back)) + 0.05;
        least = std::min(least, std::max(one / other, other / one));
    }
    const bool isDark = palette.color(QPalette::Window).lightness() < 128;
    const bool isSeen = isDark == (colours.toInt() == Look::CO_DARK) && least >= 4.5;
    m_strFault = QStringLiteral("contrast at least %1").arg(least, 0, 'f', 1);
    return isSeen ? m_strFault : QString();
}
