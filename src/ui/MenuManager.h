#pragma once

#include <Export.h>
#include <ui/Menu.h>

#include <QHash>
#include <QList>
#include <QMenuBar>
#include <QObject>
#include <QPointer>
#include <QSharedPointer>

/// The menu bar that all plugins share, and a registry of menus by id, through which several of them add entries to
/// the same menu without knowing each other.
///
/// The bar begins with the standard menus "MENU_MYACCOUNT" and "MENU_OPTIONS". It is a window of its own until the
/// host places it. CTranslation's databases have to be initialised. Thread of the user interface.
class PLUGININTERFACE_EXPORT CMenuManager : public QObject
{
    Q_OBJECT

public:
    /// Ids of the standard menus, which are also the keys of their titles in the area "CORE".
    static const QString strMyAccount; ///< "MENU_MYACCOUNT"
    static const QString strOptions;   ///< "MENU_OPTIONS"
    static const QString strGameRules; ///< "MENU_GAMERULES"; made by the plugin that has game rules.

    CMenuManager();
    /// All menus of the registry and the bar end at the next turn of the event loop.
    ~CMenuManager() override;

    /// Creates the object on first use; the library owns it.
    static CMenuManager *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop.
    static void DestroyInstance();

    /// The menu of that id. One that is there takes the new title; one that isn't is created, and stands nowhere
    /// until it is added to the bar or to another menu. The registry owns it, but it may be deleted at any time.
    CMenu *GetMenu(const QString &id, const QString &key, const QString &area);
    /// The same with a literal title.
    CMenu *GetMenu(const QString &id, const QString &text);
    /// Null if there is none.
    CMenu *GetMenu(const QString &id) const;

    /// Null once somebody has deleted it, as the window does in which the host has placed it.
    QMenuBar *GetMenuBar() const;
    /// Appends the menu, again if it is there already. Nothing happens without a bar.
    void AddToMenuBar(CMenu *menu);
    /// Of the menus that were added to the bar and all below them; the bar keeps its own.
    void SetMenuBarStyleSheet(const QString &css);

private Q_SLOTS:
    void slot_MenuDestroyed();
    void slot_MenuBarMenuDestroyed();

private:
    void CreateStandardMenus();
    CMenu *Register(const QString &id, CMenu *menu);

    QPointer<QMenuBar> m_pMenuBar;
    QList<CMenu *> m_lMenuBarMenus; // in their order
    QHash<QString, CMenu *> m_hMenus;

    static QSharedPointer<CMenuManager> m_Instance;
};
