#pragma once

#include <Export.h>
#include <translation/TranslationItem.h>

#include <QHash>
#include <QList>
#include <QMenu>
#include <QVariant>

class CAction;

/// A menu whose title follows the language, of actions and further menus from any number of plugins.
///
/// It owns the actions that are added to it, and none of the menus. Whoever made an action or a menu may delete it at
/// any time, also while a menu is about to open; it is gone from all menus then. A menu must not be added to itself,
/// nor to one of those below it. CTranslation's databases have to be initialised. Thread of the user interface.
class PLUGININTERFACE_EXPORT CMenu : public QMenu, public CTranslationItem
{
    Q_OBJECT

public:
    /// The title of the catalogue. \a id is that of CMenuManager.
    CMenu(const QString &id, const QString &key, const QString &area);
    /// A literal title.
    CMenu(const QString &id, const QString &text);
    ~CMenu() override;

    /// Null, and what is in the menu already, is ignored.
    /// @{
    void AddAction(CAction *action);
    void AddMenu(CMenu *menu);
    /// @}

    /// Attaches a value that handlers read, in place of one of that name. It goes to all that is in the menu now,
    /// down to the last submenu; what is added later doesn't get it.
    void AddParameter(const QString &name, const QVariant &value);
    /// The menu's own; invalid if there is none of that name.
    QVariant GetParameter(const QString &name) const;
    /// Here and in all that is in the menu now, like AddParameter().
    /// @{
    void RemoveParameter(const QString &name);
    void ClearParameters();
    /// @}

    /// Of the menu and of all below it.
    void SetStyleSheet(const QString &css);
    /// Shows or hides the menu's entry in the one above it.
    void SetVisible(bool visible);

Q_SIGNALS:
    /// The menu is about to open, or one above it; its actions and submenus have told so before.
    void signal_Update(CMenu *menu);

protected:
    void TranslationChanged() override;
    /// Goes on watching an action that leaves the menu, as each does in its destructor.
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
