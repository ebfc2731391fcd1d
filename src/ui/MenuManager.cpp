#include "MenuManager.h"

#include <Singleton_p.h>
#include <ui/RemoveSender_p.h>

#include <iterator>

PLUGININTERFACE_DEFINE_SINGLETON(CMenuManager);

namespace {

const QString STANDARD_AREA = QStringLiteral("CORE");

} // namespace

const QString CMenuManager::strMyAccount = QStringLiteral("MENU_MYACCOUNT");
const QString CMenuManager::strOptions = QStringLiteral("MENU_OPTIONS");
const QString CMenuManager::strGameRules = QStringLiteral("MENU_GAMERULES");

CMenuManager::CMenuManager()
    : m_pMenuBar(new QMenuBar)
{
    m_pMenuBar->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum);
    m_pMenuBar->setMinimumSize(0, 0);
    CreateStandardMenus();
}

CMenuManager::~CMenuManager()
{
    for (CMenu *menu : qAsConst(m_hMenus))
        menu->deleteLater();
    if (m_pMenuBar)
        m_pMenuBar->deleteLater();
}

CMenu *CMenuManager::GetMenu(const QString &id, const QString &key, const QString &area)
{
    CMenu *menu = GetMenu(id);
    if (!menu)
        return Register(id, new CMenu(id, key, area));
    menu->SetTranslationKey(key, area);
    return menu;
}

CMenu *CMenuManager::GetMenu(const QString &id, const QString &text)
{
    CMenu *menu = GetMenu(id);
    if (!menu)
        return Register(id, new CMenu(id, text));
    menu->SetText(text);
    return menu;
}

CMenu *CMenuManager::GetMenu(const QString &id) const
{
    return m_hMenus.value(id);
}

QMenuBar *CMenuManager::GetMenuBar() const
{
    return m_pMenuBar;
}

void CMenuManager::AddToMenuBar(CMenu *menu)
{
    if (!m_pMenuBar || !menu)
        return;
    m_pMenuBar->addMenu(menu);
    m_lMenuBarMenus.append(menu);
    connect(menu, &QObject::destroyed, this, &CMenuManager::slot_MenuBarMenuDestroyed);
}

void CMenuManager::SetMenuBarStyleSheet(const QString &css)
{
    for (CMenu *menu : qAsConst(m_lMenuBarMenus))
        menu->SetStyleSheet(css);
}

// By now the menu is only a QObject.
void CMenuManager::slot_MenuDestroyed()
{
    for (auto entry = m_hMenus.begin(); entry != m_hMenus.end();)
        entry = static_cast<QObject *>(*entry) == sender() ? m_hMenus.erase(entry) : std::next(entry);
}

void CMenuManager::slot_MenuBarMenuDestroyed()
{
    RemoveSender(m_lMenuBarMenus, sender());
}

void CMenuManager::CreateStandardMenus()
{
    for (const QString &id : {strMyAccount, strOptions}) {
        if (!GetMenu(id))
            AddToMenuBar(GetMenu(id, id, STANDARD_AREA));
    }
}

CMenu *CMenuManager::Register(const QString &id, CMenu *menu)
{
    connect(menu, &QObject::destroyed, this, &CMenuManager::slot_MenuDestroyed);
    m_hMenus.insert(id, menu);
    return menu;
}
