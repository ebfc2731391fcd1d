#include "LobbyPlugin.h"

#include "LobbyView.h"

#include <common/SeatEvent.h>
#include <common/SettingsPage.h>
#include <common/Texts.h>
#include <files/Console.h>
#include <models/UserInfo.h>
#include <ui/Action.h>
#include <ui/MenuManager.h>

namespace {

const QLatin1String TEXT_MALFORMED("Lobby: the game server sent something malformed, which was ignored. Further "
                                   "cases on this connection are not reported.");

const char *KeyOf(LobbyProtocol::ESeatResult result)
{
    switch (result) {
    case LobbyProtocol::SR_TAKEN:
        return "SEAT_TAKEN";
    case LobbyProtocol::SR_CLOSED:
        return "SEAT_CLOSED";
    case LobbyProtocol::SR_FULL:
        return "SEAT_FULL";
    case LobbyProtocol::SR_NOT_LOGGED_IN:
        return "SEAT_NOT_LOGGED_IN";
    case LobbyProtocol::SR_UNKNOWN:
        break;
    }
    return "SEAT_REFUSED";
}

} // namespace

void CLobbyPlugin::ReceiveEvent(CEvent e)
{
    if (HandleRecord(e) || m_bWarned)
        return;
    m_bWarned = true;
    CConsole::AddMessage(TEXT_MALFORMED, CConsole::MC_Network, CConsole::ML_Warning,
                         QString::fromLatin1(e.tag2, sizeof e.tag2), e.data.size());
}

void CLobbyPlugin::RegisterForEvents()
{
    RegisterForEvent(QString::fromLatin1(LobbyProtocol::GROUP), QString());
}

void CLobbyPlugin::Start()
{
    new CSettingsPage("LOBBY_TITLE", QStyle::SP_FileIcon,
                      {CSettingsPage::Setting("LOBBY_POPUP_OFF", "disabletablepopup")}, this);
}

void CLobbyPlugin::ConnectionStateChanged(EConnectionState::type state)
{
    m_pModel->SetStale();
    Q_EMIT signal_SeatAnswered(CTranslationItem());
    ForgetIncoming();
    m_bWarned = false;
    if (state != EConnectionState::Connected)
        return;
    const QByteArray request = QByteArray(LobbyProtocol::GET_LIST);
    SendToServer(LobbyProtocol::GROUP, 0, 0, request.constData(), request.size(), false);
}

QWidget *CLobbyPlugin::CreateView(QWidget *parent)
{
    auto *view = new CLobbyView(m_pModel, parent);
    connect(view, &CLobbyView::signal_TableChosen, this, &CLobbyPlugin::RequestSeat);
    connect(this, &CLobbyPlugin::signal_SeatAnswered, view, &CLobbyView::ShowSeatAnswer);
    m_pView = view;
    AddMenu(view);
    return view;
}

void CLobbyPlugin::AddMenu(CLobbyView *view)
{
    CMenuManager *manager = CMenuManager::GetInstance();
    CMenu *menu = manager->GetMenu(SeatEvent::MENU, SeatEvent::MENU, Texts::Area());
    auto *takeSeat = new CAction(QStringLiteral("ACTION_TAKE_SEAT"), Texts::Area());
    connect(takeSeat, &CAction::signal_Update, view, [view](CAction *action) {
        action->setEnabled(view->HasChosenTable() && CUserInfo::GetInstance()->IsLoggedIn());
    });
    connect(takeSeat, &QAction::triggered, view, &CLobbyView::ChooseTable);
    menu->AddAction(takeSeat);
    manager->AddToMenuBar(menu);
}

void CLobbyPlugin::RequestSeat(quint32 tableID)
{
    Q_EMIT signal_SeatAnswered(CTranslationItem());
    const QByteArray request = Payload::Encode(LobbyProtocol::SSeatRequest{tableID});
    SendToServer(LobbyProtocol::GROUP, 0, 0, request.constData(), request.size(), true);
}

// False if the record is one of the lobby's, but malformed. Other events, and tags that a newer server may send, are
// nobody's fault.
bool CLobbyPlugin::HandleRecord(const CEvent &event)
{
    if (event.HasTags(LobbyProtocol::GROUP, LobbyProtocol::TABLE))
        return HandleTable(event.data);
    if (event.HasTags(LobbyProtocol::GROUP, LobbyProtocol::LIST_END))
        return HandleListEnd(event.data);
    if (event.HasTags(LobbyProtocol::GROUP, LobbyProtocol::PLAYER_COUNTS))
        return HandlePlayerCounts(event.data);
    if (event.HasTags(LobbyProtocol::GROUP, LobbyProtocol::SEAT_ANSWER))
        return HandleSeatAnswer(event.data);
    return true;
}

bool CLobbyPlugin::HandleTable(const QByteArray &payload)
{
    LobbyProtocol::STable table;
    if (!Payload::Decode(payload, table) || m_incomingIDs.contains(table.uiID) ||
        m_incoming.size() >= LobbyProtocol::MAX_TABLES)
        return false;
    m_incoming.append(table);
    m_incomingIDs.insert(table.uiID);
    return true;
}

bool CLobbyPlugin::HandleListEnd(const QByteArray &payload)
{
    LobbyProtocol::SListEnd end;
    if (!Payload::Decode(payload, end))
        return false;
    // A list that lacks what was malformed is still the best there is.
    m_pModel->SetTables(m_incoming);
    const bool complete = quint32(m_incoming.size()) == end.uiCount;
    ForgetIncoming();
    return complete;
}

bool CLobbyPlugin::HandlePlayerCounts(const QByteArray &payload)
{
    LobbyProtocol::SPlayerCounts players;
    if (!Payload::Decode(payload, players))
        return false;
    for (const LobbyProtocol::SPlayerCount &count : qAsConst(players.counts))
        m_pModel->SetPlayers(count);
    return true;
}

bool CLobbyPlugin::HandleSeatAnswer(const QByteArray &payload)
{
    LobbyProtocol::SSeatAnswer answer;
    if (!Payload::Decode(payload, answer))
        return false;
    const LobbyProtocol::STable *table = m_pModel->FindTable(answer.uiTableID);
    Q_EMIT signal_SeatAnswered(
        Texts::MakeItem(KeyOf(answer.eResult), {{"#nickname#", CUserInfo::GetInstance()->GetNickname()},
                                                {"#place#", uint(answer.usPlace)},
                                                {"#table#", table ? table->strName : QString()}}));
    if (table && answer.eResult == LobbyProtocol::SR_TAKEN)
        TellOfSeat(*table, answer.usPlace);
    return true;
}

void CLobbyPlugin::TellOfSeat(const LobbyProtocol::STable &table, quint16 place)
{
    CEvent event = CEvent::Create(QString::fromLatin1(SeatEvent::GROUP), QString::fromLatin1(SeatEvent::GIVEN));
    event.targetID = place;
    event.data = Payload::Encode(table);
    event.widget = m_pView;
    SendInternEvent(event, false);
}

void CLobbyPlugin::ForgetIncoming()
{
    m_incoming.clear();
    m_incomingIDs.clear();
}
