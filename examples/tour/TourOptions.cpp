#include "Tour.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QSet>
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
        "A shortcut opens the options"_s, [this] { PressInFront(Qt::Key_O, Qt::ControlModifier); },
        [this] { return Find<QDialog>("options") ? Find<QDialog>("options")->windowTitle() : QString(); });
    QSet<int> widths;
    ShowInLanguages("All its pages fit in the language %1, at the same width"_s, [&](const QString &language) {
        QString seen = language;
        for (int page = 0; page < Find<QListWidget>("optionsPages")->count() && !seen.isEmpty(); ++page) {
            ChooseOptionsPage(page);
            seen = SeeTexts(language);
            const QString title = Find<QListWidget>("optionsPages")->item(page)->text();
            if (!Find<QLabel>("optionsHeading")->text().contains(title))
                seen.clear();
        }
        Find<QDialog>("options")->resize(1, 1); // to its least size
        if (!seen.isEmpty())
            widths.insert(Find<QDialog>("options")->width());
        return widths.size() > 1 ? QString() : seen;
    });
    const auto look = [this](bool isOn, bool isModified) {
        const bool isSeen = Find<QWidget>("volume")->isEnabled() == isOn &&
                            Find<QWidget>("winningsounds")->isEnabled() == isOn &&
                            Find<QAbstractButton>("OPTIONS_APPLY")->isEnabled() == isModified;
        return isSeen ? "volume "_s + Find<QLabel>("volumePercent")->text() : QString();
    };
    const auto seeOption = [this] { return SeeRows({"magnolia|winningsounds|true"_s}); };
    Step(
        "Without sounds there is nothing to choose, and without a change nothing to apply"_s,
        [this] { ChooseOptionsPage(SOUNDS_PAGE); }, [&] { return look(false, false); });
    Step(
        "The user switches sounds on"_s, [this] { Click(*Find<QCheckBox>("soundsenabled"), QPoint(8, 8)); },
        [&] { return look(true, true); });
    Step(
        "And an option, and applies it"_s,
        [&] {
            Click(*Find<QCheckBox>("winningsounds"), QPoint(8, 8)); // off by default
            Find<QAbstractButton>("OPTIONS_APPLY")->click();
        },
        [&] { return look(true, false).isEmpty() ? QString() : seeOption(); });
    if (!m_bFailed)
        TakePicture(*Find<QDialog>("options"), "options"_s);
    Step(
        "What is given up changes nothing"_s,
        [&] {
            Find<QAbstractButton>("OPTIONS_DEFAULTS")->click();
            QTest::keyClick(Find<QDialog>("options"), Qt::Key_Escape);
        },
        [&] { return Find<QDialog>("options") ? QString() : seeOption(); });
    ShowQuickLanguage();
}

// By keys alone.
void CTour::ShowQuickLanguage()
{
    Step(
        "Some keys change the language"_s,
        [this] {
            PressInFront(Qt::Key_O, Qt::ControlModifier);
            const auto isActive = [this] {
                return Find<QDialog>("options") && Find<QDialog>("options")->isActiveWindow();
            };
            if (!QTest::qWaitFor(isActive))
                return;
            QTest::keyClick(Find<QDialog>("options"), Qt::Key_L, Qt::AltModifier);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_D);
        },
        [this] {
            const auto *languages = Find<QComboBox>("selectedlanguage");
            const bool isChosen = languages && languages->hasFocus() && languages->currentText() == "Deutsch"_s;
            return isChosen ? SaveScreenshot(*Find<QDialog>("options"), "options-general"_s) : QString();
        });
    Step(
        "And Enter applies it"_s, [] { QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return); },
        [this] { return Find<QDialog>("options") ? QString() : SeeTexts("Deutsch"_s); });
    ChooseLanguage("English"_s, {});
}

void CTour::ChooseOptionsPage(int page) const
{
    auto *pages = Find<QListWidget>("optionsPages");
    Click(*pages->viewport(), pages->visualItemRect(pages->item(page)).center());
}
