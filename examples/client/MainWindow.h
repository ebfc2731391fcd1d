#pragma once

#include "Host.h"

#include <translation/TranslationItem.h>

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <functional>

class CConsoleWindow;
class CLoginDialog;
class COptionsDialog;
class QAction;
class QTabWidget;
class QToolButton;

/// The client's window: a tab for each plugin that has a view, beside the tabs the user, the money and the jackpot,
/// and below all the state of the connection and the clock. It opens where it was closed last. It contains the menu
/// bar of CMenuManager, so there can be only one window at a time.
class CMainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Constructs the window for a \a host that outlives it.
    explicit CMainWindow(CHost &host);

    /// Creates the views of the plugins that have started.
    void CreateViews();

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    QAction *AddEntry(const QString &menu, const char *key, const char *name, const QKeySequence &shortcut,
                      const std::function<void(QAction *)> &action);
    void CreateAccountMenu();
    void CreateOptionsMenu();
    void CreateRulesMenu();
    void DownloadRules(QAction *entry);
    void OpenLogin();
    void ShowMessage(const CTranslationItem &message, int milliseconds, const QString &file = QString());
    void RememberGeometry();

    CHost &m_host;
    QTabWidget *m_pViews; // this and the next one are children
    QToolButton *m_pOpenFile;
    QString m_strFile;                     // which the message tells of; empty if it tells of none
    CTranslationItem m_message;            // the status bar's current or last message
    int m_iMessageMs = 0;                  // how long it stays
    QPointer<CLoginDialog> m_pLoginDialog; // this and the next ones delete themselves
    QPointer<COptionsDialog> m_pOptionsDialog;
    QPointer<CConsoleWindow> m_pConsole;
    QTimer m_geometryTimer; // runs while the window is being moved
};
