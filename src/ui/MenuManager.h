#pragma once

#include <Export.h>
#include <ui/Menu.h>

#include <QHash>
#include <QList>
#include <QMenuBar>
#include <QObject>
#include <QPointer>
#include <QSharedPointer>

/// The menu bar that all plugins share, and a registry of menus by id, through which several plugins add entries to
/// the same menu without knowing each other.
///
/// The bar initially has the standard menus "MENU_MYACCOUNT" and "MENU_OPTIONS". It is a window of its own until the
/// host places it. CTranslation's databases must be initialised. Main thread.
class PLUGININTERFACE_EXPORT CMenuManager : public QObject
{
    Q_OBJECT

public:
    /// The ids of the standard menus, which are also the keys of their titles in the area "CORE".
    static const QString strMyAccount; ///< "MENU_MYACCOUNT"
    static const QString strOptions;   ///< "MENU_OPTIONS"
    static const QString strGameRules; ///< "MENU_GAMERULES"; created by the plugin that has game rules.

    CMenuManager();
    /// Destroys the bar and all menus of the registry at the next turn of the event loop.
    ~CMenuManager() override;

    /// Returns the object, creating it on first use; the library owns it.
    static CMenuManager *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the object at the next turn of the event loop.
    static void DestroyInstance();

    /// Returns the menu with that id and gives it the title. A menu that doesn't exist is created; it isn't shown
    /// until it is added to the bar or to another menu. The registry owns it, but it may be deleted at any time.
    CMenu *GetMenu(const QString &id, const QString &key, const QString &area);
    /// Returns the menu with that id and gives it a literal title; creates it if there is none.
    CMenu *GetMenu(const QString &id, const QString &text);
    /// Returns the menu with that id; null if there is none.
    CMenu *GetMenu(const QString &id) const;

    /// Returns the menu bar; null after somebody has deleted it, as the window in which the host has placed it does.
    QMenuBar *GetMenuBar() const;
    /// Appends the menu to the bar, even if it is there already. Does nothing without a bar.
    void AddToMenuBar(CMenu *menu);
    /// Sets the style sheet of the menus that were added to the bar and of all menus below them; the bar keeps its
    /// own.
    void SetMenuBarStyleSheet(const QString &css);

private Q_SLOTS:
    void slot_MenuDestroyed();
    void slot_MenuBarMenuDestroyed();

private:
    void CreateStandardMenus();
    CMenu *Register(const QString &id, CMenu *menu);

    QPointer<QMenuBar> m_pMenuBar;
    QList<CMenu *> m_lMenuBarMenus; // in the order of the bar
    QHash<QString, CMenu *> m_hMenus;

    static QSharedPointer<CMenuManager> m_Instance;
};
