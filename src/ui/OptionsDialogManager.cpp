#include "OptionsDialogManager.h"

#include <Singleton_p.h>
#include <ui/RemoveSender_p.h>

PLUGININTERFACE_DEFINE_SINGLETON(COptionsDialogManager);

COptionsDialogManager::COptionsDialogManager(QWidget *) {}

COptionsDialogManager::~COptionsDialogManager() = default;

void COptionsDialogManager::AddPage(COptionsPage *page)
{
    if (!page)
        return;
    connect(page, &QObject::destroyed, this, &COptionsDialogManager::slot_PageGotDestroyed);
    m_lPages.append(page);
}

const QList<COptionsPage *> COptionsDialogManager::GetPages() const
{
    return m_lPages;
}

void COptionsDialogManager::Show(QWidget *parent)
{
    GetInstance()->ShowDialog(parent);
}

void COptionsDialogManager::slot_PageGotDestroyed()
{
    RemoveSender(m_lPages, sender());
}

void COptionsDialogManager::ShowDialog(QWidget *parent)
{
    Q_EMIT signal_ShowDialog(parent);
}
