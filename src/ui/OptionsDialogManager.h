#pragma once

#include <Export.h>
#include <ui/OptionsPage.h>

#include <QList>
#include <QObject>
#include <QSharedPointer>

/// Where plugins register the pages of the options dialog, and where anybody asks for it. The host listens to
/// signal_ShowDialog() and builds the dialog from the pages. Thread of the user interface.
class PLUGININTERFACE_EXPORT COptionsDialogManager : public QObject
{
    Q_OBJECT

public:
    /// \a widget isn't used.
    explicit COptionsDialogManager(QWidget *widget = nullptr);
    ~COptionsDialogManager() override;

    /// Creates the object on first use; the library owns it.
    static COptionsDialogManager *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop.
    static void DestroyInstance();

    /// Appends the page, which stays its owner's and may be deleted at any time. Null is ignored.
    void AddPage(COptionsPage *page);
    /// In the order in which they were added.
    const QList<COptionsPage *> GetPages() const;

    /// Asks the host for the dialog, above \a parent, which may be null.
    static void Show(QWidget *parent);

Q_SIGNALS:
    /// For the host: somebody wants the dialog, above \a parent, which may be null.
    void signal_ShowDialog(QWidget *parent);

private Q_SLOTS:
    void slot_PageGotDestroyed();

private:
    void ShowDialog(QWidget *parent);

    QList<COptionsPage *> m_lPages;

    static QSharedPointer<COptionsDialogManager> m_Instance;
};
