#pragma once

#include <Export.h>
#include <translation/TranslationItem.h>

#include <QAction>
#include <QHash>
#include <QVariant>

/// An action whose text follows the language, with named values that its owner attaches for whoever handles it.
///
/// It begins without a parent; CMenu::AddAction() makes it the menu's child, which doesn't keep its owner from
/// deleting it at any time. CTranslation's databases have to be initialised. Thread of the user interface.
class PLUGININTERFACE_EXPORT CAction : public QAction, public CTranslationItem
{
    Q_OBJECT

public:
    /// The text of the catalogue.
    CAction(const QString &key, const QString &area);
    /// A literal text.
    explicit CAction(const QString &text);
    ~CAction() override;

    /// Attaches a value, in place of one of that name.
    void AddParameter(const QString &name, const QVariant &value);
    /// Invalid if there is none of that name.
    QVariant GetParameter(const QString &name) const;
    /// Nothing happens if there is none of that name.
    void RemoveParameter(const QString &name);
    /// Removes all of them.
    void ClearParameters();

public Q_SLOTS:
    /// Lets the owner bring the action up to date.
    void slot_Update();

Q_SIGNALS:
    /// The action is about to be shown.
    void signal_Update(CAction *action);

protected:
    void TranslationChanged() override;

private Q_SLOTS:
    void slot_TranslationChanged();

private:
    void FollowLanguage();

    QHash<QString, QVariant> m_hParameters;
};
