#include "Menu.h"

#include <translation/Translation.h>
#include <ui/Action.h>
#include <ui/RemoveSender_p.h>

#include <QActionEvent>
#include <QPointer>

namespace {

template <typename Type>
QList<QPointer<Type>> Guarded(const QList<Type *> &list)
{
    return QList<QPointer<Type>>(list.cbegin(), list.cend());
}

} // namespace

CMenu::CMenu(const QString &id, const QString &key, const QString &area)
    : m_strID(id)
{
    SetTranslationKey(key, area);
    Init();
}

CMenu::CMenu(const QString &id, const QString &text)
    : m_strID(id)
{
    SetText(text);
    Init();
}

// The base class deletes the actions after the lists are destroyed, from which the slots would remove them.
CMenu::~CMenu()
{
    for (CAction *action : qAsConst(m_lActions))
        disconnect(action, nullptr, this, nullptr);
    for (CMenu *menu : qAsConst(m_lMenus))
        disconnect(menu, nullptr, this, nullptr);
}

void CMenu::AddAction(CAction *action)
{
    if (!action || m_lActions.contains(action))
        return;
    action->setParent(this);
    connect(action, &QObject::destroyed, this, &CMenu::slot_ActionDestroyed);
    m_lActions.append(action);
    addAction(action);
}

void CMenu::AddMenu(CMenu *menu)
{
    if (!menu || m_lMenus.contains(menu))
        return;
    connect(menu, &QObject::destroyed, this, &CMenu::slot_MenuDestroyed);
    m_lMenus.append(menu);
    addMenu(menu);
}

void CMenu::AddParameter(const QString &name, const QVariant &value)
{
    m_hParameters.insert(name, value);
    ForAll([&](auto *entry) { entry->AddParameter(name, value); });
}

QVariant CMenu::GetParameter(const QString &name) const
{
    return m_hParameters.value(name);
}

void CMenu::RemoveParameter(const QString &name)
{
    m_hParameters.remove(name);
    ForAll([&](auto *entry) { entry->RemoveParameter(name); });
}

void CMenu::ClearParameters()
{
    m_hParameters.clear();
    ForAll([](auto *entry) { entry->ClearParameters(); });
}

void CMenu::SetStyleSheet(const QString &css)
{
    setStyleSheet(css);
    for (CMenu *menu : qAsConst(m_lMenus))
        menu->SetStyleSheet(css);
}

void CMenu::SetVisible(bool visible)
{
    menuAction()->setVisible(visible);
}

void CMenu::TranslationChanged()
{
    setTitle(GetTranslatedText());
}

// QMenu drops all its connections to an action that is removed, as each action is in its own destructor.
void CMenu::actionEvent(QActionEvent *event)
{
    QMenu::actionEvent(event);
    if (event->type() != QEvent::ActionRemoved)
        return;
    QObject *removed = event->action();
    const auto isRemoved = [removed](const CAction *action) {
        return static_cast<const QObject *>(action) == removed;
    };
    if (std::any_of(m_lActions.cbegin(), m_lActions.cend(), isRemoved))
        connect(removed, &QObject::destroyed, this, &CMenu::slot_ActionDestroyed);
}

// Connected slots may delete any of these actions and menus, even this menu.
void CMenu::slot_AboutToShow()
{
    const QPointer<CMenu> self = this;
    const auto actions = Guarded(m_lActions);
    for (const QPointer<CAction> &action : actions) {
        if (action)
            action->slot_Update();
    }
    if (!self)
        return;
    const auto menus = Guarded(m_lMenus);
    for (const QPointer<CMenu> &menu : menus) {
        if (menu)
            menu->slot_AboutToShow();
    }
    if (self)
        Q_EMIT signal_Update(this);
}

void CMenu::slot_TranslationChanged()
{
    ReTranslate();
}

void CMenu::slot_ActionDestroyed()
{
    RemoveSender(m_lActions, sender());
}

void CMenu::slot_MenuDestroyed()
{
    RemoveSender(m_lMenus, sender());
}

void CMenu::Init()
{
    connect(this, &QMenu::aboutToShow, this, &CMenu::slot_AboutToShow);
    connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, this,
            &CMenu::slot_TranslationChanged);
}

template <typename Operation>
void CMenu::ForAll(const Operation &operation)
{
    for (CAction *action : qAsConst(m_lActions))
        operation(action);
    for (CMenu *menu : qAsConst(m_lMenus))
        operation(menu);
}
