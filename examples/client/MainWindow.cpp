#include "MainWindow.h"

#include "ChoiceMenu.h"
#include "JackpotView.h"
#include "LoginDialog.h"
#include "PlayersDialog.h"

#include <common/Texts.h>
#include <models/UserInfo.h>
#include <money/MoneyStrings.h>
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
    , m_pCashierLabel(new QLabel(this))
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
    m_pViews->setCornerWidget(m_pCashierLabel);
    setCentralWidget(m_pViews);
    CreateMenu();
    CreateStatusBar();
    Connect();
    ConnectUser();
    slot_ConnectionStateChanged(host.GetServerLink().GetState());
    slot_LoginStateChanged();
    slot_SoundsEnabledChanged();
    slot_ClockChanged();
}

void CMainWindow::CreateMenu()
{
    QMenu *client = menuBar()->addMenu(QString());
    Texts::Bind(client, &QMenu::setTitle, "MENU_CLIENT");
    m_pLogIn = client->addAction(QString(), this, &CMainWindow::slot_LoginRequested);
    Texts::Bind(m_pLogIn, &QAction::setText, "ACTION_LOG_IN");
    m_pLogIn->setObjectName(QStringLiteral("logIn"));
    m_pLogIn->setShortcut(Qt::CTRL + Qt::Key_L);
    m_pLogOut = client->addAction(QString(), this, [this] { m_host.GetSession().LogOut(); });
    Texts::Bind(m_pLogOut, &QAction::setText, "ACTION_LOG_OUT");
    m_pLogOut->setObjectName(QStringLiteral("logOut"));
    m_pPlayers = client->addAction(QString(), this, &CMainWindow::OpenPlayers);
    Texts::Bind(m_pPlayers, &QAction::setText, "ACTION_PLAYERS");
    m_pPlayers->setObjectName(QStringLiteral("openPlayers"));
    m_pPlayers->setShortcut(Qt::CTRL + Qt::Key_P);
    client->addSeparator();
    m_pSounds = client->addAction(
        QString(), this, [this](bool enabled) { CSettings::GetInstance()->SetSoundsEnabled(enabled, this); });
    Texts::Bind(m_pSounds, &QAction::setText, "ACTION_SOUNDS");
    m_pSounds->setObjectName(QStringLiteral("sounds"));
    m_pSounds->setCheckable(true);
    client->addSeparator();
    QAction *quit = client->addAction(QString(), this, &CMainWindow::close);
    Texts::Bind(quit, &QAction::setText, "ACTION_QUIT");
    quit->setShortcut(QKeySequence::Quit);
    menuBar()->addMenu(CreateLanguageMenu(this));
    menuBar()->addMenu(CreateTimezoneMenu(this));
}

void CMainWindow::CreateStatusBar()
{
    m_pCashierLabel->setObjectName(QStringLiteral("cashier"));
    const int gap = fontMetrics().averageCharWidth();
    m_pCashierLabel->setContentsMargins(0, 0, gap, gap);
    m_pConnectionLabel->setObjectName(QStringLiteral("connectionState"));
    m_pUserLabel->setObjectName(QStringLiteral("user"));
    m_pUserLabel->setTextFormat(Qt::PlainText); // a nickname is its user's choice
    m_pUserLabel->setContentsMargins(gap, 0, gap, 0);
    m_pClockLabel->setObjectName(QStringLiteral("clock"));
    statusBar()->addWidget(m_pConnectionLabel, 1);
    if (CConfig::GetInstance()->GetDisplayBadBeatJackpot()) {
        auto *jackpot = new CJackpotView(this);
        statusBar()->addPermanentWidget(jackpot);
        connect(&m_host.GetSession(), &CSession::signal_JackpotChanged, jackpot, &CJackpotView::ShowJackpot);
    }
    statusBar()->addPermanentWidget(m_pUserLabel);
    statusBar()->addPermanentWidget(m_pClockLabel);
}

