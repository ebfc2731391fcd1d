#include "Tour.h"

#include <common/Texts.h>
#include <files/Pathes.h>
#include <models/PlayerModel.h>
#include <settings/Settings.h>

#include <QAbstractSlider>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QEventLoop>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSocketNotifier>
#include <QTabWidget>
#include <QTextStream>
#include <QtTest>

#include <algorithm>
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

QString SeeText(const QWidget &window, const QString &key)
{
    const QString text = Texts::Get(key);
    const auto labels = window.findChildren<QLabel *>();
    const bool isSeen = std::any_of(labels.begin(), labels.end(),
                                    [&](const QLabel *label) { return label->isVisible() && label->text() == text; });
    return isSeen ? text : QString();
}

void TypeInto(QLineEdit *field, const QString &text)
{
    field->clear();
    QTest::keyClicks(field, text);
}

void AddPlayer(const QWidget &window, const QString &nickname)
{
    auto *field = window.findChild<QLineEdit *>("newPlayer"_s);
    TypeInto(field, nickname);
    QTest::keyClick(field, Qt::Key_Return);
}

void PressDelete(QWidget &widget)
{
    widget.activateWindow(); // a table's may be active
    widget.setFocus();
    if (QTest::qWaitForWindowActive(widget.window()))
        QTest::keyClick(&widget, Qt::Key_Delete);
}

