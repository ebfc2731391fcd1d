#include "LobbyPlugin.h"

#include "LobbyColumns.h"
#include "LobbyView.h"
#include "SteadyRows.h"

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

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QtMath>

#include <utility>

namespace {

const QString QUICK = QStringLiteral("qml"); // value of the setting pokerlobbytype
const QString WIDGETS = QStringLiteral("widgets");
constexpr qreal QUICK_MARGINS = 1.25; // of a cell, as a part of the font's height

// Keys of texts by answer; all other answers have one text.
const QHash<int, const char *> SEAT_KEYS{{LobbyProtocol::SR_TAKEN, "SEAT_TAKEN"},
                                         {LobbyProtocol::SR_CLOSED, "SEAT_CLOSED"},
                                         {LobbyProtocol::SR_FULL, "SEAT_FULL"},
                                         {LobbyProtocol::SR_NOT_LOGGED_IN, "SEAT_NOT_LOGGED_IN"}};

} // namespace

CLobbyPlugin::CLobbyPlugin()
{
    connect(m_pTables, &CLobbyTables::signal_SeatWanted, this, &CLobbyPlugin::RequestSeat);
    m_show.setSingleShot(true);
    connect(&m_show, &QTimer::timeout, this, &CLobbyPlugin::ShowReceived);
    connect(CUserInfo::GetInstance(), &CUserInfo::signal_LoginStateChanged, m_pTables, [this] {
        if (!CUserInfo::GetInstance()->IsLoggedIn())
            m_pTables->SetSeatAnswer(CTranslationItem());
    });
}

void CLobbyPlugin::ReceiveEvent(CEvent e)
{
    LobbyProtocol::STable table;
    LobbyProtocol::SListEnd end;
    LobbyProtocol::SPlayerCounts players;
    LobbyProtocol::SSeatAnswer answer;
    if (e.HasTags(SeatEvent::GROUP, SeatEvent::LEFT)) {
        if (e.targetID == m_uiAnswered)
            m_pTables->SetSeatAnswer(CTranslationItem());
        return;
    }
    bool isGood = true;
    if (Payload::Decode(e.data, table))
        isGood = OnTable(table);
    else if (Payload::Decode(e.data, end))
        isGood = OnListEnd(end.uiCount);
    else if (Payload::Decode(e.data, players))
        OnPlayerCounts(players.counts);
    else if (Payload::Decode(e.data, answer))
        OnSeatAnswer(answer);
    else
        isGood = !e.HasTag1(LobbyProtocol::GROUP); // an unknown event of the host is no fault
    if (isGood || m_bWarned)
        return;
    m_bWarned = true;
    CConsole::AddMessage(QStringLiteral("Lobby: the game server sent something malformed or unknown, which was "
                                        "ignored. Further cases on this connection are not reported."),
                         CConsole::MC_Network, CConsole::ML_Warning, QString::fromLatin1(e.tag2, sizeof e.tag2),
                         int(e.data.size()));
}

void CLobbyPlugin::RegisterForEvents()
{
    RegisterForEvent(QString::fromLatin1(LobbyProtocol::GROUP), QString());
    RegisterForEvent(QString::fromLatin1(SeatEvent::GROUP), QString::fromLatin1(SeatEvent::LEFT));
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
    ShowReceived();
    m_pList->SetStale();
    m_pTables->SetSeatAnswer(CTranslationItem());
    ClearIncoming();
    m_bWarned = false;
    if (state != EConnectionState::Connected)
        return;
    SendToServer(LobbyProtocol::GROUP, 0, 0, LobbyProtocol::GET_LIST, sizeof LobbyProtocol::GET_LIST - 1, false);
}

