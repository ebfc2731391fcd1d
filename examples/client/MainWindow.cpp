#include "MainWindow.h"

#include "ConsoleWindow.h"
#include "HelpMenu.h"
#include "LoginDialog.h"
#include "NewFile.h"
#include "OptionsDialog.h"
#include "OptionsPages.h"
#include "StatusBar.h"
#include "WebPages.h"

#include <common/FormField.h>
#include <models/UserInfo.h>
#include <network/Download.h>
#include <settings/Config.h>
#include <settings/Settings.h>
#include <ui/Action.h>
#include <ui/MenuManager.h>
#include <ui/OptionsDialogManager.h>

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

namespace {

constexpr int MESSAGE_MS = 5000;
constexpr int FILE_MESSAGE_MS = 20000; // with a button to reach
// When the window has not moved for this time, its position is stored.
constexpr int GEOMETRY_REST_MS = 500;
const QString GEOMETRY_KEY = QStringLiteral("client");

// Opens a dialog unless one of its type is open; the dialog deletes itself when it is closed.
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

CMainWindow::CMainWindow(CHost &host)
    : m_host(host)
    , m_pViews(new QTabWidget(this))
    , m_pOpenFile(CreateField<QToolButton>(this, "openFile"))
{
    setWindowTitle(CConfig::GetInstance()->GetProductname());
    resize(1000, 680);
    restoreGeometry(QByteArray::fromBase64(CSettings::GetInstance()->GetWinPosByKey(GEOMETRY_KEY)));
    m_geometryTimer.setSingleShot(true);
    m_geometryTimer.setInterval(GEOMETRY_REST_MS);
    connect(&m_geometryTimer, &QTimer::timeout, this, &CMainWindow::RememberGeometry);
    m_pViews->setDocumentMode(true);
    m_pViews->setUsesScrollButtons(false); // the window is wide enough for all tabs
    auto *content = new QWidget(this);
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(QMargins());
    layout->setSpacing(0);
    layout->addWidget(CreateOfflineBanner(content, host));
    layout->addWidget(m_pViews, 1);
    setCentralWidget(content);
    setMenuBar(CMenuManager::GetInstance()->GetMenuBar());
    CreateAccountMenu();
    CreateOptionsMenu();
    CreateRulesMenu();
    m_pOpenFile->hide();
    Texts::Bind(m_pOpenFile, &QToolButton::setText, "RULES_OPEN");
    connect(m_pOpenFile, &QToolButton::clicked, this, [this] { WebPages::Open(QUrl::fromLocalFile(m_strFile)); });
    connect(statusBar(), &QStatusBar::messageChanged, m_pOpenFile,
            [this](const QString &text) { m_pOpenFile->setVisible(!text.isEmpty() && !m_strFile.isEmpty()); });
    statusBar()->addPermanentWidget(m_pOpenFile);
    m_pViews->setCornerWidget(CreateStatus(this, host));
    connect(&host, &CHost::signal_LoginRequested, this, &CMainWindow::OpenLogin);
    connect(&host, &CHost::signal_ShutDownRequested, this, &CMainWindow::close, Qt::QueuedConnection);
    connect(&host.GetSession(), &CSession::signal_LoginRefused, this, [this](const QString &key) {
        if (!m_pLoginDialog || !m_pLoginDialog->isVisible()) // the dialog itself shows the result of its login
            ShowMessage(Texts::MakeItem(key.toLatin1()), MESSAGE_MS);
    });
    connect(&host, &CHost::signal_WebServerMistrusted, this, [this](const QString &key, const QString &server) {
        ShowMessage(Texts::MakeItem(key.toLatin1(), {{"#host#", server}}), MESSAGE_MS);
    });
    connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, this, [this] {
        m_message.ReTranslate();
        if (!statusBar()->currentMessage().isEmpty())
            statusBar()->showMessage(m_message.GetTranslatedText(), m_iMessageMs);
    });
}

// The window owns the entry; the menu outlives the window.
QAction *CMainWindow::AddEntry(const QString &menu, const char *key, const char *name, const QKeySequence &shortcut,
                               const std::function<void(QAction *)> &action)
{
    auto *entry = new CAction(QString::fromLatin1(key), Texts::Area());
    CMenuManager::GetInstance()->GetMenu(menu)->AddAction(entry);
    entry->setParent(this);
    entry->setObjectName(QLatin1String(name));
    entry->setShortcut(shortcut);
    connect(entry, &QAction::triggered, this, [=] { action(entry); });
    return entry;
}

