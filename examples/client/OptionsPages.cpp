#include "OptionsPages.h"

#include "Look.h"

#include <common/FormField.h>
#include <common/SettingsPage.h>
#include <files/Pathes.h>
#include <sound/SoundManager.h>
#include <translation/Translation.h>

#include <QComboBox>
#include <QSlider>

namespace {

constexpr int MAX_VOLUME = 100;
const QString SAMPLE = QStringLiteral("sounds/sample.wav");

QWidget *CreateLanguages(QWidget *parent)
{
    auto *box = new QComboBox(parent);
    for (const CTranslation::SLang &language : CTranslation::GetInstance()->GetAvailableLanguages())
        box->addItem(language.strLong, language.iID);
    return box;
}

QWidget *CreateColours(QWidget *parent)
{
    auto *box = new QComboBox(parent);
    for (const auto &[key, colours] : {std::pair{"LOOK_LIGHT", Look::CO_LIGHT}, {"LOOK_DARK", Look::CO_DARK}})
        AddTextItem(box, key, colours);
    return box;
}

QWidget *CreateVolume(QWidget *parent)
{
    auto *slider = new QSlider(Qt::Horizontal, parent);
    slider->setMaximum(MAX_VOLUME);
    QObject::connect(slider, &QSlider::sliderReleased, slider, [slider] {
        CSoundManager::GetInstance()->PlaySample(static_cast<unsigned char>(slider->value()),
                                                 Pathes::ToCommonRes(SAMPLE, false));
    });
    return slider;
}

} // namespace

void AddOptionsPages(QObject *parent)
{
    const auto setting = &CSettingsPage::Setting;
    new CSettingsPage("OPTIONS_GENERAL", QStyle::SP_ComputerIcon,
                      {setting("MENU_LANGUAGE", "selectedlanguage", &CreateLanguages),
                       setting("OPTIONS_LOOK", "themegeneral", &CreateColours),
                       setting("OPTIONS_ANIMATIONS_OFF", "animationsoff", nullptr)},
                      parent);
    new CSettingsPage(
        "OPTIONS_SOUNDS", QStyle::SP_MediaVolume,
        {setting("OPTIONS_SOUNDS_ENABLED", "soundsenabled", nullptr),
         setting("OPTIONS_EFFECTS", "soundeffects", nullptr), setting("OPTIONS_ALERTS", "alertsounds", nullptr),
         setting("OPTIONS_SPEECH", "dealerspeech", nullptr), setting("OPTIONS_WINNING", "winningsounds", nullptr),
         setting("OPTIONS_VOLUME", "volume", &CreateVolume)},
        parent);
}
