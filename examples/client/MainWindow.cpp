#include "MainWindow.h"

#include "ChoiceMenu.h"
#include "ConsoleWindow.h"
#include "JackpotView.h"
#include "LoginDialog.h"
#include "OptionsDialog.h"
#include "OptionsPages.h"
#include "TransferView.h"

#include <common/FormField.h>
#include <common/QuickView.h>
#include <files/FileHelpers.h>
#include <models/CasinoInfo.h>
#include <models/UserInfo.h>
#include <money/MoneyStrings.h>
#include <network/Download.h>
#include <settings/Config.h>
#include <settings/Settings.h>
#include <time/CasinoTime.h>
#include <ui/Action.h>
#include <ui/MenuManager.h>
#include <ui/OptionsDialogManager.h>

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

constexpr int MESSAGE_MS = 5000;
// Without a move for so long the window is where the user wants it.
constexpr int GEOMETRY_REST_MS = 500;
const QString GEOMETRY_KEY = QStringLiteral("client");

// One of its kind, which deletes itself when it is closed.
template <typename Dialog, typename... Arguments>
void OpenDialog(QPointer<Dialog> &dialog, Qt::WindowModality modality, Arguments &&...arguments)
{
    if (!dialog || !dialog->isVisible()) {
        dialog = new Dialog(std::forward<Arguments>(arguments)...);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setWindowModality(modality);
        dialog->show();
    }
    dialog->activateWindow();
}

} // namespace

CMainWindow::CMainWindow(CHost &host, QWidget *parent)
    : QMainWindow(parent)
    , m_host(host)
    , m_pViews(new QTabWidget(this))
    , m_pProblems(CreateField<QLabel>(this, "problems"))
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
    m_pProblems->setTextFormat(Qt::PlainText);
    m_pProblems->setWordWrap(true);
    m_pProblems->hide();
    auto *content = new QWidget(this);
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(QMargins());
    layout->setSpacing(0);
    layout->addWidget(m_pProblems);
    layout->addWidget(m_pViews, 1);
    setCentralWidget(content);
    setMenuBar(CMenuManager::GetInstance()->GetMenuBar());
    CreateAccountMenu();
    CreateOptionsMenu();
    CreateRulesMenu();
    CreateStatusBar();
    Connect();
    ConnectUser();
    slot_ConnectionStateChanged(host.GetServerLink().GetState());
    slot_LoginStateChanged();
    slot_SoundsEnabledChanged();
    slot_ClockChanged();
}

// It goes with the window, whereas the menu stays.
template <typename Action>
QAction *CMainWindow::AddEntry(const QString &menu, const char *key, const char *name, const QKeySequence &shortcut,
                               const Action &action)
{
    auto *entry = new CAction(QString::fromLatin1(key), Texts::Area());
    CMenuManager::GetInstance()->GetMenu(menu)->AddAction(entry);
    entry->setParent(this);
    entry->setObjectName(QLatin1String(name));
    entry->setShortcut(shortcut);
    connect(entry, &QAction::triggered, this, action);
    return entry;
}

void CMainWindow::CreateAccountMenu()
{
    const QString &id = CMenuManager::strMyAccount;
    m_pLogIn = AddEntry(id, "ACTION_LOG_IN", "logIn", Qt::CTRL + Qt::Key_L, [this] { slot_LoginRequested(); });
    m_pLogOut = AddEntry(id, "ACTION_LOG_OUT", "logOut", {}, [this] { m_host.GetSession().LogOut(); });
    AddEntry(id, "ACTION_QUIT", "quit", QKeySequence::Quit, [this] { close(); });
}

