#include "SwitchesPage.h"

#include "Texts.h"

#include <ui/OptionsDialogManager.h>

#include <QVBoxLayout>

CSwitchesPage::CSwitchesPage(const char *title, const QVector<SSwitch> &switches, QObject *parent)
    : COptionsPage(parent)
    , m_pTitle(title)
    , m_switches(switches)
{
    COptionsDialogManager::GetInstance()->AddPage(this);
}

QString CSwitchesPage::GetTitle() const
{
    return Texts::Get(m_pTitle);
}

QWidget *CSwitchesPage::CreateWidget(QWidget *parent)
{
    m_pWidget = new QWidget(parent);
    auto *layout = new QVBoxLayout(m_pWidget);
    for (const SSwitch &entry : qAsConst(m_switches)) {
        auto *box = new QCheckBox(m_pWidget);
        box->setObjectName(QLatin1String(entry.pKey));
        Texts::Bind(box, &QCheckBox::setText, entry.pKey);
        layout->addWidget(box);
    }
    layout->addStretch();
    return m_pWidget;
}

void CSwitchesPage::ForAll(const std::function<void(QCheckBox &, const SSwitch &)> &operation) const
{
    for (const SSwitch &entry : m_switches) {
        if (m_pWidget)
            operation(*m_pWidget->findChild<QCheckBox *>(QLatin1String(entry.pKey)), entry);
    }
}

void CSwitchesPage::Load()
{
    ForAll([](QCheckBox &box, const SSwitch &entry) { box.setChecked(entry.isOn()); });
}

void CSwitchesPage::RestoreDefaults()
{
    ForAll([](QCheckBox &box, const SSwitch &entry) { box.setChecked(entry.bDefault); });
}

void CSwitchesPage::Apply()
{
    ForAll([](const QCheckBox &box, const SSwitch &entry) {
        if (box.isChecked() != entry.isOn())
            entry.set(box.isChecked());
    });
}

bool CSwitchesPage::IsModified() const
{
    bool modified = false;
    ForAll([&](const QCheckBox &box, const SSwitch &entry) { modified |= box.isChecked() != entry.isOn(); });
    return modified;
}
