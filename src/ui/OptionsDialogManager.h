#pragma once

#include <Export.h>
#include <ui/OptionsPage.h>

#include <QList>
#include <QObject>
#include <QSharedPointer>

/// The registry in which plugins register the pages of the options dialog, and through which any code asks for it.
/// The host listens to signal_ShowDialog() and builds the dialog from the pages. Main thread.
class PLUGININTERFACE_EXPORT COptionsDialogManager : public QObject
{
    Q_OBJECT

public:
    /// Constructs a registry without pages. \a widget isn't used.
    explicit COptionsDialogManager(QWidget *widget = nullptr);
    ~COptionsDialogManager() override;

    /// Returns the object, creating it on first use; the library owns it.
    static COptionsDialogManager *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the object at the next turn of the event loop.
    static void DestroyInstance();

    /// Appends the page, which its owner keeps and may delete at any time. Null is ignored.
    void AddPage(COptionsPage *page);
    /// Returns the pages in the order in which they were added.
    const QList<COptionsPage *> GetPages() const;

    /// Asks the host to show the dialog above \a parent, which may be null.
    static void Show(QWidget *parent);

Q_SIGNALS:
    /// Emitted to ask the host for the dialog above \a parent, which may be null.
    void signal_ShowDialog(QWidget *parent);

private Q_SLOTS:
    void slot_PageGotDestroyed();

private:
    void ShowDialog(QWidget *parent);

    QList<COptionsPage *> m_lPages;

    static QSharedPointer<COptionsDialogManager> m_Instance;
};
