#include "ChoiceMenu.h"

#include <common/FormField.h>
#include <settings/Settings.h>
#include <time/CasinoTime.h>

#include <QActionGroup>
#include <QMenu>

namespace {

// Calls \a choose with the number of the entry that the user chooses.
template <typename Choose>
QMenu *CreateMenu(QWidget *parent, const char *name, const char *key, const QStringList &entries,
                  const Choose &choose)
{
    auto *menu = CreateField<QMenu>(parent, name);
    Texts::Bind(menu, &QMenu::setTitle, key);
    auto *group = new QActionGroup(menu);
    for (const QString &entry : entries)
        group->addAction(menu->addAction(entry))->setCheckable(true);
    QObject::connect(group, &QActionGroup::triggered, menu,
                     [=](QAction *entry) { choose(int(group->actions().indexOf(entry))); });
    return menu;
}

} // namespace

QMenu *CreateLanguageMenu(QWidget *parent)
{
    const CTranslation *catalogue = CTranslation::GetInstance();
    const auto languages = catalogue->GetAvailableLanguages();
    QStringList names;
    for (const CTranslation::SLang &language : languages)
        names.append(language.strLong);
    auto *menu = CreateMenu(parent, "languages", "MENU_LANGUAGE", names, [=](int index) {
        CSettings::GetInstance()->SetSelectedLanguage(languages.at(index).iID);
    });
    Texts::Follow(menu, [=] {
        for (int i = 0; i < languages.size(); ++i)
            menu->actions().at(i)->setChecked(languages.at(i).iID == catalogue->GetLanguage().iID);
    });
    return menu;
}

QMenu *CreateTimezoneMenu(QWidget *parent)
{
    const CCasinoTime *clock = CCasinoTime::GetInstance();
    auto *menu = CreateMenu(parent, "timezones", "MENU_TIMEZONE", clock->GetTimezoneList(),
                            [](int index) { CSettings::GetInstance()->SetTimezoneIndex30(index); });
    const auto show = [=] {
        menu->actions().constLast()->setText(clock->GetTimezoneList().constLast()); // the only text among them
        menu->actions().at(clock->GetTimezoneIndex())->setChecked(true);
    };
    Texts::Follow(menu, show, CSettings::GetInstance(), &CSettings::signal_TimezoneIndex30Changed);
    return menu;
}