void CMainWindow::CreateOptionsMenu()
{
    AddOptionsPages(this);
    connect(COptionsDialogManager::GetInstance(), &COptionsDialogManager::signal_ShowDialog, this,
            [this](QWidget *parent) { OpenDialog(m_pOptionsDialog, Qt::WindowModal, parent ? parent : this); });
    const QString &id = CMenuManager::strOptions;
    AddEntry(id, "ACTION_OPTIONS", "openOptions", Qt::CTRL + Qt::Key_O,
             [this] { COptionsDialogManager::Show(this); });
    m_pSounds = AddEntry(id, "ACTION_SOUNDS", "sounds", {},
                         [this] { CSettings::GetInstance()->SetSoundsEnabled(m_pSounds->isChecked(), this); });
    m_pSounds->setCheckable(true);
    AddEntry(id, "ACTION_CONSOLE", "openConsole", Qt::Key_F12,
             [this] { OpenDialog(m_pConsole, Qt::NonModal, m_host, this); });
    CMenu *menu = CMenuManager::GetInstance()->GetMenu(id);
    menu->addMenu(CreateLanguageMenu(this));
    menu->addMenu(CreateTimezoneMenu(this));
}

void CMainWindow::CreateRulesMenu()
{
    CMenuManager *manager = CMenuManager::GetInstance();
    const QString &id = CMenuManager::strGameRules;
    manager->AddToMenuBar(manager->GetMenu(id, id, Texts::Area()));
    m_pRules = AddEntry(id, "ACTION_RULES", "rules", {}, [this] { DownloadRules(); });
    m_pRules->setEnabled(!CConfig::GetInstance()->GetLinkGamerulesGeneral().isEmpty());
}

void CMainWindow::DownloadRules()
{
    m_pRules->setEnabled(false); // one at a time
    auto *download = new CDownload(this, CConfig::GetInstance()->GetLinkGamerulesGeneral(), QByteArray(), false);
    connect(download, &CDownload::signal_Finished, this, [this, download](bool status, const QByteArray &rules) {
        const QDir folder(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation));
        const QString file = folder.filePath(QFileInfo(download->GetName()).fileName());
        const bool isSaved = status && Globals::WriteToFile(file, rules, -1, -1);
        statusBar()->showMessage(
            Texts::MakeItem(isSaved ? "RULES_SAVED" : "RULES_FAILED", {{"#file#", QDir::toNativeSeparators(file)}})
                .GetTranslatedText());
        m_pRules->setEnabled(true);
        download->deleteLater();
    });
    download->Start();
}

void CMainWindow::ShowProblems(const QStringList &problems)
{
    m_pProblems->setText(problems.join(QLatin1Char('\n')));
    m_pProblems->setVisible(!problems.isEmpty());
}

void CMainWindow::CreateStatusBar()
{
    m_pCashierLabel->setObjectName(QStringLiteral("cashier"));
    const int gap = fontMetrics().averageCharWidth();
    m_pCashierLabel->setContentsMargins(0, 0, gap, gap);
    m_pConnectionLabel->setObjectName(QStringLiteral("connectionState"));
    m_pUserLabel->setObjectName(QStringLiteral("user"));
    m_pUserLabel->setTextFormat(Qt::PlainText); // a nickname is its user's choice
    auto *account = new QWidget(this);
    auto *layout = new QHBoxLayout(account);
    layout->setContentsMargins(gap, 0, gap, 0);
    if (CCasinoInfo::GetInstance()->UsesJackpot())
        layout->addWidget(new CJackpotView(this));
    layout->addWidget(m_pUserLabel);
    m_pClockLabel->setObjectName(QStringLiteral("clock"));
    statusBar()->addWidget(m_pConnectionLabel, 1);
    statusBar()->addPermanentWidget(new CTransferView(this));
    statusBar()->addPermanentWidget(account);
    statusBar()->addPermanentWidget(m_pClockLabel);

    Q_INIT_RESOURCE(client); // of a static library
    auto *line = new CQuickView(m_pCashierLabel, QUrl(QStringLiteral("qrc:/client/AccountLine.qml")), {}, this);
    m_pViews->setCornerWidget(line);
    connect(line, &CQuickView::signal_QuickShown, account, &QWidget::setHidden);
    account->setHidden(line->IsQuickShown());
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
    if (!m_pLoginDialog || !m_pLoginDialog->isVisible())
        statusBar()->showMessage(Texts::Get(key), MESSAGE_MS);
}

// It may come from within a plugin's call, so the dialog opens without waiting for its end.
void CMainWindow::slot_LoginRequested()
{
    OpenDialog(m_pLoginDialog, Qt::WindowModal, m_host, this);
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
