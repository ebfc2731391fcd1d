#pragma once

#include <Export.h>
#include <translation/TranslationItem.h>

#include <QAction>
#include <QHash>
#include <QVariant>

/// An action whose text follows the language, and to which its owner attaches named values for the code that handles
/// it.
///
/// It is created without a parent. CMenu::AddAction() makes it a child of the menu, but its owner may still delete it
/// at any time. CTranslation's databases must be initialised. Main thread.
class PLUGININTERFACE_EXPORT CAction : public QAction, public CTranslationItem
{
    Q_OBJECT

public:
    /// Constructs an action with a text of the catalogue.
    CAction(const QString &key, const QString &area);
    /// Constructs an action with a literal text.
    explicit CAction(const QString &text);
    ~CAction() override;

    /// Attaches a value, replacing any of the same name.
    void AddParameter(const QString &name, const QVariant &value);
    /// Returns the value of that name; invalid if there is none.
    QVariant GetParameter(const QString &name) const;
    /// Removes the value of that name, if there is one.
    void RemoveParameter(const QString &name);
    /// Removes all attached values.
    void ClearParameters();

public Q_SLOTS:
    /// Emits signal_Update(), so that the owner can bring the action up to date.
    void slot_Update();

Q_SIGNALS:
    /// Emitted when the action is about to be shown.
    void signal_Update(CAction *action);

protected:
    void TranslationChanged() override;

private Q_SLOTS:
    void slot_TranslationChanged();

private:
    void FollowLanguage();

    QHash<QString, QVariant> m_hParameters;
};
