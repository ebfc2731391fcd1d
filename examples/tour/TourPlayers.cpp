#include "Tour.h"

#include <files/Pathes.h>
#include <settings/Settings.h>

#include <QCheckBox>
#include <QComboBox>
#include <QEventLoop>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QSocketNotifier>
#include <QSpinBox>
#include <QTabWidget>
#include <QTextStream>
#include <QtTest>

#include <cstdio>

namespace {

// The next line of the standard input, while the client goes on. Empty at its end.
QString ReadStep()
{
    QEventLoop loop;
    const QSocketNotifier input(fileno(stdin), QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &loop, &QEventLoop::quit);
    loop.exec();
    return QTextStream(stdin).readLine();
}

} // namespace

int CTour::RunSecondMachine()
{
    for (QString line = ReadStep(); !line.isEmpty() && !m_bFailed; line = ReadStep()) {
        TakeStep(line.split(QLatin1Char('\t')));
        if (!m_bFailed)
            QTextStream(stdout) << CSecondMachine::NEXT_STEP << Qt::endl;
    }
    return m_bFailed ? 1 : 0;
}

// The step is its text, a verb, a subject and a value. A player's value is "note|tag number|", with "buddy" behind it
// if that's what the player is.
void CTour::TakeStep(const QStringList &step)
{
    const QString subject = step.value(2);
    const QString value = step.value(3);
    const QString row = "magnolia|%1|"_s + value;
    const TAction nothing = [] {};
    const QHash<QByteArray, QPair<TAction, TLook>> verbs{
        {"connect", {nothing, [&] { return SeeState(EConnectionState::Connected); }}},
        {"open players", {[&] { ChooseNextTab(); }, [&] { return SeePlayer(subject, value); }}},
        {"see player", {nothing, [&] { return SeePlayer(subject, value); }}},
        {"note", {[&] { ChangePlayer(subject, value); }, [&] { return SeePlayerRow(subject, value); }}},
        {"see avatar", {nothing, [&] { return SeeAvatar(subject, value); }}},
        {"choose avatar", {[&] { ChooseAvatar(subject, value); }, [&] { return SeeAvatar(subject, value); }}},
        {"see filter", {nothing, [&] { return SeeFilter(value); }}},
        {"filter", {[&] { TypeFilter(value); }, [&] { return SeeRows({row.arg(QLatin1String("ringgamefilter"))}); }}},
        {"see language", {nothing, [&] { return SeeTexts(value); }}},
        {"language", {[&] { ChooseEntry("languages", value); }, [&] { return SeeTexts(value); }}},
        {"colours",
         {[&] { CSettings::GetInstance()->SetThemeGeneral(value.toInt()); }, [&] { return SeeColours(value); }}},
        {"see problems", {nothing, [&] { return SeeProblems(); }}},
        {"window picture", {nothing, [&] { return SaveScreenshot(m_window, value); }}},
        {"picture", {nothing, [&] { return SaveScreenshot(*Find<QListWidget>("players")->window(), value); }}},
    };
    const QByteArray verb = step.value(1).toLatin1();
    if (verb == "log in")
        LogIn(FIRST_NICKNAME, FIRST_PASSWORD, value);
    else
        Step(step.value(0), verbs[verb].first, verbs[verb].second);
}

void CTour::ChooseNextTab() const
{
    QTest::keyClick(Find<QTabWidget>(), Qt::Key_Tab, Qt::ControlModifier);
}

bool CTour::ChoosePlayer(const QString &nickname) const
{
    auto *players = Find<QListWidget>("players");
    if (!players)
        return false;
    const QList<QListWidgetItem *> items = players->findItems(nickname, Qt::MatchFixedString);
    if (!items.isEmpty())
        players->setCurrentItem(items.constFirst());
    return !items.isEmpty();
}

void CTour::ChangePlayer(const QString &nickname, const QString &value) const
{
    if (!ChoosePlayer(nickname)) {
        QTest::keyClicks(Find<QLineEdit>("newPlayer"), nickname);
        QTest::keyClick(Find<QLineEdit>("newPlayer"), Qt::Key_Return);
    }
    const QStringList parts = value.split(QLatin1Char('|'));
    auto *note = Find<QPlainTextEdit>("note");
    note->selectAll();
    QTest::keyClicks(note, parts.value(0));
    const int tag = parts.value(1).right(1).toInt();
    auto *tags = Find<QComboBox>("tag");
    while (tags->currentIndex() != tag)
        QTest::keyClick(tags, tags->currentIndex() < tag ? Qt::Key_Down : Qt::Key_Up);
    auto *buddy = Find<QCheckBox>("buddy");
    if (buddy->isChecked() == parts.value(2).isEmpty())
        QTest::keyClick(buddy, Qt::Key_Space);
}

void CTour::ChooseAvatar(const QString &nickname, const QString &number) const
{
    ChoosePlayer(nickname);
    auto *field = Find<QSpinBox>("avatar");
    field->selectAll();
    QTest::keyClicks(field, number);
    QTest::keyClick(field, Qt::Key_Return);
}

QString CTour::SeePlayer(const QString &nickname, const QString &value)
{
    if (!ChoosePlayer(nickname))
        return QString();
    m_strFault =
        "%1|tag %2|"_s.arg(Find<QPlainTextEdit>("note")->toPlainText()).arg(Find<QComboBox>("tag")->currentIndex()) +
        (Find<QCheckBox>("buddy")->isChecked() ? "buddy"_s : QString());
    return m_strFault == value ? nickname + QLatin1String(": ") + value : QString();
}

// The picture is there too.
QString CTour::SeeAvatar(const QString &nickname, const QString &number) const
{
    ChoosePlayer(nickname);
    const QPixmap picture = Find<QLabel>("picture")->pixmap(Qt::ReturnByValue);
    const bool isSeen = Find<QSpinBox>("avatar")->text() == number && !picture.isNull();
    return isSeen ? "%1, %2 by %3 pixels"_s.arg(number).arg(picture.width()).arg(picture.height()) : QString();
}

QString CTour::SeePlayerRow(const QString &nickname, const QString &value)
{
    const QString row = FIRST_NICKNAME + QLatin1Char('|') + nickname + QLatin1Char('|') + value;
    const QString sql = "SELECT PIN_cUser, PIN_cPlayer, PIN_cNote, 'tag ' || PIN_iTagID, CASE "
                        "PIN_iPlayerFlags & 1 WHEN 1 THEN 'buddy' END FROM tbl_playerinfo"_s;
    return QueryDatabase(Pathes::PlayerInfoDB(), sql).contains(row) ? row : QString();
}
