#pragma once

#include <Export.h>
#include <translation/TranslationItem.h>

#include <QHash>
#include <QList>
#include <QMenu>
#include <QVariant>

class CAction;

/// A menu whose title follows the language, with actions and submenus from any number of plugins.
///
/// It owns the actions that are added to it, but not the submenus. The code that created an action or a menu may
/// delete it at any time, even while a menu is about to open; all menus then drop it. A menu must not be added to
/// itself or to one of the menus below it. CTranslation's databases must be initialised. Main thread.
class PLUGININTERFACE_EXPORT CMenu : public QMenu, public CTranslationItem
{
    Q_OBJECT

public:
    /// Constructs a menu with a title of the catalogue. \a id is its id in CMenuManager.
    CMenu(const QString &id, const QString &key, const QString &area);
    /// Constructs a menu with a literal title. \a id is its id in CMenuManager.
    CMenu(const QString &id, const QString &text);
    ~CMenu() override;

    /// Appends an entry to the menu. Null and entries that are in the menu already are ignored.
    /// @{
    void AddAction(CAction *action);
    void AddMenu(CMenu *menu);
    /// @}

    /// Attaches a value that handlers read, replacing any of the same name. All that is in the menu now, down to the
    /// last submenu, gets it, too; what is added later doesn't.
    void AddParameter(const QString &name, const QVariant &value);
    /// Returns the menu's own value of that name; invalid if there is none.
    QVariant GetParameter(const QString &name) const;
    /// Removes attached values from the menu and from everything that is in it now, like AddParameter().
    /// @{
    void RemoveParameter(const QString &name);
    void ClearParameters();
    /// @}

    /// Sets the style sheet of the menu and of all menus below it.
    void SetStyleSheet(const QString &css);
    /// Shows or hides the entry of this menu in the menu above it.
    void SetVisible(bool visible);

Q_SIGNALS:
    /// Emitted when this menu or one above it is about to open, after its actions and submenus have emitted theirs.
    void signal_Update(CMenu *menu);

protected:
    void TranslationChanged() override;
    /// Keeps watching an action that is removed from the menu, as each action is in its own destructor.
    void actionEvent(QActionEvent *event) override;

private Q_SLOTS:
    void slot_AboutToShow();
    void slot_TranslationChanged();
    void slot_ActionDestroyed();
    void slot_MenuDestroyed();

private:
    void Init();
    template <typename Operation>
    void ForAll(const Operation &operation);

    QList<CMenu *> m_lMenus;     // in the order added, not owned
    QList<CAction *> m_lActions; // in the order added, children
    QHash<QString, QVariant> m_hParameters;
    QString m_strID;
};
