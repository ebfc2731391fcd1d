#include "MainWindow.h"

#include <settings/Config.h>

#include <QCloseEvent>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QTabWidget>

namespace {

constexpr int MESSAGE_MS = 5000;

} // namespace

CMainWindow::CMainWindow(CHost &host, QWidget *parent)
    : QMainWindow(parent)
    , m_host(host)
    , m_pViews(new QTabWidget(this))
    , m_pConnectionLabel(new QLabel(this))
{
    setWindowTitle(CConfig::GetInstance()->GetProductname());
    resize(1000, 680);
    m_pViews->setDocumentMode(true);
    setCentralWidget(m_pViews);

    QMenu *client = menuBar()->addMenu(QStringLiteral("&Client"));
    QAction *quit = client->addAction(QStringLiteral("&Quit"), this, &CMainWindow::close);
    quit->setShortcut(QKeySequence::Quit);

    m_pConnectionLabel->setObjectName(QStringLiteral("connectionState"));
    statusBar()->addWidget(m_pConnectionLabel, 1);

    connect(&host, &CHost::signal_ConnectionStateChanged, this, &CMainWindow::slot_ConnectionStateChanged);
    connect(&host, &CHost::signal_LoginRequested, this,
            [this] { statusBar()->showMessage(QStringLiteral("The game server keeps no accounts"), MESSAGE_MS); });
    connect(&host, &CHost::signal_ShutDownRequested, this, &CMainWindow::close, Qt::QueuedConnection);
    slot_ConnectionStateChanged(host.GetServerLink().GetState());
}

void CMainWindow::CreateViews()
{
    const auto &plugins = m_host.GetPluginManager().GetPlugins();
    for (CPluginInterface *plugin : plugins) {
        if (QWidget *view = plugin->CreateView(m_pViews)) {
            const QString title = view->windowTitle();
            m_pViews->addTab(view, title.isEmpty() ? plugin->GetName() : title);
        }
    }
}

void CMainWindow::closeEvent(QCloseEvent *event)
{
    event->setAccepted(m_host.CanClose());
}

void CMainWindow::slot_ConnectionStateChanged(EConnectionState::type state)
{
    const QString address = m_host.GetServerLink().GetAddress();
    switch (state) {
    case EConnectionState::Disconnected:
        m_pConnectionLabel->setText(QStringLiteral("Not connected"));
        break;
    case EConnectionState::Connecting:
        m_pConnectionLabel->setText(QStringLiteral("Connecting to %1").arg(address));
        break;
    case EConnectionState::Connected:
        m_pConnectionLabel->setText(QStringLiteral("Connected to %1").arg(address));
        break;
    case EConnectionState::Reconnecting:
        m_pConnectionLabel->setText(QStringLiteral("No link to %1, trying again").arg(address));
        break;
    }
}
