#include "OptionsPages.h"

#include "Look.h"
#include "PictureChooser.h"

#include <common/FormField.h>
#include <common/SettingsPage.h>
#include <files/Pathes.h>
#include <sound/SoundManager.h>
#include <time/CasinoTime.h>
#include <translation/Translation.h>

#include <QComboBox>
#include <QHBoxLayout>
#include <QSlider>

namespace {

constexpr int MAX_VOLUME = 100; // per cent
constexpr char SOUNDS_SWITCH[] = "soundsenabled";
const QString SAMPLE = QStringLiteral("sounds/sample.wav");

QWidget *CreateLanguages(QWidget *parent)
{
    auto *box = new QComboBox(parent);
    for (const CTranslation::SLang &language : CTranslation::GetInstance()->GetAvailableLanguages())
        box->addItem(language.strLong, language.iID);
    return box;
}

QWidget *CreateTimezones(QWidget *parent)
{
    auto *box = new QComboBox(parent);
    const CCasinoTime *clock = CCasinoTime::GetInstance();
    const QStringList zones = clock->GetTimezoneList();
    for (const QString &zone : zones)
        box->addItem(zone, box->count());
    Texts::Follow(box, [=] { // the machine's own zone is the only text among them
        box->setItemText(box->count() - 1, clock->GetTimezoneList().constLast());
    });
    return box;
}

QVariant GetTimezone()
{
    return CCasinoTime::GetInstance()->GetTimezoneIndex();
}

QWidget *CreateColours(QWidget *parent)
{
    auto *box = new QComboBox(parent);
    for (const auto &[key, colours] :
         {std::pair{"LOOK_SYSTEM", Look::CO_SYSTEM}, {"LOOK_LIGHT", Look::CO_LIGHT}, {"LOOK_DARK", Look::CO_DARK}})
        AddTextItem(box, key, colours);
    return box;
}

// Creates a field for a number up to the maximum, in a row with the label beside it.
template <typename Field>
Field *CreateNumber(QWidget *parent, int maximum, QLabel *label)
{
    auto *row = new QWidget(parent);
    auto *field = new Field(row);
    field->setMaximum(maximum);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(QMargins());
    layout->addWidget(field, 1);
    layout->addWidget(label);
    return field;
}

// The user's own picture.
QWidget *CreateAvatar(QWidget *parent)
{
    return CreatePictureChooser(parent);
}

QString GetPercent(int value)
{
    return Texts::Get("OPTIONS_PERCENT", {{"#n#", value}});
}

QWidget *CreateVolume(QWidget *parent)
{
    auto *percent = CreateField<QLabel>(parent, "volumePercent");
    percent->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto *slider = CreateNumber<QSlider>(parent, MAX_VOLUME, percent);
    slider->setOrientation(Qt::Horizontal);
    const auto show = [=] {
        percent->setMinimumWidth(percent->fontMetrics().size(Qt::TextSingleLine, GetPercent(MAX_VOLUME)).width());
        percent->setText(GetPercent(slider->value()));
    };
    Texts::Follow(percent, show, slider, &QSlider::valueChanged);
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
    CSettingsPage::SField zone = setting("OPTIONS_TIMEZONE", "timezoneindex30", &CreateTimezones, nullptr);
    zone.get = &GetTimezone; // the zone in effect, where the setting names none
    new CSettingsPage("OPTIONS_GENERAL", QStyle::SP_ComputerIcon,
                      {setting("OPTIONS_LANGUAGE", "selectedlanguage", &CreateLanguages, nullptr), zone,
                       setting("OPTIONS_LOOK", "themegeneral", &CreateColours, nullptr),
                       setting("PLAYERS_AVATAR", "customcurrent", &CreateAvatar, nullptr),
                       setting("OPTIONS_ANIMATIONS_OFF", "animationsoff", nullptr, nullptr)},
                      parent);
    new CSettingsPage("OPTIONS_SOUNDS", QStyle::SP_MediaVolume,
                      {setting("OPTIONS_SOUNDS_ENABLED", SOUNDS_SWITCH, nullptr, nullptr),
                       setting("OPTIONS_EFFECTS", "soundeffects", nullptr, SOUNDS_SWITCH),
                       setting("OPTIONS_ALERTS", "alertsounds", nullptr, SOUNDS_SWITCH),
                       setting("OPTIONS_SPEECH", "dealerspeech", nullptr, SOUNDS_SWITCH),
                       setting("OPTIONS_WINNING", "winningsounds", nullptr, SOUNDS_SWITCH),
                       setting("OPTIONS_VOLUME", "volume", &CreateVolume, SOUNDS_SWITCH)},
                      parent);
}