void CMainWindow::CreateAccountMenu()
{
    const QString &id = CMenuManager::strMyAccount;
    auto *logIn =
        AddEntry(id, "ACTION_LOG_IN", "logIn", QStringLiteral("Ctrl+L"), [this](QAction *) { OpenLogin(); });
    auto *logOut = AddEntry(id, "ACTION_LOG_OUT", "logOut", {}, [this](QAction *) { m_host.GetSession().LogOut(); });
    auto *everywhere = AddEntry(id, "ACTION_LOG_OUT_EVERYWHERE", "logOutEverywhere", {},
                                [this](QAction *) { m_host.GetSession().LogOutEverywhere(); });
    const CUserInfo *user = CUserInfo::GetInstance();
    const auto enable = [=] {
        logIn->setEnabled(!user->IsLoggedIn());
        logOut->setEnabled(user->IsLoggedIn());
        everywhere->setEnabled(user->IsLoggedIn());
    };
    Texts::Follow(this, enable, user, &CUserInfo::signal_LoginStateChanged);
    AddEntry(id, "ACTION_QUIT", "quit", QStringLiteral("Ctrl+Q"), [this](QAction *) { close(); });
}

void CMainWindow::CreateOptionsMenu()
{
    AddOptionsPages(this);
    connect(COptionsDialogManager::GetInstance(), &COptionsDialogManager::signal_ShowDialog, this,
            [this](QWidget *parent) { OpenDialog(m_pOptionsDialog, Qt::WindowModal, parent ? parent : this); });
    const QString &id = CMenuManager::strOptions;
    AddEntry(id, "ACTION_OPTIONS", "openOptions", QStringLiteral("Ctrl+O"),
             [this](QAction *) { COptionsDialogManager::Show(this); });
    CSettings *settings = CSettings::GetInstance();
    auto *sounds = AddEntry(id, "ACTION_SOUNDS", "sounds", {},
                            [=](const QAction *entry) { settings->SetSoundsEnabled(entry->isChecked()); });
    sounds->setCheckable(true);
    Texts::Follow(
        sounds, [=] { sounds->setChecked(settings->GetSoundsEnabled()); }, settings,
        &CSettings::signal_SoundsEnabledChanged);
    AddEntry(id, "ACTION_CONSOLE", "openConsole", Qt::Key_F12,
             [this](QAction *) { OpenDialog(m_pConsole, Qt::NonModal, m_host, this); });
}

void CMainWindow::CreateRulesMenu()
{
    CMenuManager *manager = CMenuManager::GetInstance();
    const QString &id = CMenuManager::strGameRules;
    manager->AddToMenuBar(manager->GetMenu(id, id, Texts::Area()));
    AddEntry(id, "ACTION_RULES", "rules", {}, [this](QAction *entry) {
        DownloadRules(entry);
    })->setEnabled(!CConfig::GetInstance()->GetLinkGamerulesGeneral().isEmpty());
}

void CMainWindow::DownloadRules(QAction *entry)
{
    entry->setEnabled(false); // one download at a time
    auto *download = new CDownload(this, CConfig::GetInstance()->GetLinkGamerulesGeneral(), QByteArray(), false);
    connect(download, &CDownload::signal_Finished, this,
            [this, download, entry](bool status, const QByteArray &rules) {
                const QString folder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
                const QString file = status ? WriteNewFile(folder, download->GetName(), rules) : QString();
                ShowMessage(Texts::MakeItem(file.isEmpty() ? "RULES_FAILED" : "RULES_SAVED",
                                            {{"#file#", QFileInfo(file).fileName()}}),
                            FILE_MESSAGE_MS, file);
                entry->setEnabled(true);
                download->deleteLater();
            });
    download->Start();
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
    CreateHelpMenu(this, m_host); // after the menus of the views
    if (QWidget *first = m_pViews->currentWidget())
        first->setFocus(); // its own choice, not the tabs
}

void CMainWindow::closeEvent(QCloseEvent *event)
{
    event->setAccepted(m_host.CanClose());
    if (event->isAccepted() && m_geometryTimer.isActive())
        RememberGeometry();
}

bool CMainWindow::event(QEvent *event)
{
    if (isVisible() && (event->type() == QEvent::Move || event->type() == QEvent::Resize))
        m_geometryTimer.start();
    return QMainWindow::event(event);
}

void CMainWindow::RememberGeometry()
{
    m_geometryTimer.stop();
    CSettings::GetInstance()->SetWinPosByKey(GEOMETRY_KEY, saveGeometry().toBase64(), this);
}

// A plugin may call this, so the function opens the dialog and returns without waiting for its end.
void CMainWindow::OpenLogin()
{
    OpenDialog(m_pLoginDialog, Qt::WindowModal, m_host, this);
}

void CMainWindow::ShowMessage(const CTranslationItem &message, int milliseconds, const QString &file)
{
    m_message = message;
    m_iMessageMs = milliseconds;
    m_strFile = file;
    m_pOpenFile->setToolTip(QDir::toNativeSeparators(file));
    statusBar()->showMessage(m_message.GetTranslatedText(), milliseconds);
}
