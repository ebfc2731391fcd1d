#include "LobbyPlugin.h"

#include "LobbyView.h"

#include <common/QuickView.h>
#include <common/SeatEvent.h>
#include <common/SettingsPage.h>
#include <common/Texts.h>
#include <files/Console.h>
#include <models/CasinoInfo.h>
#include <models/UserInfo.h>
#include <settings/Config.h>
#include <settings/Settings.h>
#include <ui/Action.h>
#include <ui/MenuManager.h>

namespace {

const QLatin1String TEXT_MALFORMED("Lobby: the game server sent something malformed, which was ignored. Further "
                                   "cases on this connection are not reported.");

const QString QUICK = QStringLiteral("qml"); // value of the setting pokerlobbytype
const QString WIDGETS = QStringLiteral("widgets");

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

CLobbyPlugin::CLobbyPlugin()
{
    connect(m_pTables, &CLobbyTables::signal_SeatWanted, this, &CLobbyPlugin::RequestSeat);
}

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
    new CSettingsPage(
        "LOBBY_TITLE", QStyle::SP_FileIcon,
        {CSettingsPage::Setting("LOBBY_POPUP_OFF", "disabletablepopup"),
         {"LOBBY_IN_QML", "lobbyInQml", &CQuickView::IsChosen,
          [](const QVariant &on) { CSettings::GetInstance()->SetPokerLobbyType(on.toBool() ? QUICK : WIDGETS); },
          CConfig::GetInstance()->GetPokerLobbyType() == QUICK}},
        this);
}

void CLobbyPlugin::ConnectionStateChanged(EConnectionState::type state)
{
    m_pModel->SetStale();
    m_pTables->SetSeatAnswer(CTranslationItem());
    ForgetIncoming();
    m_bWarned = false;
    if (state != EConnectionState::Connected)
        return;
    const QByteArray request = QByteArray(LobbyProtocol::GET_LIST);
    SendToServer(LobbyProtocol::GROUP, 0, 0, request.constData(), request.size(), false);
}

QWidget *CLobbyPlugin::CreateView(QWidget *parent)
{
    m_pView = new CQuickView(new CLobbyView(m_pTables), QUrl(QStringLiteral("qrc:/lobby/Lobby.qml")),
                             {{QStringLiteral("tables"), QVariant::fromValue<QObject *>(m_pTables)}}, parent);
    Texts::Bind(m_pView.data(), &QWidget::setWindowTitle, "LOBBY_TITLE");
    AddMenu();
    return m_pView;
}

void CLobbyPlugin::AddMenu()
{
    CMenuManager *manager = CMenuManager::GetInstance();
    CMenu *menu = manager->GetMenu(SeatEvent::MENU, SeatEvent::MENU, Texts::Area());
    auto *takeSeat = new CAction(QStringLiteral("ACTION_TAKE_SEAT"), Texts::Area());
    connect(takeSeat, &CAction::signal_Update, m_pTables, [this](CAction *action) {
        action->setEnabled(m_pTables->GetChosenRow() >= 0 && CUserInfo::GetInstance()->IsLoggedIn());
    });
    connect(takeSeat, &QAction::triggered, m_pTables, &CLobbyTables::AskForSeat);
    menu->AddAction(takeSeat);
    manager->AddToMenuBar(menu);
}

void CLobbyPlugin::RequestSeat(quint32 tableID)
{
    m_pTables->SetSeatAnswer(CTranslationItem());
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
    TellCounts();
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
    TellCounts();
    return true;
}

// Of how much is going on the client knows what the lobby does.
void CLobbyPlugin::TellCounts() const
{
    uint players = 0;
    for (int row = 0; row < m_pModel->rowCount(); ++row)
        players += m_pModel->GetTable(row).usPlayers;
    CCasinoInfo::GetInstance()->SetPokerPlayerCount(players);
    CCasinoInfo::GetInstance()->SetPokerTableCount(static_cast<unsigned short>(m_pModel->rowCount()));
}

bool CLobbyPlugin::HandleSeatAnswer(const QByteArray &payload)
{
    LobbyProtocol::SSeatAnswer answer;
    if (!Payload::Decode(payload, answer))
        return false;
    const LobbyProtocol::STable *table = m_pModel->FindTable(answer.uiTableID);
    m_pTables->SetSeatAnswer(
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
