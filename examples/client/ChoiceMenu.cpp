#include "ChoiceMenu.h"

#include <common/Texts.h>
#include <settings/Settings.h>
#include <time/CasinoTime.h>

CChoiceMenu::CChoiceMenu(QWidget *parent)
    : QMenu(parent)
    , m_group(this)
{
    connect(&m_group, &QActionGroup::triggered, this,
            [this](const QAction *action) { Q_EMIT signal_Chosen(action->data().toInt()); });
}

QAction *CChoiceMenu::AddChoice(const QString &text, int value)
{
    QAction *action = addAction(text);
    action->setCheckable(true);
    action->setData(value);
    return m_group.addAction(action);
}

void CChoiceMenu::SetChosen(int value)
{
    const QList<QAction *> choices = m_group.actions();
    for (QAction *choice : choices) {
        if (choice->data() == value)
            choice->setChecked(true);
    }
}

CChoiceMenu *CreateLanguageMenu(QWidget *parent)
{
    auto *menu = new CChoiceMenu(parent);
    menu->setObjectName(QStringLiteral("languages"));
    const CTranslation *catalogue = CTranslation::GetInstance();
    for (const CTranslation::SLang &language : catalogue->GetAvailableLanguages())
        menu->AddChoice(language.strLong, language.iID);
    Texts::Bind(menu, &QMenu::setTitle, "MENU_LANGUAGE");
    Texts::Follow(menu, [menu, catalogue] { menu->SetChosen(catalogue->GetLanguage().iID); });
    QObject::connect(menu, &CChoiceMenu::signal_Chosen, menu,
                     [menu](int id) { CSettings::GetInstance()->SetSelectedLanguage(id, menu); });
    return menu;
}

CChoiceMenu *CreateTimezoneMenu(QWidget *parent)
{
    auto *menu = new CChoiceMenu(parent);
    menu->setObjectName(QStringLiteral("timezones"));
    CSettings *settings = CSettings::GetInstance();
    const CCasinoTime *clock = CCasinoTime::GetInstance();
    const QStringList names = clock->GetTimezoneList();
    for (int index = 0; index < names.size(); ++index)
        menu->AddChoice(names.at(index), index);
    menu->SetChosen(clock->GetTimezoneIndex());
    Texts::Bind(menu, &QMenu::setTitle, "MENU_TIMEZONE");
    // Of the entries only the last one is a word.
    QObject::connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, menu,
                     [menu, clock] { menu->actions().constLast()->setText(clock->GetTimezoneList().constLast()); });
    QObject::connect(menu, &CChoiceMenu::signal_Chosen, menu,
                     [menu, settings](int index) { settings->SetTimezoneIndex30(index, menu); });
    QObject::connect(settings, &CSettings::signal_TimezoneIndex30Changed, menu, [menu, settings, clock] {
        if (settings->GetCaller() != menu)
            menu->SetChosen(clock->GetTimezoneIndex());
    });
    return menu;
}
