#include "TablePlugin.h"

#include "TableWindow.h"

#include <common/SeatEvent.h>
#include <common/SettingsPage.h>
#include <common/Texts.h>
#include <files/Console.h>
#include <files/Pathes.h>
#include <models/AutoTopUpModel.h>
#include <models/ChatModel.h>
#include <models/UserInfo.h>
#include <settings/Settings.h>
#include <sound/SoundManager.h>
#include <ui/Action.h>
#include <ui/MenuManager.h>
#include <ui/ScreenPlacement.h>

#include <QMessageBox>
#include <QScopedPointer>

#include <algorithm>

namespace {

constexpr int LEVEL_WITHOUT_OBSERVERS = 2;
constexpr int LEVEL_WITH_OBSERVERS = 3;

// Returns whether the user doesn't want to read the player's lines.
bool IsHidden(const TableProtocol::SLine &line)
{
    if (CPlayerModel::IsExisting(line.strNickname) && CPlayerModel::GetInstance(line.strNickname)->GetChatBlock())
        return true;
    return line.ucIsObserver != 0 && CChatModel::GetInstance()->GetSettings().iObserverLevel < LEVEL_WITH_OBSERVERS;
}

QVariant IsObserverChatOn()
{
    return CChatModel::GetInstance()->GetSettings().iObserverLevel == LEVEL_WITH_OBSERVERS;
}

void SetObserverChat(const QVariant &on)
{
    CChatModel::SSettings settings = CChatModel::GetInstance()->GetSettings();
    settings.iObserverLevel = on.toBool() ? LEVEL_WITH_OBSERVERS : LEVEL_WITHOUT_OBSERVERS;
    CChatModel::GetInstance()->SetSettings(settings);
}

void SetNotification(const QVariant &on)
{
    CAutoTopUpModel::SAutoTopUp all = CAutoTopUpModel::GetInstance()->GetAutoTopUp();
    all.bNotification = on.toBool();
    CAutoTopUpModel::GetInstance()->SetAutoTopUp(all, true);
}

} // namespace

void CTablePlugin::RegisterForEvents()
{
    RegisterForEvent(QString::fromLatin1(SeatEvent::GROUP), QString::fromLatin1(SeatEvent::GIVEN));
    RegisterForEvent(QString::fromLatin1(TableProtocol::GROUP), QString());
}

void CTablePlugin::ReceiveEvent(CEvent e)
{
    LobbyProtocol::STable table;
    TableProtocol::SLine line;
    TableProtocol::SSeats seats;
    if (e.HasTags(SeatEvent::GROUP, SeatEvent::GIVEN)) {
        if (e.widget && Payload::Decode(e.data, table))
            OpenTable(table, static_cast<quint16>(e.targetID), e.widget);
    } else if (Payload::Decode(e.data, line, TableProtocol::SAID)) {
        ShowLine(line);
    } else if (Payload::Decode(e.data, seats)) {
        if (CTableWindow *window = m_windows.value(seats.uiTableID))
            window->ShowSeats(seats.seats);
    } else {
        CConsole::AddMessage(QStringLiteral("Table: the game server sent a malformed record, which was ignored"),
                             CConsole::MC_Network, CConsole::ML_Warning, QString(), int(e.data.size()));
    }
}

void CTablePlugin::ConnectionStateChanged(EConnectionState::type state)
{
    if (state == EConnectionState::Connected)
        return;
    for (CTableWindow *window : GetWindows())
        window->SetPlace(0);
}

void CTablePlugin::Start()
{
    // Loads the machine's sound system now, which takes some frames; at the first seat that would be noticed.
    CSoundManager::GetInstance();
    CChatModel::GetInstance()->LoadSmileyConfig(Pathes::ToCommonRes(QStringLiteral("smileys/smileys.xml"), false));
    new CSettingsPage(
        "TABLE_TITLE", QStyle::SP_FileIcon,
        {{"TABLE_OBSERVERS", "observerChat", &IsObserverChatOn, &SetObserverChat, true},
         {"TOPUP_NOTIFICATION", "topUpNotification",
          [] { return CAutoTopUpModel::GetInstance()->IsNotificationEnabled(); }, &SetNotification, true}},
        this);
}

