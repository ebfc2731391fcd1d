#include "Tour.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QDialog>
#include <QListWidget>
#include <QtTest>

namespace {

constexpr int SOUNDS_PAGE = 1;

void Click(QWidget &widget, const QPoint &place)
{
    QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier, place);
}

} // namespace

void CTour::ShowOptions()
{
    Step(
        "A shortcut opens the options"_s, [this] { QTest::keyClick(&m_window, Qt::Key_O, Qt::ControlModifier); },
        [this] { return Find<QDialog>("options") ? Find<QDialog>("options")->windowTitle() : QString(); });
    ShowInLanguages("All its pages fit in the language %1"_s, [this](const QString &language) {
        QString seen = language;
        for (int page = 0; page < Find<QListWidget>("optionsPages")->count() && !seen.isEmpty(); ++page) {
            ChooseOptionsPage(page);
            seen = SeeTexts(language);
        }
        return seen;
    });
    const auto seeOption = [this] { return SeeRows({"magnolia|winningsounds|true"_s}); };
    Step(
        "The user changes an option and applies it"_s,
        [&] {
            ChooseOptionsPage(SOUNDS_PAGE);
            Click(*Find<QCheckBox>("winningsounds"), QPoint(8, 8)); // off by default
            Find<QAbstractButton>("OPTIONS_APPLY")->click();
        },
        seeOption);
    if (!m_bFailed)
        TakePicture(*Find<QDialog>("options"), "options"_s);
    Step(
        "What is given up changes nothing"_s,
        [&] {
            Find<QAbstractButton>("OPTIONS_DEFAULTS")->click();
            QTest::keyClick(Find<QDialog>("options"), Qt::Key_Escape);
        },
        [&] { return Find<QDialog>("options") ? QString() : seeOption(); });
}

void CTour::ChooseOptionsPage(int page) const
{
    auto *pages = Find<QListWidget>("optionsPages");
    Click(*pages->viewport(), pages->visualItemRect(pages->item(page)).center());
}
