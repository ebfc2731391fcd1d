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
class QLabel;
class QTabWidget;

/// The client's window: a tab for each plugin that has a view, above it the user's money, and below it the state of
/// the link, the jackpot, the user and the clock; in QML money, jackpot and user make one line. It opens where it was
/// closed. The menu bar is that of CMenuManager, so that there is one window at a time.
class CMainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// \a host outlives the window.
    explicit CMainWindow(CHost &host);

    /// Makes the views of the plugins that have started.
    void CreateViews();
    /// Shows above all else what the installation lacks, a line each; nothing if that is empty.
    void ShowProblems(const QStringList &problems);

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
    void ShowMessage(const CTranslationItem &message, int milliseconds);
    void RememberGeometry();

    CHost &m_host;
    QTabWidget *m_pViews; // this and the next one are children
    QLabel *m_pProblems;
    CTranslationItem m_message;            // that the status bar shows, or has shown
    QPointer<CLoginDialog> m_pLoginDialog; // this and the next ones delete themselves
    QPointer<COptionsDialog> m_pOptionsDialog;
    QPointer<CConsoleWindow> m_pConsole;
    QTimer m_geometryTimer; // runs while the window is being moved
};
