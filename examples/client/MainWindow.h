#pragma once

#include "Host.h"

#include <translation/TranslationObject.h>

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

class CConsoleWindow;
class CLoginDialog;
class COptionsDialog;
class QAction;
class QLabel;
class QTabWidget;

/// The client's window: a tab for each plugin that has a view, above it the user's money, and below it the state of
/// the link, the jackpot, the user and the clock; in QML money, jackpot and user make one line. It opens where it was
/// closed. The menu bar is that of CMenuManager,
/// so that there is one window at a time.
class CMainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// \a host outlives the window.
    explicit CMainWindow(CHost &host, QWidget *parent = nullptr);

    /// Makes the views of the plugins that have started.
    void CreateViews();
    /// Shows above all else what the installation lacks, a line each; nothing if that is empty.
    void ShowProblems(const QStringList &problems);

protected:
    void closeEvent(QCloseEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private Q_SLOTS:
    void slot_ConnectionStateChanged(EConnectionState::type state);
    void slot_LoginStateChanged();
    void slot_SoundsEnabledChanged();
    void slot_ClockChanged();
    void slot_LoginRequested();
    void slot_LoginRefused(const QString &key);
    void slot_LanguageChanged();

private:
    template <typename Action>
    QAction *AddEntry(const QString &menu, const char *key, const char *name, const QKeySequence &shortcut,
                      const Action &action);
    void CreateAccountMenu();
    void CreateOptionsMenu();
    void CreateRulesMenu();
    void DownloadRules();
    void CreateStatusBar();
    void ConnectUser();
    void ShowMoney();
    void Connect();
    void OnGeometryChanged();
    void RememberGeometry();

    CHost &m_host;
    QTabWidget *m_pViews; // this, the labels and the actions are children
    QLabel *m_pProblems;
    QLabel *m_pCashierLabel;
    QLabel *m_pConnectionLabel;
    QLabel *m_pUserLabel;
    QLabel *m_pClockLabel;
    QAction *m_pLogIn = nullptr;
    QAction *m_pLogOut = nullptr;
    QAction *m_pSounds = nullptr;
    QAction *m_pRules = nullptr;
    CTranslationObject m_connection;
    QString m_strRefusal;                  // key of the refusal that the status bar shows, or has shown
    QPointer<CLoginDialog> m_pLoginDialog; // this and the next ones delete themselves
    QPointer<COptionsDialog> m_pOptionsDialog;
    QPointer<CConsoleWindow> m_pConsole;
    QTimer m_geometryTimer; // runs while the window is being moved
};