void CMainWindow::Connect()
{
    connect(&m_host, &CHost::signal_ConnectionStateChanged, this, &CMainWindow::slot_ConnectionStateChanged);
    connect(&m_host, &CHost::signal_LoginRequested, this, &CMainWindow::slot_LoginRequested);
    connect(&m_host, &CHost::signal_ShutDownRequested, this, &CMainWindow::close, Qt::QueuedConnection);
    connect(&m_host.GetSession(), &CSession::signal_LoginRefused, this, &CMainWindow::slot_LoginRefused);
    connect(&m_connection, &CTranslationObject::signal_TextChanged, m_pConnectionLabel,
            [this] { m_pConnectionLabel->setText(m_connection.GetTranslatedText()); });
    connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, this,
            &CMainWindow::slot_LanguageChanged);
    connect(CSettings::GetInstance(), &CSettings::signal_SoundsEnabledChanged, this,
            &CMainWindow::slot_SoundsEnabledChanged);
    const CCasinoTime *clock = CCasinoTime::GetInstance();
    connect(clock, &CCasinoTime::signal_TimeStringChanged, this, &CMainWindow::slot_ClockChanged);
    connect(clock, &CCasinoTime::signal_ServerTimeChanged, this, &CMainWindow::slot_ClockChanged);
    connect(clock, &CCasinoTime::signal_TimeZoneChanged, this, &CMainWindow::slot_ClockChanged);
    connect(&m_geometryTimer, &QTimer::timeout, this, &CMainWindow::RememberGeometry);
}

void CMainWindow::ConnectUser()
{
    const CUserInfo *user = CUserInfo::GetInstance();
    connect(user, &CUserInfo::signal_LoginStateChanged, this, &CMainWindow::slot_LoginStateChanged);
    for (const auto signal : {&CUserInfo::signal_RealMoneyChanged, &CUserInfo::signal_PlayMoneyChanged})
        connect(user, signal, this, &CMainWindow::ShowMoney);
    connect(user, &CUserInfo::signal_AccountCurrencyChanged, this, &CMainWindow::ShowMoney);
}

void CMainWindow::CreateViews()
{
    const auto &plugins = m_host.GetPluginManager().GetPlugins();
    for (CPluginInterface *plugin : plugins) {
        if (QWidget *view = plugin->CreateView(m_pViews)) {
            const QString title = view->windowTitle();
            m_pViews->addTab(view, title.isEmpty() ? plugin->GetName() : title);
            connect(view, &QWidget::windowTitleChanged, m_pViews,
                    [this, view](const QString &text) { m_pViews->setTabText(m_pViews->indexOf(view), text); });
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
    m_pUserLabel->setText(user->IsLoggedIn() ? user->GetNickname() : Texts::Get("USER_NONE"));
    m_pLogIn->setEnabled(!user->IsLoggedIn());
    m_pLogOut->setEnabled(user->IsLoggedIn());
    m_pPlayers->setEnabled(user->IsLoggedIn());
    ShowMoney();
}

void CMainWindow::ShowMoney()
{
    const CUserInfo *user = CUserInfo::GetInstance();
    if (!user->IsLoggedIn()) {
        m_pCashierLabel->clear();
        return;
    }
    const QString real = Globals::MoneyToString(user->GetAccountCurrency(), user->GetRealMoney(), true);
    const QString play = Globals::MoneyToString(GlobalDefines::MONEYTYPE_PLAY, user->GetPlayMoney(), true);
    m_pCashierLabel->setText(Texts::MakeItem("CASHIER", {{"#real#", real}, {"#play#", play}}).GetTranslatedText());
}

void CMainWindow::slot_LanguageChanged()
{
    slot_LoginStateChanged();
    if (!m_strRefusal.isEmpty() && !statusBar()->currentMessage().isEmpty())
        slot_LoginRefused(m_strRefusal);
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
void CMainWindow::slot_LoginRefused(const QString &key)
{
    m_strRefusal = key;
    if (!IsLoginDialogOpen())
        statusBar()->showMessage(Texts::Get(key), MESSAGE_MS);
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

void CMainWindow::OpenPlayers()
{
    if (!m_pPlayersDialog) {
        m_pPlayersDialog = new CPlayersDialog(this);
        m_pPlayersDialog->setAttribute(Qt::WA_DeleteOnClose);
    }
    m_pPlayersDialog->show();
    m_pPlayersDialog->activateWindow();
}

void CMainWindow::slot_ConnectionStateChanged(EConnectionState::type state)
{
    const char *key = "CONNECTION_NONE";
    if (state == EConnectionState::Connecting)
        key = "CONNECTION_CONNECTING";
    else if (state == EConnectionState::Connected)
        key = "CONNECTION_CONNECTED";
    else if (state == EConnectionState::Reconnecting)
        key = "CONNECTION_RECONNECTING";
    m_connection.SetItem(Texts::MakeItem(key, {{"#address#", m_host.GetServerLink().GetAddress()}}));
}