void PressButton(const QMessageBox &message, const QString &text)
{
    const auto buttons = message.buttons();
    for (QAbstractButton *button : buttons) {
        if (button->text() == text)
            return button->click();
    }
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
    QWidget *message = Find<QMessageBox>();
    const QHash<QByteArray, QPair<TAction, TLook>> verbs{
        {"connect", {nothing, [&] { return SeeState(EConnectionState::Connected); }}},
        {"open players",
         {[&] { ChooseNextTab(); }, [&] { return Find<QTabWidget>()->currentWidget()->windowTitle(); }}},
        {"see text", {nothing, [&] { return SeeText(m_window, value); }}},
        {"add player", {[&] { AddPlayer(m_window, subject); }, [&] { return SeeText(m_window, value); }}},
        {"remove player",
         {[&] {
              ChoosePlayer(subject);
              PressDelete(*Find<QListWidget>("players"));
          },
          [&] { return SeeText(m_window, value); }}},
        {"answer",
         {[&] { PressButton(*Find<QMessageBox>(), Texts::Get(subject)); },
          [&] { return Find<QMessageBox>() ? QString() : Texts::Get(subject); }}},
        {"lack player", {nothing, [&] { return ChoosePlayer(subject) ? QString() : "not in the list"_s; }}},
        {"see player", {nothing, [&] { return SeePlayer(subject, value); }}},
        {"note", {[&] { ChangePlayer(subject, value); }, [&] { return SeePlayerRow(subject, value); }}},
        {"rate", {[&] { Rate(subject, value.toInt()); }, [&] { return SeeStars(subject, value.toInt()); }}},
        {"search", {[&] { TypeInto(Find<QLineEdit>("playerSearch"), subject); }, [&] { return SeeFound(value); }}},
        {"offer pictures", {[&] { ChoosePicture(subject); }, [&] { return SeeOffer(value); }}},
        {"see avatar", {nothing, [&] { return SeeAvatar(subject, value); }}},
        {"choose avatar", {[&] { ChooseAvatar(subject, value); }, [&] { return SeeAvatar(subject, value); }}},
        {"see filter", {nothing, [&] { return SeeFilter(value); }}},
        {"filter", {[&] { TypeFilter(value); }, [&] { return SeeRows({row.arg(QLatin1String("ringgamefilter"))}); }}},
        {"see language", {nothing, [&] { return SeeTexts(value); }}},
        {"language", {[&] { SetLanguage(value); }, [&] { return SeeTexts(value); }}},
        {"colours",
         {[&] { CSettings::GetInstance()->SetThemeGeneral(value.toInt()); }, [&] { return SeeColours(value); }}},
        {"see problems", {nothing, [&] { return SeeProblems(value); }}},
        {"answer problems",
         {[&] { PressButton(*Find<QMessageBox>("problems"), value); },
          [&] { return Find<QMessageBox>("problems") ? QString() : "the dialog closes"_s; }}},
        {"window picture", {nothing, [&] { return SaveScreenshot(m_window, value); }}},
        {"picture", {nothing, [&] { return SaveScreenshot(message ? *message : m_window, value); }}},
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
    if (!ChoosePlayer(nickname))
        AddPlayer(m_window, nickname);
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

void CTour::Rate(const QString &nickname, int stars) const
{
    ChoosePlayer(nickname);
    auto *field = Find<QAbstractSlider>("rating");
    QTest::keyClick(field, Qt::Key_9); // too many
    QTest::keyClick(field, Qt::Key_1);
    const int size = field->width() / field->maximum();
    if (field->value() == 1)
        QTest::mouseClick(field, Qt::LeftButton, Qt::NoModifier, QPoint(stars * size - size / 2, size / 2));
}

QString CTour::SeeStars(const QString &nickname, int stars) const
{
    const bool isSeen = CPlayerModel::GetInstance(nickname)->GetRating() == stars &&
                        Find<QAbstractSlider>("rating")->value() == stars;
    return isSeen ? "%1 stars"_s.arg(stars) : QString();
}

// The list says so if nobody is found.
QString CTour::SeeFound(const QString &nicknames)
{
    QStringList found;
    auto *players = Find<QListWidget>("players");
    for (int row = 0; row < players->count(); ++row) {
        if (!players->item(row)->isHidden())
            found.append(players->item(row)->text());
    }
    m_strFault = found.join(u',');
    const bool isSeen =
        m_strFault == nicknames && Find<QPushButton>("clearSearch")->isVisible() == nicknames.isEmpty();
    return isSeen ? "found %1"_s.arg(found.isEmpty() ? "nobody"_s : m_strFault) : QString();
}

// Opens the options, and chooses the user's picture with keys.
void CTour::ChoosePicture(const QString &number) const
{
    Find<QAction>("openOptions")->trigger();
    auto *box = Find<QComboBox>("customcurrent");
    for (int i = 0; i < box->count() && box->currentData().toString() != number; ++i)
        QTest::keyClick(box, Qt::Key_Down);
}

// All pictures are there.
QString CTour::SeeOffer(const QString &picture)
{
    auto *box = Find<QComboBox>("customcurrent");
    bool isSeen = box && box->count() > 1;
    for (int entry = 1; isSeen && entry < box->count(); ++entry)
        isSeen = box->itemIcon(entry).cacheKey() != box->itemIcon(0).cacheKey();
    return isSeen ? SaveScreenshot(*box->window(), picture) : QString();
}

void CTour::ChooseAvatar(const QString &nickname, const QString &number) const
{
    if (nickname == FIRST_NICKNAME) // whose options are open
        QTest::keyClick(Find<QComboBox>("customcurrent"), Qt::Key_Return);
    else
        CPlayerModel::GetInstance(nickname)->SetCustomAvatar(number.toUInt());
}

// A reader of the list hears of tag and buddy, too.
QString CTour::SeePlayer(const QString &nickname, const QString &value)
{
    if (!ChoosePlayer(nickname))
        return QString();
    const auto *tag = Find<QComboBox>("tag");
    const bool isBuddy = Find<QCheckBox>("buddy")->isChecked();
    m_strFault = "%1|tag %2|"_s.arg(Find<QPlainTextEdit>("note")->toPlainText()).arg(tag->currentIndex()) +
                 (isBuddy ? "buddy"_s : QString());
    const QListWidgetItem *row = Find<QListWidget>("players")->currentItem();
    const QString marks = row->data(Qt::AccessibleTextRole).toString();
    const bool isSeen = m_strFault == value &&
                        row->icon().cacheKey() == tag->itemIcon(tag->currentIndex()).cacheKey() &&
                        marks.contains(tag->currentText()) == (tag->currentIndex() > 0) &&
                        marks.count(u',') == int(isBuddy) + int(tag->currentIndex() > 0);
    return isSeen ? marks + QLatin1String(": ") + value : QString();
}

// The picture is there too.
QString CTour::SeeAvatar(const QString &nickname, const QString &number) const
{
    const bool isOwn = nickname == FIRST_NICKNAME;
    const unsigned int id = CPlayerModel::GetInstance(nickname)->GetCustomAvatar();
    const bool isChosen = id == number.toUInt() && (isOwn || ChoosePlayer(nickname));
    const QPixmap picture =
        isOwn ? QPixmap(Pathes::CustomAvatar(id)) : Find<QLabel>("picture")->pixmap(Qt::ReturnByValue);
    const bool isSeen = isChosen && !picture.isNull();
    return isSeen ? "%1, %2 by %3 pixels"_s.arg(number).arg(picture.width()).arg(picture.height()) : QString();
}

QString CTour::SeePlayerRow(const QString &nickname, const QString &value)
{
    const QString row = FIRST_NICKNAME + QLatin1Char('|') + nickname + QLatin1Char('|') + value;
    const QString sql = "SELECT PIN_cUser, PIN_cPlayer, PIN_cNote, 'tag ' || PIN_iTagID, CASE "
                        "PIN_iPlayerFlags & 1 WHEN 1 THEN 'buddy' END FROM tbl_playerinfo"_s;
    return QueryDatabase(Pathes::PlayerInfoDB(), sql).contains(row) ? row : QString();
}
