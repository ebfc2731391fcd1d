#pragma once

#include <Export.h>

#include <QIcon>
#include <QObject>
#include <QString>

class QWidget;

/// A page of the host's options dialog, which a plugin implements and registers with COptionsDialogManager.
///
/// The dialog calls CreateWidget() and then Load() each time it is built. Main thread.
class PLUGININTERFACE_EXPORT COptionsPage : public QObject
{
    Q_OBJECT

public:
    /// Constructs a page without registering it; see COptionsDialogManager::AddPage().
    explicit COptionsPage(QObject *parent);
    ~COptionsPage() override;

    /// Returns the title for the list of pages, in the user's language.
    virtual QString GetTitle() const = 0;
    /// Returns the icon for the list of pages; may be null.
    virtual QIcon GetIcon() const = 0;
    /// Creates a widget that shows the page, as a child of \a parent, which owns it. The page works on the newest
    /// widget and forgets it when it is deleted.
    virtual QWidget *CreateWidget(QWidget *parent) = 0;
    /// Loads the values in effect into the widget.
    virtual void Load() = 0;
    /// Puts the values of the widget into effect.
    virtual void Apply() = 0;
    /// Loads the defaults into the widget; Apply() puts them into effect.
    virtual void RestoreDefaults() = 0;
    /// Returns whether the widget shows values that aren't in effect.
    virtual bool IsModified() const = 0;
};
