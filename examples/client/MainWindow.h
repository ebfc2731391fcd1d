#pragma once

#include "Host.h"

#include <QMainWindow>

class QLabel;
class QTabWidget;

/// The client's window: a tab for each plugin that has a view, and the state of the link below.
class CMainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// \a host outlives the window.
    explicit CMainWindow(CHost &host, QWidget *parent = nullptr);

    /// Makes the views of the plugins that have started.
    void CreateViews();

protected:
    void closeEvent(QCloseEvent *event) override;

private Q_SLOTS:
    void slot_ConnectionStateChanged(EConnectionState::type state);

private:
    CHost &m_host;
    QTabWidget *m_pViews;
    QLabel *m_pConnectionLabel;
};
