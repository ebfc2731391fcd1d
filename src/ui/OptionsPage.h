#pragma once

#include <Export.h>

#include <QIcon>
#include <QObject>
#include <QString>

class QWidget;

/// A page of the host's options dialog, which a plugin implements and registers with COptionsDialogManager.
///
/// The dialog calls CreateWidget() each time that it is built, then Load(). Thread of the user interface.
class PLUGININTERFACE_EXPORT COptionsPage : public QObject
{
    Q_OBJECT

public:
    /// Registers nothing; see COptionsDialogManager::AddPage().
    explicit COptionsPage(QObject *parent);
    ~COptionsPage() override;

    /// For the list of pages, in the user's language.
    virtual QString GetTitle() const = 0;
    /// For the list of pages; may be null.
    virtual QIcon GetIcon() const = 0;
    /// A new widget that shows the page, a child of \a parent and owned by it. The page works on the newest one and
    /// forgets it when it is deleted.
    virtual QWidget *CreateWidget(QWidget *parent) = 0;
    /// Brings what is in force into the widget.
    virtual void Load() = 0;
    /// Puts what the widget shows in force.
    virtual void Apply() = 0;
    /// Brings the defaults into the widget; they are in force once they are applied.
    virtual void RestoreDefaults() = 0;
    /// Whether the widget shows something that isn't in force.
    virtual bool IsModified() const = 0;
};
