#include "SettingsPage.h"

#include "FormField.h"

#include <files/Pathes.h>
#include <settings/Settings.h>
#include <ui/OptionsDialogManager.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QMetaProperty>

namespace {

/// All settings with their default values.
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

bool IsModified(const QWidget &widget, const CSettingsPage::SField &field)
{
    const QVariant shown = GetShown(widget);
    return shown.isValid() && shown != field.get();
}

} // namespace

CSettingsPage::SField CSettingsPage::Setting(const char *textKey, const char *setting,
                                             QWidget *(*create)(QWidget *parent), const char *settingOfSwitch)
{
    return {textKey,
            setting,
            [setting] { return CSettings::GetInstance()->property(setting); },
            [setting](const QVariant &value) { CSettings::GetInstance()->setProperty(setting, value); },
            CDefaultSettings().property(setting),
            create,
            settingOfSwitch};
}

CSettingsPage::CSettingsPage(const char *titleKey, QStyle::StandardPixmap icon, const QVector<SField> &fields,
                             QObject *parent)
    : COptionsPage(parent)
    , m_strTitleKey(titleKey)
    , m_eIcon(icon)
    , m_fields(fields)
{
    COptionsDialogManager::GetInstance()->AddPage(this);
}

QString CSettingsPage::GetTitle() const
{
    return Texts::Get(m_strTitleKey);
}

QIcon CSettingsPage::GetIcon() const
{
    const QString name = QLatin1String("options/") + QString::fromLatin1(m_strTitleKey).toLower();
    const QIcon icon(Pathes::ToCommonRes(name + QLatin1String(".svg"), false));
    const bool isReadable = !icon.pixmap(1).isNull();
    return isReadable ? icon : QApplication::style()->standardIcon(m_eIcon);
}

QWidget *CSettingsPage::CreateWidget(QWidget *parent)
{
    m_pWidget = new QWidget(parent);
    auto *form = new QFormLayout(m_pWidget);
    for (const SField &field : qAsConst(m_fields))
        AddField(form, field);
    return m_pWidget;
}

void CSettingsPage::AddField(QFormLayout *form, const SField &field)
{
    QWidget *label = nullptr;
    QWidget *row = nullptr;
    if (field.create) {
        QWidget *widget = field.create(m_pWidget);
        widget->setObjectName(QLatin1String(field.strName));
        row = widget->parentWidget() == m_pWidget ? widget : widget->parentWidget();
        form->addRow(label = CreateLabel(field.strKey, widget), row);
        // Screen readers look for a label only beside its field.
        const auto setName = [](QWidget *named, QString text) { named->setAccessibleName(text.remove(u'&')); };
        Texts::Bind(widget, setName, field.strKey);
    } else {
        auto *box = CreateField<QCheckBox>(m_pWidget, field.strName);
        Texts::Bind(box, &QCheckBox::setText, field.strKey);
        form->addRow(row = box);
    }
    if (!field.strSwitch)
        return;
    const auto *box = m_pWidget->findChild<QCheckBox *>(QLatin1String(field.strSwitch));
    for (QWidget *part : {label, row}) {
        if (!part)
            continue;
        part->setEnabled(box->isChecked());
        connect(box, &QCheckBox::toggled, part, &QWidget::setEnabled);
    }
}

void CSettingsPage::Load()
{
    ForAll([](QWidget &widget, const SField &field) {
        if (auto *box = qobject_cast<QComboBox *>(&widget))
            box->setCurrentIndex(-1); // in case that there is no entry for the value
        Show(widget, field.get());
    });
}

void CSettingsPage::Apply()
{
    ForAll([](const QWidget &widget, const SField &field) {
        if (::IsModified(widget, field))
            field.set(GetShown(widget));
    });
}

void CSettingsPage::RestoreDefaults()
{
    ForAll([](QWidget &widget, const SField &field) { Show(widget, field.vDefault); });
}

bool CSettingsPage::IsModified() const
{
    bool isModified = false;
    ForAll([&](const QWidget &widget, const SField &field) { isModified |= ::IsModified(widget, field); });
    return isModified;
}

void CSettingsPage::ForAll(const std::function<void(QWidget &, const SField &)> &action) const
{
    for (const SField &field : m_fields) {
        if (m_pWidget)
            action(*m_pWidget->findChild<QWidget *>(QLatin1String(field.strName)), field);
    }
}
