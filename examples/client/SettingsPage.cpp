#include "SettingsPage.h"

#include <common/FormField.h>
#include <files/Pathes.h>
#include <settings/Settings.h>
#include <sound/SoundManager.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QMetaProperty>
#include <QSlider>

namespace {

constexpr int MAX_VOLUME = 100;
const QString SAMPLE = QStringLiteral("sounds/sample.wav");

/// All settings as they are before anybody has chosen.
class CDefaultSettings : public CSettingsBase
{
    void Save(const QString &, const QString &, const QString &, const QVariant &, qint64) override {}
};

QVariant GetShown(const QWidget &field)
{
    const auto *box = qobject_cast<const QComboBox *>(&field);
    return box ? box->currentData() : field.metaObject()->userProperty().read(&field);
}

void Show(QWidget &field, const QVariant &value)
{
    auto *box = qobject_cast<QComboBox *>(&field);
    if (!box)
        field.metaObject()->userProperty().write(&field, value);
    else if (box->findData(value) >= 0)
        box->setCurrentIndex(box->findData(value));
}

QWidget *CreateLanguages(QWidget *parent)
{
    auto *box = new QComboBox(parent);
    for (const CTranslation::SLang &language : CTranslation::GetInstance()->GetAvailableLanguages())
        box->addItem(language.strLong, language.iID);
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

CSettingsPage::CSettingsPage(const char *titleKey, QStyle::StandardPixmap icon, const QVector<SField> &fields,
                             QObject *parent)
    : COptionsPage(parent)
    , m_strTitleKey(titleKey)
    , m_eIcon(icon)
    , m_fields(fields)
{
}

QString CSettingsPage::GetTitle() const
{
    return Texts::Get(m_strTitleKey);
}

QIcon CSettingsPage::GetIcon() const
{
    return QApplication::style()->standardIcon(m_eIcon);
}

QWidget *CSettingsPage::CreateWidget(QWidget *parent)
{
    m_pWidget = new QWidget(parent);
    auto *form = new QFormLayout(m_pWidget);
    for (const SField &field : qAsConst(m_fields)) {
        QWidget *widget = nullptr;
        if (field.create) {
            widget = field.create(m_pWidget);
            AddFormField(form, field.strKey, widget);
        } else {
            auto *box = new QCheckBox(m_pWidget);
            Texts::Bind(box, &QCheckBox::setText, field.strKey);
            form->addRow(box);
            widget = box;
        }
        widget->setObjectName(QLatin1String(field.strSetting));
    }
    return m_pWidget;
}

void CSettingsPage::Load()
{
    ForAll([](QWidget &field, const char *key) { Show(field, CSettings::GetInstance()->property(key)); });
}

void CSettingsPage::Apply()
{
    ForAll([](QWidget &field, const char *key) {
        if (GetShown(field) != CSettings::GetInstance()->property(key))
            CSettings::GetInstance()->setProperty(key, GetShown(field));
    });
}

void CSettingsPage::RestoreDefaults()
{
    const CDefaultSettings defaults;
    ForAll([&](QWidget &field, const char *key) { Show(field, defaults.property(key)); });
}

bool CSettingsPage::IsModified() const
{
    bool isModified = false;
    ForAll([&](const QWidget &field, const char *key) {
        isModified = isModified || GetShown(field) != CSettings::GetInstance()->property(key);
    });
    return isModified;
}

template <typename Action>
void CSettingsPage::ForAll(const Action &action) const
{
    for (const SField &field : m_fields) {
        if (m_pWidget)
            action(*m_pWidget->findChild<QWidget *>(QLatin1String(field.strSetting)), field.strSetting);
    }
}

COptionsPage *CreateGeneralPage(QObject *parent)
{
    return new CSettingsPage(
        "OPTIONS_GENERAL", QStyle::SP_ComputerIcon,
        {{"MENU_LANGUAGE", "selectedlanguage", &CreateLanguages}, {"OPTIONS_ANIMATIONS_OFF", "animationsoff"}},
        parent);
}

COptionsPage *CreateSoundsPage(QObject *parent)
{
    return new CSettingsPage("OPTIONS_SOUNDS", QStyle::SP_MediaVolume,
                             {{"OPTIONS_SOUNDS_ENABLED", "soundsenabled"},
                              {"OPTIONS_EFFECTS", "soundeffects"},
                              {"OPTIONS_ALERTS", "alertsounds"},
                              {"OPTIONS_SPEECH", "dealerspeech"},
                              {"OPTIONS_WINNING", "winningsounds"},
                              {"OPTIONS_VOLUME", "volume", &CreateVolume}},
                             parent);
}
