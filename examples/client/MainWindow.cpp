#include "MainWindow.h"

#include "LoginDialog.h"

#include <models/UserInfo.h>
#include <settings/Config.h>
#include <settings/Settings.h>
#include <time/CasinoTime.h>

#include <QCloseEvent>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QTabWidget>

namespace {

constexpr int MESSAGE_MS = 5000;
// Without a move for so long the window is where the user wants it.
constexpr int GEOMETRY_REST_MS = 500;
const QString GEOMETRY_KEY = QStringLiteral("client");

} // namespace

CMainWindow::CMainWindow(CHost &host, QWidget *parent)
    : QMainWindow(parent)
    , m_host(host)
    , m_pViews(new QTabWidget(this))
    , m_pConnectionLabel(new QLabel(this))
    , m_pUserLabel(new QLabel(this))
    , m_pClockLabel(new QLabel(this))
{
    setWindowTitle(CConfig::GetInstance()->GetProductname());
    resize(1000, 680);
    restoreGeometry(QByteArray::fromBase64(CSettings::GetInstance()->GetWinPosByKey(GEOMETRY_KEY)));
    m_geometryTimer.setSingleShot(true);
    m_geometryTimer.setInterval(GEOMETRY_REST_MS);
    m_pViews->setDocumentMode(true);
    setCentralWidget(m_pViews);
    CreateMenu();
    CreateStatusBar();
    Connect();
    slot_ConnectionStateChanged(host.GetServerLink().GetState());
    slot_LoginStateChanged();
    slot_SoundsEnabledChanged();
    slot_ClockChanged();
}

void CMainWindow::CreateMenu()
{
    QMenu *client = menuBar()->addMenu(QStringLiteral("&Client"));
    m_pLogIn = client->addAction(QStringLiteral("Log &in..."), this, &CMainWindow::slot_LoginRequested);
    m_pLogIn->setObjectName(QStringLiteral("logIn"));
    m_pLogIn->setShortcut(Qt::CTRL + Qt::Key_L);
    m_pLogOut = client->addAction(QStringLiteral("Log &out"), this, [this] { m_host.GetSession().LogOut(); });
    m_pLogOut->setObjectName(QStringLiteral("logOut"));
    client->addSeparator();
    m_pSounds = client->addAction(QStringLiteral("&Sounds"), this, [this](bool enabled) {
        CSettings::GetInstance()->SetSoundsEnabled(enabled, this);
    });
    m_pSounds->setObjectName(QStringLiteral("sounds"));
    m_pSounds->setCheckable(true);
    client->addSeparator();
    QAction *quit = client->addAction(QStringLiteral("&Quit"), this, &CMainWindow::close);
    quit->setShortcut(QKeySequence::Quit);
}

void CMainWindow::CreateStatusBar()
{
    m_pConnectionLabel->setObjectName(QStringLiteral("connectionState"));
    m_pUserLabel->setObjectName(QStringLiteral("user"));
    m_pUserLabel->setTextFormat(Qt::PlainText); // a nickname is its user's choice
    m_pClockLabel->setObjectName(QStringLiteral("clock"));
    statusBar()->addWidget(m_pConnectionLabel, 1);
    statusBar()->addPermanentWidget(m_pUserLabel);
    statusBar()->addPermanentWidget(m_pClockLabel);
}

void CMainWindow::Connect()
{
    connect(&m_host, &CHost::signal_ConnectionStateChanged, this, &CMainWindow::slot_ConnectionStateChanged);
    connect(&m_host, &CHost::signal_LoginRequested, this, &CMainWindow::slot_LoginRequested);
    connect(&m_host, &CHost::signal_ShutDownRequested, this, &CMainWindow::close, Qt::QueuedConnection);
    connect(&m_host.GetSession(), &CSession::signal_LoginRefused, this, &CMainWindow::slot_LoginRefused);
    connect(CUserInfo::GetInstance(), &CUserInfo::signal_LoginStateChanged, this,
            &CMainWindow::slot_LoginStateChanged);
    connect(CSettings::GetInstance(), &CSettings::signal_SoundsEnabledChanged, this,
            &CMainWindow::slot_SoundsEnabledChanged);
    const CCasinoTime *clock = CCasinoTime::GetInstance();
    connect(clock, &CCasinoTime::signal_TimeStringChanged, this, &CMainWindow::slot_ClockChanged);
    connect(clock, &CCasinoTime::signal_ServerTimeChanged, this, &CMainWindow::slot_ClockChanged);
    connect(clock, &CCasinoTime::signal_TimeZoneChanged, this, &CMainWindow::slot_ClockChanged);
    connect(&m_geometryTimer, &QTimer::timeout, this, &CMainWindow::RememberGeometry);
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
    if (event->isAccepted() && m_geometryTimer.isActive())
        RememberGeometry();
}

void CMainWindow::moveEvent(QMoveEvent *event)
{
    QMainWindow::moveEvent(event);
    OnGeometryChanged();
}

void CMainWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    OnGeometryChanged();
}

void CMainWindow::OnGeometryChanged()
{
    if (isVisible())
        m_geometryTimer.start();
}

void CMainWindow::RememberGeometry()
{
    m_geometryTimer.stop();
    CSettings::GetInstance()->SetWinPosByKey(GEOMETRY_KEY, saveGeometry().toBase64(), this);
}

void CMainWindow::slot_LoginStateChanged()
{
    CUserInfo *user = CUserInfo::GetInstance();
    m_pUserLabel->setText(user->IsLoggedIn() ? user->GetNickname() : QStringLiteral("Not logged in"));
    m_pLogIn->setEnabled(!user->IsLoggedIn());
    m_pLogOut->setEnabled(user->IsLoggedIn());
}

void CMainWindow::slot_SoundsEnabledChanged()
{
    const CSettings *settings = CSettings::GetInstance();
    if (settings->GetCaller() != this)
        m_pSounds->setChecked(settings->GetSoundsEnabled());
}

// Before the first time of the server the clock only counts.
void CMainWindow::slot_ClockChanged()
{
    const CCasinoTime *clock = CCasinoTime::GetInstance();
    const bool known = clock->GetTimeUTCServer() != 0;
    m_pClockLabel->setText(known ? clock->GetTimeString() + QLatin1Char(' ') + clock->GetTimezoneString()
                                 : QString());
}

// The dialog shows by itself what becomes of its login.
void CMainWindow::slot_LoginRefused(const QString &message)
{
    if (!IsLoginDialogOpen())
        statusBar()->showMessage(message, MESSAGE_MS);
}

bool CMainWindow::IsLoginDialogOpen() const
{
    return m_pLoginDialog && m_pLoginDialog->isVisible();
}

// It may come from within a plugin's call, so the dialog opens without waiting for its end.
void CMainWindow::slot_LoginRequested()
{
    if (IsLoginDialogOpen()) {
        m_pLoginDialog->activateWindow();
        return;
    }
    m_pLoginDialog = new CLoginDialog(m_host, this);
    m_pLoginDialog->setAttribute(Qt::WA_DeleteOnClose);
    m_pLoginDialog->open();
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