QWidget *CLobbyPlugin::CreateView(QWidget *parent)
{
    m_pView = new CQuickView(
        new CLobbyView(m_pTables), QUrl(QStringLiteral("qrc:/lobby/Lobby.qml")),
        {{QStringLiteral("tables"), QVariant::fromValue<QObject *>(m_pTables)},
         {QStringLiteral("columns"), QVariant::fromValue<QObject *>(CreateQuickColumns())},
         {QStringLiteral("tableRows"), QVariant::fromValue<QObject *>(new CSteadyRows(m_pTables, m_pTables))}},
        parent);
    Texts::Bind(m_pView.data(), &QWidget::setWindowTitle, "LOBBY_TITLE");
    AddMenu();
    return m_pView;
}

// QML has the same font as the application, in which the texts are measured.
QObject *CLobbyPlugin::CreateQuickColumns()
{
    auto *columns = new CLobbyColumns(m_pTables);
    const auto measure = [this, columns] {
        QList<qreal> needed;
        for (const qreal width : m_pTables->GetTextWidths())
            needed.append(qCeil(width + QUICK_MARGINS * QFontMetricsF(QGuiApplication::font()).height()));
        columns->SetNeeded(needed);
    };
    connect(m_pTables, &CLobbyTables::signal_TextWidthsChanged, columns, measure);
    measure();
    return columns;
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
    SendToServer(LobbyProtocol::GROUP, 0, 0, request.constData(), int(request.size()), true);
}

bool CLobbyPlugin::OnTable(const LobbyProtocol::STable &table)
{
    if (m_incomingIDs.contains(table.uiID) || m_incomingIDs.size() >= LobbyProtocol::MAX_TABLES)
        return false;
    m_incomingIDs.insert(table.uiID);
    m_incoming.emplace(m_collator.sortKey(table.strName), table);
    return true;
}

// A list without the malformed tables is better than none.
bool CLobbyPlugin::OnListEnd(quint32 count)
{
    const bool isComplete = quint32(m_incoming.size()) == count;
    m_list.emplace();
    m_list->reserve(int(m_incoming.size()));
    for (auto &table : m_incoming)
        m_list->append(std::move(table.second));
    ClearIncoming();
    m_counts.clear();
    m_show.start(0);
    return isComplete;
}

void CLobbyPlugin::OnPlayerCounts(const QVector<LobbyProtocol::SPlayerCount> &counts)
{
    m_counts += counts;
    m_show.start(0);
}

void CLobbyPlugin::ClearIncoming()
{
    m_incoming.clear();
    m_incomingIDs.clear();
}

void CLobbyPlugin::ShowReceived()
{
    m_show.stop();
    if (!m_list && m_counts.isEmpty())
        return;
    if (m_list)
        m_pList->SetTables(*std::exchange(m_list, std::nullopt));
    m_pList->SetPlayers(std::exchange(m_counts, {}));
    TellCounts();
}

// The client knows the numbers of players and tables only from the lobby.
void CLobbyPlugin::TellCounts() const
{
    uint players = 0;
    for (const LobbyProtocol::STable &table : m_pList->GetTables())
        players += table.usPlayers;
    CCasinoInfo::GetInstance()->SetPokerPlayerCount(players);
    CCasinoInfo::GetInstance()->SetPokerTableCount(static_cast<unsigned short>(m_pList->GetTables().size()));
}

void CLobbyPlugin::OnSeatAnswer(const LobbyProtocol::SSeatAnswer &answer)
{
    ShowReceived();
    const LobbyProtocol::STable *table = m_pList->FindTable(answer.uiTableID);
    m_uiAnswered = answer.uiTableID;
    m_pTables->SetSeatAnswer(Texts::MakeItem(SEAT_KEYS.value(answer.eResult, "SEAT_REFUSED"),
                                             {{"#nickname#", CUserInfo::GetInstance()->GetNickname()},
                                              {"#place#", uint(answer.usPlace)},
                                              {"#table#", table ? table->strName : QString()}}));
    if (!table || answer.eResult != LobbyProtocol::SR_TAKEN)
        return;
    CEvent event = CEvent::Create(QString::fromLatin1(SeatEvent::GROUP), QString::fromLatin1(SeatEvent::GIVEN));
    event.targetID = answer.usPlace;
    event.data = Payload::Encode(*table);
    event.widget = m_pView;
    SendInternEvent(event, false);
}
