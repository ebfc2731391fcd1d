#include "Tour.h"

#include <client/Look.h>
#include <files/Pathes.h>
#include <money/MoneySpinnerWidget.h>
#include <settings/Settings.h>
#include <ui/MenuManager.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
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
    return keys.isEmpty() ? QChar() : keys.toString().back().toLower(); // Alt+X
}

// The first entry of the bar or a menu that no key leads to, or that shares its letter with another one.
QString FindKeylessEntry(const QWidget &menu)
{
    QSet<QChar> letters;
    const QList<QAction *> entries = menu.actions();
    for (const QAction *entry : entries) {
        const QChar letter = GetMnemonic(entry->text());
        if (!entry->isSeparator() && (letter.isNull() || letters.contains(letter)))
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
    const QString file = folder.filePath("rules.html"_s);
    const auto seeText = [this](const char *words) {
        const auto *text = Find<QLabel>("transferText");
        return text->isVisible() && text->text().contains(QLatin1String(words)) ? text->text() : QString();
    };
    QFile::remove(file); // of an earlier tour
    Step(
        "A download tells how far and how fast it is"_s, [this] { Trigger(Find<QAction>("rules")); },
        [&] { return Find<QProgressBar>("transferBar")->value() > 0 ? seeText("rules.html") : QString(); });
    TakePicture(m_window, "download"_s);
    Step(
        "The user cancels it"_s, [this] { Find<QToolButton>("transferCancel")->click(); },
        [&] {
            const bool isOver = !Find<QLabel>("transferText")->isVisible() && Find<QAction>("rules")->isEnabled();
            return isOver && !QFile::exists(file) ? "no file"_s : QString();
        });
    Step(
        "Another time it comes to its end"_s, [this] { Trigger(Find<QAction>("rules")); },
        [&] {
            const bool isSeen = QFile(file).size() == RULES_BYTES &&
                                m_window.statusBar()->currentMessage().contains("rules.html"_s) &&
                                Find<QToolButton>("openFile")->isVisible() &&
                                Find<QToolButton>("openFile")->toolTip() == file &&
                                Find<QLabel>("connectionState")->isVisible();
            return isSeen ? m_window.statusBar()->currentMessage() : QString();
        });
}

void CTour::MakeRules() const
{
    QDir().mkpath(GetFolder("files"_s));
    QFile file(GetFolder("files/rules.html"_s));
    if (file.open(QIODevice::WriteOnly))
        file.write(QByteArray(RULES_BYTES, 'r'));
}

void CTour::ShowKeyboard()
{
    const auto seeKeys = [this](const QString &language) {
        const QMenuBar *bar = CMenuManager::GetInstance()->GetMenuBar();
        m_strFault = FindKeylessEntry(*bar);
        const bool isSeen = m_strFault.isEmpty() && IsLanguage(language);
        return isSeen ? "%1 menus"_s.arg(bar->actions().size()) : QString();
    };
    ShowInLanguages("A key leads to every entry of the menus in the language %1"_s, seeKeys);
    Step(
        "The help tells what the client consists of"_s, [this] { Trigger(Find<QAction>("ACTION_ABOUT")); },
        [this] {
            auto *about = Find<QMessageBox>("about");
            const bool isSeen = about && about->isActiveWindow() &&
                                about->text().contains(QLatin1String(qVersion())) &&
                                about->text().count("Plugin "_s) == 3;
            return isSeen ? SaveScreenshot(*about, "about"_s) : QString();
        });
    Step(
        "A key closes it"_s, [this] { QTest::keyClick(Find<QMessageBox>("about"), Qt::Key_Escape); },
        [this] { return Find<QMessageBox>("about") ? QString() : "closed"_s; });
    QStringList order;
    Step(
        "The Tab key leads through the window"_s,
        [&] {
            PressInFront(Qt::Key_F, Qt::ControlModifier);
            order = PressTabs(m_window);
        },
        [&] {
            m_strFault = order.join(QLatin1String(", "));
            const bool isSeen =
                order.endsWith("lobbyFilter"_s) && order.contains("lobbyType"_s) &&
                order.indexOf(QLatin1String("lobbyType")) < order.indexOf(QLatin1String("lobbyTable"));
            return isSeen ? m_strFault : QString();
        });
    Step(
        "Keys order the tables"_s, [this] { QTest::keyClick(&m_window, Qt::Key_2, Qt::ControlModifier); },
        [this] {
            const auto *header = Find<QTableView>("lobbyTable")->horizontalHeader();
            return header->sortIndicatorSection() == 1 ? header->model()->headerData(1, Qt::Horizontal).toString()
                                                       : QString();
        });
}

// A client of its own for each density of the screen, as that can't change while a client runs.
void CTour::ShowLooks()
{
    for (const char *scale : {"1", "1.5", "2"}) {
        const QString name = QLatin1String("scale-") + QLatin1String(scale);
        const QByteArray light = ("light-"_s + QLatin1String(scale)).toLatin1();
        const QByteArray dark = ("dark-"_s + QLatin1String(scale)).toLatin1();
        qputenv("QT_SCALE_FACTOR", scale);
        StartSecondMachine(name);
        qunsetenv("QT_SCALE_FACTOR");
        DoThere({"The user logs in on a screen of this density", "log in"});
        for (const QString &language : LANGUAGES)
            DoThere({"All texts fit", "language", "", qPrintable(language)});
        DoThere({"In light colours", "colours", "", "2"});
        DoThere({"A picture", "window picture", "", light.constData()});
        DoThere({"In dark colours", "colours", "", "1"});
        DoThere({"All texts fit", "language", "", "English"});
        DoThere({"A picture", "window picture", "", dark.constData()});
        EndSecondMachine();
    }
}

// A folder with nothing but the program in it, as it seems; then with its plugins.
void CTour::ShowBareStart()
{
    const QString folder = GetFolder("bare"_s);
    QDir(folder).removeRecursively();
    QDir().mkpath(GetClientFolder(folder));
    if (!m_bFailed)
        m_secondMachine.Start(folder, m_options.usPort);
    DoThere({"A client without an installation says what is missing, before all else", "see problems", "", "&Quit"});
    DoThere({"A picture", "picture", "", "bare"});
    DoThere({"There is nothing to do but to quit", "answer problems", "", "&Quit"});
    EndSecondMachine();
    QFile::link(QDir(Pathes::Plugins()).canonicalPath(), GetClientFolder(folder) + "/Plugins"_s);
    QDir().mkpath(GetClientFolder(folder) + "/../Resources"_s);
    QFile::copy(m_options.strKeys + "/authority.pem"_s, GetClientFolder(folder) + "/../Resources/authority.pem"_s);
    if (!m_bFailed)
        m_secondMachine.Start(folder, m_options.usPort);
    DoThere({"With its plugins it leaves a choice", "see problems", "", "&Quit &Go on anyway"});
    DoThere({"The user goes on", "answer problems", "", "&Go on anyway"});
    DoThere({"And is connected", "connect"});
    EndSecondMachine();
    See("It has made a folder of its user, with the four databases"_s, [&] {
        const QStringList files = QDir(GetClientFolder(folder) + "/../Tmp"_s).entryList({"*.sqlite"_s});
        return files.size() == 4 ? files.join(u' ') : QString();
    });
}

QString CTour::SeeProblems(const QString &answers) const
{
    const auto *problems = Find<QMessageBox>("problems");
    const QString text = problems ? problems->informativeText() : QString();
    QStringList shown;
    const auto buttons = problems ? problems->buttons() : QList<QAbstractButton *>();
    for (const QAbstractButton *button : buttons)
        shown.append(button->text());
    std::sort(shown.begin(), shown.end(), std::greater<>());
    bool isSeen = shown.join(u' ') == answers && !m_window.isVisible();
    for (const char *file : {"config.sqlite is missing", "language.sqlite is missing", "client-dark.css is missing"})
        isSeen = isSeen && text.contains(QLatin1String(file));
    isSeen = isSeen && text.contains("Plugins is missing"_s) == (shown.size() == 1);
    return isSeen ? "%1 problems"_s.arg(text.count(" is missing"_s)) : QString();
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
    // What a widget has been given of its own lasts.
    const auto *table = Find<QTableView>("lobbyTable");
    const bool isKept = table->palette().color(QPalette::Text) == palette.color(QPalette::Text) &&
                        !table->model()->index(0, 0).data(Qt::ForegroundRole).isValid() &&
                        Find<CMoneySpinnerWidget>()->font().bold();
    const bool isSeen = isKept && isDark == (colours.toInt() == Look::CO_DARK) && least >= 4.5;
    m_strFault = "contrast at least %1"_s.arg(least, 0, 'f', 1);
    return isSeen ? m_strFault : QString();
}