QWidget *CTablePlugin::CreateView(QWidget *)
{
    AddEntry("ACTION_SHOW_TABLES", &Globals::PopupWidget);
    AddEntry("ACTION_LEAVE_TABLES", &CTableWindow::Leave);
    return nullptr;
}

// The question has a window of its own, since the tables' may close while it is asked.
bool CTablePlugin::CanClose()
{
    const QList<CTableWindow *> windows = GetWindows();
    if (std::none_of(windows.begin(), windows.end(),
                     [](const CTableWindow *window) { return window->WouldLoseSeat(); }))
        return true;
    const QScopedPointer<QMessageBox> question(CTableWindow::CreateQuestion("TABLES_LEAVE_QUESTION", nullptr));
    question->exec();
    return question->buttonRole(question->clickedButton()) == QMessageBox::AcceptRole;
}

// Adds a menu entry that calls \a action for each open table.
void CTablePlugin::AddEntry(const char *key, const std::function<void(CTableWindow *)> &action)
{
    auto *entry = new CAction(QString::fromLatin1(key), Texts::Area());
    connect(entry, &CAction::signal_Update, this,
            [this](CAction *updated) { updated->setEnabled(!GetWindows().isEmpty()); });
    connect(entry, &QAction::triggered, this, [this, action] {
        for (CTableWindow *window : GetWindows())
            action(window);
    });
    CMenuManager::GetInstance()->GetMenu(SeatEvent::MENU, SeatEvent::MENU, Texts::Area())->AddAction(entry);
}

void CTablePlugin::OpenTable(const LobbyProtocol::STable &table, quint16 place, QWidget *lobby)
{
    CTableWindow *window = m_windows.value(table.uiID);
    if (!window) {
        window = new CTableWindow(table, lobby);
        m_windows.insert(table.uiID, window);
        connect(window, &CTableWindow::signal_Closed, this, &CTablePlugin::LeaveTable);
        connect(window, &CTableWindow::signal_Said, this,
                [this](const TableProtocol::SLine &line) { Send(Payload::Encode(line, TableProtocol::SAY)); });
        window->Open(lobby, GetWindows());
    } else if (!CSettings::GetInstance()->GetDisableTablePopup()) {
        Globals::PopupWidget(window);
    }
    window->SetPlace(place);
    CSoundManager::GetInstance()->PlayEffect(Pathes::ToCommonRes(QStringLiteral("sounds/seat.wav"), false), false);
}

void CTablePlugin::ShowLine(const TableProtocol::SLine &line)
{
    CTableWindow *window = m_windows.value(line.uiTableID);
    if (!window || IsHidden(line))
        return;
    window->AddLine(line);
    if (line.strNickname != CUserInfo::GetInstance()->GetNickname())
        CSoundManager::GetInstance()->PlayWarning(Pathes::ToCommonRes(QStringLiteral("sounds/chat.wav"), false),
                                                  false);
}

void CTablePlugin::Send(const QByteArray &payload)
{
    SendToServer(TableProtocol::GROUP, 0, 0, payload.constData(), int(payload.size()), false);
}

void CTablePlugin::LeaveTable(quint32 tableID)
{
    const QPointer<CTableWindow> window = m_windows.take(tableID);
    if (window && window->WouldLoseSeat())
        Send(Payload::Encode(TableProtocol::SLeave{tableID}));
    CEvent event = CEvent::Create(QString::fromLatin1(SeatEvent::GROUP), QString::fromLatin1(SeatEvent::LEFT));
    event.targetID = tableID;
    SendInternEvent(event, false);
}

const QList<CTableWindow *> CTablePlugin::GetWindows() const
{
    QList<CTableWindow *> windows;
    for (const QPointer<CTableWindow> &window : m_windows) {
        if (window)
            windows.append(window);
    }
    return windows;
}
